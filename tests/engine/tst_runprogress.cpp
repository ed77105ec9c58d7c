#include "engine/exporter.h"
#include "engine/planner.h"
#include "engine/runner.h"
#include "tests/engine/seriesrun.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using test::SeriesRun;

// Runs as a program that shows their progress starts them. A program stands in for fio, and moves
// as much as a test says.

class TestRunProgress : public QObject
{
    Q_OBJECT

private slots:
    void tellsHowFarEachStageIs();
    void fioIdlesForEachSection();
    void asksNothingIfItIsStoppedBefore();
};

namespace {

constexpr qint64 mib = 1024LL * 1024;

/// Plans a series, and exports it into the folder of its run.
Plan planInto(RunFolder& folder, const SeriesRun& series)
{
    const SeriesFacts facts =
        readSeries(seriesNameForLoading(series.file("mytest.dpc")), QString());
    Plan plan = planSeries(facts, {}).plan;
    std::string problem;
    if (!folder.create(series.file("run"), problem) ||
        !fillExport(folder.path(), plan, {}, problem))
        qFatal("can't export the plan: %s", problem.c_str());
    return plan;
}

RunOptions withStandIn()
{
    RunOptions options;
    options.program = QStringLiteral(TWDP_STANDIN);
    return options;
}

/// Runs a series, in each stage of which 16 MiB are read and written, and tells the progress of
/// each as it is then.
std::vector<RunProgress> progressOf(const SeriesRun& series)
{
    const QByteArray gate = QFile::encodeName(series.file("gate"));
    if (::mkfifo(gate.constData(), S_IRUSR | S_IWUSR) != 0)
        qFatal("can't make a FIFO");
    qputenv("STANDIN_NOW", "head -c 16777216 /dev/zero > '" +
                               QFile::encodeName(series.file("sink")) + "'; read line < '" + gate +
                               '\'');
    RunFolder folder;
    const Plan plan = planInto(folder, series);
    std::vector<RunProgress> seen;
    int number = -1;
    RunOptions options = withStandIn();
    options.onProgress = [&](const RunProgress& progress) {
        // The shell opens the FIFO when it has moved its bytes, so the next progress knows them.
        if (number < 0) {
            number = ::open(gate.constData(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
            return;
        }
        seen.push_back(progress);
        if (::write(number, "\n", 1) != 1)
            qFatal("nobody reads the FIFO");
        ::close(number);
        number = -1;
    };
    Runner(plan, folder, options).run(QStringLiteral("fio-3.33"));
    return seen;
}

} // namespace

void TestRunProgress::tellsHowFarEachStageIs()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 65536, 4096, 3)},
                      {SeriesRun::line("[cfgPath]/a.dat", "[cfgPath]/b.dat", 65536, 8192)},
                      {SeriesRun::line("", "[cfgPath]/c.dat", 8192, 8192),
                       SeriesRun::line("", "[cfgPath]/d.dat", 8192, 8192)}});
    QElapsedTimer time;
    time.start();
    const std::vector<RunProgress> seen = progressOf(series);
    const qint64 all = time.elapsed();
    QCOMPARE(seen.size(), size_t(3));
    for (size_t stage = 0; stage < seen.size(); ++stage) {
        QCOMPARE(seen[stage].stage, stage);
        QVERIFY(seen[stage].elapsedMs > 0);
        QVERIFY(seen[stage].elapsedMs <= all);
        QVERIFY(seen[stage].doneBytes.has_value());
    }
    // A shell and what it starts read a little for themselves, and write counters of coverage.
    constexpr qint64 little = 8 * mib;
    QCOMPARE(seen[0].plannedBytes, 64 * mib);
    QVERIFY(*seen[0].doneBytes >= 32 * mib);
    QVERIFY(*seen[0].doneBytes < 32 * mib + little);
    QCOMPARE(seen[0].leastMs, qint64(16 * 3 + 300 + 300));
    // A copy is done once it is read and written.
    QCOMPARE(seen[1].plannedBytes, 64 * mib);
    QVERIFY(*seen[1].doneBytes >= 16 * mib);
    QVERIFY(*seen[1].doneBytes < 16 * mib + little);
    QCOMPARE(seen[1].leastMs, qint64(300 + 300));
    // Nothing is more than done.
    QCOMPARE(seen[2].plannedBytes, 16 * mib);
    QCOMPARE(*seen[2].doneBytes, 16 * mib);
    QCOMPARE(seen[2].leastMs, qint64(2 * 300 + 300));
}

void TestRunProgress::fioIdlesForEachSection()
{
    PlanJobFile file;
    file.sections = 7;
    QCOMPARE(fioIdleMs(file, true), qint64(7 * 300 + 300));
    QCOMPARE(fioIdleMs(file, false), qint64(7 * 300 + 1400));
}

void TestRunProgress::asksNothingIfItIsStoppedBefore()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128)}});
    RunFolder folder;
    const Plan plan = planInto(folder, series);
    const RunOptions options = withStandIn();
    Runner runner(plan, folder, options);
    ::raise(SIGTERM);
    const RunResults results = runner.run(QStringLiteral("fio-3.33"));
    QCOMPARE(results.status.state, RunState::Interrupted);
    QCOMPARE(series.state("run"), QStringLiteral("interrupted"));
    QVERIFY(series.json("run", "results.json")["endedMs"].isDouble());
    QVERIFY(QDir(series.file("run/output")).isEmpty());
}

QTEST_APPLESS_MAIN(TestRunProgress)
#include "tst_runprogress.moc"
