#include "tests/check/plantedfaults.h"
#include "tests/support/files.h"
#include "tests/support/tasks.h"

#include <QDir>

#include <algorithm>

namespace {

using Task = RandomSeries::Task;
using State = RandomSeries::State;

bool hasSource(const Task& task)
{
    return task.record.sourcePath.hasData();
}

bool hasDest(const Task& task)
{
    return task.record.destPath.hasData();
}

bool isAnyTask(const Task&)
{
    return true;
}

bool isReadBack(RandomSeries& series, const Task& task)
{
    const int index = int(&task - series.tasks().data());
    return std::any_of(series.tasks().begin(), series.tasks().end(),
                       [&](const Task& other) { return other.readsBack == index; });
}

/// True if no other task reads what the task writes.
std::function<bool(const Task&)> isFreeWriter(RandomSeries& series)
{
    return [&series](const Task& task) { return hasDest(task) && !isReadBack(series, task); };
}

/// Another spelling of a path.
QByteArray respelled(RandomSeries& series, QByteArray path)
{
    const QByteArray spellings[] = {"[cfgPath]/",
                                    "[cfgPath]/./",
                                    "[cfgPath]//",
                                    "[cfgPath]/e/../",
                                    "[cfgPath]\\",
                                    series.folder().toLatin1(),
                                    series.linkedFolder().toLatin1()};
    return path.replace("[cfgPath]/", spellings[series.draw(7)]);
}

/// Machines that write one file are wrong as well.
void allowSharing(Planted& planted, const Task& task)
{
    planted.alsoTrue += {findingAt("shared-output", task), findingAt("shared-results", task),
                         findingAt("maybe-shared", task)};
}

/// A destination that is wrong by its name.
Fault wrongDest(const char* dest, const char* rule)
{
    return [=](RandomSeries& series, Planted& planted) {
        Task* task = nullptr;
        if (!isDrawn(series, task, isFreeWriter(series)))
            return false;
        task->record.destPath = path(dest);
        planted.wanted = {{findingAt(rule, *task)}};
        return true;
    };
}

bool plantResultsOverOwnData(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task, hasDest))
        return false;
    (series.draw(2) == 0 ? task->record.logPath : task->record.csvPath) =
        path(respelled(series, textOf(task->record.destPath)));
    planted.wanted = {{findingAt("results-over-data", *task)}};
    return true;
}

bool plantResultsOverOtherData(RandomSeries& series, Planted& planted)
{
    Task* writer = nullptr;
    Task* task = nullptr;
    if (!isDrawn(series, writer, hasDest) || !isDrawn(series, task, isAnyTask) || task == writer)
        return false;
    const QByteArray dest = RandomSeries::asSeenByOthers(textOf(writer->record.destPath), *writer);
    task->record.csvPath = path(respelled(series, dest));
    task->record.iterations = writer->record.iterations;
    planted.wanted = {
        {findingAt("results-over-data", *task), findingAt("results-over-data", *writer)}};
    // Other iterations would be another fault of what is read back.
    return task->readsBack < 0 && !isReadBack(series, *task);
}

bool plantCsvIsLog(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    isDrawn(series, task, isAnyTask);
    task->record.csvPath = path(respelled(series, textOf(task->record.logPath)));
    planted.wanted = {{findingAt("log-is-csv", *task)}};
    planted.alsoTrue = QStringList{"csv-across-files"};
    return true;
}

bool plantSameFile(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task,
                 [&](const Task& t) { return hasSource(t) && isFreeWriter(series)(t); }))
        return false;
    task->record.destPath = path(respelled(series, textOf(task->record.sourcePath)));
    planted.wanted = {{findingAt("same-file", *task)}};
    allowSharing(planted, *task);
    return true;
}

bool plantSameFileInAnIteration(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task, isFreeWriter(series)))
        return false;
    task->record.iterations = 3;
    task->record.sourcePath = path("[cfgPath]/it2.dat");
    task->record.destPath = path("[cfgPath]/it[iter].dat");
    planted.wanted = {{findingAt("same-file", *task)}};
    allowSharing(planted, *task);
    return true;
}

bool plantOverSeries(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task, isFreeWriter(series)))
        return false;
    const char* const names[] = {"[cfgPath]/m.dpc", "[cfgPath]/_wait/[cfgName].dpc",
                                 "[cfgPath]/m_init.dpc", "[cfgPath]/m7.dpc"};
    auto& target = series.draw(2) == 0 ? task->record.destPath : task->record.csvPath;
    target = path(respelled(series, names[series.draw(4)]));
    planted.wanted = {{findingAt("overwrites-series", *task)}};
    allowSharing(planted, *task);
    return true;
}

