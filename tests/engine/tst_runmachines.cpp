#include "tests/engine/fioserver.h"
#include "tests/engine/seriesrun.h"
#include "tests/support/files.h"
#include "tests/support/ownmounts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QTest>

#include <csignal>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

using test::FioServer;
using test::SeriesRun;

// Three machines: servers of fio on this one, none of which sees the folder of the series.

class TestRunMachines : public QObject
{
    Q_OBJECT

private slots:
    void writesReadsAndCopiesOnThree();
    void startsNothingIfOneDoesNotAnswer();
    void accountsForAMachineThatDied();
    void stopsAllMachines_data();
    void stopsAllMachines();
    void leavesWhatOneMachineHas_data();
    void leavesWhatOneMachineHas();
    void leavesTheFolderOfTheServerAsItIs();
    void tellsBothSizesOfASource();
    void tellsOfAFullDisk();
    void reachesMachinesThroughSockets();
    void keepsTheLogsOfTwoServersAtOneAddressApart();
    void usesNoNetworkThatIsNotTrusted();
    void refusesTwoNamesForOneServer();
    void needsTheTemporaryFolderOfAMachine();

private:
    void startServers(const QByteArray& options = "size=64m");
    QStringList withHosts(const QStringList& more) const;
    QSet<QString> logsOfJobs() const;

    std::unique_ptr<SeriesRun> m_series;
    std::vector<std::unique_ptr<FioServer>> m_servers;

public slots:
    void init();
    void cleanup() { m_servers.clear(); }
};

namespace {

constexpr qint64 kib = 1024;
constexpr int machineCount = 3;

QString machineName(int machine)
{
    return QStringLiteral("pc0%1").arg(machine + 1);
}

} // namespace

void TestRunMachines::init()
{
    m_series = std::make_unique<SeriesRun>();
    QByteArray hosts;
    for (int i = 0; i < machineCount; ++i)
        hosts += machineName(i).toUtf8() + "=ip:127.0.0.1" + QByteArray::number(i + 1) + ",8765\n";
    test::put(m_series->file("hosts.txt"), hosts);
}

void TestRunMachines::startServers(const QByteArray& options)
{
    for (int i = 0; i < machineCount; ++i)
        m_servers.push_back(std::make_unique<FioServer>(
            "ip:127.0.0.1" + QByteArray::number(i + 1) + ",8765", m_series->folder(), options));
}

QStringList TestRunMachines::withHosts(const QStringList& more) const
{
    // Logs of calls go into the folder for temporary files.
    return QStringList{"--hosts-file", m_series->file("hosts.txt"), "--to", m_series->file("run"),
                       "--temp",       m_series->folder()} +
           more;
}

void TestRunMachines::writesReadsAndCopiesOnThree()
{
    startServers();
    m_series->putSeries(
        {{SeriesRun::line("", "[cfgPath]/[host]_[iter].dat", 1000, 300, 1, 3)},
         {SeriesRun::line("[cfgPath]/[host]_[iter].dat", "", 1000, 64, 0, 3),
          SeriesRun::line("[cfgPath]/[host]_1.dat", "[cfgPath]/[host]_copy.dat", 1000, 300)}});
    const test::Printed printed = m_series->run(withHosts({}));
    QVERIFY2(printed.status == 0, printed.err.constData());
    QCOMPARE(m_series->state("run"), QStringLiteral("complete"));
    for (int i = 0; i < machineCount; ++i) {
        const FioServer& server = *m_servers[size_t(i)];
        const QByteArray written = test::contentOf(server.seen(machineName(i) + "_1.dat"));
        QCOMPARE(qint64(written.size()), 1000 * kib);
        QCOMPARE(test::contentOf(server.seen(machineName(i) + "_copy.dat")), written);
    }
    QHash<QString, int> jobsOfMachine;
    for (const QJsonValue job : m_series->jobs("run")) {
        QVERIFY(job["good"].toBool());
        ++jobsOfMachine[job["machine"].toString()];
    }
    QCOMPARE(jobsOfMachine.size(), machineCount);
    QCOMPARE(jobsOfMachine["pc02"], 7);
    QCOMPARE(test::contentOf(m_series->file("run/manifest")).count('\n'), 12);
    QVERIFY(!QFile::exists(m_series->file("pc01_0.dat")));
}

