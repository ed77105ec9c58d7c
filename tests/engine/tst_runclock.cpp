#include "tests/engine/seriesrun.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <ctime>
#include <memory>
#include <sys/time.h>

using test::SeriesRun;

// Common starts at moments of the minute that the test chooses. A program stands in for fio.

namespace {

constexpr qint64 msPerMinute = 60000;

qint64 aheadMs = 0; // NOLINT(cppcoreguidelines-avoid-non-const-global-variables): read by C

qint64 realMs()
{
    timespec time{};
    ::clock_gettime(CLOCK_REALTIME, &time);
    return qint64(time.tv_sec) * 1000 + time.tv_nsec / 1000000;
}

} // namespace

/// Takes the place of the system's own, which the toolkit asks for the time of day.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): that has reserved names
extern "C" int gettimeofday(timeval* time, void* /*zone*/) noexcept
{
    const qint64 ms = realMs() + aheadMs;
    time->tv_sec = ms / 1000;
    time->tv_usec = ms % 1000 * 1000;
    return 0;
}

class TestRunClock : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void beginsAtOnceEarlyInAMinute_data();
    void beginsAtOnceEarlyInAMinute();
    void waitsForTheNextMinuteLateInOne();
    void canBeStoppedWhileItWaits();

private:
    /// Makes it a moment of a minute, in ms.
    static void setMoment(qint64 ms)
    {
        const qint64 passed = realMs() % msPerMinute;
        aheadMs = (ms - passed + msPerMinute) % msPerMinute;
    }
    QStringList arguments() const { return {"--start-at-minute", "--to", m_series->file("run")}; }
    /// The moment of its minute at which the stage began.
    qint64 stageBegan() const
    {
        const QJsonArray stages = m_series->json("run", "results.json")["stages"].toArray();
        return qint64(stages[0].toObject()["startedMs"].toDouble()) % msPerMinute;
    }

    QTemporaryDir m_tools;
    std::unique_ptr<SeriesRun> m_series;
};

void TestRunClock::initTestCase()
{
    QVERIFY(QFile::link(TWDP_STANDIN, m_tools.filePath("fio")));
    qputenv("PATH", m_tools.path().toUtf8() + ':' + qgetenv("PATH"));
}

void TestRunClock::init()
{
    m_series = std::make_unique<SeriesRun>();
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128)}});
}

void TestRunClock::beginsAtOnceEarlyInAMinute_data()
{
    QTest::addColumn<int>("moment");
    QTest::newRow("first second") << 0;
    // A busy machine has time to come to the stage before it is late.
    QTest::newRow("a third of it") << 20000;
}

void TestRunClock::beginsAtOnceEarlyInAMinute()
{
    QFETCH(int, moment);
    setMoment(moment);
    QCOMPARE(m_series->run(arguments()).status, 0);
    QVERIFY(stageBegan() >= moment);
    QVERIFY(stageBegan() < 40000);
}

void TestRunClock::waitsForTheNextMinuteLateInOne()
{
    setMoment(58500);
    QCOMPARE(m_series->run(arguments()).status, 0);
    QVERIFY2(stageBegan() < 40000, qPrintable(QString::number(stageBegan())));
}

void TestRunClock::canBeStoppedWhileItWaits()
{
    setMoment(40500);
    const pid_t child = m_series->start(arguments());
    test::waitUntil([&] { return m_series->content("run/output/guard-0.txt").endsWith("}\n"); });
    ::kill(child, SIGTERM);
    QCOMPARE(SeriesRun::statusOf(child), 1);
    QCOMPARE(m_series->state("run"), QStringLiteral("interrupted"));
    QVERIFY(!QFile::exists(m_series->file("run/output/stage-0.txt")));
}

QTEST_APPLESS_MAIN(TestRunClock)
#include "tst_runclock.moc"
