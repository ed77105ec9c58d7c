#include "dpc/commandline.h"
#include "dpc/runtext.h"
#include "tests/engine/seriesrun.h"
#include "tests/support/childprocess.h"
#include "tests/support/files.h"
#include "tests/support/recording.h"

#include <QDir>
#include <QtTest>

#include <csignal>
#include <fstream>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using test::SeriesRun;

// All that "dpc run" and "dpc report" tell, and the files that a run leaves, compared with a
// recording. A program stands in for fio, so that each figure is the same every time.

class TestDpcRun : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void tellsOfAGoodRun();
    void tellsOfTheWorkOfEachKind();
    void tellsOfThreeMachines();
    void tellsOfADryRun();
    void tellsOfAnExport();
    void tellsOfAStageAlone();
    void tellsWhatMayBeOverwritten();
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
    void tellsWhyASeriesDoesNotRun_data();
    void tellsWhyASeriesDoesNotRun();
    void tellsOfAPlaceThatIsTaken();
    void tellsOfATroubledFio_data();
    void tellsOfATroubledFio();
    void tellsTheSizesThatSourcesHave();
    void tellsHowFarItIs();
    void reportsEachKindOfRun_data();
    void reportsEachKindOfRun();

private:
    void run(const QStringList& arguments, int status) const;
    void command(const QStringList& words, int status) const;
    QString comparable(QString text) const;
    QString folderText(const QString& folder, const QString& pattern) const;
    QStringList machines(int count = 3);
    void putFio(const QByteArray& script) const;
    void putWork(const QByteArray& host, int wait = 0) const;

    QTemporaryDir m_tools;
    std::unique_ptr<SeriesRun> m_series;
    std::vector<int> m_sockets;

public slots:
    void cleanup();
};

namespace {

constexpr int kib = 1024;

} // namespace

void TestDpcRun::initTestCase()
{
    // No fio but the one that stands in for it can be run.
    for (const char* tool : {"sh", "awk", "df", "dirname", "mkdir", "rm", "sed", "seq", "sleep",
                             "stat", "tail", "truncate"})
        QVERIFY(QFile::link(QStandardPaths::findExecutable(tool), m_tools.filePath(tool)));
    qputenv("PATH", m_tools.path().toUtf8());
}

void TestDpcRun::init()
{
    putFio({});
    for (const char* name : {"STANDIN_VERSION", "STANDIN_OUTPUT", "STANDIN_ERRORS", "STANDIN_NO",
                             "STANDIN_MUTE", "STANDIN_NOW", "STANDIN_ASK"})
        qunsetenv(name);
    m_series = std::make_unique<SeriesRun>();
    Recordings::hide(m_series->folder(), "@ROOT@");
}

void TestDpcRun::cleanup()
{
    for (const int socket : m_sockets)
        ::close(socket);
    m_sockets.clear();
    m_series.reset();
}

/// Commands of the shell that a call of fio begins with.
void TestDpcRun::putFio(const QByteArray& script) const
{
    const QString fio = m_tools.filePath("fio");
    QFile::remove(fio);
    if (script.isEmpty())
        QVERIFY(QFile::link(TWDP_STANDIN, fio));
    else
        test::put(fio, "#!/bin/sh\n" + script + "\nexec '" TWDP_STANDIN "' \"$@\"\n", 0755);
}

