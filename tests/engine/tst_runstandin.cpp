#include "tests/engine/seriesrun.h"
#include "tests/support/files.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <random>
#include <sys/resource.h>
#include <vector>

using test::SeriesRun;

// A program stands in for fio, so that every answer can be given, at once and on any machine.

class TestRunStandIn : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void believesNoStatus();
    void tellsThatFioIsMissing();
    void takesOnlyVersionsThatWereTried();
    void givesFioTheExportedFiles();
    void isNeverGoodAboutBrokenOutput_data();
    void isNeverGoodAboutBrokenOutput();
    void survivesAnyOutput();
    void keepsWhatFioPrinted();
    void tellsThatItRunsBeforeItAsks();
    void tellsWhenItRan();
    void costsLittle();

private:
    QTemporaryDir m_tools;
    QByteArray m_path;
};

namespace {

constexpr int kib = 1024;

/// A good report of the two jobs of twoJobs().
QByteArray goodReport()
{
    QByteArray report = "{\n\"fio version\" : \"fio-3.33\",\n\"jobs\" : [\n";
    for (int line = 1; line <= 2; ++line) {
        report += "{ \"jobname\" : \"s0-l" + QByteArray::number(line) +
                  "-i0\", \"error\" : 0, \"read\" : { \"io_bytes\" : 0, \"total_ios\" : 0 }, "
                  "\"write\" : { \"io_bytes\" : 131072, \"total_ios\" : 2, \"runtime\" : 5 } }";
        report += line == 1 ? ",\n" : "\n]\n}\n";
    }
    return report;
}

void putTwoJobs(const SeriesRun& series)
{
    series.putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128),
                       SeriesRun::line("", "[cfgPath]/b.dat", 128)}});
}

} // namespace

void TestRunStandIn::initTestCase()
{
    QVERIFY(QFile::link(TWDP_STANDIN, m_tools.filePath("fio")));
    m_path = qgetenv("PATH");
}

void TestRunStandIn::init()
{
    qputenv("PATH", m_tools.path().toUtf8() + ':' + m_path);
    for (const char* name : {"STANDIN_VERSION", "STANDIN_KEEP", "STANDIN_OUTPUT", "STANDIN_STATUS"})
        qunsetenv(name);
}

void TestRunStandIn::believesNoStatus()
{
    const SeriesRun series;
    putTwoJobs(series);
    qputenv("STANDIN_STATUS", "1");
    QCOMPARE(series.run({"--to", series.file("run1")}).status, 0);
    QCOMPARE(series.state("run1"), QStringLiteral("complete"));

    const QByteArray onlyOne = goodReport().replace("s0-l2-i0", "s0-l3-i0");
    test::put(series.file("output"), onlyOne);
    qputenv("STANDIN_OUTPUT", series.file("output").toUtf8());
    qputenv("STANDIN_STATUS", "0");
    QCOMPARE(series.run({"--to", series.file("run2")}).status, 1);
    QCOMPARE(series.state("run2"), QStringLiteral("incomplete"));
}

void TestRunStandIn::tellsThatFioIsMissing()
{
    const SeriesRun series;
    putTwoJobs(series);
    const QTemporaryDir nothing;
    qputenv("PATH", nothing.path().toUtf8());
    const test::Printed printed = series.run({"--to", series.file("run")});
    QCOMPARE(printed.status, 2);
    QVERIFY2(printed.err.contains("fio can't be run"), printed.err.constData());
    QVERIFY(!QFile::exists(series.file("run")));
}

void TestRunStandIn::takesOnlyVersionsThatWereTried()
{
    const SeriesRun series;
    putTwoJobs(series);
    for (const char* version : {"fio-3.3", "fio-3.330", "fio-4.0", "3.33", "", "fio-3.33 x"}) {
        qputenv("STANDIN_VERSION", version);
        QCOMPARE(series.run({"--to", series.file("run")}).status, 2);
        QVERIFY(!QFile::exists(series.file("run")));
    }
    qputenv("STANDIN_VERSION", "fio-3.39");
    QCOMPARE(series.run({"--to", series.file("run")}).status, 0);
}

