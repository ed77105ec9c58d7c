#include "tests/engine/seriesrun.h"
#include "tests/support/files.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QTest>

#include <array>
#include <csignal>
#include <unistd.h>

using test::SeriesRun;

// The ways in which a run ends before it is complete.

class TestRunEnds : public QObject
{
    Q_OBJECT

private slots:
    void endsAtAStageThatFailed();
    void keepsGoingIfAsked();
    void endsInOrder_data();
    void endsInOrder();
    void endsInOrderAtTheTimeout();
    void leavesNothingRunningIfItIsKilled();
};

namespace {

constexpr qint64 kib = 1024;

} // namespace

void TestRunEnds::endsAtAStageThatFailed()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::slowWrite(), SeriesRun::line("", "[cfgPath]/late.dat", 128)},
                      {SeriesRun::line("", "[cfgPath]/next.dat", 128)}});
    const pid_t child = series.start({"--to", series.file("run")});
    test::waitUntil([&] { return QFile::exists(series.file("slow.dat")); });
    test::put(series.file("late.dat"), "canary");
    QCOMPARE(SeriesRun::statusOf(child), 1);
    QCOMPARE(series.state("run"), QStringLiteral("failed"));
    QCOMPARE(series.json("run", "state.json")["stage"].toInt(), 0);
    QVERIFY(!QFile::exists(series.file("next.dat")));
    const QJsonArray stages = series.json("run", "results.json")["stages"].toArray();
    QCOMPARE(stages[0].toObject()["state"].toString(), QStringLiteral("incomplete"));
    QCOMPARE(stages[1].toObject()["state"].toString(), QStringLiteral("notRun"));
    QVERIFY(!series.content("run/manifest").contains("next.dat"));
}

void TestRunEnds::keepsGoingIfAsked()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::slowWrite(), SeriesRun::line("", "[cfgPath]/late.dat", 128)},
                      {SeriesRun::line("", "[cfgPath]/next.dat", 128)}});
    const pid_t child = series.start({"--keep-going", "--to", series.file("run")});
    test::waitUntil([&] { return QFile::exists(series.file("slow.dat")); });
    test::put(series.file("late.dat"), "canary");
    QCOMPARE(SeriesRun::statusOf(child), 1);
    QCOMPARE(series.state("run"), QStringLiteral("incomplete"));
    QCOMPARE(series.content("next.dat").size(), 128 * kib);
    QCOMPARE(series.content("late.dat"), QByteArray("canary"));
}

void TestRunEnds::endsInOrder_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
}

void TestRunEnds::endsInOrder()
{
    QFETCH(int, signal);
    const SeriesRun series;
    series.putSeries({{SeriesRun::slowWrite(), SeriesRun::line("", "[cfgPath]/never.dat", 128)},
                      {SeriesRun::line("", "[cfgPath]/next.dat", 128)}});
    test::put(series.file("canary"), "canary");
    const pid_t child = series.start({"--to", series.file("run")});
    test::waitUntil([&] { return QFileInfo(series.file("slow.dat")).size() >= 96 * kib; });
    QCOMPARE(::kill(child, signal), 0);
    QCOMPARE(SeriesRun::statusOf(child), 1);
    QCOMPARE(series.state("run"), QStringLiteral("interrupted"));
    const QJsonArray jobs = series.jobs("run");
    QCOMPARE(jobs.size(), 3);
    const qint64 done = qint64(jobs[0].toObject()["doneBytes"].toDouble());
    QCOMPARE(done, QFileInfo(series.file("slow.dat")).size());
    QVERIFY(done >= 96 * kib && done < 640 * kib);
    QVERIFY(!QFile::exists(series.file("next.dat")));
    QCOMPARE(series.content("run/manifest").count('\n'), 1);
    QCOMPARE(series.content("canary"), QByteArray("canary"));
}

void TestRunEnds::endsInOrderAtTheTimeout()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::slowWrite()}});
    const test::Printed printed = series.run({"--timeout", "1", "--to", series.file("run")});
    QCOMPARE(printed.status, 1);
    QCOMPARE(series.state("run"), QStringLiteral("interrupted"));
    QVERIFY(series.reasons("run").first().contains("timeout"));
}

void TestRunEnds::leavesNothingRunningIfItIsKilled()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::slowWrite()}});
    // fio and its jobs hold the pipe open for as long as they live.
    std::array<int, 2> pipe{};
    QCOMPARE(::pipe(pipe.data()), 0);
    const pid_t child = series.start({"--to", series.file("run")});
    ::close(pipe[1]);
    test::waitUntil([&] { return QFileInfo(series.file("slow.dat")).size() > 0; });
    QCOMPARE(::kill(child, SIGKILL), 0);
    QCOMPARE(SeriesRun::statusOf(child), -1);
    char byte = 0;
    QCOMPARE(::read(pipe[0], &byte, 1), ssize_t(0));
    ::close(pipe[0]);
    QVERIFY(QFileInfo(series.file("slow.dat")).size() < 640 * kib);
    QCOMPARE(series.state("run"), QStringLiteral("running"));
    QVERIFY(series.content("run/manifest").contains("slow.dat"));

    const test::Printed printed = series.run({"--to", series.file("run")});
    QCOMPARE(printed.status, 2);
    QVERIFY2(printed.err.contains("killed in stage 0"), printed.err.constData());
    QVERIFY(!QFile::exists(series.file("run/results.json")));
}

int main(int count, char** arguments)
{
    test::needFio();
    TestRunEnds tests;
    return QTest::qExec(&tests, count, arguments);
}
#include "tst_runends.moc"