/// Without what differs from run to run, and from machine to machine.
QString TestDpcRun::comparable(QString text) const
{
    const auto hide = [&](const char* pattern, const char* name) {
        text.replace(QRegularExpression(pattern), name);
    };
    hide("\"(startedMs|endedMs)\": [0-9]+", "\"\\1\": @MS@");
    hide("\"process\": [0-9]+", "\"process\": @PROCESS@");
    hide("\"dpcVersion\": \"[^\"]*\"", "\"dpcVersion\": @VERSION@");
    hide("\"id\": \"[0-9a-f]{12}\"", "\"id\": @ID@");
    hide("/dpc-[0-9a-f]{12}", "/dpc-@ID@");
    hide("20[0-9]{2}-[0-9-]{5} [0-9:]{8}", "@DATE@");
    hide(", in [0-9]+\\.[0-9] s", ", in @SECONDS@");
    // Code that is a file of its own.
    hide("<script>(?s:.*?)</script>", "<script>@SCRIPT@</script>");
    hide("<style>(?s:.*?)</style>", "<style>@STYLE@</style>");
    // As a regular expression of sed.
    text.replace(QString(m_series->folder()).replace("/", "\\/"), "@ROOT@");
    const QRegularExpression host(
        "(?<![/\\w.-])" + QRegularExpression::escape(QSysInfo::machineHostName()) + "(?![/\\w.-])");
    // The columns of tables are as wide as the name.
    if (text.contains(host)) {
        text.replace(host, "@HOST@");
        hide("  +", "  ");
    }
    return text;
}

/// The names of all files in a folder, and the content of some.
QString TestDpcRun::folderText(const QString& folder, const QString& pattern) const
{
    const QRegularExpression wanted('(' + pattern + ")$");
    QString text;
    for (const QString& file : test::entriesOf(m_series->file(folder))) {
        text += "--- " + folder + '/' + file + '\n';
        if (wanted.match(file).hasMatch())
            text += QString::fromUtf8(m_series->content(folder + '/' + file));
    }
    return text;
}

/// In a process of its own: the threads of QTest would take the signals that a run waits for.
void TestDpcRun::command(const QStringList& words, int status) const
{
    std::vector<std::string> arguments;
    for (const QString& word : words)
        arguments.push_back(word.toStdString());
    const pid_t child = test::startChild([&] {
        ::signal(SIGHUP, SIG_DFL);
        std::ofstream out(m_tools.filePath("out").toStdString());
        std::ofstream err(m_tools.filePath("err").toStdString());
        const int code = runDpc(arguments, {out, err, false});
        out.flush();
        err.flush();
        test::endChild(code);
    });
    const int code = SeriesRun::statusOf(child);
    const QByteArray err = test::contentOf(m_tools.filePath("err"));
    QVERIFY2(code == status, err.constData());
    constexpr int mostLines = 120;
    const QString out = QString::fromUtf8(test::contentOf(m_tools.filePath("out")));
    Recordings::compare("$ dpc " + comparable(words.join(' ')) + '\n' +
                        comparable(out).section('\n', 0, mostLines) + "--- error stream\n" +
                        comparable(QString::fromUtf8(err)));
}

/// Runs the series into the folder "run", and compares what is told and left.
void TestDpcRun::run(const QStringList& arguments, int status) const
{
    QStringList words = QStringList{"run"} + arguments;
    if (!words.contains("--date"))
        words += {"--date", "today"};
    command(words + QStringList{"--to", m_series->file("run"), m_series->file("mytest.dpc")},
            status);
    Recordings::compare(comparable(folderText("run", "state.json|results.csv|manifest")));
}