void TestRunStandIn::givesFioTheExportedFiles()
{
    const SeriesRun series;
    putTwoJobs(series);
    QDir().mkpath(series.file("given"));
    qputenv("STANDIN_KEEP", series.file("given").toUtf8());
    QCOMPARE(series.run({"--to", series.file("run")}).status, 0);
    for (const char* name : {"stage-0.fio", "guard-0.fio"}) {
        const QByteArray given = test::contentOf(series.file(QStringLiteral("given/") + name));
        const QString exported = QString(name).startsWith("guard") ? "run/guards/" : "run/";
        QVERIFY(!given.isEmpty());
        QCOMPARE(given, test::contentOf(series.file(exported + name)));
    }
}

void TestRunStandIn::isNeverGoodAboutBrokenOutput_data()
{
    QTest::addColumn<QByteArray>("output");
    const QByteArray good = goodReport();
    QTest::newRow("nothing") << QByteArray("\n");
    QTest::newRow("a message") << QByteArray("fio: pid=3, err=5\n");
    QTest::newRow("breaks off") << good.left(good.indexOf("s0-l2") + 100);
    QTest::newRow("less bytes") << QByteArray(good).replace("131072", "131071");
    QTest::newRow("more bytes") << QByteArray(good).replace("131072", "131073");
    QTest::newRow("an error") << QByteArray(good).replace("\"error\" : 0", "\"error\" : 28");
    QTest::newRow("another job") << QByteArray(good).replace("s0-l2-i0", "s0-l2-i1");
    QTest::newRow("a job twice") << QByteArray(good).replace("s0-l2-i0", "s0-l1-i0");
    QTest::newRow("read, not written")
        << QByteArray(good).replace("\"read\"", "\"x\"").replace("\"write\"", "\"read\"");
    QTest::newRow("a machine") << QByteArray(good).replace(
        "\"error\"", "\"hostname\" : \"pc01\", \"port\" : 1, \"error\"");
}

void TestRunStandIn::isNeverGoodAboutBrokenOutput()
{
    QFETCH(QByteArray, output);
    const SeriesRun series;
    putTwoJobs(series);
    test::put(series.file("output"), output);
    qputenv("STANDIN_OUTPUT", series.file("output").toUtf8());
    QCOMPARE(series.run({"--to", series.file("run")}).status, 1);
    QCOMPARE(series.state("run"), QStringLiteral("incomplete"));
    QCOMPARE(series.jobs("run").size(), 2);

    test::put(series.file("output"), goodReport());
    QCOMPARE(series.run({"--to", series.file("run2")}).status, 0);
}

/// Bytes of a good report are replaced, dropped and doubled, by a fixed seed.
void TestRunStandIn::survivesAnyOutput()
{
    const SeriesRun series;
    putTwoJobs(series);
    qputenv("STANDIN_OUTPUT", series.file("output").toUtf8());
    std::mt19937 random(14);
    const auto below = [&](int end) { return int(random() % unsigned(end)); };
    for (int round = 0; round < 200; ++round) {
        QByteArray output = goodReport();
        for (int change = below(6); change >= 0; --change) {
            const int at = below(output.size());
            switch (below(3)) {
            case 0:
                output[at] = char(below(256));
                break;
            case 1:
                output.remove(at, below(40));
                break;
            default:
                output.insert(at, output.mid(below(output.size()), below(40)));
            }
        }
        test::put(series.file("output"), output);
        const QString run = QStringLiteral("run%1").arg(round);
        const int status = series.run({"--to", series.file(run)}).status;
        int good = 0;
        for (const QJsonValue job : series.jobs(run)) {
            good += job["good"].toBool() ? 1 : 0;
            QVERIFY(!job["good"].toBool() ||
                    (job["doneBytes"].toInt() == 128 * kib && job["error"].toInt(1) == 0));
        }
        QCOMPARE(status, good == 2 ? 0 : 1);
        QCOMPARE(series.state(run), QString(good == 2 ? "complete" : "incomplete"));
    }
}

