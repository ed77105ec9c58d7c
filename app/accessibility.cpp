#include "app/accessibility.h"

#include "ui_twdiskprobe.h"

#include <QCoreApplication>

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

struct Name
{
    QWidget* widget;
    const char* text;
};

// What shows no text, or the same as its neighbours.
void nameByTable(const Ui::twDiskProbeClass& form)
{
    const Name names[] = {
        {form.tableWidget, QT_TRANSLATE_NOOP("AccessibleNames", "Tasks")},
        {form.groupBox_2, QT_TRANSLATE_NOOP("AccessibleNames", "Change, save and load the tasks")},
        {form.buttonBrowseSource, QT_TRANSLATE_NOOP("AccessibleNames", "Choose source file")},
        {form.buttonBrowseDest, QT_TRANSLATE_NOOP("AccessibleNames", "Choose destination file")},
        {form.buttonBrowseLog, QT_TRANSLATE_NOOP("AccessibleNames", "Choose log file")},
        {form.buttonBrowseExcel, QT_TRANSLATE_NOOP("AccessibleNames", "Choose .csv file")},
    };
    for (const Name& name : names)
        name.widget->setAccessibleName(QCoreApplication::translate("AccessibleNames", name.text));
    // Qt calls a group in a group like the outer one.
    for (QGroupBox* group : {form.groupBox_3, form.groupBox_5})
        group->setAccessibleName(group->title());
}

// The form's own order of controls is that in which a person reads; but text and cells would keep
// who presses Tab.
void letTabThrough(const Ui::twDiskProbeClass& form)
{
    form.textInfo->setTabChangesFocus(true);
    form.tableWidget->setTabKeyNavigation(false);
}

} // namespace

void makeAccessible(const Ui::twDiskProbeClass& form)
{
    nameByLabels(form);
    nameByTable(form);
    letTabThrough(form);
}
