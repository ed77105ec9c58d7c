#include "configset/filestocreate.h"

#include "model/limits.h"
#include "model/tasklinewriter.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"

#include <algorithm>

namespace {

QString expanded(_kvString<maxPath> name, const TestTask& task, int taskNumber, int iteration,
                 bool keepCfgPath, const MachineValues& machine)
{
    return kvToQString(
        replaceFileVariables(task, name, taskNumber, iteration, keepCfgPath, machine));
}

void collectFolder(FileToCreateList& list, const _kvString8_allSize<maxPath>& path,
                   const TestTask& task, int taskNumber, const MachineValues& machine)
{
    constexpr qint64 dummySize = 1;
    const QString folder = kvGetDirName(kvConvertPDToOS(kvToQString(path), _kvOS::Linux), '/');
    collectFilesToCreate(list, folder + dummyFileName, dummySize, task, taskNumber, machine);
}

/// The texts that a name has in the iterations of a task.
class IterationTexts
{
public:
    IterationTexts(const _kvString<maxPath>& name, const TestTask& task, int taskNumber,
                   const MachineValues& machine)
        : m_name(name)
        , m_task(task)
        , m_taskNumber(taskNumber)
        , m_machine(machine)
    {}

    QString text(qint64 iteration, bool keepCfgPath = true) const
    {
        return expanded(m_name, m_task, m_taskNumber, int(iteration), keepCfgPath, m_machine);
    }

    /// The next iteration whose text may be another one, if this one has that of the iteration
    /// before. Numbers of the same length stand in the same places of the name, so that only their
    /// leading digits count if the last ones are cut off, and none if the number is cut off or
    /// taken back by "..": whole runs have one text.
    qint64 after(qint64 iteration) const
    {
        const QString same = text(iteration);
        qint64 next = iteration;
        for (qint64 run = 10; next < m_task.iterations && text(next) == same; run *= 10)
            next = (iteration / run + 1) * run;
        return next;
    }

private:
    const _kvString<maxPath>& m_name;
    const TestTask& m_task;
    int m_taskNumber;
    const MachineValues& m_machine;
};

} // namespace

QString creatingLine(const FileToCreate& file)
{
    TestTask task;
    task.setFileCreation(kvToString8<maxPath>(file.text), file.size);
    _kvString<maxLine> line;
    return kvToQString(writeTaskLine(line, task)) + QLatin1Char('\n');
}

void FileToCreateList::append(const FileToCreate& file)
{
    m_files.append(file);
    m_texts.insert(file.text);
    if (m_maxCharacters)
        m_characters += creatingLine(file).size();
}

void collectFilesToCreate(FileToCreateList& list, const QString& name, qint64 size,
                          const TestTask& task, const int& taskNumber, const MachineValues& machine)
{
    const auto wideName = kvToString16<maxPath>(name);
    const IterationTexts texts(wideName, task, taskNumber, machine);
    const qint64 iterations =
        mayDependOnIteration(wideName) ? task.iterations : std::min(task.iterations, 1);
    QString previous;
    qint64 iteration = 0;
    while (iteration < iterations && !list.isFull()) {
        const QString text = texts.text(iteration);
        if (!list.contains(text))
            list.append({text, texts.text(iteration, false), size, name.endsWith(dummyFileName)});
        // Most names that depend on the iteration are others each time.
        iteration = text == previous ? texts.after(iteration) : iteration + 1;
        previous = text;
    }
}

void collectFilesOfTask(FileToCreateList& list, const TestTask& task, int taskNumber,
                        const MachineValues& machine)
{
    if (task.sourcePath.hasData())
        collectFilesToCreate(list, kvToQString(task.sourcePath), task.io.fileSize, task, taskNumber,
                             machine);
    if (task.destPath.startsWith(configPathVariable))
        collectFolder(list, task.destPath, task, taskNumber, machine);
    if (task.logPath.hasData())
        collectFolder(list, task.logPath, task, taskNumber, machine);
    if (task.csvPath.hasData())
        collectFolder(list, task.csvPath, task, taskNumber, machine);
}
