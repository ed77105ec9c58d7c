#include "dpc/commandline.h"
#include "tests/engine/seriesrun.h"
#include "tests/support/childprocess.h"
#include "tests/support/files.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTest>

#include <array>
#include <iostream>
#include <pty.h>
#include <sstream>
#include <unistd.h>

using test::SeriesRun;

// Runs on this machine, by the fio that is installed.

class TestRun : public QObject
{
    Q_OBJECT

private slots:
    void doesWhatTheTasksSay();
    void asksBeforeEachJobAgain();
    void writesAgainOnlyWhatAnEarlierRunMade();
    void overwritesNothingOfAnotherSeries();
    void repeatsOneStage();
    void runsAnExportAsItIs();
    void makesTheSourcesOfTheInitFileFirst();
    void drawsItsProgressOnATerminal();
};

namespace {

constexpr qint64 kib = 1024;

} // namespace

void TestRun::doesWhatTheTasksSay()
{
    const SeriesRun series;
    series.putSeries(
        {{SeriesRun::line("", "[cfgPath]/out/w_[iter].dat", 1000, 300, 1, 3)},
         {SeriesRun::line("[cfgPath]/out/w_[iter].dat", "", 1000, 64, 0, 3),
          SeriesRun::line("[cfgPath]/out/w_1.dat", "[cfgPath]/out/copy.dat", 1000, 300)}});
    const test::Printed printed = series.run({"--to", series.file("run")});
    QVERIFY2(printed.status == 0, printed.err.constData());
    QCOMPARE(series.state("run"), QStringLiteral("complete"));
    const QByteArray original = series.content("out/w_1.dat");
    QCOMPARE(original.size(), 1000 * kib);
    QCOMPARE(series.content("out/copy.dat"), original);

    const QJsonArray jobs = series.jobs("run");
    QCOMPARE(jobs.size(), 7);
    for (const QJsonValue& job : jobs) {
        QVERIFY(job["good"].toBool());
        QCOMPARE(job["doneBytes"].toInt(), 1000 * kib);
        QVERIFY(job["startMs"].toDouble() > 1e12);
        QVERIFY(job["p50Ns"].toDouble() <= job["p99Ns"].toDouble());
    }
    QVERIFY(printed.out.contains("1024000"));
    QVERIFY(printed.err.contains("4 files with 4096000 bytes (3.9 MiB) stay behind"));
    QCOMPARE(series.content("run/manifest").count('\n'), 4);
    QCOMPARE(series.content("run/results.csv").count("\r\n"), 8);
}

/// The machine is asked once for all, and the second file comes while the first is written.
void TestRun::asksBeforeEachJobAgain()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::slowWrite(), SeriesRun::line("", "[cfgPath]/late.dat", 128)}});
    const pid_t child = series.start({"--to", series.file("run")});
    test::waitUntil([&] { return QFile::exists(series.file("slow.dat")); });
    test::put(series.file("late.dat"), "canary");
    QCOMPARE(SeriesRun::statusOf(child), 1);
    QCOMPARE(series.content("late.dat"), QByteArray("canary"));
    QCOMPARE(series.state("run"), QStringLiteral("incomplete"));
    const QJsonArray jobs = series.jobs("run");
    QVERIFY(jobs[0].toObject()["good"].toBool());
    QVERIFY(!jobs[1].toObject()["good"].toBool());
    QVERIFY(jobs[1].toObject()["runtimeMs"].isNull());
    // It is not of this run, so no later run may overwrite it.
    QVERIFY(!series.content("run/manifest").contains("late.dat"));
    QVERIFY(series.content("run/manifest").contains("slow.dat"));
}

void TestRun::writesAgainOnlyWhatAnEarlierRunMade()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128),
                       SeriesRun::line("", "[cfgPath]/b.dat", 128)}});
    QCOMPARE(series.run({"--to", series.file("run1")}).status, 0);
    QCOMPARE(series.run({"--to", series.file("run2")}).status, 1);
    const QByteArray first = series.content("a.dat");
    const QStringList again = {"--overwrite", series.file("run1"), "--to"};
    QCOMPARE(series.run(again + QStringList(series.file("run3"))).status, 0);
    QCOMPARE(series.content("a.dat").size(), first.size());

    // The manifest names files, and neither links nor folders in their place.
    QVERIFY(QFile::remove(series.file("b.dat")));
    series.putKind("link", "b.dat");
    const test::Snapshot before = series.canaries();
    QCOMPARE(series.run(again + QStringList(series.file("run4"))).status, 1);
    QCOMPARE(series.canaries(), before);
    QVERIFY(QFile::remove(series.file("b.dat")));
    series.putKind("folder", "b.dat");
    QCOMPARE(series.run(again + QStringList(series.file("run5"))).status, 1);
    QVERIFY(QDir(series.file("b.dat/inside")).exists());

    // A refused run made nothing.
    const QStringList refused = {"--overwrite", series.file("run2"), "--to", series.file("run6")};
    QCOMPARE(series.run(refused).status, 2);
}

void TestRun::overwritesNothingOfAnotherSeries()
{
    const SeriesRun series;
    const SeriesRun other;
    for (const SeriesRun* each : {&series, &other}) {
        each->putSeries({{SeriesRun::line("", series.file("a.dat").toUtf8(), 128)}});
    }
    QCOMPARE(series.run({"--to", series.file("run")}).status, 0);
    const QByteArray first = series.content("a.dat");
    const test::Printed printed =
        other.run({"--overwrite", series.file("run"), "--to", other.file("run")});
    QCOMPARE(printed.status, 2);
    QVERIFY(printed.err.contains("--overwrite"));
    QCOMPARE(series.content("a.dat"), first);
}

