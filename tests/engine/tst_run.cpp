#include "dpc/commandline.h"
#include "tests/engine/seriesrun.h"
#include "tests/support/childprocess.h"
#include "tests/support/files.h"

#include <QDir>
#include <QtTest>

#include <array>
#include <csignal>
#include <iostream>
#include <pty.h>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

using test::SeriesRun;

// Runs on this machine, by the fio that is installed.

class TestRun : public QObject
{
    Q_OBJECT

private slots:
    void doesWhatTheTasksSay();
    void leavesADestinationAsItIs_data();
    void leavesADestinationAsItIs();
    void leavesASourceAsItIs_data();
    void leavesASourceAsItIs();
    void tellsAllReasonsTogether();
    void asksBeforeEachJobAgain();
    void writesAgainOnlyWhatAnEarlierRunMade();
    void overwritesNothingOfAnotherSeries();
    void repeatsOneStage();
    void endsAtAStageThatFailed();
    void keepsGoingIfAsked();
    void endsInOrder_data();
    void endsInOrder();
    void endsInOrderAtTheTimeout();
    void leavesNothingRunningIfItIsKilled();
    void makesNoFolderThatIsThere();
    void aDryRunLeavesNothing();
    void runsAnExportAsItIs();
    void refusesWhatTheCheckRefuses();
    void rulesThatAreTurnedOffDoNotRefuse();
    void warningsDoNotRefuse();
    void refusesALossThatIsNotAllowed();
    void makesTheSourcesOfTheInitFileFirst();
    void drawsItsProgressOnATerminal();
};

namespace {

constexpr qint64 kib = 1024;

QByteArray contentOf(const SeriesRun& series, const QString& name)
{
    return test::contentOf(series.file(name));
}

/// Puts something of a kind in the place of a file.
void putKind(const SeriesRun& series, const QString& kind, const QString& name)
{
    const QString path = series.file(name);
    const QByteArray bytes = path.toUtf8();
    QDir().mkpath(path.left(path.lastIndexOf('/')));
    if (kind == "smaller")
        test::put(path, "canary");
    else if (kind == "larger")
        test::put(path, test::textOf(300 * kib));
    else if (kind == "same size")
        test::put(path, test::textOf(128 * kib));
    else if (kind == "empty")
        test::put(path, "");
    else if (kind == "read-only")
        test::put(path, "canary", 0400);
    else if (kind == "folder")
        QDir().mkpath(path + "/inside");
    else if (kind == "FIFO")
        QCOMPARE(::mkfifo(bytes.constData(), 0600), 0);
    else if (kind == "link") {
        test::put(series.file("target"), "canary");
        QCOMPARE(::symlink(series.file("target").toUtf8().constData(), bytes.constData()), 0);
    } else if (kind == "dangling link")
        QCOMPARE(::symlink(series.file("nowhere").toUtf8().constData(), bytes.constData()), 0);
    else
        QFAIL("unknown kind");
}

/// All files, except for the runs themselves.
test::Snapshot canaries(const SeriesRun& series)
{
    test::Snapshot all = test::snapshotOf(series.folder());
    for (const QString& name : all.keys()) {
        if (name.startsWith("run") || name == "out" || name == "err")
            all.remove(name);
    }
    return all;
}

QStringList reasonsOf(const SeriesRun& series, const QString& run)
{
    QStringList reasons;
    for (const QJsonValue reason : series.json(run, "state.json").value("reasons").toArray())
        reasons += reason.toString();
    return reasons;
}

/// A write that takes long enough to be interrupted: twenty chunks, 200 ms apart.
QByteArray slowWrite()
{
    return SeriesRun::line("", "[cfgPath]/slow.dat", 640, 32, 200);
}

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
    const QByteArray original = contentOf(series, "out/w_1.dat");
    QCOMPARE(original.size(), 1000 * kib);
    QCOMPARE(contentOf(series, "out/copy.dat"), original);

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
    QCOMPARE(contentOf(series, "run/manifest").count('\n'), 4);
    QCOMPARE(contentOf(series, "run/results.csv").count("\r\n"), 8);
}

