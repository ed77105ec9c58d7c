#pragma once

#include "model/methods.h"
#include "model/tasklist.h"
#include "ui_twdiskprobe.h"

#include <QFileDialog>
#include <QMainWindow>

/// The main window: the form in which a task is described, the list of tasks with its table, and
/// the ways to and from config files.
///
/// Slots are bound to the form by their names, and their order is that of the method table.
class twDiskProbe : public QMainWindow
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(twDiskProbe)

public:
    /// Opens with an empty list, and shows the defaults of a new task in the form.
    explicit twDiskProbe(QWidget* parent = nullptr, Qt::WindowFlags flags = {});
    ~twDiskProbe() override;

    /// Shows a task in the form. Of a marker only that it is one; the other fields stay.
    void loadTaskIntoForm(const TestTask& task);

    /// The task that the form describes. Texts are cut at 500 characters and become Latin-1; a
    /// field counts whether it is enabled or not.
    TestTask taskFromForm() const;

private slots:
    void on_buttonMoveUp_clicked();
    void on_buttonDelete_clicked();
    void on_buttonSave_clicked();
    void on_buttonLoad_clicked();
    void on_buttonBrowseSource_clicked();
    void on_buttonBrowseDest_clicked();
    void on_buttonBrowseLog_clicked();
    void on_buttonBrowseExcel_clicked();
    void on_buttonCreateNew_clicked();
    void on_buttonCreateOverwrite_clicked();
    void on_comboTestType_currentIndexChanged(int index);
    void on_comboMethod_currentIndexChanged(int index);
    void on_spinFileSize_valueChanged(int value);
    void on_spinChunkSize_valueChanged(int value);
    void on_checkNoChunks_toggled(bool checked);
    void on_tableWidget_currentItemChanged(QTableWidgetItem* current, QTableWidgetItem* previous);

private:
    /// Rebuilds every cell of the table from the list; current cell and selection stay.
    void refreshTable();
    /// True if the row is one of the list's.
    bool isTaskRow(int row) const;

    /// Enables, refills and corrects what depends on method, test type and "No Chunks".
    void updateControlStates();
    void offerTestTypes(IoMethod method);
    void offerSystemBuffers(IoMethod method);
    void applyRules(const TaskRules& rules, TestType type);
    IoMethod methodInForm() const;
    TestType testTypeInForm() const;

    void setPathsFromForm(TestTask& task) const;

    using FileDialog = decltype(&QFileDialog::getOpenFileName);
    /// Asks for a file, starting from what the field holds or else from the last folder, which
    /// becomes the file's. Empty when cancelled.
    QString chooseFile(FileDialog dialog, const QLineEdit* edit, const QString& caption,
                       const QString& filter);

    Ui::twDiskProbeClass ui{};
    TaskList taskList;
    QString lastDirectory;     ///< where the last file was chosen, in whichever dialog
    bool formUpdating = false; ///< true while updateControlStates() changes the form itself
};
