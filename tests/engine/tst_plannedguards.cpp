#include "engine/guards.h"
#include "engine/jobfile.h"
#include "engine/names.h"
#include "tests/engine/plannedseries.h"

/// The questions that a plan asks of its machines.
class TestPlannedGuards : public QObject
{
    Q_OBJECT

private slots:
    void spaceIsAskedForByFolder();
    void asManyFoldersAreAskedForAsALineHolds();
    void asManyLogsAreWrittenAsALineHolds();
    void logsLieInAFolderThatAnyToolCanName();
    void guardsAreFew();
};

void TestPlannedGuards::spaceIsAskedForByFolder()
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

void TestPlannedGuards::asManyFoldersAreAskedForAsALineHolds()
{
    PlannedSeries series;
    QByteArray lines;
    constexpr int folders = 60;
    for (int i = 0; i < folders; ++i)
        lines += writing("/d/" + QByteArray(200, 'x') + QByteArray::number(i) + "/a.dat").text();
    const Plan plan = series.planOf(lines).plan;
    QStringList asked;
    int questions = 0;
    for (const GuardTest& test : guardTests(plan, 0)) {
        if (test.kind != GuardTest::Kind::Space)
            continue;
        ++questions;
        QVERIFY(guardCondition(test).size() <= maxNameLine);
        for (const SpaceNeed& need : test.needs) {
            QCOMPARE(need.bytes, qint64(256) * 1024);
            asked += need.folder.mid(203);
        }
    }
    QVERIFY(questions > 1 && questions < 5);
    QStringList expected;
    for (int i = 0; i < folders; ++i)
        expected += QString::number(i);
    QCOMPARE(asked, expected);
}

void TestPlannedGuards::asManyLogsAreWrittenAsALineHolds()
{
    PlannedSeries series;
    series.options().machines = {{"pc1", "ip:127.0.0.1,1", "/scratch"}};
    QByteArray lines;
    constexpr int logs = 30;
    for (int i = 0; i < logs; ++i) {
        Line line = writing("/d/" + QByteArray(150, 'x') + QByteArray::number(i) + ".dat");
        line.flush = true;
        lines += line.text();
    }
    const Plan plan = series.planOf(lines).plan;
    const QByteArray text = jobFileText(plan, 0, plan.stages[0].files[0]);
    int sections = 0;
    for (const QByteArray& line : text.split('\n')) {
        sections += int(line.startsWith("[s0-prepare-"));
        QVERIFY(line.size() < 8000);
    }
    QVERIFY(sections > 1 && sections < 10);
    // Each log is written once.
    for (size_t i = 0; i < size_t(logs); ++i)
        QCOMPARE(text.count(") > " + shellWord(plan.jobs[i].log->file)), 1);
}

void TestPlannedGuards::logsLieInAFolderThatAnyToolCanName()
{
    const auto folderFor = [](const QString& temp) {
        PlannedSeries series;
        series.options().machines = {{"pc1", "ip:127.0.0.1,1", temp}};
        Line line = writing("/d/a.dat");
        line.flush = true;
        const Plan plan = series.planOf(line.text()).plan;
        const QString folder = plan.stages.at(0).files.at(0).logFolder;
        return folder.left(folder.lastIndexOf("/dpc-"));
    };
    for (const char* temp : {"/a", "/scratch/x", "/A-b_c.1", "/z9"})
        QCOMPARE(folderFor(temp), QString(temp));
    for (const char* temp :
         {"/", "//a", "/a b", "/a:b", "/a'b", "/a@b", "/a[b", "/a`b", "/a{b", "/\xC3\xBC", "/a,b"})
        QCOMPARE(folderFor(QString::fromUtf8(temp)), QStringLiteral("/tmp"));
}

void TestPlannedGuards::guardsAreFew()
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

QTEST_APPLESS_MAIN(TestPlannedGuards)
#include "tst_plannedguards.moc"
