#include "app/twdiskprobe.h"

#include "app/pathfield.h"
#include "model/limits.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"

#include <QScopedValueRollback>

#include <algorithm>

// The form: what it shows of a task, what it makes of one, and how it keeps itself consistent.

namespace {

QString mebibytes(int kib, int precision)
{
    constexpr float mibPerKib = 0.0009765625F;
    const double mib = static_cast<float>(kib) * mibPerKib;
    return QStringLiteral("%1 MiB").arg(mib, 0, 'f', precision);
}

_kvString8_allSize<maxPath> textOf(const QLineEdit* edit)
{
    return kvToString8<maxPath>(edit->text());
}

void toLinuxNotation(_kvString8_allSize<maxPath>& path)
{
    path = kvToString8<maxPath>(kvConvertPDToOS(kvToQString(path), _kvOS::Linux));
}

} // namespace

void twDiskProbe::loadTaskIntoForm(const TestTask& task)
{
    if (task.waitForNextConfig) {
        ui.radioNextConfig->setChecked(true);
        return;
    }
    // The method comes before the test type, which it may force, and the system buffer after both
    // have refilled its choices.
    ui.radioNewTest->setChecked(true);
    ui.comboMethod->setCurrentIndex(static_cast<int>(task.method));
    ui.comboTestType->setCurrentIndex(static_cast<int>(task.testType()));
    ui.editSource->setText(kvToQString(task.sourcePath));
    ui.editDest->setText(kvToQString(task.destPath));
    ui.editExcel->setText(kvToQString(task.csvPath));
    ui.editLog->setText(kvToQString(task.logPath));
    ui.spinFileSize->setValue(kibFromBytes(task.io.fileSize));
    ui.spinIterations->setValue(task.iterations);
    ui.checkNoChunks->setChecked(task.io.chunkSize == 0);
    ui.spinChunkSize->setValue(kibFromBytes(task.io.chunkSize));
    ui.checkFlush->setChecked(task.io.flush);
    ui.spinChunkWait->setValue(task.io.chunkWait);
    const int buffer = ui.comboSystemBuffer->findData(task.io.sysBufferMode);
    if (buffer >= 0)
        ui.comboSystemBuffer->setCurrentIndex(buffer);
    ui.checkPreallocate->setChecked(task.io.preallocate);
    ui.comboCacheMode->setCurrentIndex(task.io.cacheMode);
    ui.checkWriteDone->setChecked(task.writeDone);
}

TestTask twDiskProbe::taskFromForm() const
{
    TestTask task;
    if (ui.radioNextConfig->isChecked()) {
        task.waitForNextConfig = true;
        return task;
    }
    task.method = methodInForm();
    setPathsFromForm(task);
    task.iterations = ui.spinIterations->value();
    task.setChunkSize(ui.checkNoChunks->isChecked() ? 0 : bytesFromKib(ui.spinChunkSize->value()));
    task.io.flush = ui.checkFlush->isChecked();
    task.setChunkWait(ui.spinChunkWait->value());
    task.io.preallocate = ui.checkPreallocate->isChecked();
    task.io.cacheMode = ui.comboCacheMode->currentIndex();
    task.writeDone = ui.checkWriteDone->isChecked();
    task.io.sysBufferMode = ui.comboSystemBuffer->currentData().toInt();
    return task;
}

void twDiskProbe::setPathsFromForm(TestTask& task) const
{
    const TestType type = testTypeInForm();
    const bool hasSource = type == TestType::Copy || type == TestType::Read;
    const bool hasDest = type == TestType::Copy || type == TestType::Write;
    if (hasSource)
        task.sourcePath = textOf(ui.editSource);
    if (hasDest)
        task.destPath = textOf(ui.editDest);
    if (hasSource || hasDest)
        task.io.fileSize = std::min(bytesFromKib(ui.spinFileSize->value()), maxTaskFile);
    task.csvPath = textOf(ui.editExcel);
    task.logPath = textOf(ui.editLog);
    for (auto* path : {&task.sourcePath, &task.destPath, &task.csvPath, &task.logPath})
        toLinuxNotation(*path);
}

void twDiskProbe::updateControlStates()
{
    if (formUpdating)
        return;
    const QScopedValueRollback<bool> guard(formUpdating, true);

    // The method decides on the test type, and both on the rest.
    const IoMethod method = methodInForm();
    offerTestTypes(method);
    offerSystemBuffers(method);
    applyRules(rulesFor(method, testTypeInForm()), testTypeInForm());
}

