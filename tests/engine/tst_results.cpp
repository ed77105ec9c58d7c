#include "engine/resultfiles.h"
#include "tests/support/files.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

// Two machines, each with a write, a read and a copy; what fio reports of them varies.

class TestResults : public QObject
{
    Q_OBJECT

private slots:
    void aJobThatDidItsBytesIsGood();
    void whatFioDoesNotReportIsNotGood();
    void aReportOfAnotherMachineDoesNotCount();
    void twoReportsOfOneJobDoNotCount();
    void anErrorCountsWhateverTheBytes();
    void aCopyMustReadAndWrite();
    void sectionsOfAJobAreAddedUp();
    void theFirstErrorOfItsSectionsIsThatOfAJob();
    void aJobThatDidNotBeginHasNoFigures();
    void ratesAreOfTheRightTime();
    void theStartComesFromTheLogWhereFioDoesNotSayIt();
    void theStartFromTheLogCountsTheLastWaitUnlessAFlushFollows();
    void aLogThatEndsTooEarlyTellsNoStart();
    void sectionsOfASocketAreFoundByItsName();
    void resultsHoldNullsAndNeverZerosForWhatIsNotKnown();
    void theTableIsSafeInASpreadsheet();
};

namespace {

constexpr qint64 size = 1 << 20;

PlanJob job(int machine, JobKind kind, const QByteArray& name)
{
    PlanJob made;
    made.machine = machine;
    made.kind = kind;
    made.line = 3;
    made.bytes = size;
    made.chunk = 65536;
    if (kind != JobKind::Write)
        made.source.path = "/data/source";
    if (kind != JobKind::Read)
        made.destination.path = "/data/made-" + name;
    PlanSection section;
    section.name = name;
    section.bytes = size;
    made.sections = {section};
    return made;
}

Plan planOfTwo()
{
    Plan plan;
    plan.series = "/data/series.dpc";
    for (const char* address : {"ip:127.0.0.11,8765", "ip:127.0.0.12,8765"}) {
        PlanMachine machine;
        machine.name = QStringLiteral("pc0%1").arg(plan.machines.size() + 1);
        machine.address = address;
        plan.machines.push_back(machine);
    }
    plan.stages.resize(1);
    plan.stages[0].configFile = "/data/series.dpc";
    for (int machine = 0; machine < 2; ++machine) {
        plan.jobs.push_back(job(machine, JobKind::Write, "w"));
        plan.jobs.push_back(job(machine, JobKind::Read, "r"));
        plan.jobs.push_back(job(machine, JobKind::Copy, "c"));
    }
    return plan;
}

/// The first job writes the rest of its file in a section of its own.
Plan planWithRest()
{
    Plan plan = planOfTwo();
    PlanSection rest;
    rest.name = "w-rest";
    plan.jobs[0].sections.push_back(rest);
    return plan;
}

const std::vector<FioHost> hosts = {{"127.0.0.11", 8765}, {"127.0.0.12", 8765}};

SectionReport reportOf(const PlanJob& planned)
{
    SectionReport report;
    report.name = planned.name();
    report.host = hosts[size_t(planned.machine)].name;
    report.port = 8765;
    report.runtimeMs = 500;
    IoFigures figures;
    figures.bytes = size;
    figures.ios = 16;
    figures.ioNs = 1e8;
    figures.p50Ns = 10;
    figures.p99Ns = 20;
    figures.maxNs = 30;
    if (planned.kind != JobKind::Read)
        report.write = figures;
    if (planned.kind != JobKind::Write)
        report.read = figures;
    return report;
}

FioOutput allGood(const Plan& plan)
{
    FioOutput output;
    for (const PlanJob& planned : plan.jobs)
        output.sections.push_back(reportOf(planned));
    return output;
}

std::vector<JobResult> account(const Plan& plan, const FioOutput& output)
{
    return accountStage(plan, 0, hosts, output, FioLogs());
}

/// The places of the jobs that are not good.
std::vector<int> badOnes(const std::vector<JobResult>& results)
{
    std::vector<int> bad;
    for (size_t i = 0; i < results.size(); ++i) {
        if (!results[i].isGood)
            bad.push_back(int(i));
    }
    return bad;
}

QJsonObject jsonOf(const Plan& plan, std::vector<JobResult> jobs)
{
    RunResults results;
    results.plan = &plan;
    results.stages.resize(plan.stages.size());
    results.jobs = std::move(jobs);
    return QJsonDocument::fromJson(resultsJson(results)).object();
}

} // namespace

