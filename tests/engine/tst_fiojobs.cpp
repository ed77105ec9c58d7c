#include "engine/guards.h"
#include "tests/engine/fiotrace.h"
#include "tests/engine/plannedseries.h"
#include "tests/engine/realfio.h"

#include "tests/support/leaveout.h"

#include <QRandomGenerator>
#include <QStandardPaths>

#include <unistd.h>

/// What fio does with the job files: the calls of the task lines and no others, and nothing at all
/// to files that are in the way.
class TestFioJobs : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { test::needFio(); }
    void callsAreThoseOfTheTasks_data();
    void callsAreThoseOfTheTasks();
    void nothingInTheWayOfADestinationIsTouched();
    void nothingInTheWayOfASourceIsTouched();
    void workingFolderKeepsItsFiles();
    void namesArriveAsTheyAre();
    void guardsOfFioAnswerAsTheShell();
    void oneGuardOfManySaysNo();
};

namespace {

constexpr int kib = 1024;

/// Writes the export of a plan and lets fio read each job file.
QString exported(const PlannedSeries& series, const Plan& plan)
{
    const QString folder = series.place("out");
    std::string problem;
    if (!createExport(folder, plan, {}, problem))
        qFatal("%s", problem.c_str());
    for (const QString& name : QDir(folder).entryList({"*.fio"}) +
                                   QDir(folder + "/guards")
                                       .entryList({"*.fio"})
                                       .replaceInStrings(QRegularExpression("^"), "guards/")) {
        if (!test::parses(folder, name))
            qFatal("fio can't read %s", qPrintable(name));
    }
    return folder;
}

/// A call that must be, and the least time before it.
struct Step
{
    QString call;
    int waitMs = 0;
};

/// Tasks at random, and the calls that each iteration of them stands for.
class RandomTasks
{
public:
    explicit RandomTasks(quint32 seed)
        : m_random(seed)
    {}

    void add(PlannedSeries& series, int index)
    {
        Line line;
        const char* methods[] = {"Posix", "Stream", "AnsiC"};
        line.method = methods[m_random.bounded(3)];
        line.chunk = m_random.bounded(4) == 0 ? 0 : 1 + m_random.bounded(60);
        line.size = 1 + m_random.bounded(200);
        line.wait = m_random.bounded(2) * 10;
        line.flush = m_random.bounded(2) == 0;
        line.iterations = 1 + m_random.bounded(2);
        const int kind = m_random.bounded(3);
        // A log of calls can't hold a blank, and a copy needs one.
        const char* blank = kind != 0 && m_random.bounded(3) == 0 ? " " : "";
        const QByteArray number = QByteArray::number(index);
        const QByteArray source = "in" + number + blank + ".dat";
        const QByteArray destination =
            "out" + number + blank + (m_random.bounded(2) == 0 ? "_[iter]" : "") + ".dat";
        if (kind != 1) {
            const int size = int(line.size) * kib - m_random.bounded(kib);
            series.put("files/" + source, test::textOf(size));
            line.source = "[cfgPath]/files/" + source;
            expect(line, size, source, kind == 0 ? destination : QByteArray());
        } else {
            expect(line, int(line.size) * kib, {}, destination);
        }
        if (kind != 2)
            line.destination = "[cfgPath]/files/" + destination;
        if (kind == 0)
            m_copies.insert(destination, source);
        m_lines += line.text();
    }

    const QByteArray& lines() const { return m_lines; }
    const QList<Step>& steps() const { return m_steps; }
    const QMap<QString, QString>& copies() const { return m_copies; }
    const QMap<QString, int>& sizes() const { return m_sizes; }

private:
    /// By the words of the form: chunks one after the other, a flush and a wait after each.
    void expect(const Line& line, int size, const QByteArray& source, const QByteArray& destination)
    {
        // Posix and AnsiC copies have chunks of 1 MiB where the task has none.
        const bool isCopy = !source.isEmpty() && !destination.isEmpty();
        const bool isWhole = line.chunk == 0 && !(isCopy && line.method != "Stream");
        const int chunk = line.chunk == 0 ? (isWhole ? size : kib * kib) : line.chunk * kib;
        const int wait = isWhole ? 0 : line.wait;
        const bool flushes = line.flush && !destination.isEmpty() && !isWhole;
        for (int iteration = 0; iteration < line.iterations; ++iteration) {
            const QString from = QString::fromLatin1(source);
            const QString to =
                QString::fromLatin1(destination).replace("[iter]", QString::number(iteration));
            for (int offset = 0; offset < size; offset += chunk) {
                const QString length = ' ' + QString::number(qMin(chunk, size - offset));
                int waited = offset > 0 && !flushes ? wait : 0;
                if (!from.isEmpty()) {
                    m_steps += {"read " + from + length, waited};
                    waited = 0;
                }
                if (!to.isEmpty())
                    m_steps += {"write " + to + length, waited};
                // fio waits before the flush, which is said as a loss.
                if (flushes)
                    m_steps += {"sync " + to, wait};
            }
            if (!to.isEmpty())
                m_sizes.insert(to, size);
        }
    }

