#include "engine/guards.h"
#include "tests/engine/plannedseries.h"

/// The jobs that a series makes, and the files that they use.
class TestPlanner : public QObject
{
    Q_OBJECT

private slots:
    void everyIterationAndMachineIsAJob();
    void stagesFollowTheMarkers();
    void aFileInBothFoldersRunsOnce();
    void aSeriesThatWasChosenInsideWaitRunsOutside();
    void initFileMakesItsSourcesFirst();
    void sizeOfASourceIsThatOfTheFile();
    void sizeOfASourceIsThatOfItsMaker();
    void sizeOfAnUnknownSourceIsThatOfTheTask();
    void anEmptySourceIsRefused();
    void aFolderAsSourceIsRefused();
    void filesAreAskedForOnce();
    void proofsOnOtherMachinesNeedAFolder();
    void laterJobsMeetWhatEarlierOnesMade();
    void otherMachinesMeetWhatEarlierStagesMade();
    void filesOfAnEarlierRunMayBeThere();
    void chunksDecideHowAJobIsWritten_data();
    void chunksDecideHowAJobIsWritten();
    void iterationsThatDoTheSameShareALog();
    void dateIsOneMoment();
    void tempOfAnotherMachineMustBeKnown();
    void nothingToDoIsAProblem();
    void foreignLettersAreAProblem();
};

namespace {

/// "0 pc1 write s0-l1-i0 65536" of each job.
QStringList jobsOf(const Plan& plan)
{
    QStringList texts;
    for (const PlanJob& job : plan.jobs)
        texts += QStringLiteral("%1 %2 %3 %4 %5")
                     .arg(job.stage)
                     .arg(plan.machines[size_t(job.machine)].name, jobKindName(job.kind),
                          QString::fromLatin1(job.name()))
                     .arg(job.bytes);
    return texts;
}

QString stateOf(const PlanFile& file)
{
    return QStringLiteral("%1, %2").arg(
        file.beforeRun ? fileStateName(*file.beforeRun) : "not asked", fileStateName(file.atJob));
}

const std::vector<PlanMachine> twoMachines = {{"pc1", "ip:127.0.0.11,8765", {}},
                                              {"pc2", "ip:127.0.0.12,8765", {}}};

} // namespace

void TestPlanner::everyIterationAndMachineIsAJob()
{
    PlannedSeries series;
    series.options().machines = twoMachines;
    Line line = writing("[cfgPath]/[host]_[iter].dat");
    line.iterations = 2;
    const Plan plan = series.planOf("# text\n\n" + line.text()).plan;
    QCOMPARE(jobsOf(plan),
             QStringList({"0 pc1 write s0-l3-i0 262144", "0 pc1 write s0-l3-i1 262144",
                          "0 pc2 write s0-l3-i0 262144", "0 pc2 write s0-l3-i1 262144"}));
    QCOMPARE(plan.jobs[3].destination.path, series.root() + "pc2_1.dat");
    QCOMPARE(plan.stages.size(), size_t(1));
    QCOMPARE(plan.stages[0].files.size(), size_t(2));
    QCOMPARE(plan.stages[0].files[1].file, QByteArray("stage-0-2-pc2.fio"));
    QCOMPARE(plan.stages[0].files[1].firstJob, size_t(2));
    QCOMPARE(plan.stages[0].files[1].endJob, size_t(4));
    QCOMPARE(plan.stages[0].files[1].sections, 2);
}

void TestPlanner::stagesFollowTheMarkers()
{
    PlannedSeries series;
    const QByteArray next = (series.root() + "_wait/mytest1.dpc\n").toLatin1();
    series.put("_wait/mytest.dpc",
               writing("/d/a.dat").text() + next + writing("/d/b.dat").text() + "# a comment\n");
    series.put("_wait/mytest1.dpc", writing("/d/c_[cfgID]_[cfgTaskID].dat").text());
    series.put("_wait/mytest2.dpc", writing("/d/d.dat").text());
    const PlanResult result = series.plan();
    QCOMPARE(jobsOf(result.plan).size(), 2);
    QCOMPARE(result.plan.stages[1].configFile, series.root() + "mytest1.dpc");
    QCOMPARE(result.plan.jobs[1].destination.path, QString("/d/c_1_0.dat"));
    QCOMPARE(series.textsOf(result), QStringList({"3:1 fio-not-run", "1:1 fio-not-run"}));
}

void TestPlanner::aFileInBothFoldersRunsOnce()
{
    PlannedSeries series;
    const QByteArray line = writing("/d/a.dat").text();
    series.put("_wait/mytest.dpc", line);
    series.put("mytest.dpc", line);
    QCOMPARE(jobsOf(series.plan().plan).size(), 1);
    QCOMPARE(series.plan().losses.size(), size_t(0));
    series.put("mytest.dpc", line + "# another byte\n");
    QCOMPARE(series.textsOf(series.plan()), QStringList("1:1 fio-two-files"));
    series.put("mytest.dpc", writing("/d/b.dat").text());
    QCOMPARE(series.textsOf(series.plan()), QStringList("1:1 fio-two-files"));
}