void TestRunMachines::startsNothingIfOneDoesNotAnswer()
{
    startServers();
    m_servers[1]->kill();
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/[host].dat", 128)}});
    const test::Printed printed = m_series->run(withHosts({}));
    QCOMPARE(printed.status, 1);
    QVERIFY2(printed.err.contains("pc02 does not answer at ip:127.0.0.12,8765"),
             printed.err.constData());
    QVERIFY(!printed.err.contains("pc01 does not answer"));
    QCOMPARE(m_series->state("run"), QStringLiteral("refused"));
    QVERIFY(!QFile::exists(m_servers[0]->seen("pc01.dat")));
    QVERIFY(!QFile::exists(m_servers[2]->seen("pc03.dat")));
}

void TestRunMachines::accountsForAMachineThatDied()
{
    startServers();
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/[host].dat", 128)},
                         {SeriesRun::slowWrite().replace("slow", "[host]_slow")},
                         {SeriesRun::line("", "[cfgPath]/[host]_next.dat", 128)}});
    const pid_t child = m_series->start(withHosts({}));
    test::waitUntil([&] { return QFile::exists(m_servers[1]->seen("pc02_slow.dat")); });
    m_servers[1]->kill();
    QCOMPARE(SeriesRun::statusOf(child), 1);
    QCOMPARE(m_series->state("run"), QStringLiteral("failed"));
    QCOMPARE(m_series->json("run", "state.json")["stage"].toInt(), 1);
    int good = 0;
    for (const QJsonValue job : m_series->jobs("run")) {
        good += job["good"].toBool() ? 1 : 0;
        if (job["stage"].toInt() == 1 && job["machine"].toString() == "pc02") {
            QVERIFY(!job["good"].toBool());
            QVERIFY(job["doneBytes"].isNull());
        }
    }
    // All of the first stage, and of the second those of the two that lived.
    QCOMPARE(good, 5);
    QVERIFY(!QFile::exists(m_servers[0]->seen("pc01_next.dat")));
}

void TestRunMachines::stopsAllMachines_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGKILL") << SIGKILL;
}

void TestRunMachines::stopsAllMachines()
{
    QFETCH(int, signal);
    startServers();
    m_series->putSeries({{SeriesRun::slowWrite().replace("slow", "[host]_slow")}});
    const pid_t child = m_series->start(withHosts({}));
    for (int i = 0; i < machineCount; ++i) {
        const QString file = m_servers[size_t(i)]->seen(machineName(i) + "_slow.dat");
        test::waitUntil([&] { return QFileInfo(file).size() >= 32 * kib; });
    }
    QCOMPARE(::kill(child, signal), 0);
    QCOMPARE(SeriesRun::statusOf(child), signal == SIGKILL ? -1 : 1);
    QCOMPARE(m_series->state("run"), QString(signal == SIGKILL ? "running" : "interrupted"));
    for (int i = 0; i < machineCount; ++i) {
        test::waitUntil([&] { return !m_servers[size_t(i)]->isBusy(); });
        const QString file = m_servers[size_t(i)]->seen(machineName(i) + "_slow.dat");
        QVERIFY(QFileInfo(file).size() < 640 * kib);
    }
    if (signal == SIGKILL)
        return;
    for (const QJsonValue job : m_series->jobs("run")) {
        QVERIFY(!job["good"].toBool());
        QVERIFY(job["doneBytes"].toInt() >= 32 * kib);
    }
}

void TestRunMachines::leavesWhatOneMachineHas_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : {"file", "link", "dangling link", "folder", "FIFO"})
        QTest::newRow(kind) << kind;
}

void TestRunMachines::leavesWhatOneMachineHas()
{
    QFETCH(QString, kind);
    startServers();
    const QString taken = m_servers[2]->seen("taken.dat");
    const QByteArray path = taken.toUtf8();
    if (kind == "file")
        test::put(taken, "canary");
    else if (kind == "folder")
        QVERIFY(QDir().mkpath(taken + "/inside"));
    else if (kind == "FIFO")
        QCOMPARE(::mkfifo(path.constData(), 0600), 0);
    else {
        test::put(m_servers[2]->seen("target"), "canary");
        const char* const target = kind == "link" ? "target" : "nowhere";
        QCOMPARE(::symlink(target, path.constData()), 0);
    }
    const test::Snapshot before = test::snapshotOf(m_servers[2]->seen("."));
    // Machines that share the destination are an error of the check; these do not.
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/new_[host].dat", 128),
                          SeriesRun::line("", "[cfgPath]/taken.dat", 128)}});
    const QStringList oneHost = {"--hosts-file", m_series->file("one.txt"), "--to",
                                 m_series->file("run")};
    test::put(m_series->file("one.txt"), "pc03=ip:127.0.0.13,8765\n");
    const test::Printed printed = m_series->run(oneHost);
    QCOMPARE(printed.status, 1);
    QVERIFY2(printed.err.contains("mytest.dpc:2: pc03: "), printed.err.constData());
    QVERIFY(printed.err.contains("taken.dat' is there already"));
    QCOMPARE(test::snapshotOf(m_servers[2]->seen(".")), before);
}