    QRandomGenerator m_random;
    QByteArray m_lines;
    QList<Step> m_steps;
    QMap<QString, QString> m_copies;
    QMap<QString, int> m_sizes;
};

/// Puts what the end of the name says there, in place of a file of 10 KiB.
void plant(const QString& path)
{
    const QByteArray file = QFileInfo(path).fileName().toLatin1();
    const QByteArray kind = file.mid(file.indexOf('_') + 1);
    const QMap<QByteArray, int> sizes = {{"smaller", 5000}, {"of_the_size", 10 * kib},
                                         {"half", 8 * kib}, {"larger", 20000},
                                         {"empty", 0},      {"read-only", 10 * kib}};
    if (sizes.contains(kind)) {
        test::put(path, test::textOf(sizes[kind]), kind == "read-only" ? 0444 : 0644);
    } else if (kind == "folder") {
        QVERIFY(QDir().mkdir(path));
    } else if (kind == "FIFO") {
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    } else if (kind == "dangling_link") {
        QVERIFY(QFile::link("nowhere_" + file, path));
    } else if (kind == "link") {
        test::put(path + "_target", test::textOf(5000));
        QVERIFY(QFile::link(file + "_target", path));
    } else {
        QCOMPARE(kind, QByteArray("missing"));
    }
}

/// A task of 10 KiB.
Line tenKib(int chunk)
{
    Line line;
    line.size = 10;
    line.chunk = chunk;
    return line;
}

/// Runs a job file in which every section must do nothing.
void expectNothing(const QString& folder, const QString& files, int sections)
{
    const test::Snapshot before = test::snapshotOf(files);
    const std::vector<SectionReport> reports = test::runJobFile(folder, "stage-0.fio");
    QCOMPARE(test::snapshotOf(files), before);
    QCOMPARE(int(reports.size()), sections);
    for (const SectionReport& report : reports)
        QVERIFY2(report.read.bytes + report.write.bytes == 0, report.name);
}

/// The calls are these, and the waits between them at least as long. A task whose last chunk is a
/// section of its own has two processes: its wait stands in neither.
void compare(const QList<FioTrace::Call>& calls, const QList<Step>& steps)
{
    constexpr double clocksDifferMs = 0.5;
    for (int i = 0; i < qMin(calls.size(), steps.size()); ++i) {
        const FioTrace::Call& call = calls[i];
        const Step& step = steps[i];
        const bool isFirst = call.beforeMs == 0;
        QVERIFY2(
            call.text == step.call,
            qPrintable(QStringLiteral("call %1: %2 and not %3").arg(i).arg(call.text, step.call)));
        QVERIFY2(isFirst || call.beforeMs > step.waitMs - clocksDifferMs, qPrintable(call.text));
        QVERIFY2(!call.slept || step.waitMs > 0, qPrintable(call.text));
    }
    QCOMPARE(calls.size(), steps.size());
}

quint32 seedOfTheDay(quint32 otherwise)
{
    const int seed = qEnvironmentVariableIntValue("TWDP_SEED");
    return seed > 0 ? quint32(seed) : otherwise;
}

} // namespace

void TestFioJobs::callsAreThoseOfTheTasks_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 2; ++seed)
        QTest::addRow("seed %u", seedOfTheDay(seed)) << seedOfTheDay(seed);
}