void TestRun::repeatsOneStage()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128)},
                      {SeriesRun::line("[cfgPath]/a.dat", "", 128)}});
    // The file that another stage would make does not exist.
    QCOMPARE(series.run({"--stage", "1", "--to", series.file("run1")}).status, 1);
    QCOMPARE(series.run({"--stage", "0", "--to", series.file("run2")}).status, 0);
    QCOMPARE(series.run({"--stage", "1", "--to", series.file("run3")}).status, 0);
    QCOMPARE(series.jobs("run3").size(), 1);
    QCOMPARE(series.jobs("run3")[0].toObject()["kind"].toString(), QStringLiteral("read"));
    QCOMPARE(series.run({"--stage", "2", "--to", series.file("run4")}).status, 2);
    QVERIFY(!QFile::exists(series.file("run4")));
}

void TestRun::runsAnExportAsItIs()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128)}});
    std::ostringstream out;
    const std::string folder = series.file("export").toStdString();
    QCOMPARE(runDpc({"export", series.file("mytest.dpc").toStdString(), folder}, {out, out, false}),
             0);
    const std::string run = series.file("run").toStdString();
    QCOMPARE(runDpc({"run", folder, "--to", run}, {out, out, false}), 0);
    for (const char* name : {"stage-0.fio", "plan.json", "guards/guard-0.fio"})
        QCOMPARE(series.content(QStringLiteral("run/") + name),
                 series.content(QStringLiteral("export/") + name));
    QCOMPARE(series.content("a.dat").size(), 128 * kib);

    QFile jobs(series.file("export/stage-0.fio"));
    QVERIFY(jobs.open(QIODevice::Append));
    jobs.write("size=1g\n");
    jobs.close();
    const std::string changed = series.file("run2").toStdString();
    QCOMPARE(runDpc({"run", folder, "--to", changed}, {out, out, false}), 2);
    QCOMPARE(runDpc({"run", folder, "--date", "x", "--to", changed}, {out, out, false}), 2);
    QVERIFY(!QFile::exists(series.file("run2")));
}

void TestRun::makesTheSourcesOfTheInitFileFirst()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("[cfgPath]/source.dat", "", 1000, 300),
                       SeriesRun::line("[cfgPath]/there.dat", "", 128)}});
    test::put(series.file("there.dat"), test::textOf(128 * kib));
    test::put(series.file("mytest_init.dpc"),
              SeriesRun::line("", "[cfgPath]/source.dat", 1000) + '\n' + "# " +
                  SeriesRun::line("", "[cfgPath]/there.dat", 128) + '\n' +
                  SeriesRun::line("", "[cfgPath]/out/dummyFile", 0) + '\n');
    const test::Printed printed = series.run({"--to", series.file("run")});
    QVERIFY2(printed.status == 0, printed.err.constData());
    QVERIFY(printed.err.contains("[fio-folder]"));
    const QJsonArray jobs = series.jobs("run");
    QCOMPARE(jobs.size(), 3);
    QCOMPARE(jobs[0].toObject()["kind"].toString(), QStringLiteral("create"));
    QCOMPARE(jobs[0].toObject()["stage"].toInt(), 0);
    QCOMPARE(jobs[1].toObject()["stage"].toInt(), 1);
    QCOMPARE(series.content("source.dat").size(), 1000 * kib);
    QCOMPARE(series.content("there.dat"), test::textOf(128 * kib));
    QCOMPARE(series.content("run/manifest").count('\n'), 1);
}

void TestRun::drawsItsProgressOnATerminal()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::slowWrite()}});
    int terminal = 0;
    winsize size{};
    size.ws_col = 60;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) {
        ::alarm(test::childSeconds);
        test::endChild(runDpc({"run", series.file("mytest.dpc").toStdString(), "--to",
                               series.file("run").toStdString()},
                              {std::cout, std::cerr, false}));
    }
    QByteArray shown;
    std::array<char, 4096> bytes{};
    for (ssize_t got = 1; got > 0;) {
        got = ::read(terminal, bytes.data(), bytes.size());
        shown.append(bytes.data(), int(std::max<ssize_t>(got, 0)));
    }
    ::close(terminal);
    QCOMPARE(SeriesRun::statusOf(child), 0);
    const QByteArray begin = "\x1B[Kstage 0 (1 in all): ";
    int drawn = 0;
    for (const QByteArray& line : shown.split('\r')) {
        if (!line.startsWith(begin))
            continue;
        ++drawn;
        QVERIFY2(line.contains(" of 0.6 MiB, "), line.constData());
        QVERIFY(line.size() < 60 + 3);
        QVERIFY(!line.contains('\n'));
    }
    QVERIFY(drawn > 0);
    // The last one is wiped before what follows.
    QVERIFY(shown.contains("\r\x1B[Kstage 0: ") || shown.contains("\r\x1B[Kcomplete"));
}

int main(int count, char** arguments)
{
    test::needFio();
    TestRun tests;
    return QTest::qExec(&tests, count, arguments);
}
#include "tst_run.moc"