void TestRun::leavesADestinationAsItIs_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : {"smaller", "larger", "same size", "empty", "read-only", "folder",
                             "FIFO", "link", "dangling link"})
        QTest::newRow(kind) << kind;
}

void TestRun::leavesADestinationAsItIs()
{
    QFETCH(QString, kind);
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("", "[cfgPath]/new.dat", 128),
                       SeriesRun::line("", "[cfgPath]/taken.dat", 128)}});
    putKind(series, kind, "taken.dat");
    const test::Snapshot before = canaries(series);
    const test::Printed printed = series.run({"--to", series.file("run")});
    QCOMPARE(printed.status, 1);
    QVERIFY(printed.err.contains("taken.dat"));
    QCOMPARE(canaries(series), before);
    QCOMPARE(series.state("run"), QStringLiteral("refused"));
    QVERIFY(!QFile::exists(series.file("new.dat")));
}

void TestRun::leavesASourceAsItIs_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : {"empty", "folder", "FIFO", "dangling link"})
        QTest::newRow(kind) << kind;
}

void TestRun::leavesASourceAsItIs()
{
    QFETCH(QString, kind);
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("", "[cfgPath]/new.dat", 128),
                       SeriesRun::line("[cfgPath]/source.dat", "", 128)}});
    putKind(series, kind, "source.dat");
    const test::Snapshot before = canaries(series);
    const test::Printed printed = series.run({"--to", series.file("run")});
    QCOMPARE(printed.status, 1);
    QCOMPARE(canaries(series), before);
    QCOMPARE(series.state("run"), QStringLiteral("refused"));
}

void TestRun::tellsAllReasonsTogether()
{
    const SeriesRun series;
    constexpr int count = 80;
    series.putSeries({{SeriesRun::line("", "[cfgPath]/taken[iter]", 64, 64, 0, count)}});
    for (int i = 0; i < count; i += 2)
        test::put(series.file("taken" + QString::number(i)), "canary");
    const test::Snapshot before = canaries(series);
    QCOMPARE(series.run({"--to", series.file("run")}).status, 1);
    QCOMPARE(canaries(series), before);
    const QStringList reasons = reasonsOf(series, "run");
    QCOMPARE(reasons.size(), count / 2);
    for (int i = 0; i < count; ++i) {
        const QStringList told = reasons.filter(QStringLiteral("taken%1' is there").arg(i));
        QCOMPARE(told.size(), i % 2 == 0 ? 1 : 0);
        if (!told.isEmpty())
            QVERIFY(told.first().contains("mytest.dpc:1: "));
    }
}

/// The machine is asked once for all, and the second file comes while the first is written.
void TestRun::asksBeforeEachJobAgain()
{
    const SeriesRun series;
    series.putSeries({{slowWrite(), SeriesRun::line("", "[cfgPath]/late.dat", 128)}});
    const pid_t child = series.start({"--to", series.file("run")});
    test::waitUntil([&] { return QFile::exists(series.file("slow.dat")); });
    test::put(series.file("late.dat"), "canary");
    QCOMPARE(SeriesRun::statusOf(child), 1);
    QCOMPARE(contentOf(series, "late.dat"), QByteArray("canary"));
    QCOMPARE(series.state("run"), QStringLiteral("incomplete"));
    const QJsonArray jobs = series.jobs("run");
    QVERIFY(jobs[0].toObject()["good"].toBool());
    QVERIFY(!jobs[1].toObject()["good"].toBool());
    QVERIFY(jobs[1].toObject()["runtimeMs"].isNull());
    // It is not of this run, so no later run may overwrite it.
    QVERIFY(!contentOf(series, "run/manifest").contains("late.dat"));
    QVERIFY(contentOf(series, "run/manifest").contains("slow.dat"));
}

