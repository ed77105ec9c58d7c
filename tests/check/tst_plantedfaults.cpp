#include "check/checker.h"
#include "check/rules/catalogue.h"
#include "tests/check/randomseries.h"
#include "tests/support/files.h"
#include "tests/support/tasks.h"

#include <QDir>
#include <QElapsedTimer>
#include <QtTest>

#include <functional>

namespace {

using Task = RandomSeries::Task;
using State = RandomSeries::State;

/// The findings that a fault must give.
struct Planted
{
    QVector<QStringList> wanted;   ///< at least one of each list: "rule place"
    QStringList alsoTrue;          ///< "rule", or "rule place"
    State latest = State::InitRun; ///< later the fault has done its damage
};

/// Changes a series so that one thing is wrong in it; false if the series has no place for it.
using Fault = std::function<bool(RandomSeries& series, Planted& planted)>;

QString at(const char* rule, const Task& task)
{
    return QString(rule) + ' ' + RandomSeries::placeOf(task);
}

QByteArray textOf(const _kvString8_allSize<500>& path)
{
    return {path.text, path.length};
}

bool isDrawn(RandomSeries& series, Task*& drawn, const std::function<bool(const Task&)>& isFit)
{
    std::vector<Task*> fit;
    for (Task& task : series.tasks()) {
        if (isFit(task))
            fit.push_back(&task);
    }
    drawn = fit.empty() ? nullptr : fit[size_t(series.draw(int(fit.size())))];
    return drawn != nullptr;
}

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

/// True if no other task reads what the task writes.
std::function<bool(const Task&)> isFreeWriter(RandomSeries& series)
{
    return [&series](const Task& task) {
        const int index = int(&task - series.tasks().data());
        return hasDest(task) &&
               std::none_of(series.tasks().begin(), series.tasks().end(),
                            [&](const Task& other) { return other.readsBack == index; });
    };
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
    planted.alsoTrue +=
        {at("shared-output", task), at("shared-results", task), at("maybe-shared", task)};
}

bool plantResultsOverOwnData(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task, hasDest))
        return false;
    (series.draw(2) == 0 ? task->record.logPath : task->record.csvPath) =
        path(respelled(series, textOf(task->record.destPath)));
    planted.wanted = {{at("results-over-data", *task)}};
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
    planted.wanted = {{at("results-over-data", *task), at("results-over-data", *writer)}};
    return task->readsBack < 0;
}

bool plantCsvIsLog(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    isDrawn(series, task, isAnyTask);
    task->record.csvPath = path(respelled(series, textOf(task->record.logPath)));
    planted.wanted = {{at("log-is-csv", *task)}};
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
    planted.wanted = {{at("same-file", *task)}};
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
    planted.wanted = {{at("same-file", *task)}};
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
    planted.wanted = {{at("overwrites-series", *task)}};
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
    planted.wanted = {{at("source-size", *other)}};
    return true;
}

bool plantDatedSource(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task, hasSource))
        return false;
    task->record.sourcePath =
        path(series.draw(2) == 0 ? "[cfgPath]/s_[date].dat" : "[temp]/[date]_s.dat");
    planted.wanted = {{at("source-date", *task)}};
    return true;
}

bool plantLocalSource(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task, hasSource))
        return false;
    task->record.sourcePath =
        path(series.draw(2) == 0 ? "[temp]/local.dat" : "[cfgPath]/local_[host].dat");
    planted.wanted = {{at("source-local", *task)}};
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
    planted.wanted = {{at("names-meet", *other)}};
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
    planted.wanted = {{at("shared-output", *task)}};
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
    planted.wanted = {{at("shared-output", *task)}};
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
    planted.wanted = {{at("shared-results", *task)}};
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
    planted.wanted = {{at("file-is-folder", *task)}};
    return true;
}

bool plantFolderAsLog(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    isDrawn(series, task, isAnyTask);
    task->record.logPath = path(series.draw(2) == 0 ? "[cfgPath]/log/" : "[cfgPath]/_wait");
    planted.wanted = {{at("log-is-folder", *task)}};
    return true;
}

