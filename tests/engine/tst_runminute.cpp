#include "tests/engine/fioserver.h"
#include "tests/engine/seriesrun.h"
#include "tests/support/files.h"
#include "tests/support/ownmounts.h"

#include <QJsonArray>
#include <QTest>

#include <memory>

using test::SeriesRun;

/// A common start. It waits for the clock, so it stands apart from the other tests.
class TestRunMinute : public QObject
{
    Q_OBJECT

private slots:
    void allMachinesBeginAtTheMinute();
};

void TestRunMinute::allMachinesBeginAtTheMinute()
{
    const SeriesRun series;
    std::vector<std::unique_ptr<test::FioServer>> servers;
    QByteArray hosts;
    for (const char* number : {"1", "2"}) {
        const QByteArray address = QByteArray("ip:127.0.0.1") + number + ",8765";
        servers.push_back(std::make_unique<test::FioServer>(address, series.folder()));
        hosts += QByteArray("pc0") + number + '=' + address + '\n';
    }
    test::put(series.file("hosts.txt"), hosts);
    // Each flush and each short chunk needs a log, which is written before the minute.
    series.putSeries({{SeriesRun::line("", "[cfgPath]/[host].dat", 1000, 300, 1)}});
    const test::Printed printed =
        series.run({"--start-at-minute", "--hosts-file", series.file("hosts.txt"), "--temp",
                    series.folder(), "--to", series.file("run")});
    QVERIFY2(printed.status == 0, printed.err.constData());
    constexpr qint64 msPerMinute = 60000;
    const QJsonArray jobs = series.jobs("run");
    QCOMPARE(jobs.size(), 2);
    const QJsonArray stages = series.json("run", "results.json")["stages"].toArray();
    const qint64 stageBegan = qint64(stages[0].toObject()["startedMs"].toDouble());
    const qint64 minute = (stageBegan / msPerMinute + 1) * msPerMinute;
    for (const QJsonValue& job : jobs) {
        // The start is what the end and fio's runtime make it, to about a chunk: it would lie
        // before the minute if the runtime held the wait.
        constexpr qint64 chunkMs = 5;
        QVERIFY(qint64(job["startMs"].toDouble()) >= minute - chunkMs);
    }
}

int main(int count, char** arguments)
{
    test::needFio();
    test::allowMounts();
    test::useOwnNetwork();
    TestRunMinute tests;
    return QTest::qExec(&tests, count, arguments);
}
#include "tst_runminute.moc"