IoMethod twDiskProbe::methodInForm() const
{
    return static_cast<IoMethod>(ui.comboMethod->currentIndex());
}

TestType twDiskProbe::testTypeInForm() const
{
    return static_cast<TestType>(ui.comboTestType->currentIndex());
}

void twDiskProbe::offerTestTypes(IoMethod method)
{
    const MethodInfo* const info = methodInfo(method);
    const bool copiesOnly = info != nullptr && info->has(CopiesOnly);
    if (copiesOnly)
        ui.comboTestType->setCurrentIndex(static_cast<int>(TestType::Copy));
    ui.comboTestType->setEnabled(!copiesOnly);
}

void twDiskProbe::offerSystemBuffers(IoMethod method)
{
    ui.comboSystemBuffer->clear();
    const MethodInfo* const info = methodInfo(method);
    if (info == nullptr)
        return;
    for (const SystemBuffer& buffer : info->systemBuffers) {
        if (buffer.text != nullptr)
            ui.comboSystemBuffer->addItem(QString::fromLatin1(buffer.text), buffer.mode);
    }
    ui.comboSystemBuffer->setEnabled(ui.comboSystemBuffer->count() > 1);
}

void twDiskProbe::applyRules(const TaskRules& rules, TestType type)
{
    ui.checkNoChunks->setEnabled(rules.allowsNoChunks);
    if (!rules.allowsNoChunks || rules.startsWithoutChunks)
        ui.checkNoChunks->setChecked(rules.startsWithoutChunks);
    const bool chunks = !ui.checkNoChunks->isChecked();
    ui.spinChunkSize->setEnabled(chunks);
    ui.checkFlush->setEnabled(chunks && rules.allowsFlush);
    ui.spinChunkWait->setEnabled(chunks);
    ui.label_FileSizeNotice->setVisible(type != TestType::Write);
    ui.editSource->setEnabled(type != TestType::Write);
    ui.editDest->setEnabled(type != TestType::Read);
    ui.checkPreallocate->setEnabled(rules.allowsPreallocation);
}

void twDiskProbe::on_comboTestType_currentIndexChanged(int /*index*/)
{
    updateControlStates();
}

void twDiskProbe::on_comboMethod_currentIndexChanged(int /*index*/)
{
    updateControlStates();
}

void twDiskProbe::on_checkNoChunks_toggled(bool /*checked*/)
{
    updateControlStates();
}

void twDiskProbe::on_spinFileSize_valueChanged(int value)
{
    ui.labelFileSizeMB->setText(mebibytes(value, 1));
}

void twDiskProbe::on_spinChunkSize_valueChanged(int value)
{
    // Chunks are small: one decimal would show most of them as zero.
    ui.labelChunkSizeMB->setText(mebibytes(value, 3));
}

QString twDiskProbe::chooseFile(FileDialog dialog, const QLineEdit* edit, const QString& caption,
                                const QString& filter)
{
    const QString start = edit->text().isEmpty() ? lastDirectory : edit->text();
    QString file = dialog(this, caption, start, filter, nullptr, {});
    if (!file.isEmpty())
        lastDirectory = kvGetDirNameAutoPD(file);
    return file;
}

void twDiskProbe::on_buttonBrowseSource_clicked()
{
    const QString file = chooseFile(&QFileDialog::getOpenFileName, ui.editSource,
                                    tr("Source File..."), tr("All Files (*)"));
    if (!file.isEmpty())
        ui.editSource->setText(toOsPath(file));
}

void twDiskProbe::on_buttonBrowseDest_clicked()
{
    const QString file = chooseFile(&QFileDialog::getSaveFileName, ui.editDest,
                                    tr("Destination File..."), tr("All Files (*)"));
    if (!file.isEmpty())
        ui.editDest->setText(toOsPath(file));
}

void twDiskProbe::on_buttonBrowseLog_clicked()
{
    const QString file = chooseFile(&QFileDialog::getSaveFileName, ui.editLog, tr("Log File..."),
                                    tr("Text Files (*.txt)"));
    if (!file.isEmpty())
        ui.editLog->setText(pathOfLogFile(file));
}

void twDiskProbe::on_buttonBrowseExcel_clicked()
{
    const QString file = chooseFile(&QFileDialog::getSaveFileName, ui.editExcel,
                                    tr("Excel File..."), tr("Csv Files (*.csv)"));
    if (!file.isEmpty())
        ui.editExcel->setText(toOsPath(file));
}
