#include "app/twdiskprobe.h"

#include "app/accessibility.h"
#include "app/pathfield.h"
#include "app/rememberedsizes.h"
#include "configset/seriesloader.h"
#include "configset/seriessaver.h"
#include "dialogs/kvmessagebox.h"
#include "model/taskcells.h"
#include "ui/fittexts.h"

#include <QFileDialog>
#include <QHeaderView>

namespace {

const QString configFileFilter = QStringLiteral("Text Files (*.dpc)");

} // namespace

twDiskProbe::twDiskProbe(QWidget* parent, Qt::WindowFlags flags)
    : QMainWindow(parent, flags)
{
    ui.setupUi(this);
    constexpr int rowHeight = 20;
    ui.tableWidget->verticalHeader()->setDefaultSectionSize(rowHeight);
    ui.tableWidget->setItemDelegate(new RememberedSizes(ui.tableWidget));

    TestTask task;
    task.setDefaults();
    loadTaskIntoForm(task);
    for (QLineEdit* edit : {ui.editSource, ui.editDest, ui.editExcel})
        new PathField(*edit, toOsPath); // the field's child, as the next one
    new PathField(*ui.editLog, pathOfLogFile);
    makeAccessible(ui);
    fitTexts(*this);
}

twDiskProbe::~twDiskProbe() = default;

void twDiskProbe::refreshTable()
{
    ui.tableWidget->setRowCount(taskList.size());
    int configFileNumber = 0;
    for (int row = 0; row < taskList.size(); ++row) {
        const TestTask& task = taskList.at(row);
        const QStringList cells = taskCells(task, configFileNumber);
        for (int column = 0; column < cells.size(); ++column) {
            auto* item = new QTableWidgetItem;
            if (!cells[column].isNull())
                item->setText(cells[column]);
            ui.tableWidget->setItem(row, column, item);
        }
        configFileNumber += task.waitForNextConfig ? 1 : 0;
    }
    ui.tableWidget->resizeColumnsToContents();
}

bool twDiskProbe::isTaskRow(int row) const
{
    return row >= 0 && row < taskList.size();
}

void twDiskProbe::on_tableWidget_currentItemChanged(QTableWidgetItem* /*current*/,
                                                    QTableWidgetItem* /*previous*/)
{
    const int row = ui.tableWidget->currentRow();
    if (isTaskRow(row))
        loadTaskIntoForm(taskList.at(row));
}

void twDiskProbe::on_buttonCreateNew_clicked()
{
    taskList.append(taskFromForm());
    refreshTable();
}

void twDiskProbe::on_buttonCreateOverwrite_clicked()
{
    const int row = ui.tableWidget->currentRow();
    if (!isTaskRow(row))
        return;
    taskList[row] = taskFromForm();
    refreshTable();
}

void twDiskProbe::on_buttonMoveUp_clicked()
{
    const int row = ui.tableWidget->currentRow();
    if (row < 1 || !isTaskRow(row))
        return;
    taskList.swapItemsAt(row, row - 1);
    refreshTable();
}

void twDiskProbe::on_buttonDelete_clicked()
{
    const int row = ui.tableWidget->currentRow();
    if (!isTaskRow(row))
        return;
    taskList.removeAt(row);
    refreshTable();
}

void twDiskProbe::on_buttonSave_clicked()
{
    if (taskList.isEmpty())
        return;
    // The caption is the one of the destination file's dialog, on purpose.
    const QString file = QFileDialog::getSaveFileName(this, tr("Destination File..."),
                                                      lastDirectory, configFileFilter);
    if (file.isEmpty())
        return;
    const SeriesName name = seriesNameForSaving(file);
    lastDirectory = name.folder;
    saveSeries(taskList, ui.textInfo->toPlainText(), name);

    constexpr int countdownSeconds = 30;
    kvMessageInformation(
        this,
        tr("Config files have been saved.\n\n\n"
           "There is an additional ..._init.dpc config file. This config \n"
           "creates all (not existing) source files and folders for output files.\n"
           "Please execute 'twDiskProbe ..._init.dpc' to create the files"),
        tr("Ok"), countdownSeconds, QString(), nullptr, false);
}

void twDiskProbe::on_buttonLoad_clicked()
{
    constexpr int noCountdown = -1;
    if (!taskList.isEmpty() &&
        !kvMessageQuestion(this, tr("Opening a new file will clear the current task list"),
                           tr("Ok"), noCountdown, tr("Abort, do not load file"), nullptr, false))
        return;
    // Cleared before a file is chosen: who cancels now keeps an empty list, and a table that shows
    // the old rows until its next refresh.
    taskList.clear();
    const QString file = QFileDialog::getOpenFileName(
        this, tr("Please select one of the .dpc files..."), lastDirectory, configFileFilter);
    if (file.isEmpty())
        return;
    const SeriesName name = seriesNameForLoading(file);
    lastDirectory = name.folder;

    constexpr int countdownSeconds = 45;
    loadSeries(name, taskList,
               {[this] { return ui.textInfo->toPlainText().isEmpty(); },
                [this](const QString& text) { ui.textInfo->appendPlainText(text); },
                [this](const QString& line, const QString& path) {
                    kvMessageWarning(
                        this, tr("Unable to load line\n") + line + tr("\n from file ") + path,
                        tr("Ok"), countdownSeconds, QString(), nullptr, false);
                }});
    refreshTable();
}