void TestRun::writesAgainOnlyWhatAnEarlierRunMade()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128),
                       SeriesRun::line("", "[cfgPath]/b.dat", 128)}});
    QCOMPARE(series.run({"--to", series.file("run1")}).status, 0);
    QCOMPARE(series.run({"--to", series.file("run2")}).status, 1);
    const QByteArray first = contentOf(series, "a.dat");
    const QStringList again = {"--overwrite", series.file("run1"), "--to"};
    QCOMPARE(series.run(again + QStringList(series.file("run3"))).status, 0);
    QCOMPARE(contentOf(series, "a.dat").size(), first.size());

    // The manifest names files, and neither links nor folders in their place.
    QVERIFY(QFile::remove(series.file("b.dat")));
    putKind(series, "link", "b.dat");
    const test::Snapshot before = canaries(series);
    QCOMPARE(series.run(again + QStringList(series.file("run4"))).status, 1);
    QCOMPARE(canaries(series), before);
    QVERIFY(QFile::remove(series.file("b.dat")));
    putKind(series, "folder", "b.dat");
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
    const QByteArray first = contentOf(series, "a.dat");
    const test::Printed printed =
        other.run({"--overwrite", series.file("run"), "--to", other.file("run")});
    QCOMPARE(printed.status, 2);
    QVERIFY(printed.err.contains("--overwrite"));
    QCOMPARE(contentOf(series, "a.dat"), first);
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

void TestRun::endsAtAStageThatFailed()
{
    const SeriesRun series;
    series.putSeries({{slowWrite(), SeriesRun::line("", "[cfgPath]/late.dat", 128)},
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
    QVERIFY(!contentOf(series, "run/manifest").contains("next.dat"));
}

void TestRun::keepsGoingIfAsked()
{
    const SeriesRun series;
    series.putSeries({{slowWrite(), SeriesRun::line("", "[cfgPath]/late.dat", 128)},
                      {SeriesRun::line("", "[cfgPath]/next.dat", 128)}});
    const pid_t child = series.start({"--keep-going", "--to", series.file("run")});
    test::waitUntil([&] { return QFile::exists(series.file("slow.dat")); });
    test::put(series.file("late.dat"), "canary");
    QCOMPARE(SeriesRun::statusOf(child), 1);
    QCOMPARE(series.state("run"), QStringLiteral("incomplete"));
    QCOMPARE(contentOf(series, "next.dat").size(), 128 * kib);
    QCOMPARE(contentOf(series, "late.dat"), QByteArray("canary"));
}

void TestRun::endsInOrder_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
}

void TestRun::endsInOrder()
{
    QFETCH(int, signal);
    const SeriesRun series;
    series.putSeries({{slowWrite(), SeriesRun::line("", "[cfgPath]/never.dat", 128)},
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
    QCOMPARE(contentOf(series, "run/manifest").count('\n'), 1);
    QCOMPARE(contentOf(series, "canary"), QByteArray("canary"));
}

void TestRun::endsInOrderAtTheTimeout()
{
    const SeriesRun series;
    series.putSeries({{slowWrite()}});
    const test::Printed printed = series.run({"--timeout", "1", "--to", series.file("run")});
    QCOMPARE(printed.status, 1);
    QCOMPARE(series.state("run"), QStringLiteral("interrupted"));
    QVERIFY(reasonsOf(series, "run").first().contains("timeout"));
}

void TestRun::leavesNothingRunningIfItIsKilled()
{
    const SeriesRun series;
    series.putSeries({{slowWrite()}});
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
    QVERIFY(contentOf(series, "run/manifest").contains("slow.dat"));

    const test::Printed printed = series.run({"--to", series.file("run")});
    QCOMPARE(printed.status, 2);
    QVERIFY2(printed.err.contains("killed in stage 0"), printed.err.constData());
    QVERIFY(!QFile::exists(series.file("run/results.json")));
}

void TestRun::makesNoFolderThatIsThere()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128)}});
    for (const char* kind : {"folder", "smaller", "dangling link"}) {
        const QString name = QStringLiteral("place of ") + kind;
        putKind(series, kind, name);
        const test::Snapshot before = canaries(series);
        const test::Printed printed = series.run({"--to", series.file(name)});
        QCOMPARE(printed.status, 2);
        QVERIFY(printed.err.contains("is there already"));
        QVERIFY(printed.err.contains("name a folder that does not exist yet"));
        QCOMPARE(canaries(series), before);
    }
}