/// Some that listen, as fio's servers do.
QStringList TestDpcRun::machines(int count)
{
    QByteArray hosts;
    for (int i = 1; i <= count; ++i) {
        const QByteArray name = QByteArray(i < 10 ? "pc0" : "pc") + QByteArray::number(i);
        const QByteArray path = m_series->file(name).toUtf8();
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        if (size_t(path.size()) >= sizeof address.sun_path)
            qFatal("the folder for temporary files has too long a name");
        std::copy(path.begin(), path.end(), address.sun_path);
        const int number = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        constexpr int backlog = 16;
        if (::bind(number, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            ::listen(number, backlog) != 0)
            qFatal("can't listen at a socket");
        m_sockets.push_back(number);
        hosts += name + "=sock:" + path + '\n';
    }
    test::put(m_series->file("hosts.txt"), hosts);
    QDir().mkpath(m_series->file("scratch"));
    return {"--hosts-file", m_series->file("hosts.txt"), "--temp", m_series->file("scratch")};
}

/// Two stages: writes in three iterations, then reads and a copy.
void TestDpcRun::putWork(const QByteArray& host, int wait) const
{
    const QByteArray begin = "[cfgPath]/" + host;
    m_series->putSeries(
        {{SeriesRun::line("", begin + "_[iter].dat", 1000, 300, wait, 3)},
         {SeriesRun::line(begin + "_[iter].dat", "", 1000, 64, 0, 3),
          SeriesRun::line(begin + "_1.dat", begin + "_copy.dat", 1000, 100, wait)}});
}

void TestDpcRun::tellsOfAGoodRun()
{
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128)}});
    run({"--temp", "/scratch"}, 0);
    Recordings::compare(comparable(folderText("run", "plan.json|results.json|[.]fio|README")));
    command({"report", m_series->file("run")}, 0);
    command({"report", "--format", "json", m_series->file("run")}, 0);
    command({"report", "--format", "csv", m_series->file("run")}, 0);
}

void TestDpcRun::tellsOfTheWorkOfEachKind()
{
    test::put(m_series->file("mytest_init.dpc"),
              SeriesRun::line("", "[cfgPath]/source.dat", 1000) + '\n');
    m_series->putSeries(
        {{SeriesRun::line("[cfgPath]/source.dat", "", 1000, 300, 5, 2),
          SeriesRun::line("", "[cfgPath]/w.dat", 2048, 512).replace("NOflush", "flush"),
          SeriesRun::line("", "[cfgPath]/a b.dat", 1000, 300)},
         {SeriesRun::line("[cfgPath]/w.dat", "[cfgPath]/copy.dat", 2048, 256, 3)}});
    run({"--temp", "/scratch"}, 0);
    Recordings::compare(comparable(folderText("run", "plan.json|results.json|[.]fio|README")));
    command({"report", m_series->file("run")}, 0);
}

void TestDpcRun::tellsOfThreeMachines()
{
    putWork("[host]", 7);
    run(machines(), 0);
    command({"report", m_series->file("run")}, 0);
    command({"report", "--format", "json", m_series->file("run")}, 0);
}

void TestDpcRun::tellsOfADryRun()
{
    putWork("pc");
    command({"run", "--dry-run", m_series->file("mytest.dpc")}, 0);
    putWork("[host]");
    const QStringList arguments = QStringList{"--dry-run"} + machines();
    run(arguments, 0);
    QVERIFY(!QFile::exists(m_series->file("run")));
    qputenv("STANDIN_NO", "pc02_1.dat");
    run(arguments, 1);
}

void TestDpcRun::tellsOfAnExport()
{
    putWork("[host]");
    const QString folder = m_series->file("export");
    const QStringList hosts = machines();
    command(QStringList{"export", "--date", "today", m_series->file("mytest.dpc"), folder} + hosts,
            0);
    Recordings::compare(comparable(folderText("export", "plan.json|[.]fio|README")));
    const QStringList call = {"run", folder, "--to", m_series->file("run")};
    command(call, 0);
    Recordings::compare(comparable(m_series->content("run/results.csv")));
    for (const char* option :
         {"--hosts pc01", "--hosts-file hosts.txt", "--temp /tmp", "--date x",
          "--allow-loss fio-flush", "--stage 1", "--overwrite run", "--start-at-minute"})
        command(call + QString(option).split(' '), 2);
    QVERIFY(QDir(m_series->file("run")).removeRecursively());
    QFile jobs(m_series->file("export/stage-1-2-pc02.fio"));
    QVERIFY(jobs.open(QIODevice::Append));
    jobs.write("size=1g\n");
    jobs.close();
    command(call, 2);
    test::put(m_series->file("export/plan.json"), "{}");
    command(call, 2);
    test::put(m_series->file("export/plan.json"), "{\"version\": 0}");
    command(call, 2);
}

