#include "engine/jobfile.h"
#include "tests/engine/plannedseries.h"

/// A plan and an export, written and read back.
class TestPlanFile : public QObject
{
    Q_OBJECT

private slots:
    void planComesBackFromItsFile();
    void changedPlansAreRefused();
    void exportComesBack();
    void changedExportsAreRefused();
    void exportTouchesNothingThatIsThere();
};

void TestPlanFile::planComesBackFromItsFile()
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

void TestPlanFile::changedPlansAreRefused()
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
        {"\"stage\": 0", "\"stage\": \"\""},
        {"\"machines\": [", "\"machines\": [], \"others\": ["},
        {"\"jobs\": [", "\"jobs\": [], \"others\": ["},
        {"\"sections\": [", "\"sections\": [], \"others\": ["},
        {"\"files\": [", "\"files\": [], \"others\": ["},
        {"\"chunkBytes\": 65536", "\"chunkBytes\": 0"},
        {"\"bytes\": 262144", "\"bytes\": 0"},
        {"\"bytes\": 262144", "\"bytes\": -1"},
        {"\"bytes\": 262144", "\"bytes\": 9007199254740994"},
        {"\"bytes\": 262144", "\"bytes\": \"x\""},
        {"\"offset\": 0", "\"offset\": \"\""},
        {"\"atJob\": \"absent\"", "\"atJob\": \"\""}};
    for (const auto& [from, to] : changes) {
        QByteArray changed = json;
        const int place = changed.indexOf(from);
        QVERIFY2(place >= 0, from);
        changed.replace(place, from.size(), to);
        QVERIFY2(!planFromJson(changed, problem), to);
        QVERIFY(!problem.empty());
    }
    // The machine of the job, and that of its file.
    for (const int from : {0, json.indexOf("\"stages\"")}) {
        QByteArray changed = json;
        const int place = json.indexOf("\"machine\": \"", from) + 12;
        changed.insert(place, 'x');
        QVERIFY(place > 12 && !planFromJson(changed, problem));
    }
    QByteArray nothing = json;
    nothing.replace("\"jobs\": [", "\"jobs\": [], \"others\": [");
    nothing.replace("\"stages\": [", "\"stages\": [], \"more\": [");
    QVERIFY(!planFromJson(nothing, problem));
    for (int length = 0; length < json.size() - 2; length += 7)
        QVERIFY(!planFromJson(json.left(length), problem));
}

void TestPlanFile::exportComesBack()
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

void TestPlanFile::changedExportsAreRefused()
{
    PlannedSeries series;
    const PlanResult result = series.planOf(copying("/d/src.dat", "[cfgPath]/b.dat").text());
    std::string problem;
    const QString folder = series.place("out");
    QVERIFY(createExport(folder, result.plan, {}, problem));
    QVERIFY(!readExport(series.place("share"), problem));
    QCOMPARE(QString::fromStdString(problem),
             "'" + series.place("share/plan.json") + "' can't be read: No such file or directory");
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

void TestPlanFile::exportTouchesNothingThatIsThere()
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

QTEST_APPLESS_MAIN(TestPlanFile)
#include "tst_planfile.moc"