void TestRun::aDryRunLeavesNothing()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128)}});
    const test::Snapshot before = test::snapshotOf(series.folder());
    QCOMPARE(series.run({"--dry-run"}).status, 0);
    QCOMPARE(series.run({"--dry-run", "--to", series.file("run")}).status, 0);
    QCOMPARE(test::snapshotOf(series.folder()), before);
    test::put(series.file("a.dat"), "canary");
    const test::Printed printed = series.run({"--dry-run"});
    QCOMPARE(printed.status, 1);
    QVERIFY(printed.err.contains("is there already"));
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
        QCOMPARE(contentOf(series, QStringLiteral("run/") + name),
                 contentOf(series, QStringLiteral("export/") + name));
    QCOMPARE(contentOf(series, "a.dat").size(), 128 * kib);

    QFile jobs(series.file("export/stage-0.fio"));
    QVERIFY(jobs.open(QIODevice::Append));
    jobs.write("size=1g\n");
    jobs.close();
    const std::string changed = series.file("run2").toStdString();
    QCOMPARE(runDpc({"run", folder, "--to", changed}, {out, out, false}), 2);
    QCOMPARE(runDpc({"run", folder, "--date", "x", "--to", changed}, {out, out, false}), 2);
    QVERIFY(!QFile::exists(series.file("run2")));
}

void TestRun::refusesWhatTheCheckRefuses()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("[cfgPath]/none.dat", "", 128),
                       SeriesRun::line("", "[cfgPath]/a.dat", 128)}});
    const test::Printed printed = series.run({"--to", series.file("run")});
    QCOMPARE(printed.status, 1);
    QVERIFY(printed.err.contains("[source-missing]"));
    QCOMPARE(series.state("run"), QStringLiteral("refused"));
    QCOMPARE(reasonsOf(series, "run").filter("source-missing").size(), 1);
    QVERIFY(!QFile::exists(series.file("a.dat")));
}

void TestRun::rulesThatAreTurnedOffDoNotRefuse()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("[cfgPath]/none.dat", "", 128)}});
    test::put(series.file("dpc.rules"), "source-missing: made on the servers\n");
    const test::Printed off = series.run({"--dry-run"});
    QVERIFY2(!off.err.contains("[source-missing]"), off.err);
    test::put(series.file("dpc.rules"), "source-missing:\n");
    const test::Printed wrong = series.run({"--dry-run"});
    QCOMPARE(wrong.status, 2);
    QVERIFY2(wrong.err.contains("the reason is missing"), wrong.err);
}

/// A comment that is cut is a warning of a rule for errors.
void TestRun::warningsDoNotRefuse()
{
    const SeriesRun series;
    series.putSeries({{"# " + QByteArray(1100, 'x'), SeriesRun::line("", "[cfgPath]/a.dat", 128)}});
    const test::Printed printed = series.run({"--dry-run"});
    QVERIFY2(printed.status == 0 && !printed.err.contains("[long-line]"), printed.err);
}

void TestRun::refusesALossThatIsNotAllowed()
{
    const SeriesRun series;
    QByteArray line = SeriesRun::line("", "[cfgPath]/a.dat", 128);
    series.putSeries({{line.replace("NOprealloc", "prealloc")}});
    const test::Printed printed = series.run({"--to", series.file("run1")});
    QCOMPARE(printed.status, 1);
    QVERIFY2(printed.err.contains("--allow-loss fio-preallocate"), printed.err.constData());
    QVERIFY(!QFile::exists(series.file("a.dat")));
    QCOMPARE(series.run({"--allow-loss", "fio-preallocate", "--to", series.file("run2")}).status,
             0);
    QCOMPARE(series.run({"--allow-loss", "fio-none", "--to", series.file("run3")}).status, 2);
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
    QCOMPARE(contentOf(series, "source.dat").size(), 1000 * kib);
    QCOMPARE(contentOf(series, "there.dat"), test::textOf(128 * kib));
    QCOMPARE(contentOf(series, "run/manifest").count('\n'), 1);
}

void TestRun::drawsItsProgressOnATerminal()
{
    const SeriesRun series;
    series.putSeries({{slowWrite()}});
    int terminal = 0;
    winsize size{};
    size.ws_col = 60;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) {
        ::alarm(test::childSeconds);
        ::_exit(runDpc({"run", series.file("mytest.dpc").toStdString(), "--to",
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
