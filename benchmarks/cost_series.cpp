#include "benchmarks/costs.h"
#include "benchmarks/counting.h"
#include "benchmarks/samples.h"
#include "configset/filestocreate.h"
#include "configset/seriesloader.h"
#include "configset/seriessaver.h"
#include "shared/kvfile.h"
#include "shared/kvtext.h"

#include <QDir>
#include <QSaveFile>
#include <QTemporaryDir>

using counting::count;
using counting::countOnce;
using counting::require;

namespace {

QByteArray withNumber(const char* name, int number)
{
    return QByteArray(name) + ' ' + QByteArray::number(number);
}

void writeFile(const QString& path, const QByteArray& content)
{
    QSaveFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size() &&
                file.flush() && file.commit(),
            "QSaveFile");
}

void countOneFile(const QString& folder)
{
    const QByteArray content(4000, 'x');
    const auto file = kvToString8<maxFileName>(folder + "own");
    const _kvString8_allSize<maxConfigFile> text(content.constData());
    count("save file", [&] { writeToLogFile(file, text, true, false); });
    count("save file QSaveFile", [&] { writeFile(folder + "other", content); });
}

void countSaving(const QString& folder, int largest)
{
    TaskList warmUp = samples::distinctTasks(2, 1);
    saveSeries(warmUp, "info", {folder, "warm"});
    for (const int size : growthSizes(largest)) {
        TaskList tasks = samples::distinctTasks(size, 1);
        countOnce(withNumber("save", size), [&] { saveSeries(tasks, "info", {folder, "save"}); });
    }
    for (const int size : {125, 1000}) {
        TaskList tasks = samples::distinctTasks(size, 100);
        countOnce(withNumber("save x 100", size), [&] {
            saveSeries(tasks, "info", {folder, "save"});
        });
    }
}

void countCollecting()
{
    for (const int iterations : {1, 10, 100}) {
        const TaskList tasks = samples::distinctTasks(10, iterations);
        count(withNumber("collect", iterations), [&] {
            FileToCreateList list;
            int taskNumber = 0;
            for (const TestTask& task : tasks)
                collectFilesOfTask(list, task, taskNumber++);
        });
    }
}

QByteArray linesOf(const TaskList& tasks)
{
    QByteArray lines;
    for (const TestTask& task : tasks)
        lines += kvToQString(samples::lineOf(task)).toLatin1() + '\n';
    return lines;
}

LoadListener silentListener()
{
    return {[] { return true; }, [](const QString&) {}, [](const QString&, const QString&) {}};
}

void countLoading(const QString& folder, int largest)
{
    for (const int size : growthSizes(largest)) {
        writeFile(folder + "load.dpc", linesOf(samples::distinctTasks(size, 1)));
        TaskList warmUp;
        loadSeries({folder, "load"}, warmUp, silentListener());
        TaskList tasks;
        countOnce(withNumber("load", size), [&] {
            loadSeries({folder, "load"}, tasks, silentListener());
        });
        require(tasks.size() == size, "loadSeries");
    }
}

/// Every record of a list lies in an allocation of its own.
void countRecordsOfALoad(const QString& folder)
{
    constexpr int tasksPerFile = 10;
    for (int number = 0; number < seriesFileCount; ++number)
        writeFile(seriesFile(folder, "twenty", number),
                  linesOf(samples::distinctTasks(tasksPerFile, 1)));
    TaskList tasks;
    const qint64 before = counting::allocationsOf(sizeof(TestTask));
    loadSeries({folder, "twenty"}, tasks, silentListener());
    require(tasks.size() == seriesFileCount * tasksPerFile, "loadSeries");
    counting::print("records allocated", counting::allocationsOf(sizeof(TestTask)) - before);
    counting::print("records loaded", tasks.size());
}

} // namespace

void countSeries(int largest)
{
    const QTemporaryDir temporary;
    require(temporary.isValid() && QDir(temporary.path()).mkdir("_wait"), "temporary folder");
    const QString folder = temporary.path() + '/';
    countOneFile(folder);
    countSaving(folder, largest);
    countCollecting();
    countLoading(folder, largest);
    countRecordsOfALoad(folder);
}