bool plantTwoSizes(RandomSeries& series, Planted& planted)
{
    Task* one = nullptr;
    Task* other = nullptr;
    const auto isReader = [](const Task& task) { return hasSource(task) && !hasDest(task); };
    if (!isDrawn(series, one, isReader) || !isDrawn(series, other, isReader) || one >= other)
        return false;
    for (Task* task : {one, other}) {
        task->record.sourcePath = path("[cfgPath]/two.dat");
        task->readsBack = -1;
    }
    one->record.io.fileSize = 1024 * 1024;
    other->record.io.fileSize = 8192 * 1024;
    const QByteArray source = respelled(series, "[cfgPath]/two.dat");
    // Where the _init file is run on Linux, it makes another file of that name.
    if (source.contains('\\'))
        return false;
    other->record.sourcePath = path(source);
    planted.wanted = {{findingAt("source-size", *other)}};
    return true;
}

bool plantDatedSource(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task, hasSource))
        return false;
    task->record.sourcePath =
        path(series.draw(2) == 0 ? "[cfgPath]/s_[date].dat" : "[temp]/[date]_s.dat");
    planted.wanted = {{findingAt("source-date", *task)}};
    return true;
}

bool plantLocalSource(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task, hasSource))
        return false;
    task->record.sourcePath =
        path(series.draw(2) == 0 ? "[temp]/local.dat" : "[cfgPath]/local_[host].dat");
    planted.wanted = {{findingAt("source-local", *task)}};
    return true;
}

bool plantNamesThatMeet(RandomSeries& series, Planted& planted)
{
    Task* one = nullptr;
    Task* other = nullptr;
    if (!isDrawn(series, one, isFreeWriter(series)) ||
        !isDrawn(series, other, isFreeWriter(series)) || one >= other)
        return false;
    one->record.iterations = 12;
    one->record.destPath = path("[cfgPath]/meet[iter].dat");
    other->record.destPath = path(respelled(series, "[cfgPath]/meet1[iter].dat"));
    planted.wanted = {{findingAt("names-meet", *other)}};
    for (const Task* task : {one, other}) {
        allowSharing(planted, *task);
        if (task->readsBack >= 0)
            return false;
    }
    return true;
}

bool plantMachinesThatMeet(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task, isFreeWriter(series)) || task->readsBack >= 0)
        return false;
    series.hosts() = QStringList{"pc1", "pc2", "pc11"};
    task->record.iterations = 12;
    task->record.destPath = path(respelled(series, "[cfgPath]/meet_[host][iter].dat"));
    planted.wanted = {{findingAt("shared-output", *task)}};
    return true;
}

bool plantSharedOutput(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (series.hosts().size() < 2 || !isDrawn(series, task, isFreeWriter(series)))
        return false;
    const QByteArray names[] = {respelled(series, "[cfgPath]/one.dat"),
                                respelled(series, "[cfgPath]/one_[cfgTaskID]_[date].dat"),
                                "//nas/share/one.dat", "\\\\nas\\share\\one.dat"};
    task->record.destPath = path(names[series.draw(4)]);
    planted.wanted = {{findingAt("shared-output", *task)}};
    return true;
}

bool plantSharedResults(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    isDrawn(series, task, isAnyTask);
    if (series.hosts().size() < 2)
        return false;
    (series.draw(2) == 0 ? task->record.logPath : task->record.csvPath) =
        path(respelled(series, "[cfgPath]/all.txt"));
    planted.wanted = {{findingAt("shared-results", *task)}};
    return true;
}

bool plantFolderAsFile(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task, isFreeWriter(series)))
        return false;
    const char* const names[] = {"[cfgPath]/out/", "[cfgPath]/_wait", "[temp]",
                                 "[temp]/",        "C:\\out\\",       "[cfgPath]/log\\"};
    task->record.destPath = path(names[series.draw(6)]);
    planted.wanted = {{findingAt("file-is-folder", *task)}};
    return true;
}

bool plantFolderAsLog(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    isDrawn(series, task, isAnyTask);
    task->record.logPath = path(series.draw(2) == 0 ? "[cfgPath]/log/" : "[cfgPath]/_wait");
    planted.wanted = {{findingAt("log-is-folder", *task)}};
    return true;
}

bool plantFileAsFolder(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task, isFreeWriter(series)))
        return false;
    test::put(series.folder() + "a_file", "x");
    task->record.destPath = path("[cfgPath]/a_file/[host].dat");
    planted.wanted = {{findingAt("folder-is-file", *task)}};
    return true;
}