void TestRunStandIn::keepsWhatFioPrinted()
{
    const SeriesRun series;
    putTwoJobs(series);
    const QByteArray output = "text \xFC before\n" + goodReport();
    test::put(series.file("output"), output);
    qputenv("STANDIN_OUTPUT", series.file("output").toUtf8());
    QCOMPARE(series.run({"--to", series.file("run")}).status, 0);
    QCOMPARE(test::contentOf(series.file("run/output/stage-0.txt")), output);
}

void TestRunStandIn::tellsThatItRunsBeforeItAsks()
{
    const SeriesRun series;
    putTwoJobs(series);
    // Programs of fio work in the folder of the run.
    const QTemporaryDir tools;
    const QString program = tools.filePath("fio");
    test::put(program, "#!/bin/sh\ncase \"$*\" in *guard-0*) cp state.json ../asked.json;; esac\n"
                       "exec " TWDP_STANDIN " \"$@\"\n");
    QVERIFY(QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner));
    qputenv("PATH", tools.path().toUtf8() + ':' + m_path);
    QCOMPARE(series.run({"--to", series.file("run")}).status, 0);
    const QJsonObject asked = series.json(".", "asked.json");
    QCOMPARE(asked["state"].toString(), QStringLiteral("running"));
    QVERIFY(asked["stage"].isNull());
    QCOMPARE(asked["startedMs"], series.json("run", "state.json")["startedMs"]);
}

void TestRunStandIn::tellsWhenItRan()
{
    const SeriesRun series;
    putTwoJobs(series);
    const auto now = [] { return double(QDateTime::currentMSecsSinceEpoch()); };
    const double before = now();
    QCOMPARE(series.run({"--to", series.file("run")}).status, 0);
    const QJsonObject results = series.json("run", "results.json");
    const QJsonObject stage = results["stages"].toArray()[0].toObject();
    const std::vector<double> moments = {before,
                                         results["startedMs"].toDouble(),
                                         stage["startedMs"].toDouble(),
                                         stage["endedMs"].toDouble(),
                                         results["endedMs"].toDouble(),
                                         now()};
    QVERIFY(std::is_sorted(moments.begin(), moments.end()));
    QCOMPARE(series.json("run", "state.json")["endedMs"], results["endedMs"]);
}

/// Processor time of dpc itself for few jobs and for many: the difference is what a job costs.
void TestRunStandIn::costsLittle()
{
    const auto secondsOf = [](int iterations) {
        const SeriesRun series;
        series.putSeries({{SeriesRun::line("", "[cfgPath]/[iter].dat", 64, 64, 0, iterations)}});
        rusage before{};
        rusage after{};
        ::getrusage(RUSAGE_SELF, &before);
        const int status = series.run({"--to", series.file("run")}).status;
        ::getrusage(RUSAGE_SELF, &after);
        if (status != 0)
            qFatal("the run failed");
        const auto seconds = [](const timeval& time) {
            return double(time.tv_sec) + double(time.tv_usec) / 1e6;
        };
        return seconds(after.ru_utime) - seconds(before.ru_utime) + seconds(after.ru_stime) -
               seconds(before.ru_stime);
    };
    constexpr int jobs = 2000;
    secondsOf(1);
    const double one = secondsOf(1);
    const double many = secondsOf(jobs);
    qInfo("processor time: %.1f ms for one job, %.3f ms for each of %d", one * 1e3,
          many * 1e3 / jobs, jobs);
#ifdef __SANITIZE_ADDRESS__
    constexpr double factor = 10; // what the checks of the sanitizers cost at most
#else
    constexpr double factor = 1;
#endif
    QVERIFY(one <= factor * 0.050);
    QVERIFY(many <= factor * (0.050 + jobs * 0.001));
}

QTEST_APPLESS_MAIN(TestRunStandIn)
#include "tst_runstandin.moc"