bool plantFileAsFolder(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task, isFreeWriter(series)))
        return false;
    test::put(series.folder() + "a_file", "x");
    task->record.destPath = path("[cfgPath]/a_file/[host].dat");
    planted.wanted = {{at("folder-is-file", *task)}};
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
    planted.wanted = {{at("folder-is-file", *one), at("folder-is-file", *other)}};
    planted.alsoTrue = QStringList{at("dest-folder-local", *other)};
    return true;
}

bool plantOverwrittenData(RandomSeries& series, Planted& planted)
{
    Task* reader = nullptr;
    Task* writer = nullptr;
    const auto isWriter = [&](const Task& task) {
        return isFreeWriter(series)(task) && !hasSource(task);
    };
    if (!isDrawn(series, reader, [](const Task& task) { return task.readsExisting; }) ||
        !isDrawn(series, writer, isWriter))
        return false;
    writer->record.destPath = path(respelled(series, "[cfgPath]/data.bin"));
    planted.wanted = {{at("overwrites-source", *writer)}};
    allowSharing(planted, *writer);
    return true;
}

bool plantOverwrittenSource(RandomSeries& series, Planted& planted)
{
    Task* reader = nullptr;
    Task* writer = nullptr;
    const auto isWriter = [&](const Task& task) {
        return isFreeWriter(series)(task) && !hasSource(task);
    };
    if (!isDrawn(series, reader, [](const Task& task) { return task.readsOwn; }) ||
        !isDrawn(series, writer, isWriter) || reader >= writer ||
        reader->record.iterations > writer->record.iterations)
        return false;
    const QByteArray source =
        RandomSeries::asSeenByOthers(textOf(reader->record.sourcePath), *reader);
    writer->record.destPath = path(respelled(series, source));
    planted.wanted = {{at("overwrites-source", *writer)}};
    allowSharing(planted, *writer);
    return true;
}

bool plantMissingFolder(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task, isFreeWriter(series)))
        return false;
    task->record.destPath = path("/no such folder/x_[host].dat");
    planted.wanted = {{at("dest-folder", *task)}};
    return true;
}

/// The lines of a file of the series.
QList<QByteArray> linesOf(const RandomSeries& series, const QString& file)
{
    return test::contentOf(series.folder() + file).split('\n');
}

void put(const RandomSeries& series, const QString& file, const QList<QByteArray>& lines)
{
    test::put(series.folder() + file, lines.join('\n'));
}

bool plantUnmadeSource(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task, [](const Task& t) { return t.readsOwn; }))
        return false;
    const QByteArray name =
        RandomSeries::asSeenByOthers(textOf(task->record.sourcePath), *task).replace("[iter]", "0");
    QList<QByteArray> lines = linesOf(series, "m_init.dpc");
    const auto line = std::find_if(lines.begin(), lines.end(),
                                   [&](const QByteArray& l) { return l.contains(name + ';'); });
    if (line == lines.end() ||
        QFile::exists(QString::fromLatin1(series.expanded(name, *task, QString(), 0))))
        return false;
    lines.erase(line);
    put(series, "m_init.dpc", lines);
    planted.wanted = {{at("source-missing", *task)}};
    return true;
}