void TestResults::aJobThatDidItsBytesIsGood()
{
    const Plan plan = planOfTwo();
    const std::vector<JobResult> results = account(plan, allGood(plan));
    QCOMPARE(results.size(), plan.jobs.size());
    QVERIFY(badOnes(results).empty());
    QCOMPARE(*results[2].doneBytes, size);
}

void TestResults::whatFioDoesNotReportIsNotGood()
{
    const Plan plan = planOfTwo();
    QCOMPARE(badOnes(account(plan, FioOutput())).size(), plan.jobs.size());
    FioOutput output = allGood(plan);
    output.sections.erase(output.sections.begin() + 4);
    const std::vector<JobResult> results = account(plan, output);
    QCOMPARE(badOnes(results), std::vector<int>{4});
    QVERIFY(!results[4].doneBytes.has_value());
    QCOMPARE(results[4].reason, std::string("fio did not report it"));
}

void TestResults::aReportOfAnotherMachineDoesNotCount()
{
    const Plan plan = planOfTwo();
    FioOutput output = allGood(plan);
    output.sections[0].port = 8766;
    output.sections[4].host = "127.0.0.13";
    QCOMPARE(badOnes(account(plan, output)), (std::vector<int>{0, 4}));
}

void TestResults::twoReportsOfOneJobDoNotCount()
{
    const Plan plan = planOfTwo();
    FioOutput output = allGood(plan);
    output.sections.push_back(output.sections[1]);
    QCOMPARE(badOnes(account(plan, output)), std::vector<int>{1});
}

void TestResults::anErrorCountsWhateverTheBytes()
{
    const Plan plan = planOfTwo();
    FioOutput output = allGood(plan);
    output.sections[3].error = 28;
    const std::vector<JobResult> results = account(plan, output);
    QCOMPARE(badOnes(results), std::vector<int>{3});
    QCOMPARE(results[3].reason, std::string("error 28: No space left on device"));
}

void TestResults::aCopyMustReadAndWrite()
{
    const Plan plan = planOfTwo();
    FioOutput output = allGood(plan);
    output.sections[2].read.bytes = size - 1;
    output.sections[5].write.bytes = size - 1;
    const std::vector<JobResult> results = account(plan, output);
    QCOMPARE(badOnes(results), (std::vector<int>{2, 5}));
    QCOMPARE(results[2].reason, std::string("read 1048575 of 1048576 bytes"));
    QCOMPARE(results[5].reason, std::string("wrote 1048575 of 1048576 bytes"));
}

void TestResults::sectionsOfAJobAreAddedUp()
{
    const Plan plan = planWithRest();
    FioOutput output = allGood(plan);
    output.sections[0].write.bytes = size - 100;
    QCOMPARE(badOnes(account(plan, output)), std::vector<int>{0});

    SectionReport last = output.sections[0];
    last.name = plan.jobs[0].sections[1].name;
    last.write.bytes = 100;
    last.write.ios = 1;
    last.write.maxNs = 99;
    last.write.p99Ns = 98;
    output.sections.push_back(last);
    const std::vector<JobResult> results = account(plan, output);
    QVERIFY(badOnes(results).empty());
    QCOMPARE(*results[0].doneBytes, size);
    QCOMPARE(*results[0].runtimeMs, qint64(1000));
    QCOMPARE(results[0].write->ios, qint64(17));
    QCOMPARE(*results[0].write->maxNs, qint64(99));
    QCOMPARE(*results[0].write->p99Ns, qint64(20));
}

void TestResults::theFirstErrorOfItsSectionsIsThatOfAJob()
{
    const Plan plan = planWithRest();
    FioOutput output = allGood(plan);
    SectionReport last = output.sections[0];
    last.name = plan.jobs[0].sections[1].name;
    last.error = ENOSPC;
    last.write.maxNs.reset();
    output.sections.push_back(last);
    QCOMPARE(*account(plan, output)[0].error, ENOSPC);
    QCOMPARE(*account(plan, output)[0].write->maxNs, qint64(30));
    output.sections[0].error = EIO;
    QCOMPARE(*account(plan, output)[0].error, EIO);
    output.sections.back().error = 0;
    QCOMPARE(*account(plan, output)[0].error, EIO);
}