void TestRunMachines::leavesTheFolderOfTheServerAsItIs()
{
    startServers();
    // Names that fio would give to files of its own.
    for (const char* name : {"s0-l1-i0.prerun.txt", "s0-l2-i0.prerun.txt", "guard-0.prerun.txt",
                             "s0-logs-0.prerun.txt", "s0-l1-i0_bw.1.log", "local-0-verify.state",
                             "output", "stage-0.txt", "stage-0.fio", "results.json"})
        test::put(m_servers[0]->seen(name), "canary");
    const test::Snapshot before = test::snapshotOf(m_servers[0]->seen("."));
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/[host].dat", 128),
                          SeriesRun::line("[cfgPath]/[host].dat", "[cfgPath]/[host]_copy.dat", 128),
                          SeriesRun::line("", "[cfgPath]/[host]_2.dat", 128)}});
    QCOMPARE(m_series->run(withHosts({})).status, 0);
    test::Snapshot after = test::snapshotOf(m_servers[0]->seen("."));
    for (const char* name : {"pc01.dat", "pc01_copy.dat", "pc01_2.dat"})
        QCOMPARE(after.remove(name), 1);
    for (const QString& name : after.keys()) {
        if (name.startsWith("dpc-"))
            after.remove(name);
    }
    QCOMPARE(after, before);
}

void TestRunMachines::tellsBothSizesOfASource()
{
    startServers();
    test::put(m_series->file("source.dat"), test::textOf(128 * kib));
    for (int i = 0; i < machineCount; ++i)
        test::put(m_servers[size_t(i)]->seen("source.dat"),
                  test::textOf(i == 1 ? 1000 : 128 * kib));
    m_series->putSeries({{SeriesRun::line("[cfgPath]/source.dat", "", 64)}});
    const test::Printed printed = m_series->run(withHosts({}));
    QCOMPARE(printed.status, 1);
    QVERIFY2(printed.err.contains("pc02: "), printed.err.constData());
    QVERIFY(printed.err.contains("131072 bytes"));
    QVERIFY(printed.err.contains("it has 1000 bytes"));
    QVERIFY(!printed.err.contains("pc01: "));
    QCOMPARE(test::contentOf(m_servers[1]->seen("source.dat")), test::textOf(1000));
}

void TestRunMachines::tellsOfAFullDisk()
{
    startServers("size=1m");
    m_series->putSeries({{SeriesRun::slowWrite().replace("slow", "[host]_slow")}});
    // The disk has space for the write when the machine is asked, and not any more when it writes.
    const pid_t child = m_series->start(withHosts({}));
    test::waitUntil([&] { return QFile::exists(m_servers[0]->seen("pc01_slow.dat")); });
    QFile filler(m_servers[0]->seen("filler"));
    QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    while (filler.write(test::textOf(4 * kib)) > 0) {
    }
    filler.close();
    QCOMPARE(SeriesRun::statusOf(child), 1);
    QCOMPARE(m_series->state("run"), QStringLiteral("incomplete"));
    for (const QJsonValue job : m_series->jobs("run")) {
        const bool isFull = job["machine"].toString() == "pc01";
        QCOMPARE(job["good"].toBool(), !isFull);
        QCOMPARE(job["error"].toInt(), isFull ? ENOSPC : 0);
    }

    const QStringList again = {"--hosts-file", m_series->file("hosts.txt"), "--to",
                               m_series->file("run2")};
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/[host]_new.dat", 640)}});
    const test::Printed printed = m_series->run(again);
    QCOMPARE(printed.status, 1);
    QVERIFY2(printed.err.contains("pc01: not enough disk space"), printed.err.constData());
    QCOMPARE(m_series->state("run2"), QStringLiteral("refused"));
}