void TestPlanner::aSeriesThatWasChosenInsideWaitRunsOutside()
{
    PlannedSeries series;
    series.put("_wait/mytest.dpc", writing("[cfgPath]/a.dat").text());
    QCOMPARE(series.plan("_wait/mytest.dpc").plan.jobs[0].destination.path,
             series.root() + "a.dat");
    // A file that lies outside already counts.
    series.put("mytest.dpc", writing("[cfgPath]/b.dat").text());
    QCOMPARE(series.textsOf(series.plan("_wait/mytest.dpc")), QStringList("1:1 fio-two-files"));
}

void TestPlanner::initFileMakesItsSourcesFirst()
{
    PlannedSeries series;
    series.options().machines = twoMachines;
    series.put("mytest.dpc", reading("[cfgPath]/src.dat").text());
    Line source = writing("[cfgPath]/src.dat");
    source.method = "Stream";
    source.chunk = 0;
    source.size = 100;
    Line folder = source;
    folder.destination = "[cfgPath]/out/dummyFile";
    folder.size = 0;
    Line done = source;
    done.destination = "[cfgPath]/done.dat";
    series.put("mytest_init.dpc", source.text() + "# " + done.text() + folder.text());
    const PlanResult result = series.plan();
    QCOMPARE(jobsOf(result.plan),
             QStringList({"0 pc1 create s0-l1-i0 102400", "1 pc1 read s1-l1-i0 102400",
                          "1 pc2 read s1-l1-i0 102400"}));
    QVERIFY(result.plan.stages[0].isInit && !result.plan.stages[1].isInit);
    QCOMPARE(result.plan.stages[0].configFile, series.root() + "mytest_init.dpc");
    QCOMPARE(series.textsOf(result), QStringList("3:11 fio-folder"));
    // The other machine meets it in the second stage, if it sees the folder.
    QCOMPARE(stateOf(result.plan.jobs[1].source), QString("not asked, made"));
    QCOMPARE(stateOf(result.plan.jobs[2].source), QString("not asked, readable"));
}

void TestPlanner::sizeOfASourceIsThatOfTheFile()
{
    PlannedSeries series;
    series.put("src.dat", QByteArray(1000, 'x'));
    const Plan plan = series
                          .planOf(reading("[cfgPath]/src.dat").text() +
                                  copying("[cfgPath]/src.dat", "[cfgPath]/b.dat").text())
                          .plan;
    QCOMPARE(jobsOf(plan), QStringList({"0 " + plan.machines[0].name + " read s0-l1-i0 1000",
                                        "0 " + plan.machines[0].name + " copy s0-l2-i0 1000"}));
    QCOMPARE(plan.jobs[0].chunk, qint64(1000));
    QCOMPARE(stateOf(plan.jobs[0].source), QString("readable, readable"));
    QCOMPARE(stateOf(plan.jobs[1].source), QString("read-writable, read-writable"));
}

void TestPlanner::sizeOfASourceIsThatOfItsMaker()
{
    PlannedSeries series;
    Line small = writing("[cfgPath]/a.dat");
    small.size = 10;
    const Plan plan =
        series
            .planOf(small.text() + copying("[cfgPath]/a.dat", "[cfgPath]/b.dat").text() +
                    reading("[cfgPath]/b.dat").text())
            .plan;
    for (const PlanJob& job : plan.jobs)
        QCOMPARE(job.bytes, qint64(10 * 1024));
}

void TestPlanner::sizeOfAnUnknownSourceIsThatOfTheTask()
{
    PlannedSeries series;
    series.options().machines = twoMachines;
    const Plan plan = series.planOf(reading("/elsewhere/src.dat").text()).plan;
    QCOMPARE(plan.jobs[0].bytes, qint64(256 * 1024));
    QCOMPARE(stateOf(plan.jobs[0].source), QString("readable, readable"));
}

void TestPlanner::anEmptySourceIsRefused()
{
    PlannedSeries series;
    series.put("src.dat", {});
    QCOMPARE(series.lossesOf(reading("[cfgPath]/src.dat").text()), QStringList("1:10 fio-size"));
    Line line = reading("/elsewhere/src.dat");
    line.size = 0;
    QCOMPARE(series.lossesOf(line.text()), QStringList("1:10 fio-size"));
}

void TestPlanner::aFolderAsSourceIsRefused()
{
    PlannedSeries series;
    QCOMPARE(series.lossesOf(reading("[cfgPath]/_wait").text()),
             QStringList("1:10 fio-special-file"));
}

