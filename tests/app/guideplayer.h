#pragma once

#include "tests/app/editor.h"
#include "tests/app/guides.h"

#include <QLabel>

/// Does in the real window what a guide tells a person to do. The guide's paths begin with "/";
/// what it saves goes to the same paths below a folder.
class GuidePlayer
{
public:
    explicit GuidePlayer(const QString& root = {})
        : m_root(root)
    {}

    /// Brings a control to a value: presses, chooses, types or enters, whatever the control is for.
    void act(const GuidePart& action)
    {
        if (auto* button = buttonNamed(action.name))
            press(button, action.value);
        else if (QWidget* control = controlNamed(action.name))
            bring(control, action.value);
        else
            qFatal("the window has no control '%s'", qPrintable(action.name));
    }

    /// The picture of a name, by its last word: the file dialog of the last save, the
    /// task list, the form as far down as most tasks need it, or else the window.
    QPixmap picture(const QString& name)
    {
        if (name.endsWith("-saving"))
            return m_saving;
        if (name.endsWith("-tasks"))
            return between("label_12", "groupBox_2");
        if (name.endsWith("-form"))
            return between("label_13", "checkWriteDone");
        return m_editor.window.grab();
    }

private:
    QString path(const QString& pathInTheGuide) const { return m_root + pathInTheGuide; }

    static bool isCalled(const QString& text, const QString& name)
    {
        return !name.isEmpty() && text.simplified() == name;
    }

    QAbstractButton* buttonNamed(const QString& name) const
    {
        for (auto* button : m_editor.window.findChildren<QAbstractButton*>())
            if (isCalled(button->text(), name))
                return button;
        return nullptr;
    }

    QWidget* controlNamed(const QString& label) const
    {
        for (const auto* each : m_editor.window.findChildren<QLabel*>())
            if (isCalled(each->text(), label) && each->buddy() != nullptr)
                return each->buddy();
        return nullptr;
    }

    void press(QAbstractButton* button, const QString& file)
    {
        const QByteArray name = button->objectName().toUtf8();
        if (name == "buttonSave")
            save(path(file));
        else if (name == "buttonLoad")
            m_editor.load(path(file));
        else
            m_editor.click(name.constData());
    }

    void bring(QWidget* control, const QString& value)
    {
        const QByteArray name = control->objectName().toUtf8();
        if (!control->isEnabled())
            qFatal("%s is disabled", name.constData());
        if (auto* combo = qobject_cast<QComboBox*>(control))
            m_editor.choose(name.constData(), itemNamed(*combo, value));
        else if (qobject_cast<QSpinBox*>(control) != nullptr)
            m_editor.enter(name.constData(), value.toInt());
        else if (qobject_cast<QLineEdit*>(control) != nullptr)
            m_editor.type(name.constData(), value);
        else
            m_editor.typeInfo(value);
    }

    static int itemNamed(const QComboBox& combo, const QString& name)
    {
        for (int i = 0; i < combo.count(); ++i)
            if (isCalled(combo.itemText(i), name))
                return i;
        qFatal("nothing called '%s' can be chosen", qPrintable(name));
    }

    void save(const QString& file)
    {
        DialogAnswers answers;
        answers.answerNext(chooseFile(file, [&](QDialog& dialog) { m_saving = dialog.grab(); }));
        answers.answerNext([](QDialog& dialog) { pressKey(dialog, Qt::Key_Return); });
        m_editor.click("buttonSave");
    }

    /// The part of the window that reaches from one widget to another.
    QPixmap between(const char* first, const char* last)
    {
        // Not of the window, which shows no more than the screen has space for.
        QWidget* central = m_editor.window.centralWidget();
        QRect part;
        for (const char* name : {first, last}) {
            const auto* widget = m_editor.find<QWidget>(name);
            part |= QRect(widget->mapTo(central, QPoint()), widget->size());
        }
        constexpr int margin = 4;
        part.adjust(-margin, -margin, margin, margin);
        QPixmap picture(part.size());
        picture.fill(central->palette().color(QPalette::Window));
        central->render(&picture, QPoint(), part, QWidget::DrawChildren);
        return picture;
    }

    QString m_root;
    Editor m_editor;
    QPixmap m_saving;
};