void TestFioJobs::callsAreThoseOfTheTasks()
{
    QFETCH(quint32, seed);
    if (QStandardPaths::findExecutable("strace").isEmpty())
        test::leaveOut("strace is not installed");
    PlannedSeries series;
    const QString files = series.root() + "files";
    QVERIFY(QDir().mkdir(files));
    RandomTasks tasks(seed);
    for (int i = 0; i < 12; ++i)
        tasks.add(series, i);
    const test::Snapshot before = test::snapshotOf(files);
    const PlanResult result = series.planOf(tasks.lines());
    for (const Finding& loss : result.losses)
        QVERIFY2(loss.rule->severity != Severity::Error, loss.text.c_str());
    const QString folder = exported(series, result.plan);
    const QString prefix = series.place("trace");
    const test::Printed printed = test::printedBy(
        folder, "strace", FioTrace::options(prefix) + QStringList{"fio", "stage-0.fio"});
    QVERIFY2(!printed.err.contains("ptrace"), printed.err);
    compare(FioTrace(prefix, files + '/').calls(), tasks.steps());

    for (auto it = tasks.sizes().begin(); it != tasks.sizes().end(); ++it)
        QCOMPARE(test::contentOf(files + '/' + it.key()).size(), it.value());
    for (auto it = tasks.copies().begin(); it != tasks.copies().end(); ++it)
        QVERIFY(test::contentOf(files + '/' + QString(it.key()).replace("[iter]", "0")) ==
                test::contentOf(files + '/' + it.value()));
    // Sources are as they were.
    const test::Snapshot after = test::snapshotOf(files);
    for (auto it = before.begin(); it != before.end(); ++it)
        QCOMPARE(after.value(it.key()), it.value());
}

void TestFioJobs::nothingInTheWayOfADestinationIsTouched()
{
    PlannedSeries series;
    const QString files = series.root() + "files/";
    QVERIFY(QDir().mkdir(files));
    test::put(files + "original", test::textOf(10 * kib));
    QByteArray lines;
    QStringList names;
    const auto add = [&](Line line, const QString& name) {
        line.destination = "[cfgPath]/files/" + name.toLatin1();
        lines += line.text();
        names += name;
    };
    const QStringList kinds = {"smaller",   "of_the_size", "larger", "empty",         "half",
                               "read-only", "folder",      "FIFO",   "dangling_link", "link"};
    for (const QString& kind : kinds) {
        // Each way in which a job can be written down.
        add(tenKib(5), "plain_" + kind);
        add(tenKib(4), "logged_" + kind);
        add(tenKib(8), "in two_" + kind);
        Line copy = tenKib(4);
        copy.source = "[cfgPath]/files/original";
        add(copy, "copy_" + kind);
        Line twice = tenKib(10);
        twice.iterations = 2;
        add(twice, "twice_" + kind);
    }
    const QString folder = exported(series, series.planOf(lines).plan);
    // Put there between the questions and the run.
    for (const QString& name : names)
        plant(files + name);
    expectNothing(folder, files, names.size() + 2 * kinds.size());
}

void TestFioJobs::nothingInTheWayOfASourceIsTouched()
{
    PlannedSeries series;
    const QString files = series.root() + "files/";
    QVERIFY(QDir().mkdir(files));
    QByteArray lines;
    QStringList names;
    const auto add = [&](Line line, const QString& name) {
        line.source = "[cfgPath]/files/" + name.toLatin1();
        lines += line.text();
        names += name;
    };
    const QStringList kinds = {"missing", "smaller", "larger",        "empty",
                               "folder",  "FIFO",    "dangling_link", "link"};
    for (const QString& kind : kinds) {
        add(tenKib(5), "plain_" + kind);
        add(tenKib(4), "logged_" + kind);
        add(tenKib(8), "in two_" + kind);
        Line copy = tenKib(4);
        copy.destination = "[cfgPath]/files/new_" + kind.toLatin1();
        add(copy, "copy_" + kind);
    }
    const QString folder = exported(series, series.planOf(lines).plan);
    for (const QString& name : names)
        plant(files + name);
    expectNothing(folder, files, names.size() + kinds.size());
}

void TestFioJobs::workingFolderKeepsItsFiles()
{
    PlannedSeries series;
    Line line;
    line.destination = "[cfgPath]/a.dat";
    const QString folder = exported(series, series.planOf(line.text()).plan);
    for (const char* name : {"s0-l1-i0.prerun.txt", "guard-0.prerun.txt", "stage-0.txt"})
        test::put(folder + '/' + name, "content");
    const test::Snapshot before = test::snapshotOf(folder);
    QCOMPARE(test::runJobFile(folder, "guards/guard-0.fio").size(), size_t(1));
    QCOMPARE(test::snapshotOf(folder), before);
    const std::vector<SectionReport> reports = test::runJobFile(folder, "stage-0.fio");
    QCOMPARE(reports.size(), size_t(1));
    QCOMPARE(reports[0].write.bytes, qint64(256 * kib));
    test::Snapshot after = test::snapshotOf(folder);
    // Bandwidth and latency over time.
    for (const QString& name : after.keys()) {
        if (name.startsWith("output/"))
            after.remove(name);
    }
    QCOMPARE(after, before);
}