bool plantFileThatOthersNeedAsFolder(RandomSeries& series, Planted& planted)
{
    Task* one = nullptr;
    Task* other = nullptr;
    if (!isDrawn(series, one, isFreeWriter(series)) ||
        !isDrawn(series, other, isFreeWriter(series)) || one == other)
        return false;
    one->record.destPath = path("[temp]/ff_[host]");
    other->record.destPath = path("[temp]/ff_[host]/x.dat");
    planted.wanted = {{findingAt("folder-is-file", *one), findingAt("folder-is-file", *other)}};
    planted.alsoTrue = QStringList{findingAt("dest-folder-local", *other)};
    return true;
}

/// Lets a task that reads nothing write over the source of another one.
bool overwrite(RandomSeries& series, const QByteArray& source, Task& writer, Planted& planted)
{
    writer.record.destPath = path(respelled(series, source));
    planted.wanted = {{findingAt("overwrites-source", writer)}};
    allowSharing(planted, writer);
    return true;
}

bool isDrawnToOverwrite(RandomSeries& series, Task*& writer)
{
    return isDrawn(series, writer, [&](const Task& task) {
        return isFreeWriter(series)(task) && !hasSource(task);
    });
}

bool plantOverwrittenData(RandomSeries& series, Planted& planted)
{
    Task* reader = nullptr;
    Task* writer = nullptr;
    return isDrawn(series, reader, [](const Task& task) { return task.readsExisting; }) &&
           isDrawnToOverwrite(series, writer) &&
           overwrite(series, "[cfgPath]/data.bin", *writer, planted);
}

bool plantOverwrittenSource(RandomSeries& series, Planted& planted)
{
    Task* reader = nullptr;
    Task* writer = nullptr;
    if (!isDrawn(series, reader, [](const Task& task) { return task.readsOwn; }) ||
        !isDrawnToOverwrite(series, writer) || reader >= writer ||
        reader->record.iterations > writer->record.iterations)
        return false;
    const QByteArray source = textOf(reader->record.sourcePath);
    return overwrite(series, RandomSeries::asSeenByOthers(source, *reader), *writer, planted);
}

bool plantSourceThatIsMadeAnew(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task, [](const Task& t) { return t.readsExisting; }))
        return false;
    task->record.sourcePath = path("[cfgPath]/data.bin");
    planted.wanted = {{"init-overwrites"}};
    planted.latest = State::Saved;
    return true;
}

} // namespace

QString findingAt(const char* rule, const RandomSeries::Task& task)
{
    return QString(rule) + ' ' + RandomSeries::placeOf(task);
}

QByteArray textOf(const _kvString8_allSize<500>& path)
{
    return {path.text, path.length};
}

bool isDrawn(RandomSeries& series, RandomSeries::Task*& drawn,
             const std::function<bool(const RandomSeries::Task&)>& isFit)
{
    std::vector<RandomSeries::Task*> fit;
    for (RandomSeries::Task& task : series.tasks()) {
        if (isFit(task))
            fit.push_back(&task);
    }
    drawn = fit.empty() ? nullptr : fit[size_t(series.draw(int(fit.size())))];
    return drawn != nullptr;
}

const std::vector<NamedFault>& faultsInTasks()
{
    static const std::vector<NamedFault> faults = {
        {"results over own data", plantResultsOverOwnData},
        {"results over other data", plantResultsOverOtherData},
        {"csv is log", plantCsvIsLog},
        {"same file", plantSameFile},
        {"same file in an iteration", plantSameFileInAnIteration},
        {"over the series", plantOverSeries},
        {"done name", wrongDest("[cfgPath]/done_[host]", "done-name")},
        {"two sizes", plantTwoSizes},
        {"dated source", plantDatedSource},
        {"local source", plantLocalSource},
        {"names that meet", plantNamesThatMeet},
        {"machines that meet", plantMachinesThatMeet},
        {"shared output", plantSharedOutput},
        {"shared results", plantSharedResults},
        {"folder as file", plantFolderAsFile},
        {"folder as log", plantFolderAsLog},
        {"file as folder", plantFileAsFolder},
        {"file that others need as folder", plantFileThatOthersNeedAsFolder},
        {"overwritten data", plantOverwrittenData},
        {"overwritten source", plantOverwrittenSource},
        {"missing folder", wrongDest("/no such folder/x_[host].dat", "dest-folder")},
        {"source that is made anew", plantSourceThatIsMadeAnew},
    };
    return faults;
}