void TestPlanner::filesAreAskedForOnce()
{
    PlannedSeries series;
    Line line = writing("[cfgPath]/a.dat");
    line.iterations = 3;
    const Plan plan = series.planOf(line.text()).plan;
    QCOMPARE(stateOf(plan.jobs[0].destination), QString("absent, absent"));
    QCOMPARE(stateOf(plan.jobs[1].destination), QString("not asked, made"));
    QCOMPARE(stateOf(plan.jobs[2].destination), QString("not asked, made"));
    // Only what the first one has made is theirs to write.
    QCOMPARE(plan.jobs[0].destination.proof, QByteArray("made/s0-l1-i0.made"));
    QCOMPARE(plan.jobs[2].destination.proof, plan.jobs[0].destination.proof);
    // The file and its space.
    QCOMPARE(guardTests(plan, 0).size(), size_t(2));
}

void TestPlanner::proofsOnOtherMachinesNeedAFolder()
{
    PlannedSeries series;
    series.options().machines = {{"pc1", "ip:127.0.0.11,8765", "/scratch"}};
    series.put("mytest.dpc", writing("/d/a.dat").text() + "[cfgPath]/mytest1.dpc\n");
    series.put("mytest1.dpc", writing("/d/a.dat").text());
    const Plan plan = series.plan().plan;
    // The folder is made by the stage that leaves the proof.
    const QString folder = plan.stages[0].files[0].logFolder;
    QCOMPARE(folder, "/scratch/dpc-" + plan.id + "-s0-1-pc1");
    QVERIFY(plan.stages[1].files[0].logFolder.isEmpty());
    QCOMPARE(plan.jobs[1].destination.proof, folder.toUtf8() + "/s0-l1-i0.made");
    QCOMPARE(plan.stages[0].files[0].sections, 2);
    QCOMPARE(plan.stages[1].files[0].sections, 1);
    // The file, its space, and that the folder is new.
    QCOMPARE(guardTests(plan, 0).size(), size_t(3));
}

void TestPlanner::laterJobsMeetWhatEarlierOnesMade()
{
    PlannedSeries series;
    const Plan plan =
        series
            .planOf(writing("[cfgPath]/a.dat").text() + reading("[cfgPath]/a.dat").text() +
                    copying("[cfgPath]/a.dat", "[cfgPath]/b.dat").text())
            .plan;
    QCOMPARE(stateOf(plan.jobs[1].source), QString("not asked, made"));
    QCOMPARE(stateOf(plan.jobs[2].source), QString("not asked, made"));
    QCOMPARE(stateOf(plan.jobs[2].destination), QString("absent, absent"));
}

void TestPlanner::otherMachinesMeetWhatEarlierStagesMade()
{
    PlannedSeries series;
    series.options().machines = twoMachines;
    series.put("mytest.dpc", writing("[cfgPath]/[host].dat").text() + "[cfgPath]/mytest1.dpc\n");
    series.put("mytest1.dpc",
               reading("[cfgPath]/pc1.dat").text() + writing("[cfgPath]/pc2.dat").text());
    const Plan plan = series.plan().plan;
    QStringList states;
    for (size_t i = 2; i < plan.jobs.size(); ++i) {
        const PlanJob& job = plan.jobs[i];
        states += stateOf(job.source.path.isEmpty() ? job.destination : job.source);
    }
    QCOMPARE(states, QStringList({"not asked, made", "absent, maybe-made", "not asked, readable",
                                  "not asked, made"}));
}

void TestPlanner::filesOfAnEarlierRunMayBeThere()
{
    PlannedSeries series;
    series.options().mayOverwrite = [](const QString&, const QString& path) {
        return path.endsWith("/a.dat");
    };
    const Plan plan =
        series.planOf(writing("[cfgPath]/a.dat").text() + writing("[cfgPath]/b.dat").text()).plan;
    QCOMPARE(stateOf(plan.jobs[0].destination), QString("maybe-made, maybe-made"));
    QCOMPARE(stateOf(plan.jobs[1].destination), QString("absent, absent"));
}