/// The logs of bandwidth of all jobs, one each, that hold something.
QSet<QString> TestRunMachines::logsOfJobs() const
{
    QSet<QString> logs;
    for (const QJsonValue job : m_series->jobs("run")) {
        for (const QJsonValue log : job["bandwidthLogs"].toArray()) {
            if (!test::contentOf(m_series->file("run/" + log.toString())).isEmpty())
                logs.insert(log.toString());
        }
    }
    return logs;
}

void TestRunMachines::reachesMachinesThroughSockets()
{
    QByteArray hosts;
    for (int i = 0; i < 2; ++i) {
        const QByteArray socket = m_series->file("server" + QString::number(i)).toUtf8();
        hosts += machineName(i).toUtf8() + "=sock:" + socket + '\n';
        // The socket lies outside of what the server has in place of the folder.
        QDir().mkpath(m_series->file("data"));
        m_servers.push_back(std::make_unique<FioServer>("sock:" + socket, m_series->file("data")));
    }
    test::put(m_series->file("hosts.txt"), hosts);
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/data/[host].dat", 1000, 100, 20)}});
    const test::Printed printed = m_series->run(withHosts({}));
    QVERIFY2(printed.status == 0, printed.err.constData());
    for (int i = 0; i < 2; ++i)
        QCOMPARE(QFileInfo(m_servers[size_t(i)]->seen(machineName(i) + ".dat")).size(), 1000 * kib);
    QCOMPARE(logsOfJobs().size(), 2);
}

void TestRunMachines::keepsTheLogsOfTwoServersAtOneAddressApart()
{
    QByteArray hosts;
    for (int i = 0; i < 2; ++i) {
        const QByteArray address = "ip:127.0.0.11," + QByteArray::number(8765 + i);
        hosts += machineName(i).toUtf8() + '=' + address + '\n';
        m_servers.push_back(std::make_unique<FioServer>(address, m_series->folder()));
    }
    test::put(m_series->file("hosts.txt"), hosts);
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/[host].dat", 1000, 100, 20)}});
    const test::Printed printed = m_series->run(withHosts({}));
    QVERIFY2(printed.status == 0, printed.err.constData());
    QCOMPARE(logsOfJobs().size(), 2);
}

void TestRunMachines::usesNoNetworkThatIsNotTrusted()
{
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/[host].dat", 128)}});
    test::put(m_series->file("hosts.txt"), "pc01=ip:192.0.2.1,8765\n");
    const test::Printed printed = m_series->run(withHosts({}));
    QCOMPARE(printed.status, 2);
    QVERIFY2(printed.err.contains("--trust-network"), printed.err.constData());
    QVERIFY(!QFile::exists(m_series->file("run")));
    // Trusted, it is not reached: this machine has no route to it.
    QCOMPARE(m_series->run(withHosts({"--trust-network"})).status, 1);
    QCOMPARE(m_series->state("run"), QStringLiteral("refused"));
}

void TestRunMachines::refusesTwoNamesForOneServer()
{
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/[host].dat", 128)}});
    test::put(m_series->file("hosts.txt"), "pc01=ip:127.0.0.11,8765\npc02=ip:127.0.0.11,8765\n");
    const test::Printed printed = m_series->run(withHosts({}));
    QCOMPARE(printed.status, 2);
    QVERIFY2(printed.err.contains("pc01 and pc02 have one address"), printed.err.constData());
}

void TestRunMachines::needsTheTemporaryFolderOfAMachine()
{
    startServers();
    m_series->putSeries({{SeriesRun::line("", "[temp]/[host].dat", 128)}});
    const QStringList without = {"--hosts-file", m_series->file("hosts.txt"), "--to",
                                 m_series->file("run")};
    const test::Printed printed = m_series->run(without);
    QCOMPARE(printed.status, 2);
    QVERIFY2(printed.err.contains("--temp"), printed.err.constData());
    QVERIFY(!QFile::exists(m_series->file("run")));
    QCOMPARE(m_series->run(withHosts({})).status, 0);
    QVERIFY(QFile::exists(m_servers[1]->seen("pc02.dat")));
}

int main(int count, char** arguments)
{
    test::needFio();
    test::allowMounts();
    test::useOwnNetwork();
    TestRunMachines tests;
    return QTest::qExec(&tests, count, arguments);
}
#include "tst_runmachines.moc"
