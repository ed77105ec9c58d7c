#include "tests/dpc/runrecordingtest.h"

#include <QDir>

#include <algorithm>
#include <unistd.h>

using test::SeriesRun;

/// All that runs tell which are refused, stop or fall short, and the files that they leave.
class TestDpcRunTroubles : public RunRecordingTest
{
    Q_OBJECT

private slots:
    void tellsWhatFioDidNotDo_data();
    void tellsWhatFioDidNotDo();
    void namesNoMoreJobsThanAnyoneReads();
    void goesOnIfAsked();
    void tellsEachNoOfAMachine_data();
    void tellsEachNoOfAMachine();
    void tellsTheNosOfMachinesBehindServers();
    void tellsOfAMachineThatDoesNotAnswer();
    void tellsWrongUse_data();
    void tellsWrongUse();
    void tellsOfRulesThatCannotBeUsed();
    void tellsWhyASeriesDoesNotRun_data();
    void tellsWhyASeriesDoesNotRun();
    void tellsOfAPlaceThatIsTaken();
    void tellsOfATroubledFio_data();
    void tellsOfATroubledFio();
    void tellsTheSizesThatSourcesHave();
    void namesTheFilesThatItMayHaveMade_data();
    void namesTheFilesThatItMayHaveMade();
};

namespace {

constexpr int kib = 1024;

} // namespace

void TestDpcRunTroubles::tellsWhatFioDidNotDo_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QByteArray>("errors");
    const QByteArray good =
        "{\n\"fio version\" : \"fio-3.33\",\n\"jobs\" : [\n"
        "{ \"jobname\" : \"s0-l1-i0\", \"error\" : 0, \"job_start\" : 1700000000000, "
        "\"read\" : { \"io_bytes\" : 131072, \"total_ios\" : 2, \"runtime\" : 5 }, "
        "\"write\" : { \"io_bytes\" : 131072, \"total_ios\" : 2, \"runtime\" : 7 } },\n"
        "{ \"jobname\" : \"s0-l2-i0\", \"error\" : 0, "
        "\"read\" : { \"io_bytes\" : 131072, \"total_ios\" : 2, \"runtime\" : 0 }, "
        "\"write\" : { \"io_bytes\" : 0, \"total_ios\" : 0, \"runtime\" : 5 } }\n]\n}\n";
    const auto changed = [&](const char* from, const char* to) {
        const int at = good.indexOf(from);
        QByteArray text = good;
        return text.replace(at, int(qstrlen(from)), to);
    };
    QTest::newRow("nothing") << QByteArray("\n") << QByteArray();
    QTest::newRow("nothing, and a complaint")
        << QByteArray("\n") << QByteArray("\n \nfio: out of \x1B[1mmemory\nfio: again\n");
    QTest::newRow("all good, and a complaint") << good << QByteArray("fio: a warning\n");
    QTest::newRow("a disk that is full")
        << changed("\"error\" : 0", "\"error\" : 28") << QByteArray("fio: pid=3, err=28\n");
    QTest::newRow("less is written") << changed("131072, \"total_ios\" : 2, \"runtime\" : 7",
                                                "65536, \"total_ios\" : 1, \"runtime\" : 7")
                                     << QByteArray();
    QTest::newRow("less is read of a copy") << changed("131072, \"total_ios\" : 2, \"runtime\" : 5",
                                                       "65536, \"total_ios\" : 1, \"runtime\" : 5")
                                            << QByteArray();
    QTest::newRow("less is read") << changed("131072, \"total_ios\" : 2, \"runtime\" : 0",
                                             "65536, \"total_ios\" : 1, \"runtime\" : 0")
                                  << QByteArray();
    QTest::newRow("did not begin") << changed("131072, \"total_ios\" : 2, \"runtime\" : 0",
                                              "0, \"total_ios\" : 0, \"runtime\" : 0")
                                   << QByteArray();
    QTest::newRow("a job twice") << changed("s0-l2-i0", "s0-l1-i0") << QByteArray();
}