void TestFioJobs::namesArriveAsTheyAre()
{
    PlannedSeries series;
    QByteArray lines;
    QStringList names;
    const QByteArray long250(250, 'n');
    QList<QByteArray> odd = {"a b",
                             "it's",
                             "a\"b",
                             "a:b",
                             "::",
                             "a\\:b",
                             "a\\b",
                             "%d",
                             "a,b",
                             "a=b",
                             "a|b",
                             "*",
                             "?",
                             "[x]",
                             "`id`",
                             "$HOME",
                             "$(id)",
                             "~",
                             "-",
                             "!",
                             "\xFC"
                             "b",
                             "a&b",
                             "(a)",
                             "{a,b}",
                             "<a>",
                             "a@b",
                             "a+b",
                             "a b c",
                             "=",
                             "a\\",
                             long250};
    for (const QByteArray& name : odd) {
        Line line;
        line.size = line.chunk = 4;
        line.destination = "[cfgPath]/files/" + name;
        lines += line.text();
        names += QString::fromLatin1(name);
        // The same through a log of calls.
        line.chunk = 3;
        line.destination = "[cfgPath]/files/L" + name;
        lines += line.text();
        names += "L" + QString::fromLatin1(name);
    }
    const PlanResult result = series.planOf(lines);
    QCOMPARE(result.plan.jobs.size(), size_t(names.size()));
    const QString folder = exported(series, result.plan);
    test::runJobFile(folder, "stage-0.fio");
    names.sort();
    QStringList made = test::entriesOf(series.root() + "files");
    made.sort();
    QCOMPARE(made, names);
    for (const QString& name : made)
        QCOMPARE(test::contentOf(series.root() + "files/" + name).size(), 4 * kib);
}

void TestFioJobs::guardsOfFioAnswerAsTheShell()
{
    PlannedSeries series;
    Line line;
    line.destination = "[cfgPath]/it's:a b$(id).dat";
    Line copy;
    copy.source = "[cfgPath]/src.dat";
    copy.destination = "[cfgPath]/dst.dat";
    series.put("src.dat", test::textOf(1000));
    const Plan plan = series.planOf(line.text() + copy.text()).plan;
    const QString folder = exported(series, plan);
    const auto answer = [&] {
        const auto reports = test::runJobFile(folder, "guards/guard-0.fio");
        return reports.size() == 1 ? reports[0].read.bytes : -1;
    };
    QCOMPARE(answer(), qint64(4096));
    series.put("it's:a b$(id).dat", "x");
    QCOMPARE(answer(), qint64(0));
    QVERIFY(QFile::remove(series.root() + "it's:a b$(id).dat"));
    QCOMPARE(answer(), qint64(4096));
    series.put("src.dat", test::textOf(999));
    QCOMPARE(answer(), qint64(0));
}

void TestFioJobs::oneGuardOfManySaysNo()
{
    PlannedSeries series;
    Line line;
    line.size = line.chunk = 1;
    line.iterations = 300;
    line.destination = "[cfgPath]/file_[iter].dat";
    const Plan plan = series.planOf(line.text()).plan;
    const QString folder = exported(series, plan);
    series.put("file_123.dat", "x");
    std::vector<GuardTest> failed;
    const std::vector<GuardCall> calls = allGuardCalls(plan);
    QCOMPARE(calls.size(), size_t(1));
    for (const SectionReport& report : test::runJobFile(folder, calls[0].file)) {
        for (const GuardSection& section : calls[0].sections) {
            if (section.name == report.name && report.read.bytes == 0)
                failed.insert(failed.end(), section.tests.begin(), section.tests.end());
        }
    }
    QVERIFY(!failed.empty() && failed.size() < 100);
    QVERIFY(std::any_of(failed.begin(), failed.end(),
                        [](const GuardTest& test) { return test.path.endsWith("/file_123.dat"); }));
}

QTEST_GUILESS_MAIN(TestFioJobs)
#include "tst_fiojobs.moc"
