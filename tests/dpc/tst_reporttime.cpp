#include "dpc/report/reporttime.h"
#include "tests/support/files.h"

#include <QTemporaryDir>
#include <QTest>

/// Bandwidth over time, from the logs that fio writes.
class TestReportTime : public QObject
{
    Q_OBJECT

private slots:
    void aLineTellsOfTheTimeBeforeIt();
    void whatIsNotASampleIsLeftOut();
    void logsLeadNowhereElse();
    void longRunsHaveLongerSteps();
    void manyMachinesAreOne();
    void stagesBeginWithTheirFirstJob();
    void withoutLogsThereIsNothing();

private:
    static constexpr qint64 start = 1700000000000;

    /// A run of machines that each have a job with the log "NUMBER.log".
    RecordedRun runOf(int machines, const QByteArray& log);
    static QVector<double> values(const TimeLine& line, size_t series)
    {
        const std::vector<double>& all = line.series.at(series).values;
        return {all.begin(), all.end()};
    }
    /// A line of a log: ms after the start, KiB/s.
    static QByteArray sample(qint64 ms, int rate)
    {
        return QByteArray::number(start + ms) + ", " + QByteArray::number(rate) + ", 0, 65536, 0\n";
    }

    QTemporaryDir m_folder;
};

RecordedRun TestReportTime::runOf(int machines, const QByteArray& log)
{
    RecordedRun run;
    run.folder = m_folder.path();
    run.stages.resize(1);
    for (int i = 0; i < machines; ++i) {
        RecordedJob job;
        job.machine = QStringLiteral("pc%1").arg(i);
        job.startMs = start;
        job.bandwidthLogs = QStringList{QStringLiteral("%1.log").arg(i)};
        test::put(m_folder.filePath(job.bandwidthLogs.front()), log);
        run.machines += job.machine;
        run.jobs.push_back(job);
    }
    return run;
}

void TestReportTime::aLineTellsOfTheTimeBeforeIt()
{
    // 1 MiB/s for 0.1 s, two samples in one step, and a step without any.
    const TimeLine line = timeLineOf(
        runOf(1, sample(0, 1024) + sample(150, 2048) + sample(199, 2048) + sample(400, 512)));
    QVERIFY(!line.isEmpty());
    QCOMPARE(line.step, 0.1);
    QCOMPARE(line.series.size(), size_t(1));
    QCOMPARE(line.series[0].label, QStringLiteral("pc0"));
    QCOMPARE(values(line, 0), QVector<double>({1, 4, 0, 0, 0.5}));
    QVERIFY(line.stages.empty());
}

void TestReportTime::whatIsNotASampleIsLeftOut()
{
    const QByteArray good = sample(0, 1024);
    const TimeLine line = timeLineOf(runOf(1, "\n5\nx, 1024, 0\n" + QByteArray::number(start) +
                                                  ", x, 0\n" + sample(-1, 1024) + good));
    QCOMPARE(values(line, 0), QVector<double>({1}));
}

void TestReportTime::logsLeadNowhereElse()
{
    RecordedRun run = runOf(1, sample(0, 1024));
    const QString log = run.jobs[0].bandwidthLogs.front();
    for (const QString& name :
         {m_folder.filePath(log), "x/../" + log, QString("none.log"), QString(".")}) {
        run.jobs[0].bandwidthLogs = QStringList{name};
        QVERIFY2(timeLineOf(run).isEmpty(), qPrintable(name));
    }
    run.jobs[0].bandwidthLogs = QStringList{log};
    QVERIFY(!timeLineOf(run).isEmpty());
    run.jobs[0].machine = "unknown";
    QVERIFY(timeLineOf(run).isEmpty());
}

void TestReportTime::longRunsHaveLongerSteps()
{
    QCOMPARE(timeLineOf(runOf(1, sample(60000, 1024))).step, 0.1);
    const TimeLine line = timeLineOf(runOf(1, sample(60001, 1024)));
    QCOMPARE(line.step, 0.2);
    QCOMPARE(line.series[0].values.size(), size_t(301));
    QCOMPARE(line.series[0].values.back(), 0.5);
}

void TestReportTime::manyMachinesAreOne()
{
    TimeLine line = timeLineOf(runOf(8, sample(0, 1024)));
    QCOMPARE(line.series.size(), size_t(8));
    for (size_t i = 0; i < line.series.size(); ++i) {
        QCOMPARE(line.series[i].label, QStringLiteral("pc%1").arg(i));
        QCOMPARE(values(line, i), QVector<double>({1}));
    }
    line = timeLineOf(runOf(9, sample(0, 1024)));
    QCOMPARE(line.series.size(), size_t(1));
    QCOMPARE(line.series[0].label, QStringLiteral("all machines"));
    QCOMPARE(values(line, 0), QVector<double>({9}));
}

void TestReportTime::stagesBeginWithTheirFirstJob()
{
    RecordedRun run = runOf(3, sample(0, 1024));
    run.stages.resize(4);
    run.jobs[0].startMs = start;
    run.jobs[1].stage = run.jobs[2].stage = 2;
    run.jobs[1].startMs = start + 3000;
    run.jobs[2].startMs = start + 2500;
    const TimeLine line = timeLineOf(run);
    QCOMPARE(line.stages.size(), size_t(1));
    QCOMPARE(line.stages[0].label, QStringLiteral("stage 2"));
    QCOMPARE(line.stages[0].second, 2.5);
}

void TestReportTime::withoutLogsThereIsNothing()
{
    RecordedRun run = runOf(1, {});
    QVERIFY(timeLineOf(run).isEmpty());
    run = runOf(1, sample(0, 1024));
    run.jobs[0].startMs.reset();
    QVERIFY(timeLineOf(run).isEmpty());
    QVERIFY(timeLineOf({}).isEmpty());
}

QTEST_APPLESS_MAIN(TestReportTime)
#include "tst_reporttime.moc"