bool plantLineThatDestroys(RandomSeries& series, Planted& planted)
{
    QList<QByteArray> lines = linesOf(series, "m_init.dpc");
    for (int i = 0; i < lines.size(); ++i) {
        if (!lines[i].startsWith("# ") || !lines[i].contains("data.bin"))
            continue;
        lines[i].remove(0, 2);
        put(series, "m_init.dpc", lines);
        planted.wanted = {{QStringLiteral("init-overwrites m_init.dpc:%1").arg(i + 1)}};
        return true;
    }
    return false;
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

bool plantMissingInit(RandomSeries& series, Planted& planted)
{
    // Once it has run, all that it makes is there: each task has a log in one of these folders.
    if (QFileInfo::exists(series.folder() + "m") || QFileInfo::exists(series.folder() + "log"))
        return false;
    QFile::remove(series.folder() + "m_init.dpc");
    planted.wanted = {{"init-missing"}};
    // Nothing tells any more that it made the files that tasks write.
    planted.alsoTrue = QStringList{"source-missing", "overwrites-source"};
    return true;
}

/// Changes the last line of a task in a file.
bool changeLastTask(RandomSeries& series, const QByteArray& from, const QByteArray& to,
                    const char* rule, Planted& planted)
{
    const Task& task = series.tasks().back();
    const QString file = RandomSeries::fileName(task.file);
    QList<QByteArray> lines = linesOf(series, file);
    QByteArray& line = lines[lines.size() - 2];
    const int place = line.indexOf(from);
    if (place < 0)
        return false;
    line.replace(place, from.size(), to);
    put(series, file, lines);
    planted.wanted = {{at(rule, task)}};
    return true;
}

bool plantMisspelledMethod(RandomSeries& series, Planted& planted)
{
    planted.alsoTrue = QStringList{"init-outdated"};
    return changeLastTask(series, "Stream", "Straem", "bad-line", planted);
}

bool plantMisspelledVariable(RandomSeries& series, Planted& planted)
{
    planted.alsoTrue = QStringList{"shared-results", "shared-output",   "init-outdated",
                                   "init-unneeded",  "folder-variable", "source-missing"};
    return changeLastTask(series, "/[host]", "/[Host]", "unknown-variable", planted);
}

bool plantMissingLastFile(RandomSeries& series, Planted& planted)
{
    if (series.files() < 2)
        return false;
    QFile::remove(series.folder() + RandomSeries::fileName(series.files() - 1));
    planted.wanted = {{"last-marker"}};
    planted.alsoTrue = QStringList{"init-outdated"};
    return true;
}

bool plantLeftover(RandomSeries& series, Planted& planted)
{
    const QString name = RandomSeries::fileName(series.files());
    test::put(series.folder() + name,
              "Stream;NOflush;NOprealloc; 50; 1024; -1; 1024;1;0;  MEMORY;  "
              "[cfgPath]/left_[host].dat;  [cfgPath]/m_[host].txt;  [cfgPath]/m_[host].csv;  "
              "true;\n");
    planted.wanted = {{"leftover " + name + ":1"}};
    planted.alsoTrue = QStringList{"init-outdated"};
    return true;
}

struct NamedFault
{
    const char* name;
    bool beforeSave;
    Fault plant;
};

const std::vector<NamedFault>& allFaults()
{
    static const std::vector<NamedFault> faults = {
        {"results over own data", true, plantResultsOverOwnData},
        {"results over other data", true, plantResultsOverOtherData},
        {"csv is log", true, plantCsvIsLog},
        {"same file", true, plantSameFile},
        {"same file in an iteration", true, plantSameFileInAnIteration},
        {"over the series", true, plantOverSeries},
        {"two sizes", true, plantTwoSizes},
        {"dated source", true, plantDatedSource},
        {"local source", true, plantLocalSource},
        {"names that meet", true, plantNamesThatMeet},
        {"machines that meet", true, plantMachinesThatMeet},
        {"shared output", true, plantSharedOutput},
        {"shared results", true, plantSharedResults},
        {"folder as file", true, plantFolderAsFile},
        {"folder as log", true, plantFolderAsLog},
        {"file as folder", true, plantFileAsFolder},
        {"file that others need as folder", true, plantFileThatOthersNeedAsFolder},
        {"overwritten data", true, plantOverwrittenData},
        {"overwritten source", true, plantOverwrittenSource},
        {"missing folder", true, plantMissingFolder},
        {"source that is made anew", true, plantSourceThatIsMadeAnew},
        {"unmade source", false, plantUnmadeSource},
        {"line that destroys", false, plantLineThatDestroys},
        {"missing init", false, plantMissingInit},
        {"misspelled method", false, plantMisspelledMethod},
        {"misspelled variable", false, plantMisspelledVariable},
        {"missing last file", false, plantMissingLastFile},
        {"leftover", false, plantLeftover},
    };
    return faults;
}

} // namespace

