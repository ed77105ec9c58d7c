#include "engine/runsummary.h"
#include "tests/support/files.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

// Figures of a run that are known by hand: rounds of bytes and seconds.

namespace {

constexpr qint64 mib = qint64(1024) * 1024;

QJsonObject job(const char* machine, int iteration, qint64 startMs, qint64 runtimeMs)
{
    return {{"stage", 0},
            {"configFile", "/s/a.dpc"},
            {"line", 3},
            {"task", 0},
            {"kind", "write"},
            {"machine", machine},
            {"iteration", iteration},
            {"name", "w"},
            {"source", QJsonValue()},
            {"destination", "/s/x"},
            {"plannedBytes", 4 * mib},
            {"doneBytes", 4 * mib},
            {"good", true},
            {"startMs", startMs},
            {"endMs", startMs + runtimeMs},
            {"runtimeMs", runtimeMs},
            {"bytesPerSecond", 4.0 * mib * 1000 / double(runtimeMs)},
            {"ioBytesPerSecond", 8.0 * mib * 1000 / double(runtimeMs)},
            {"p50Ns", 1000 * (iteration + 1)},
            {"p99Ns", 2000 * (iteration + 1)},
            {"maxNs", 3000 * (iteration + 1)}};
}

QJsonObject withoutFigures(QJsonObject object)
{
    for (const char* key : {"doneBytes", "startMs", "endMs", "runtimeMs", "bytesPerSecond",
                            "ioBytesPerSecond", "p50Ns", "p99Ns", "maxNs"})
        object.insert(key, QJsonValue());
    object.insert("good", false);
    return object;
}

QJsonObject results(const QJsonArray& jobs)
{
    return {{"version", 1},
            {"state", "complete"},
            {"series", "/s/a.dpc"},
            {"machines", QJsonArray{QJsonObject{{"name", "pc01"}}, QJsonObject{{"name", "pc02"}}}},
            {"stages", QJsonArray{QJsonObject{{"configFile", "/s/a.dpc"}, {"state", "complete"}}}},
            {"jobs", jobs}};
}

} // namespace

class TestRunSummary : public QObject
{
    Q_OBJECT

private slots:
    void iterationsGiveLeastMedianAndLargest()
    {
        const RunSummary summary = summed(
            {job("pc01", 0, 1000, 1000), job("pc01", 1, 2000, 2000), job("pc01", 2, 4000, 4000)});
        QCOMPARE(summary.tasks.size(), size_t(1));
        const TaskSummary& task = summary.tasks.front();
        QCOMPARE(task.iterations, 3);
        QCOMPARE(*task.bytes, 12 * mib);
        QCOMPARE(*task.seconds, 7.0);
        QCOMPARE(task.rate->min, double(mib));
        QCOMPARE(task.rate->median, 2.0 * mib);
        QCOMPARE(task.rate->max, 4.0 * mib);
        QCOMPARE(task.ioRate->median, 4.0 * mib);
        QCOMPARE(*task.p50Ns, 2000.0);
        QCOMPARE(*task.maxNs, qint64(9000));
        QVERIFY(!task.isShort);
    }

    void anEvenNumberOfIterationsHasTheMiddleOfTwo()
    {
        QCOMPARE(spreadOf({1, 10, 4, 2})->median, 3.0);
        QVERIFY(!spreadOf({}));
    }

    void aStageLastsFromTheFirstStartToTheLastEnd()
    {
        const RunSummary summary = summed(
            {job("pc01", 0, 1000, 1000), job("pc02", 0, 1050, 1950), job("pc02", 1, 3000, 2000)});
        const StageSummary& stage = summary.stages.front();
        QCOMPARE(*stage.seconds, 4.0);
        QCOMPARE(*stage.rate, 3.0 * mib);
        QCOMPARE(*stage.skewMs, qint64(50));
        QCOMPARE(stage.jobs, 3);
    }

    void absentFiguresStayAbsent()
    {
        const RunSummary summary = summed({withoutFigures(job("pc01", 0, 0, 1))});
        const TaskSummary& task = summary.tasks.front();
        QVERIFY(!task.bytes && !task.seconds && !task.rate && !task.ioRate && !task.p50Ns);
        QVERIFY(!task.maxNs && !task.isShort);
        QCOMPARE(task.good, 0);
        const StageSummary& stage = summary.stages.front();
        QVERIFY(!stage.bytes && !stage.seconds && !stage.rate && !stage.skewMs);
    }

    void aStageHasARateIfItsBytesAndItsTimeAreKnown_data()
    {
        QTest::addColumn<QString>("unknown");
        QTest::addColumn<qint64>("runtimeMs");
        QTest::addColumn<bool>("hasTime");
        QTest::addColumn<bool>("hasRate");
        QTest::newRow("all is known") << QString() << qint64(1) << true << true;
        QTest::newRow("no time passed") << QString() << qint64(0) << false << false;
        QTest::newRow("an end is unknown") << "endMs" << qint64(1000) << false << false;
        QTest::newRow("a start is unknown") << "startMs" << qint64(1000) << false << false;
        QTest::newRow("bytes are unknown") << "doneBytes" << qint64(1000) << true << false;
    }