void TestPlanner::chunksDecideHowAJobIsWritten_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("sections"); // offset+bytes/chunk
    QTest::addColumn<bool>("hasLog");
    const auto row = [](const char* name, const Line& line, const char* sections, bool hasLog) {
        QTest::newRow(name) << line.text() << QString(sections) << hasLog;
    };
    Line line = writing("/d/a.dat");
    line.size = 10;
    line.chunk = 5;
    row("chunks that divide the file", line, "0+10240/5120", false);
    line.chunk = 4;
    row("a shorter last chunk", line, "0+10240/4096", true);
    line.destination = "/d/a b.dat";
    row("a shorter last chunk and a blank", line, "0+8192/4096 8192+2048/2048", false);
    line.chunk = 0;
    row("no chunks", line, "0+10240/10240", false);
    line.chunk = 11;
    row("a chunk that is larger than the file", line, "0+10240/10240", false);
    line.chunk = 5;
    line.flush = true;
    row("a flush and a blank", line, "0+10240/5120", false);
    line.destination = "/d/a.dat";
    row("a flush", line, "0+10240/5120", true);
    line = reading("/d/a.dat");
    line.size = 10;
    line.chunk = 4;
    row("a read with a shorter last chunk", line, "0+10240/4096", true);
    line.chunk = 5;
    row("a read", line, "0+10240/5120", false);
    line.destination = "/d/b.dat";
    row("a copy", line, "0+10240/5120", true);
    line.destination = "/d/" + QByteArray(252, 'x');
    row("a copy to a name of 255 bytes", line, "0+10240/5120", true);
    line.destination = "/d/" + QByteArray(253, 'x');
    row("a copy to a name of 256 bytes", line, "", false);
    line.destination = "/d/b c.dat";
    row("a copy to a name with a blank", line, "", false);
}

void TestPlanner::chunksDecideHowAJobIsWritten()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, sections);
    QFETCH(bool, hasLog);
    PlannedSeries series;
    const PlanResult result = series.planOf(line);
    QStringList texts;
    for (const PlanJob& job : result.plan.jobs) {
        QCOMPARE(job.log.has_value(), hasLog);
        for (const PlanSection& section : job.sections)
            texts += QStringLiteral("%1+%2/%3")
                         .arg(section.offset)
                         .arg(section.bytes)
                         .arg(section.chunk);
    }
    QCOMPARE(texts.join(' '), sections);
    if (sections.isEmpty())
        QCOMPARE(series.textsOf(result).join(' ').section(' ', 1, 1), QString("fio-name"));
}

void TestPlanner::iterationsThatDoTheSameShareALog()
{
    PlannedSeries series;
    Line line = reading("/d/a.dat");
    line.chunk = 100;
    line.iterations = 3;
    Line other = reading("/d/[iter].dat");
    other.chunk = 100;
    other.iterations = 2;
    const Plan plan = series.planOf(line.text() + other.text()).plan;
    QSet<QByteArray> logs;
    for (const PlanJob& job : plan.jobs)
        logs += job.log->file;
    QCOMPARE(plan.jobs.size(), size_t(5));
    QCOMPARE(logs.size(), 3);
}

void TestPlanner::dateIsOneMoment()
{
    PlannedSeries series;
    series.options().machines = twoMachines;
    Line line = writing("/d/[host]_[date]_[iter]");
    line.iterations = 2;
    const Plan plan = series.planOf(line.text()).plan;
    for (const PlanJob& job : plan.jobs)
        QVERIFY(job.destination.path.contains(plan.date));
    series.options().date = "today";
    QCOMPARE(series.plan().plan.jobs[0].destination.path, QString("/d/pc1_today_0"));
}

void TestPlanner::tempOfAnotherMachineMustBeKnown()
{
    PlannedSeries series;
    series.options().machines = twoMachines;
    series.options().machines[0].tempFolder = "/scratch";
    const QByteArray lines = writing("[temp]/a.dat").text() + writing("[temp]/b.dat").text();
    const PlanResult result = series.planOf(lines);
    QCOMPARE(result.misuse.size(), size_t(1));
    QVERIFY(result.misuse.front().find("'pc2'") != std::string::npos);
    series.options().machines[1].tempFolder = "/other";
    const Plan plan = series.planOf(lines).plan;
    QCOMPARE(plan.jobs[0].destination.path, QString("/scratch/a.dat"));
    QCOMPARE(plan.jobs[2].destination.path, QString("/other/a.dat"));
    // A series that does not name it needs none.
    series.options().machines = twoMachines;
    QVERIFY(series.planOf(writing("/d/a.dat").text()).misuse.empty());
    // This machine knows its own.
    series.options().machines.clear();
    QVERIFY(series.planOf(lines).misuse.empty());
    series.options().localTempFolder = "/mine";
    QCOMPARE(series.plan().plan.jobs[0].destination.path, QString("/mine/a.dat"));
}

void TestPlanner::nothingToDoIsAProblem()
{
    PlannedSeries series;
    QCOMPARE(series.planOf("# nothing\n").problems.size(), size_t(1));
}

void TestPlanner::foreignLettersAreAProblem()
{
    PlannedSeries series;
    const QString folder = QString::fromUtf8("\xCE\xB1/");
    QVERIFY(QDir(series.root()).mkdir(folder));
    series.put(folder + "mytest.dpc", writing("/d/a.dat").text());
    QCOMPARE(series.plan(folder + "mytest.dpc").problems.size(), size_t(1));
}

QTEST_APPLESS_MAIN(TestPlanner)
#include "tst_planner.moc"