void TestResults::aJobThatDidNotBeginHasNoFigures()
{
    const Plan plan = planOfTwo();
    FioOutput output = allGood(plan);
    output.sections[0].write = IoFigures();
    output.sections[0].runtimeMs = 0;
    const std::vector<JobResult> results = account(plan, output);
    QCOMPARE(badOnes(results), std::vector<int>{0});
    QCOMPARE(*results[0].doneBytes, qint64(0));
    QVERIFY(!results[0].runtimeMs.has_value());
    QVERIFY(!results[0].ioNs.has_value());
    QVERIFY(!results[0].rate().has_value());
}

void TestResults::ratesAreOfTheRightTime()
{
    const Plan plan = planOfTwo();
    FioOutput output = allGood(plan);
    output.sections[0].syncs = 16;
    output.sections[0].syncNs = 3e8;
    output.sections[1].runtimeMs = 0;
    const std::vector<JobResult> results = account(plan, output);
    QCOMPARE(*results[0].rate(), size / 0.5);
    QCOMPARE(*results[0].ioRate(), size / 0.4);
    // Less than a millisecond: no rate is better than one of nothing.
    QVERIFY(!results[1].rate().has_value());
    QCOMPARE(*results[2].ioRate(), size / 0.2);
}

void TestResults::theStartComesFromTheLogWhereFioDoesNotSayIt()
{
    Plan plan = planOfTwo();
    const QTemporaryDir folder;
    test::put(folder.filePath("w_lat.1.log.127.0.0.11"),
              "1795301686649, 5, 1, 0, 0\n1795301686900, 5, 1, 0, 0\n");
    test::put(folder.filePath("w_bw.1.log.127.0.0.11"), "1795301686649, 5, 1, 0, 0\n");
    test::put(folder.filePath("r_lat.2.log.127.0.0.11"), "");
    test::put(folder.filePath("c_lat.2.log.127.0.0.11"), "nonsense");
    FioOutput output = allGood(plan);
    output.sections[3].startMs = 1234;
    plan.jobs[0].waitMs = 20;
    const FioLogs logs(folder.path(), "output/");
    const std::vector<JobResult> results = accountStage(plan, 0, hosts, output, logs);
    QCOMPARE(*results[0].startMs, qint64(1795301686420));
    QCOMPARE(*results[0].endMs(), qint64(1795301686920));
    QCOMPARE(results[0].bandwidthLogs, std::vector<QString>{"output/w_bw.1.log.127.0.0.11"});
    QVERIFY(!results[1].startMs.has_value());
    QVERIFY(!results[2].startMs.has_value());
    QVERIFY(results[3].bandwidthLogs.empty());
    QCOMPARE(*results[3].startMs, qint64(1234));
}

void TestResults::theStartFromTheLogCountsTheLastWaitUnlessAFlushFollows()
{
    Plan plan = planOfTwo();
    const QTemporaryDir folder;
    test::put(folder.filePath("w_lat.1.log.127.0.0.11"), "2000, 5, 1, 0, 0\n");
    plan.jobs[0].waitMs = 20;
    const FioOutput output = allGood(plan);
    const FioLogs logs(folder.path(), "output/");
    QCOMPARE(*accountStage(plan, 0, hosts, output, logs)[0].startMs, qint64(1520));
    plan.jobs[0].flush = true;
    QCOMPARE(*accountStage(plan, 0, hosts, output, logs)[0].startMs, qint64(1500));
}