void TestDpcRun::tellsOfAStageAlone()
{
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128)},
                         {SeriesRun::line("[cfgPath]/a.dat", "", 128)}});
    test::put(m_series->file("a.dat"), test::textOf(128 * kib));
    run({"--stage", "1"}, 0);
    QVERIFY(QDir(m_series->file("run")).removeRecursively());
    run({"--stage", "2"}, 2);
}

void TestDpcRun::tellsWhatMayBeOverwritten()
{
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128),
                          SeriesRun::line("", "[cfgPath]/b.dat", 128)}});
    run({}, 0);
    QVERIFY(QDir().rename(m_series->file("run"), m_series->file("run1")));
    test::put(m_series->file("a.dat"), test::textOf(128 * kib));
    run({"--overwrite", m_series->file("run1")}, 0);
    QVERIFY(QDir().rename(m_series->file("run"), m_series->file("run2")));
    run({"--overwrite", m_series->file("none")}, 2);
    run({"--overwrite", m_series->folder()}, 2);
    const QByteArray plan = m_series->content("run2/plan.json");
    test::put(m_series->file("run2/plan.json"),
              QByteArray(plan).replace("/mytest.dpc", "/other.dpc"));
    run({"--overwrite", m_series->file("run2")}, 2);
    test::put(m_series->file("run2/plan.json"), plan);
    QVERIFY(QFile::remove(m_series->file("run2/manifest")));
    run({"--overwrite", m_series->file("run2")}, 2);
    QVERIFY(QDir().mkdir(m_series->file("run2/manifest")));
    run({"--overwrite", m_series->file("run2")}, 2);
}

void TestDpcRun::tellsWhatFioDidNotDo_data()
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

void TestDpcRun::tellsWhatFioDidNotDo()
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

void TestDpcRun::namesNoMoreJobsThanAnyoneReads()
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

void TestDpcRun::goesOnIfAsked()
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

void TestDpcRun::tellsEachNoOfAMachine_data()
{
    QTest::addColumn<QByteArray>("no");
    for (const char* no : {"a.dat", "b.dat", "source.dat", "copied.dat", "awk", "drop_caches",
                           "again.dat", "made.dat"})
        QTest::newRow(no) << QByteArray(no);
}

void TestDpcRun::tellsEachNoOfAMachine()
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

void TestDpcRun::tellsTheNosOfMachinesBehindServers()
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

void TestDpcRun::tellsOfAMachineThatDoesNotAnswer()
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

void TestDpcRun::tellsWrongUse_data()
{
    QTest::addColumn<QString>("arguments");
    for (const char* arguments :
         {"--timeout 2147484", "--timeout -1", "--timeout x", "--stage x", "--date a/b",
          "--temp tmp", "--allow-loss fio-flash", "--allow-loss bad-line", "--hosts pc01,pc01",
          "--hosts-file none", "--hosts-file bad.txt", "--hosts-file twice.txt",
          "--hosts-file open.txt", "--hosts pc01 --hosts-file twice.txt", "--format csv"})
        QTest::newRow(arguments) << arguments;
}

void TestDpcRun::tellsWrongUse()
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

void TestDpcRun::tellsWhyASeriesDoesNotRun_data()
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

void TestDpcRun::tellsWhyASeriesDoesNotRun()
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

void TestDpcRun::tellsOfAPlaceThatIsTaken()
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

void TestDpcRun::tellsOfATroubledFio_data()
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

void TestDpcRun::tellsOfATroubledFio()
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
void TestDpcRun::tellsTheSizesThatSourcesHave()
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

