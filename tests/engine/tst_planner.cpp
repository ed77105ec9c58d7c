#include "engine/guards.h"
#include "engine/jobfile.h"
#include "tests/engine/plannedseries.h"

/// Which jobs a series makes, of which files, and how they are asked for and written down.
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
    void roomIsAskedForByFolder();
    void guardsAreFew();
    void planComesBackFromItsFile();
    void changedPlansAreRefused();
    void exportComesBack();
    void changedExportsAreRefused();
    void exportTouchesNothingThatIsThere();
};

namespace {

Line writing(const QByteArray& destination)
{
    Line line;
    line.destination = destination;
    return line;
}

Line reading(const QByteArray& source)
{
    Line line;
    line.source = source;
    return line;
}

Line copying(const QByteArray& source, const QByteArray& destination)
{
    Line line = reading(source);
    line.destination = destination;
    return line;
}

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
    series.put("_wait/mytest.dpc", writing("/d/a.dat").text() + next + writing("/d/b.dat").text());
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
    const QByteArray line = writing("[temp]/a.dat").text();
    const PlanResult result = series.planOf(line);
    QCOMPARE(result.misuse.size(), size_t(1));
    QVERIFY(result.misuse.front().find("'pc2'") != std::string::npos);
    series.options().machines[1].tempFolder = "/other";
    const Plan plan = series.planOf(line).plan;
    QCOMPARE(plan.jobs[0].destination.path, QString("/scratch/a.dat"));
    QCOMPARE(plan.jobs[1].destination.path, QString("/other/a.dat"));
    // A series that does not name it needs none.
    series.options().machines = twoMachines;
    QVERIFY(series.planOf(writing("/d/a.dat").text()).misuse.empty());
    // This machine knows its own.
    series.options().machines.clear();
    QVERIFY(series.planOf(line).misuse.empty());
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

void TestPlanner::roomIsAskedForByFolder()
{
    PlannedSeries series;
    const Plan plan = series
                          .planOf(writing("/d/x/a.dat").text() + writing("/d/x/b.dat").text() +
                                  writing("/d/y/a.dat").text() + writing("/d/y/a.dat").text() +
                                  reading("/d/x/a.dat").text() + writing("/a.dat").text())
                          .plan;
    const std::vector<GuardTest> tests = guardTests(plan, 0);
    QCOMPARE(tests.back().kind, GuardTest::Kind::Space);
    QStringList needs;
    for (const SpaceNeed& need : tests.back().needs)
        needs += QStringLiteral("%1 %2").arg(need.folder).arg(need.bytes / 1024);
    QCOMPARE(needs, QStringList({"/d/x 512", "/d/y 256", "/ 256"}));
}

void TestPlanner::guardsAreFew()
{
    PlannedSeries series;
    Line line = writing("[cfgPath]/a_rather_long_name_for_a_file_of_one_iteration_[iter].dat");
    line.iterations = 4000;
    const Plan plan = series.planOf(line.text()).plan;
    QCOMPARE(plan.jobs.size(), size_t(4000));
    const std::vector<GuardCall> calls = allGuardCalls(plan);
    size_t tests = 0;
    for (const GuardCall& call : calls) {
        QVERIFY(call.sections.size() <= size_t(maxGuardSections));
        for (const GuardSection& section : call.sections)
            tests += section.tests.size();
        for (const QByteArray& text : call.text().split('\n'))
            QVERIFY(text.size() < 8000);
    }
    QCOMPARE(tests, size_t(4001));
    QVERIFY(calls.size() <= 5);
    // One by one to find out which it is.
    const auto single = guardCalls(plan, 0, guardTests(plan, 0), GuardGrain::One, 7);
    QCOMPARE(single.size(), size_t(63));
    QCOMPARE(single[1].file, QByteArray("guards/guard-8.fio"));
    for (const GuardSection& section : single[0].sections)
        QCOMPARE(section.tests.size(), size_t(1));
}

void TestPlanner::planComesBackFromItsFile()
{
    PlannedSeries series;
    series.options().machines = {{"pc1", "ip:127.0.0.11,8765", "/scratch"},
                                 {"pc2", "sock:/run/fio", {}}};
    series.options().startAtMinute = true;
    Line odd = writing("[cfgPath]/\xFC[host] b.dat");
    odd.chunk = 100;
    odd.flush = odd.preallocate = true;
    odd.cache = 3;
    odd.wait = 7;
    Line copy = copying("/d/src.dat", "[cfgPath]/[host].dat");
    copy.buffer = 1;
    series.put("mytest.dpc", "# info\n" + odd.text() + "[cfgPath]/mytest1.dpc\n");
    series.put("mytest1.dpc", copy.text());
    const PlanResult result = series.plan();
    std::string problem;
    const QByteArray json = planAsJson(result.plan, lossesAsJson(result.losses));
    const auto back = planFromJson(json, problem);
    QVERIFY2(back.has_value(), problem.c_str());
    QCOMPARE(planAsJson(back->plan, back->losses), json);
    for (size_t stage = 0; stage < result.plan.stages.size(); ++stage) {
        for (size_t i = 0; i < result.plan.stages[stage].files.size(); ++i)
            QCOMPARE(jobFileText(back->plan, stage, back->plan.stages[stage].files[i]),
                     jobFileText(result.plan, stage, result.plan.stages[stage].files[i]));
    }
    QCOMPARE(back->losses.size(), int(result.losses.size()));
}

void TestPlanner::changedPlansAreRefused()
{
    PlannedSeries series;
    const PlanResult result = series.planOf(writing("/d/a.dat").text());
    const QByteArray json = planAsJson(result.plan, {});
    std::string problem;
    QVERIFY(planFromJson(json, problem));
    const QList<QPair<QByteArray, QByteArray>> changes = {
        {"\"version\": 1", "\"version\": 2"},
        {"\"kind\": \"write\"", "\"kind\": \"erase\""},
        {"\"jobs\": 1", "\"jobs\": 2"},
        {"\"jobs\": 1", "\"jobs\": 0"},
        {"\"jobs\": 1", "\"jobs\": -1"},
        {"\"stage\": 0", "\"stage\": 1"},
        {"\"bytes\": 262144", "\"bytes\": \"x\""},
        {"\"atJob\": \"absent\"", "\"atJob\": \"\""}};
    for (const auto& [from, to] : changes) {
        QByteArray changed = json;
        const int place = changed.indexOf(from);
        QVERIFY2(place >= 0, from);
        changed.replace(place, from.size(), to);
        QVERIFY2(!planFromJson(changed, problem), to);
        QVERIFY(!problem.empty());
    }
    for (int length = 0; length < json.size() - 2; length += 7)
        QVERIFY(!planFromJson(json.left(length), problem));
}

void TestPlanner::exportComesBack()
{
    PlannedSeries series;
    Line line = copying("/d/src.dat", "[cfgPath]/[iter].dat");
    line.iterations = 2;
    const PlanResult result = series.planOf(line.text());
    std::string problem;
    const QString folder = series.place("out");
    QVERIFY2(createExport(folder, result.plan, {}, problem), problem.c_str());
    QCOMPARE(test::entriesOf(folder),
             QStringList({"README", "guards", "guards/guard-0.fio", "logs", "logs/s0-l1-i0.log",
                          "logs/s0-l1-i1.log", "made", "output", "plan.json", "stage-0.fio"}));
    const auto back = readExport(folder, problem);
    QVERIFY2(back.has_value(), problem.c_str());
    QCOMPARE(planAsJson(back->plan, {}), planAsJson(result.plan, {}));
    // A person may write notes into the README.
    test::put(folder + "/README", "mine");
    QVERIFY(readExport(folder, problem));
}

void TestPlanner::changedExportsAreRefused()
{
    PlannedSeries series;
    const PlanResult result = series.planOf(copying("/d/src.dat", "[cfgPath]/b.dat").text());
    std::string problem;
    const QString folder = series.place("out");
    QVERIFY(createExport(folder, result.plan, {}, problem));
    for (const char* name : {"/stage-0.fio", "/guards/guard-0.fio", "/logs/s0-l1-i0.log"}) {
        const QByteArray content = test::contentOf(folder + name);
        test::put(folder + name, content + "\n");
        QVERIFY2(!readExport(folder, problem), name);
        QVERIFY(QByteArray(problem.c_str()).contains(name));
        test::put(folder + name, content.chopped(1));
        QVERIFY2(!readExport(folder, problem), name);
        test::put(folder + name, content);
        QVERIFY(readExport(folder, problem));
    }
}

void TestPlanner::exportTouchesNothingThatIsThere()
{
    PlannedSeries series;
    const Plan plan = series.planOf(writing("/d/a.dat").text()).plan;
    std::string problem;
    const QString file = series.place("file");
    test::put(file, "content");
    QVERIFY(!createExport(file, plan, {}, problem));
    QCOMPARE(test::contentOf(file), QByteArray("content"));
    const QString folder = series.place("folder");
    QVERIFY(QDir().mkdir(folder));
    QVERIFY(!createExport(folder, plan, {}, problem));
    QVERIFY(test::entriesOf(folder).isEmpty());
    QVERIFY(QFile::link("nowhere", series.place("link")));
    QVERIFY(!createExport(series.place("link"), plan, {}, problem));
    QVERIFY(!createExport(series.place("none/out"), plan, {}, problem));
    QCOMPARE(QDir(series.place("")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList({"file", "folder", "share"}));
}

QTEST_APPLESS_MAIN(TestPlanner)
#include "tst_planner.moc"