void TestResults::aLogThatEndsTooEarlyTellsNoStart()
{
    const Plan plan = planOfTwo();
    const QTemporaryDir folder;
    const auto startBy = [&](const QByteArray& moment) {
        test::put(folder.filePath("w_lat.1.log.127.0.0.11"), moment + ", 5, 1, 0, 0\n");
        const FioLogs logs(folder.path(), "output/");
        return accountStage(plan, 0, hosts, allGood(plan), logs)[0].startMs;
    };
    QCOMPARE(startBy("500"), std::optional<qint64>(0));
    QCOMPARE(startBy("499"), std::nullopt);
    QCOMPARE(startBy("0"), std::nullopt);
    QCOMPARE(startBy("-1"), std::nullopt);
    JobResult started;
    started.startMs = 1;
    QVERIFY(!started.endMs().has_value());
}

void TestResults::sectionsOfASocketAreFoundByItsName()
{
    const Plan plan = planOfTwo();
    FioOutput output = allGood(plan);
    for (SectionReport& report : output.sections)
        report.host = report.host.endsWith('1') ? "machine0.sock" : "machine1.sock";
    const std::vector<FioHost> sockets = {{"machine0.sock", 0}, {"machine1.sock", 0}};
    QVERIFY(badOnes(accountStage(plan, 0, sockets, output, FioLogs())).empty());
}

void TestResults::resultsHoldNullsAndNeverZerosForWhatIsNotKnown()
{
    const Plan plan = planOfTwo();
    std::vector<JobResult> results(plan.jobs.size(), notRun("its stage did not run"));
    results[0] = account(plan, allGood(plan))[0];
    const QJsonArray jobs = jsonOf(plan, results).value("jobs").toArray();
    QCOMPARE(jobs.size(), int(plan.jobs.size()));
    const QJsonObject good = jobs[0].toObject();
    const QJsonObject absent = jobs[1].toObject();
    QCOMPARE(good.keys(), absent.keys());
    for (const char* key :
         {"doneBytes", "error", "startMs", "endMs", "runtimeMs", "ioNs", "ios", "bytesPerSecond",
          "ioBytesPerSecond", "p50Ns", "p99Ns", "maxNs", "syncs", "syncNs", "read", "write"})
        QVERIFY2(absent.value(key).isNull(), key);
    QCOMPARE(absent.value("plannedBytes").toDouble(), double(size));
    QCOMPARE(absent.value("good"), QJsonValue(false));
    QCOMPARE(good.value("good"), QJsonValue(true));
    QCOMPARE(good.value("bytesPerSecond").toDouble(), 2.0 * size);
    QVERIFY(good.value("syncs").isNull());
}

void TestResults::theTableIsSafeInASpreadsheet()
{
    Plan plan = planOfTwo();
    plan.machines[0].name = "=2+3";
    plan.jobs[1].source.path = "/data/a,\"b\"\n.dat";
    RunResults results;
    results.plan = &plan;
    results.stages.resize(1);
    results.jobs = account(plan, allGood(plan));
    const QByteArray table = resultsCsv(results);
    QVERIFY(table.contains(",write,'=2+3,0,w,,/data/made-w,65536,1048576,1048576,yes,0,,"));
    QVERIFY(table.contains(",\"/data/a,\"\"b\"\"\n.dat\","));
    const QByteArray heading = table.left(table.indexOf("\r\n"));
    QCOMPARE(heading.count(','), 27);
    QCOMPARE(table.count("\r\n"), int(plan.jobs.size()) + 1);
    const auto cellOf = [&](const QString& name) {
        plan.machines[0].name = name;
        const QByteArray cells = resultsCsv(results);
        const int start = cells.indexOf(",write,") + 7;
        return cells.mid(start, cells.indexOf(",0,w,", start) - start);
    };
    for (const char* name : {"=a", "+a", "-a", "@a", "\ta"})
        QCOMPARE(cellOf(name), QByteArray("'") + name);
    for (const char* name : {"a", "a=+-@", "a\tb", ""})
        QCOMPARE(cellOf(name), QByteArray(name));
    QCOMPARE(cellOf("a,b"), QByteArray("\"a,b\""));
    QCOMPARE(cellOf("a\nb"), QByteArray("\"a\nb\""));
    QCOMPARE(cellOf("a\rb"), QByteArray("\"a\rb\""));
    QCOMPARE(cellOf("\ra"), QByteArray("\"'\ra\""));
    QCOMPARE(cellOf("a\"b"), QByteArray("\"a\"\"b\""));
}

QTEST_APPLESS_MAIN(TestResults)
#include "tst_results.moc"