void TestDpcRun::tellsHowFarItIs()
{
    Plan plan;
    plan.stages.resize(2);
    plan.stages[1].files.resize(3);
    QString text;
    RunProgress progress;
    for (const qint64 done : {-1, 0, 1 << 20, 3 << 19, 9 << 20}) {
        progress.stage = done < 0 ? 1 : 0;
        progress.plannedBytes = 9 << 20;
        progress.elapsedMs = 1234 + done / kib;
        progress.leastMs = 77000;
        progress.doneBytes = done < 0 ? std::optional<qint64>() : done;
        for (const int width : {100, 20, 0})
            text += QString::fromStdString(progressText(plan, progress, width)) + '\n';
    }
    Recordings::compare(text);
}

void TestDpcRun::reportsEachKindOfRun_data()
{
    QTest::addColumn<QString>("format");
    for (const char* format : {"text", "json", "csv", "html"})
        QTest::newRow(format) << format;
}

void TestDpcRun::reportsEachKindOfRun()
{
    QFETCH(QString, format);
    QVERIFY(QDir::setCurrent(m_series->folder()));
    const auto make = [&](const QString& name, const QStringList& arguments, int status) {
        command(QStringList{"run", "--date", "today", "--to", name, "mytest.dpc"} + arguments,
                status);
    };
    putWork("[host]", 7);
    const QStringList hosts = machines(11);
    make("many", hosts, 0);
    make("two", {"--hosts-file", "hosts.txt", "--temp", m_series->file("scratch"), "--stage", "0"},
         0);
    putWork("pc");
    make("good", {}, 0);
    qputenv("STANDIN_NOW", "! test -e output/guard-0.txt -a -e output/stage-1.txt");
    make("incomplete", {"--keep-going"}, 1);
    qunsetenv("STANDIN_NOW");
    qputenv("STANDIN_NO", "pc_1.dat");
    make("refused", {}, 1);
    qunsetenv("STANDIN_NO");
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/pc_[iter].dat", 1000, 300, 0, 3)}});
    QVERIFY(QFile::remove("_wait/mytest1.dpc"));
    make("shorter", {}, 0);
    make("killed", {}, 0);
    QVERIFY(QFile::remove("killed/results.json"));
    const QByteArray state = test::contentOf("killed/state.json");
    test::put("killed/state.json", QByteArray(state).replace("complete", "running"));
    QVERIFY(QDir().mkdir("early"));
    test::put("early/state.json", QByteArray(state)
                                      .replace("complete", "running")
                                      .replace("\"stage\": 0", "\"stage\": null"));
    for (const char* runs : {"good", "incomplete", "refused", "killed", "early", "many", "two",
                             "good shorter", "shorter good incomplete killed refused"})
        command(QStringList{"report", "--format", format} + QString(runs).split(' '), 0);
    const QStringList slower = {"report", "--format", format, "--fail-if-slower", "10"};
    command(slower + QStringList{"good", "shorter"}, 1);
    command(slower + QStringList{"good", "incomplete"}, 1);
    command(slower + QStringList{"shorter", "good", "refused", "killed"}, 1);
    command(slower + QStringList{"shorter", "good"}, 0);
    for (const char* folder : {"bad", "newer", "broken"})
        QVERIFY(QDir().mkdir(folder));
    test::put("bad/results.json", "{\"version\": 1, \"jobs\": [{\"stage\": 0}]}");
    test::put("newer/results.json", "{\"version\": 2}");
    test::put("broken/results.json", "{\"version");
    for (const char* run : {"bad", "newer", "broken", "none", "scratch"})
        command({"report", "--format", format, run}, 2);
    command({"report", "--format", format, "-o", "good/x", "good"}, 2);
    command({"report", "--format", format, "-o", "none/x", "good"}, 2);
    command({"report", "--format", format, "-o", "x", "good"}, 0);
    command({"report", "--format", format, "good"}, 0);
    QCOMPARE(test::contentOf("x"), test::contentOf(m_tools.filePath("out")));
    QVERIFY(QDir::setCurrent("/"));
}

QTEST_APPLESS_MAIN(TestDpcRun)
#include "tst_dpcrun.moc"