void TestDpcRunTroubles::tellsWhatFioDidNotDo()
{
    QFETCH(QByteArray, output);
    QFETCH(QByteArray, errors);
    test::put(m_series->file("source.dat"), test::textOf(128 * kib));
    m_series->putSeries({{SeriesRun::line("[cfgPath]/source.dat", "[cfgPath]/copy.dat", 128),
                          SeriesRun::line("[cfgPath]/source.dat", "", 128)}});
    test::put(m_series->file("output"), output);
    qputenv("STANDIN_OUTPUT", m_series->file("output").toUtf8());
    qputenv("STANDIN_ERRORS", errors);
    run({}, QByteArray(QTest::currentDataTag()).startsWith("all good") ? 0 : 1);
}

void TestDpcRunTroubles::namesNoMoreJobsThanAnyoneReads()
{
    test::put(m_series->file("output"), "{}\n");
    qputenv("STANDIN_OUTPUT", m_series->file("output").toUtf8());
    for (const int jobs : {20, 21}) {
        m_series->putSeries({{SeriesRun::line("", "[cfgPath]/[iter].dat", 4, 4, 0, jobs)}});
        command({"run", "--to", m_series->file(QStringLiteral("run%1").arg(jobs)),
                 m_series->file("mytest.dpc")},
                1);
    }
}

void TestDpcRunTroubles::goesOnIfAsked()
{
    putWork("pc");
    qputenv("STANDIN_NOW", "exit 1");
    run({}, 1);
    QVERIFY(QDir(m_series->file("run")).removeRecursively());
    run({"--keep-going"}, 1);
    QVERIFY(QDir(m_series->file("run")).removeRecursively());
    // Only the second stage.
    qputenv("STANDIN_NOW",
            ("! test -e '" + m_series->file("run/output/stage-1.txt") + "'").toUtf8());
    run({"--keep-going"}, 1);
    command({"report", m_series->file("run")}, 0);
}

void TestDpcRunTroubles::tellsEachNoOfAMachine_data()
{
    QTest::addColumn<QByteArray>("no");
    for (const char* no : {"a.dat", "b.dat", "source.dat", "copied.dat", "awk", "drop_caches",
                           "again.dat", "made.dat"})
        QTest::newRow(no) << QByteArray(no);
}

void TestDpcRunTroubles::tellsEachNoOfAMachine()
{
    QFETCH(QByteArray, no);
    test::put(m_series->file("source.dat"), test::textOf(128 * kib));
    test::put(m_series->file("copied.dat"), test::textOf(128 * kib));
    const auto cached = [](const QByteArray& line) {
        return QByteArray(line).replace("Posix;NOflush;NOprealloc;0;64;0;128;1;0",
                                        "Posix;NOflush;NOprealloc;0;64;0;128;1;3");
    };
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/again.dat", 128)}});
    command({"run", "--to", m_series->file("earlier"), m_series->file("mytest.dpc")}, 0);
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128),
                          SeriesRun::line("", "[cfgPath]/x/b.dat", 128),
                          cached(SeriesRun::line("[cfgPath]/source.dat", "", 128)),
                          SeriesRun::line("", "[cfgPath]/again.dat", 128),
                          SeriesRun::line("[cfgPath]/copied.dat", "[cfgPath]/made.dat", 128)}});
    const QStringList again = {"--overwrite", m_series->file("earlier"), "--allow-loss",
                               "fio-cache-mode"};
    qputenv("STANDIN_NO", no);
    run(again, 1);
    QVERIFY(QDir(m_series->file("run")).removeRecursively());
    qunsetenv("STANDIN_NO");
    qputenv("STANDIN_MUTE", no);
    run(again, 1);
    QVERIFY(QDir(m_series->file("run")).removeRecursively());
    qputenv("STANDIN_ERRORS", "client: host=x, disconnected\n");
    run(again, 1);
}

