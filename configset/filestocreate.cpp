#include "configset/filestocreate.h"

#include "shared/kvpath.h"
#include "shared/kvtext.h"

#include <algorithm>

namespace {

const QString dummyName = QStringLiteral("dummyFile");

QString expanded(_kvString<500> name, const TestTask& task, int taskNumber, int iteration,
                 bool keepCfgPath, const MachineValues& machine)
{
    return kvToQString(
        replaceFileVariables(task, name, taskNumber, iteration, keepCfgPath, machine));
}

void collectFolder(FileToCreateList& list, const _kvString8_allSize<500>& path,
                   const TestTask& task, int taskNumber, const MachineValues& machine)
{
    constexpr qint64 dummySize = 1;
    const QString folder = kvGetDirName(kvConvertPDToOS(kvToQString(path), _kvOS::Linux), '/');
    collectFilesToCreate(list, folder + dummyName, dummySize, task, taskNumber, machine);
}

/// False where every iteration has the same name. Host and date count as well: what they put in
/// comes before "[iter]" is replaced and may complete it, and the date goes on meanwhile.
bool dependsOnIteration(const _kvString<500>& name)
{
    return name.contains("[iter]") || name.contains("[host]") || name.contains("[date]");
}

} // namespace

void FileToCreateList::append(const FileToCreate& file)
{
    m_files.append(file);
    m_texts.insert(file.text);
}

void collectFilesToCreate(FileToCreateList& list, const QString& name, qint64 size,
                          const TestTask& task, const int& taskNumber, const MachineValues& machine)
{
    const auto wideName = kvToString16<500>(name);
    const int iterations =
        dependsOnIteration(wideName) ? task.iterations : std::min(task.iterations, 1);
    for (int iteration = 0; iteration < iterations; ++iteration) {
        const QString text = expanded(wideName, task, taskNumber, iteration, true, machine);
        if (list.contains(text))
            continue;
        const QString resolved = expanded(wideName, task, taskNumber, iteration, false, machine);
        list.append({text, resolved, size, name.endsWith(dummyName)});
    }
}

void collectFilesOfTask(FileToCreateList& list, const TestTask& task, int taskNumber,
                        const MachineValues& machine)
{
    if (task.sourcePath.hasData())
        collectFilesToCreate(list, kvToQString(task.sourcePath), task.io.fileSize, task, taskNumber,
                             machine);
    if (task.destPath.startsWith("[cfgPath]"))
        collectFolder(list, task.destPath, task, taskNumber, machine);
    if (task.logPath.hasData())
        collectFolder(list, task.logPath, task, taskNumber, machine);
    if (task.csvPath.hasData())
        collectFolder(list, task.csvPath, task, taskNumber, machine);
}
