#include "dpc/commandline.h"
#include "tests/engine/fioserver.h"
#include "tests/engine/seriesrun.h"
#include "tests/support/examples.h"
#include "tests/support/ownmounts.h"

#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <sstream>

// The series in examples/ are run on fio, in a copy of the folder. Their files are made smaller for
// that: TWDP_EXAMPLE_KIB says how large, and 102400 runs the series as they are.

namespace {

constexpr int kib = 1024; // bytes

QByteArray fileSizeKib()
{
    const QByteArray asked = qgetenv("TWDP_EXAMPLE_KIB");
    return asked.isEmpty() ? "4096" : asked;
}

} // namespace

class TestRunExamples : public QObject
{
    Q_OBJECT

private slots:
    void runsToItsEnd_data();
    void runsToItsEnd();
};

void TestRunExamples::runsToItsEnd_data()
{
    QTest::addColumn<QString>("example");
    QTest::addColumn<int>("machines");
    QTest::addColumn<int>("jobs"); // with the one that makes the source
    QTest::addColumn<int>("filesLeft");
    QTest::newRow("disk") << "disk" << 1 << 1 + 9 << 7;
    QTest::newRow("chunk sizes") << "chunksizes" << 1 << 6 << 6;
    QTest::newRow("file server, one machine") << "fileserver" << 1 << 1 + 3 + 3 << 4;
    QTest::newRow("file server") << "fileserver" << 2 << 1 + 2 * (3 + 3) << 7;
    QTest::newRow("stages, one machine") << "stages" << 1 << 1 + 2 << 2;
    QTest::newRow("stages") << "stages" << 2 << 1 + 2 * 2 << 3;
}

void TestRunExamples::runsToItsEnd()
{
    QFETCH(QString, example);
    QFETCH(int, machines);
    const test::SeriesRun share;
    test::copyExamples(share.folder(), fileSizeKib());
    QStringList command = {"run", "--to", share.file("run"), share.file(example + ".dpc")};
    // The servers have the folder of the series in common, as machines have a share.
    const QTemporaryDir apart;
    std::vector<std::unique_ptr<test::FioServer>> servers;
    if (machines > 1) {
        QByteArray hosts;
        for (int i = 1; i <= machines; ++i) {
            const QByteArray address = "ip:127.0.0.1" + QByteArray::number(i) + ",8765";
            servers.push_back(std::make_unique<test::FioServer>(address, apart.path()));
            hosts += "pc0" + QByteArray::number(i) + '=' + address + '\n';
        }
        test::put(share.file("hosts.txt"), hosts);
        command += {"--hosts-file", share.file("hosts.txt")};
    }
    std::vector<std::string> words;
    for (const QString& word : command)
        words.push_back(word.toStdString());
    std::ostringstream both;
    QVERIFY2(runDpc(words, {both, both, false}) == 0, both.str().c_str());
    QCOMPARE(share.state("run"), QString("complete"));
    const QJsonArray jobs = share.jobs("run");
    QTEST(jobs.size(), "jobs");
    QTEST(test::contentOf(share.file("run/manifest")).count('\n'), "filesLeft");
    for (const QJsonValue job : jobs)
        QCOMPARE(qint64(job["doneBytes"].toDouble()), fileSizeKib().toLongLong() * kib);
}

int main(int count, char** arguments)
{
    test::needFio();
    test::allowMounts();
    test::useOwnNetwork();
    TestRunExamples tests;
    return QTest::qExec(&tests, count, arguments);
}
#include "tst_runexamples.moc"