    void aStageHasARateIfItsBytesAndItsTimeAreKnown()
    {
        QFETCH(const QString, unknown);
        QFETCH(const qint64, runtimeMs);
        QFETCH(const bool, hasTime);
        QFETCH(const bool, hasRate);
        QJsonObject only = job("pc01", 0, 1000, runtimeMs);
        if (!unknown.isEmpty())
            only.insert(unknown, QJsonValue());
        const StageSummary stage = summed({only}).stages.front();
        QCOMPARE(stage.seconds.has_value(), hasTime);
        QCOMPARE(stage.rate.has_value(), hasRate);
    }

    void anIterationUnderASecondMarksItsTask()
    {
        QVERIFY(summed({job("pc01", 0, 0, 999)}).tasks.front().isShort);
        QVERIFY(!summed({job("pc01", 0, 0, 1000)}).tasks.front().isShort);
    }

    void machinesAreTasksOfTheirOwn()
    {
        const RunSummary summary = summed({job("pc01", 0, 0, 1), job("pc02", 0, 0, 1)});
        QCOMPARE(summary.tasks.size(), size_t(2));
        QCOMPARE(summary.tasks.back().first.machine, QString("pc02"));
    }

    void aDifferenceWithinTheSpreadIsNotSlower()
    {
        const RunSummary base =
            summed({job("pc01", 0, 0, 1000), job("pc01", 1, 0, 2000), job("pc01", 2, 0, 1500)});
        const RunSummary slower = summed({job("pc01", 0, 0, 1900)});
        const TaskComparison pair = compare(base, slower).front();
        QVERIFY(*pair.ratio < 0.9 && !pair.isBeyondSpread && !pair.isSlower(0.1));
        const TaskComparison clear = compare(summed({job("pc01", 0, 0, 1000)}), slower).front();
        QVERIFY(clear.isBeyondSpread && clear.isSlower(0.1) && !clear.isSlower(0.5));
    }

    void aTaskThatTheOtherRunLacksHasNoRatio()
    {
        const TaskComparison pair =
            compare(summed({job("pc01", 0, 0, 1)}), summed({job("pc02", 0, 0, 1)})).front();
        QVERIFY(!pair.other && !pair.ratio && !pair.isSlower(0));
    }

    void aRateThatIsUnknownOrNothingHasNoRatio()
    {
        QJsonObject unknown = job("pc01", 0, 0, 1000);
        unknown.insert("ioBytesPerSecond", QJsonValue());
        QJsonObject nothing = job("pc01", 0, 0, 1000);
        nothing.insert("ioBytesPerSecond", 0);
        const RunSummary known = summed({job("pc01", 0, 0, 1000)});
        QVERIFY(!compare(known, summed({unknown})).front().ratio);
        QVERIFY(!compare(summed({unknown}), known).front().ratio);
        QVERIFY(!compare(summed({nothing}), known).front().ratio);
        QCOMPARE(*compare(known, summed({nothing})).front().ratio, 0.0);
    }

    void aFolderWithoutARunIsAProblem()
    {
        const QTemporaryDir folder;
        std::string problem;
        QVERIFY(!readRun(folder.path(), problem));
        QVERIFY(problem.find("does not hold a run") != std::string::npos);
        test::put(folder.filePath("results.json"), R"({"version": 2})");
        QVERIFY(!readRun(folder.path(), problem));
        QVERIFY(problem.find("another version") != std::string::npos);
        QJsonObject wrong = results({job("pc01", 0, 0, 1)});
        wrong.insert("stages", QJsonArray());
        test::put(folder.filePath("results.json"), QJsonDocument(wrong).toJson());
        QVERIFY(!readRun(folder.path(), problem));
    }

    void aRunThatWasKilledSaysSo()
    {
        const QTemporaryDir folder;
        test::put(folder.filePath("state.json"),
                  R"({"version": 1, "state": "running", "stage": 1})");
        std::string problem;
        const auto run = readRun(folder.path(), problem);
        QVERIFY(run.has_value());
        QCOMPARE(run->state, QString("killed"));
        QCOMPARE(run->reasons, QStringList("killed in stage 1"));
    }

    void aRunThatWasRefusedSaysWhy()
    {
        const QTemporaryDir folder;
        test::put(folder.filePath("state.json"),
                  R"({"version": 1, "state": "refused", "stage": null, "reasons": ["no disk"]})");
        std::string problem;
        const auto run = readRun(folder.path(), problem);
        QVERIFY(run.has_value());
        QCOMPARE(run->state, QString("refused"));
        QCOMPARE(run->reasons, QStringList("no disk"));
    }

private:
    static RunSummary summed(const QJsonArray& jobs)
    {
        const QTemporaryDir folder;
        test::put(folder.filePath("results.json"), QJsonDocument(results(jobs)).toJson());
        std::string problem;
        const auto run = readRun(folder.path(), problem);
        return run ? summaryOf(*run) : RunSummary();
    }
};

QTEST_APPLESS_MAIN(TestRunSummary)
#include "tst_runsummary.moc"