void TestDpcRunTroubles::tellsTheNosOfMachinesBehindServers()
{
    putWork("[host]", 7);
    const QStringList hosts = machines();
    qputenv("STANDIN_NO", "pc02_1.dat");
    run(hosts, 1);
    QVERIFY(QDir(m_series->file("run")).removeRecursively());
    // The folder for the logs of calls.
    qputenv("STANDIN_NO", "/scratch/dpc-");
    run(hosts, 1);
}

void TestDpcRunTroubles::tellsOfAMachineThatDoesNotAnswer()
{
    putWork("[host]", 7);
    const QStringList hosts = machines();
    ::close(m_sockets[1]);
    m_sockets.erase(m_sockets.begin() + 1);
    run(hosts, 1);
    QVERIFY(QDir(m_series->file("run")).removeRecursively());
    QVERIFY(QFile::remove(m_series->file("pc02")));
    run(hosts, 1);
    QVERIFY(QDir(m_series->file("run")).removeRecursively());
    test::put(m_series->file("hosts.txt"), "pc01=sock:/" + QByteArray(120, 'x') + '\n');
    run(hosts, 1);
    QVERIFY(QDir(m_series->file("run")).removeRecursively());
    // RFC 6761 keeps the name unknown.
    test::put(m_series->file("hosts.txt"), "pc01=ip:pc01.invalid,8765\n");
    run(hosts, 2);
}

void TestDpcRunTroubles::tellsWrongUse_data()
{
    QTest::addColumn<QString>("arguments");
    for (const char* arguments :
         {"--timeout 2147484", "--timeout -1", "--timeout x", "--stage x", "--date a/b",
          "--temp tmp", "--allow-loss fio-flash", "--allow-loss bad-line", "--hosts pc01,pc01",
          "--hosts-file none", "--hosts-file bad.txt", "--hosts-file twice.txt",
          "--hosts-file open.txt", "--hosts pc01 --hosts-file twice.txt", "--format csv"})
        QTest::newRow(arguments) << arguments;
}

void TestDpcRunTroubles::tellsWrongUse()
{
    QFETCH(QString, arguments);
    QVERIFY(QDir::setCurrent(m_series->folder()));
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/[host].dat", 128)}});
    test::put(m_series->file("bad.txt"), "pc01=ip:127.0.0.1\n");
    test::put(m_series->file("twice.txt"), "pc01=ip:127.0.0.1,1\npc02=ip:127.0.0.1,1\n");
    test::put(m_series->file("open.txt"), "pc01=ip:192.0.2.1,8765\n");
    run(arguments.split(' '), 2);
    QVERIFY(!QFile::exists(m_series->file("run")));
    QVERIFY(QDir::setCurrent("/"));
}

void TestDpcRunTroubles::tellsOfRulesThatCannotBeUsed()
{
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/[host].dat", 128)}});
    test::put(m_series->file("dpc.rules"), "bad-lime: not here\n");
    run({}, 2);
    QVERIFY(!QFile::exists(m_series->file("run")));
}

void TestDpcRunTroubles::tellsWhyASeriesDoesNotRun_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("status");
    const QByteArray plain = SeriesRun::line("", "[cfgPath]/a.dat", 128);
    QTest::newRow("a source that is missing")
        << SeriesRun::line("[cfgPath]/none.dat", "", 128) << 1;
    QTest::newRow("losses that are not allowed")
        << QByteArray(plain).replace("NOprealloc", "prealloc").replace("NOflush;", "flush;") << 1;
    QTest::newRow("a loss that nothing allows")
        << QByteArray(plain).replace("Posix", "System") << 1;
    QTest::newRow("a line that can't be read") << QByteArray("Posx;;;") << 1;
    QTest::newRow("nothing to do") << QByteArray("# nothing") << 1;
    QTest::newRow("a folder for temporary files that is not known")
        << SeriesRun::line("", "[temp]/[host].dat", 128) << 2;
}