/// Clean series at random, and one fault in each: nothing is missed, and nothing false is said.
/// TWDP_PLANT_SECONDS lets it go on for so long, TWDP_PLANT_SEED begins elsewhere.
class TestPlantedFaults : public QObject
{
    Q_OBJECT

private slots:
    void cleanSeriesAndThoseWithAFault()
    {
        const qint64 seconds = qEnvironmentVariableIntValue("TWDP_PLANT_SECONDS");
        unsigned seed = unsigned(qEnvironmentVariableIntValue("TWDP_PLANT_SEED"));
        QElapsedTimer time;
        time.start();
        do {
            for (const NamedFault& fault : allFaults()) {
                tryClean(++seed);
                // Not every series has a place for it.
                while (!QTest::currentTestFailed() && !tryFault(seed, fault))
                    ++seed;
                if (QTest::currentTestFailed())
                    return;
            }
        } while (time.elapsed() < seconds * 1000);
        qInfo("%d clean series and %d with a fault, up to seed %u", m_faults, m_faults, seed);
    }

private:
    static QStringList said(RandomSeries& series)
    {
        CheckOptions options;
        options.hosts = series.hosts();
        options.environment.space = [](const QString&) { return std::nullopt; };
        QStringList texts;
        for (const Finding& finding : checkAll({series.folder()}, options).findings)
            texts += QStringLiteral("%1 %2:%3")
                         .arg(finding.rule->name, QString(finding.path).remove(series.folder()))
                         .arg(finding.line);
        return texts;
    }

    static void tryClean(unsigned seed)
    {
        RandomSeries series(seed);
        series.save();
        for (const State state : {State::Saved, State::InitRun, State::Finished}) {
            series.comeTo(state);
            const QStringList all = said(series);
            if (!all.isEmpty())
                QFAIL(report(series, "seed " + QByteArray::number(seed) + ", clean", all));
        }
    }

    /// False if the series has no place for the fault.
    bool tryFault(unsigned seed, const NamedFault& fault)
    {
        RandomSeries series(seed);
        Planted planted;
        if (fault.beforeSave && !fault.plant(series, planted))
            return false;
        series.save();
        series.comeTo(State(series.draw(int(planted.latest) + 1)));
        if (!fault.beforeSave && !fault.plant(series, planted))
            return false;
        ++m_faults;
        compare(series, planted, "seed " + QByteArray::number(seed) + ", " + fault.name);
        return true;
    }

    static void compare(RandomSeries& series, Planted planted, const QByteArray& what)
    {
        const QStringList all = said(series);
        for (const QStringList& wanted : planted.wanted) {
            if (std::none_of(wanted.begin(), wanted.end(),
                             [&](const QString& one) { return isSaid(all, one); }))
                QFAIL(report(series, what, all));
            planted.alsoTrue += wanted;
        }
        for (const QString& one : all) {
            if (!planted.alsoTrue.contains(one) &&
                !planted.alsoTrue.contains(one.section(' ', 0, 0)))
                QFAIL(report(series, what, all));
        }
    }

    static bool isSaid(const QStringList& all, const QString& wanted)
    {
        return std::any_of(all.begin(), all.end(), [&](const QString& one) {
            return one == wanted || one.startsWith(wanted + ' ');
        });
    }

    /// Shows the series, and says what was found in it.
    static QByteArray report(RandomSeries& series, const QByteArray& what, const QStringList& all)
    {
        QByteArray text = "machines: " + series.hosts().join(',').toUtf8();
        for (const QString& file : test::entriesOf(series.folder()))
            text += "\n== " + file.toUtf8() + '\n' +
                    (file.endsWith(".dpc") ? test::contentOf(series.folder() + file) : "");
        qInfo("%s", text.constData());
        return what + ": " + all.join(", ").toUtf8();
    }

    int m_faults = 0;
};

QTEST_APPLESS_MAIN(TestPlantedFaults)
#include "tst_plantedfaults.moc"
