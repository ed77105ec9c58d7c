#include "engine/guards.h"
#include "tests/engine/exported.h"

#include <QMap>

#include <algorithm>

/// Files in the way, and names with a special meaning: fio must leave them alone.
class TestFioObstacles : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { test::needFio(); }
    void nothingInTheWayOfADestinationIsTouched();
    void nothingInTheWayOfASourceIsTouched();
    void workingFolderKeepsItsFiles();
    void namesArriveAsTheyAre();
    void guardsOfFioAnswerAsTheShell();
    void oneGuardOfManySaysNo();
};

namespace {

constexpr int kib = 1024;

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

} // namespace

void TestFioObstacles::nothingInTheWayOfADestinationIsTouched()
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

void TestFioObstacles::nothingInTheWayOfASourceIsTouched()
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

void TestFioObstacles::workingFolderKeepsItsFiles()
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

void TestFioObstacles::namesArriveAsTheyAre()
{
    PlannedSeries series;
    QByteArray lines;
    QStringList names;
    const QByteArray long250(250, 'n');
    QList<QByteArray> odd = {"a b",   "it's", "a\"b", "a:b",   "::",    "a\\:b", "a\\b", "%d",
                             "a,b",   "a=b",  "a|b",  "*",     "?",     "[x]",   "`id`", "$HOME",
                             "$(id)", "~",    "-",    "!",     "b\xFC", "a&b",   "(a)",  "{a,b}",
                             "<a>",   "a@b",  "a+b",  "a b c", "=",     "a\\",   long250};
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

void TestFioObstacles::guardsOfFioAnswerAsTheShell()
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

void TestFioObstacles::oneGuardOfManySaysNo()
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

QTEST_GUILESS_MAIN(TestFioObstacles)
#include "tst_fioobstacles.moc"
