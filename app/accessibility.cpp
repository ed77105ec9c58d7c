#include "app/accessibility.h"

#include "app/tablefocus.h"
#include "ui_twdiskprobe.h"

#include <QCoreApplication>
#include <QFocusEvent>

namespace {

// A label that stands beside a control names it, in whatever language it is shown. As its buddy it
// is also related to it, which is the only way for combo boxes: their own name is what they show.
void nameByLabels(const Ui::twDiskProbeClass& form)
{
    form.label_16->setBuddy(form.textInfo);
    form.label_2->setBuddy(form.comboMethod);
    form.label->setBuddy(form.comboTestType);
    form.label_8->setBuddy(form.editSource);
    form.label_9->setBuddy(form.editDest);
    form.label_10->setBuddy(form.editLog);
    form.label_11->setBuddy(form.editExcel);
    form.label_6->setBuddy(form.spinFileSize);
    form.label_7->setBuddy(form.spinIterations);
    form.label_3->setBuddy(form.spinChunkSize);
    form.label_4->setBuddy(form.spinChunkWait);
    form.label_5->setBuddy(form.comboSystemBuffer);
    form.label_24->setBuddy(form.comboCacheMode);
}

// Names and descriptions that the form does not have. They follow the form's texts, in whatever
// language it shows them next.
class AccessibleTexts final : public QObject
{
public:
    explicit AccessibleTexts(const Ui::twDiskProbeClass& form)
        : QObject(form.centralWidget)
        , m_form(form)
    {
        form.centralWidget->installEventFilter(this);
        set();
    }

    // A text that changes has the form laid out anew; no event of its own tells of it.
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::LanguageChange)
            set();
        return QObject::eventFilter(watched, event);
    }

private:
    void set() const
    {
        setNames();
        setDescriptions();
    }
    void setNames() const;
    void setDescriptions() const;

    // Each assignment is told to screen readers, whether it changes anything or not.
    static void setName(QWidget* widget, const QString& name)
    {
        if (widget->accessibleName() != name)
            widget->setAccessibleName(name);
    }

    const Ui::twDiskProbeClass m_form;
};

// Names for widgets that show no text, or the same text as their neighbours.
void AccessibleTexts::setNames() const
{
    const struct
    {
        QWidget* widget;
        const char* text;
    } names[] = {
        {m_form.tableWidget, QT_TRANSLATE_NOOP("AccessibleNames", "Tasks")},
        {m_form.groupBox_2,
         QT_TRANSLATE_NOOP("AccessibleNames", "Change, save and load the tasks")},
        {m_form.buttonBrowseSource, QT_TRANSLATE_NOOP("AccessibleNames", "Choose source file")},
        {m_form.buttonBrowseDest, QT_TRANSLATE_NOOP("AccessibleNames", "Choose destination file")},
        {m_form.buttonBrowseLog, QT_TRANSLATE_NOOP("AccessibleNames", "Choose log file")},
        {m_form.buttonBrowseExcel, QT_TRANSLATE_NOOP("AccessibleNames", "Choose .csv file")},
    };
    for (const auto& name : names)
        setName(name.widget, QCoreApplication::translate("AccessibleNames", name.text));
    // Qt calls a group in a group like the outer one.
    for (QGroupBox* group : {m_form.groupBox_3, m_form.groupBox_5})
        setName(group, group->title());
}

// The help that stands beside a control. Where the form has a tool tip, Qt takes that.
void AccessibleTexts::setDescriptions() const
{
    const QVector<QLabel*> variables = {m_form.label_220, m_form.label_214, m_form.label_223};
    const struct
    {
        QWidget* widget;
        QVector<QLabel*> help;
    } descriptions[] = {
        {m_form.tableWidget, {m_form.label_224, m_form.label_213}},
        {m_form.radioNextConfig, {m_form.label_213}},
        {m_form.comboMethod, {m_form.label_218}},
        {m_form.editSource, QVector<QLabel*>{m_form.label_216} + variables},
        {m_form.editDest, variables},
        {m_form.editLog, variables},
        {m_form.editExcel, variables},
        {m_form.spinFileSize, {m_form.label_FileSizeNotice}},
        {m_form.checkNoChunks, {m_form.label_219}},
        {m_form.spinChunkSize, {m_form.label_219}},
        {m_form.comboCacheMode, {m_form.label_222}},
    };
    for (const auto& description : descriptions) {
        QStringList texts;
        for (const QLabel* label : description.help)
            texts += label->text();
        const QString text = texts.join('\n');
        if (description.widget->accessibleDescription() != text)
            description.widget->setAccessibleDescription(text);
    }
}

// Of the kinds of task Tab comes to the one that is chosen; arrow keys choose the other. Qt sees to
// that only from the moment at which one of them has had the focus.
class ChosenIsTabStop final : public QObject
{
public:
    explicit ChosenIsTabStop(const Ui::twDiskProbeClass& form)
        : QObject(form.centralWidget)
        , m_buttons{form.radioNextConfig, form.radioNewTest}
    {
        for (QRadioButton* button : m_buttons) {
            connect(button, &QRadioButton::toggled, this, &ChosenIsTabStop::set);
            button->installEventFilter(this);
        }
        set();
    }

    // A button that got the focus without being chosen has become a tab stop. (One that is
    // destroyed gives its focus up for another reason than these.)
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::FocusOut &&
            dynamic_cast<QFocusEvent&>(*event).reason() != Qt::OtherFocusReason)
            set();
        return QObject::eventFilter(watched, event);
    }

private:
    void set() const
    {
        for (QRadioButton* button : m_buttons)
            button->setFocusPolicy(button->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
    }

    const QVector<QRadioButton*> m_buttons;
};

} // namespace

void makeAccessible(const Ui::twDiskProbeClass& form)
{
    nameByLabels(form);
    new AccessibleTexts(form); // the central widget's child, as the next one
    new ChosenIsTabStop(form);
    // The form's own order of controls is that in which a person reads; but text and cells would
    // keep who presses Tab.
    form.textInfo->setTabChangesFocus(true);
    makeTabStop(*form.tableWidget);
}
