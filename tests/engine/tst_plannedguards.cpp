#include "engine/guards.h"
#include "tests/engine/plannedseries.h"

/// The questions that a plan asks of its machines.
class TestPlannedGuards : public QObject
{
    Q_OBJECT

private slots:
    void spaceIsAskedForByFolder();
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