void TestDpcRunTroubles::tellsWhyASeriesDoesNotRun()
{
    QFETCH(QByteArray, line);
    QFETCH(int, status);
    m_series->putSeries({{line}});
    QStringList arguments;
    if (status == 2)
        arguments = machines().mid(0, 2);
    run(arguments, status);
    QVERIFY(QDir(m_series->file("run")).removeRecursively() || status == 2);
    run(arguments + QStringList{"--dry-run"}, status);
}

void TestDpcRunTroubles::tellsOfAPlaceThatIsTaken()
{
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128)}});
    command({"run", m_series->file("mytest.dpc")}, 2);
    command({"run", "--to", m_series->file("no/run"), m_series->file("mytest.dpc")}, 2);
    const QByteArray bad = SeriesRun::line("[cfgPath]/none.dat", "", 128);
    run({}, 0);
    run({}, 2);
    const QByteArray state = m_series->content("run/state.json");
    const auto putState = [&](const char* from, const char* to) {
        test::put(m_series->file("run/state.json"), QByteArray(state).replace(from, to));
    };
    putState("complete", "running");
    run({}, 2);
    putState("complete", "ru\x1Bnning");
    run({}, 2);
    test::put(m_series->file("run/state.json"), "{\"state\": \"running\"}");
    run({}, 2);
    QVERIFY(QFile::remove(m_series->file("run/state.json")));
    run({}, 2);
    m_series->putSeries({{bad}});
    command({"run", "--to", m_series->file("no/run"), m_series->file("mytest.dpc")}, 2);
    command({"run", "--to", m_series->file("new"), m_series->file("none.dpc")}, 2);
}

void TestDpcRunTroubles::tellsOfATroubledFio_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<int>("status");
    // A shell that is just starting a program takes a signal only after that has ended.
    const QByteArray wait = "; while :; do sleep 0.05; done";
    const auto at = [](const char* file, const QByteArray& commands) {
        return QByteArray("case \"$*\" in *") + file + "*) " + commands + ";; esac\n";
    };
    QTest::newRow("not there") << QByteArray() << 2;
    QTest::newRow("may not be run") << QByteArray("0644") << 2;
    QTest::newRow("another version")
        << QByteArray("export STANDIN_VERSION=\"fio-4.0 \033[1m\"") << 2;
    QTest::newRow("no version") << at("--version", "exit 0") << 2;
    QTest::newRow("interrupted at its version") << at("--version", "kill -INT $PPID" + wait) << 2;
    QTest::newRow("gone before the questions") << at("--version", "rm \"$0\"") << 1;
    QTest::newRow("gone after the first stage") << at("stage-0", "rm \"$0\"") << 1;
    QTest::newRow("answers in two ways") << at("guard-0", "export STANDIN_NO=pc_1.dat") << 1;
    QTest::newRow("answers once") << at("guard-0", "export STANDIN_NO=pc_1.dat") +
                                         at("guard-1", "exit 1")
                                  << 1;
    QTest::newRow("interrupted at the questions") << at("guard-0", "kill -INT $PPID" + wait) << 1;
    QTest::newRow("interrupted at more questions")
        << at("guard-0", "export STANDIN_NO=pc_1.dat") + at("guard-1", "kill -INT $PPID" + wait)
        << 1;
    QTest::newRow("ended in a stage") << at("stage-1", "kill -TERM $PPID" + wait) << 1;
    QTest::newRow("its terminal goes") << at("stage-1", "kill -HUP $PPID" + wait) << 1;
    QTest::newRow("obeys no signal")
        << at("stage-1", "trap '' INT; while :; do kill -INT $PPID; sleep 0.1; done") << 1;
    QTest::newRow("killed in a stage") << at("stage-0", "kill -KILL $$") << 1;
    QTest::newRow("loses its output") << at("stage-0", "rm output/stage-0.*") << 1;
    QTest::newRow("loses its answers") << at("guard-0", "rm output/guard-0.*") << 1;
    QTest::newRow("too slow") << at("stage-0", ":" + wait) << 1;
}

