#pragma once

#include "app/twdiskprobe.h"
#include "tests/support/dialoganswer.h"

#include <QTest>

/// The real window, handled as a person would: by clicks, keys and what can be read on it.
class Editor
{
public:
    Editor()
    {
        window.show();
        if (!QTest::qWaitForWindowExposed(&window))
            qFatal("the window was never shown");
        window.activateWindow();
    }

    template <class Widget>
    Widget* find(const char* name) const
    {
        auto* widget = window.findChild<Widget*>(name);
        if (widget == nullptr)
            qFatal("the window has no %s", name);
        return widget;
    }

    QString text(const char* edit) const { return find<QLineEdit>(edit)->text(); }
    int value(const char* spinBox) const { return find<QSpinBox>(spinBox)->value(); }
    int index(const char* comboBox) const { return find<QComboBox>(comboBox)->currentIndex(); }
    bool isEnabled(const char* widget) const { return find<QWidget>(widget)->isEnabled(); }
    bool isChecked(const char* button) const { return find<QAbstractButton>(button)->isChecked(); }
    QString infoText() const { return find<QPlainTextEdit>("textInfo")->toPlainText(); }
    QTableWidget* table() const { return find<QTableWidget>("tableWidget"); }

    /// Focus moves only in a window that has it itself.
    void activate()
    {
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window))
            qFatal("the window never became active");
    }

    void click(const char* button) { clickButton(find<QAbstractButton>(button)); }

    /// Brings a check box or radio button into the state, by a click if it is in the other.
    void check(const char* button, bool checked = true)
    {
        if (isChecked(button) != checked)
            click(button);
    }

    /// Picks an entry from the open list of a combo box.
    void choose(const char* comboBox, int index)
    {
        auto* box = find<QComboBox>(comboBox);
        if (!box->isEnabled() || index >= box->count())
            return;
        box->showPopup();
        QAbstractItemView* list = box->view();
        const QModelIndex entry = box->model()->index(index, box->modelColumn());
        list->scrollTo(entry);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(entry).center());
        box->hidePopup();
    }

    void type(const char* edit, const QString& text)
    {
        auto* field = find<QLineEdit>(edit);
        field->selectAll();
        QTest::keyClick(field, Qt::Key_Delete);
        if (!text.isEmpty())
            QTest::sendKeyEvent(QTest::Click, field, Qt::Key_unknown, text, Qt::NoModifier);
    }

    void enter(const char* spinBox, int value)
    {
        auto* box = find<QSpinBox>(spinBox);
        box->selectAll();
        QTest::keyClicks(box, QString::number(value));
        QTest::keyClick(box, Qt::Key_Return);
    }

    void typeInfo(const QString& text)
    {
        auto* edit = find<QPlainTextEdit>("textInfo");
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        edit->insertPlainText(text);
    }

    void selectRow(int row)
    {
        QTableWidget* t = table();
        t->scrollToItem(t->item(row, 0));
        const QPoint middle = t->visualItemRect(t->item(row, 0)).center();
        QTest::mouseClick(t->viewport(), Qt::LeftButton, {}, middle);
    }

    /// Adds a Write task to this destination.
    void addWriteTask(const QString& dest)
    {
        check("radioNewTest");
        choose("comboMethod", 2);
        choose("comboTestType", 1);
        type("editDest", dest);
        click("buttonCreateNew");
    }

    void addMarker()
    {
        check("radioNextConfig");
        click("buttonCreateNew");
        check("radioNewTest");
    }

    /// Saves under this name and answers the confirmation.
    void save(const QString& file)
    {
        DialogAnswers answers;
        answers.answerNext(chooseFile(file));
        answers.answerNext([](QDialog& dialog) { pressKey(dialog, Qt::Key_Return); });
        click("buttonSave");
    }

    /// Loads a file into the window, agreeing to lose the list if that is asked.
    void load(const QString& file)
    {
        DialogAnswers answers;
        if (table()->rowCount() > 0)
            answers.answerNext([](QDialog& dialog) { pressKey(dialog, Qt::Key_Return); });
        answers.answerNext(chooseFile(file));
        click("buttonLoad");
    }

    QStringList row(int row) const
    {
        QStringList cells;
        for (int column = 0; column < table()->columnCount(); ++column)
            cells += table()->item(row, column)->text();
        return cells;
    }

    QList<QStringList> rows() const
    {
        QList<QStringList> all;
        for (int i = 0; i < table()->rowCount(); ++i)
            all += row(i);
        return all;
    }

    /// One column of the whole table.
    QStringList column(int number) const
    {
        QStringList cells;
        for (int i = 0; i < table()->rowCount(); ++i)
            cells += table()->item(i, number)->text();
        return cells;
    }

    twDiskProbe window;

private:
    /// Check and radio buttons react on their mark only, at their left end.
    static void clickButton(QAbstractButton* button)
    {
        const bool isPush = qobject_cast<QPushButton*>(button) != nullptr;
        const QPoint mark(10, button->height() / 2);
        QTest::mouseClick(button, Qt::LeftButton, {}, isPush ? button->rect().center() : mark);
    }
};