void TestDpcRunTroubles::tellsOfATroubledFio()
{
    QFETCH(QByteArray, script);
    QFETCH(int, status);
    putWork("pc");
    if (script == "0644")
        QVERIFY(QFile::remove(m_tools.filePath("fio")) &&
                QFile::copy("/dev/null", m_tools.filePath("fio")));
    else if (script.isEmpty())
        QVERIFY(QFile::remove(m_tools.filePath("fio")));
    else
        putFio(script);
    const bool isSlow = script.contains("stage-0*) :");
    run(isSlow ? QStringList{"--timeout", "1"} : QStringList(), status);
}

/// Sources that change before the machine is asked, with more of them than it is asked about.
void TestDpcRunTroubles::tellsTheSizesThatSourcesHave()
{
    QByteArrayList lines;
    constexpr int count = 18;
    for (int i = 0; i < count; ++i) {
        const QByteArray name = "source" + QByteArray::number(i);
        test::put(m_series->file(name), test::textOf(4 * kib));
        lines += SeriesRun::line("[cfgPath]/" + name, i == 1 ? "[cfgPath]/copy" : "", 4, 4);
    }
    m_series->putSeries({lines});
    const QByteArray change =
        "cd '" + m_series->folder().toUtf8() + "'; rm source2; " +
        "truncate -s 0 source3; truncate -s 1234567890123 source4; " +
        "for i in 0 1 5 6 7 8 9 10 11 12 13 14 15 16 17; do truncate -s 77$i " +
        "source$i; done; cd \"$OLDPWD\"";
    putFio("case \"$*\" in *guard-0*) " + change + ";; esac");
    qputenv("STANDIN_ASK", "1");
    run({}, 1);
}

void TestDpcRunTroubles::namesTheFilesThatItMayHaveMade_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("isReported");
    QTest::addColumn<bool>("isStopped");
    for (const char* file : {"absent", "empty", "full", "a folder"}) {
        for (const bool isReported : {false, true}) {
            for (const bool isStopped : {false, true})
                QTest::addRow("%s, %s, %s", file, isReported ? "not begun" : "not reported",
                              isStopped ? "stopped" : "not stopped")
                    << QByteArray(file) << isReported << isStopped;
        }
    }
}

void TestDpcRunTroubles::namesTheFilesThatItMayHaveMade()
{
    QFETCH(QByteArray, file);
    QFETCH(bool, isReported);
    QFETCH(bool, isStopped);
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 4, 4)}});
    const QByteArray path = '\'' + m_series->file("a.dat").toUtf8() + '\'';
    QByteArray commands = file == "empty"      ? ": > " + path
                          : file == "full"     ? "echo x > " + path
                          : file == "a folder" ? "mkdir " + path
                                               : QByteArray(":");
    // An end that is seen together with the signal is not a stop.
    if (isStopped)
        commands +=
            "; trap told=1 INT; kill -INT $PPID; while [ -z \"$told\" ]; do sleep 0.05; done";
    putFio("case \"$*\" in *stage-0*) " + commands + ";; esac");
    const QByteArray section =
        "{ \"jobname\" : \"s0-l1-i0\", \"error\" : 0, "
        "\"read\" : { \"io_bytes\" : 0, \"total_ios\" : 0, \"runtime\" : 0 }, "
        "\"write\" : { \"io_bytes\" : 0, \"total_ios\" : 0, \"runtime\" : 0 } }";
    test::put(m_series->file("output"), "{\n\"fio version\" : \"fio-3.33\",\n\"jobs\" : [\n" +
                                            (isReported ? section : QByteArray()) + "\n]\n}\n");
    qputenv("STANDIN_OUTPUT", m_series->file("output").toUtf8());
    run({}, 1);
    // A job that is reported without a byte left the file as it was, unless it was stopped between
    // opening it and writing.
    const bool isFile = file == "empty" || file == "full";
    const bool mayBeMade = isReported ? isStopped && file == "empty" : isFile;
    QCOMPARE(m_series->content("run/manifest").isEmpty(), !mayBeMade);
}

QTEST_APPLESS_MAIN(TestDpcRunTroubles)
#include "tst_dpcruntroubles.moc"
