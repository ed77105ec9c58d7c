#include "dpc/commandline.h"
#include "tests/engine/seriesrun.h"
#include "tests/support/files.h"
#include "tests/support/ownmounts.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cstdlib>
#include <sstream>

using test::SeriesRun;

// Runs, exports and reports that are written onto a disk that is full, or gets full, and a system
// that lacks a device. A program stands in for fio.

class TestDpcRunDisk : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void tellsThatARunDoesNotFit_data();
    void tellsThatARunDoesNotFit();
    void tellsThatAnExportDoesNotFit();
    void tellsThatTheResultsDoNotFit();
    void startsNoStageWithoutAManifest();
    void tellsThatAReportDoesNotFit();
    void endsIfNothingCanTakeThePlaceOfAClosedStream();

private:
    QString onDisk(const QString& name) const { return m_series->file("disk/" + name); }
    test::Printed dpc(const QStringList& words) const;
    void mount(const QByteArray& options);
    QByteArray fill() const { return "cat /dev/zero > '" + onDisk("filler").toUtf8() + "' || :"; }

    QTemporaryDir m_tools;
    std::unique_ptr<SeriesRun> m_series;
    std::unique_ptr<test::SmallDisk> m_disk;
};

void TestDpcRunDisk::initTestCase()
{
    QVERIFY(QFile::link(TWDP_STANDIN, m_tools.filePath("fio")));
    qputenv("PATH", m_tools.path().toUtf8() + ':' + qgetenv("PATH"));
}

void TestDpcRunDisk::init()
{
    qunsetenv("STANDIN_NOW");
    m_series = std::make_unique<SeriesRun>();
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128)},
                         {SeriesRun::line("", "[cfgPath]/b.dat", 128)}});
    QVERIFY(QDir().mkdir(m_series->file("disk")));
}

void TestDpcRunDisk::cleanup()
{
    m_disk.reset();
    m_series.reset();
}

void TestDpcRunDisk::mount(const QByteArray& options)
{
    m_disk = std::make_unique<test::SmallDisk>(m_series->file("disk"), options);
}

test::Printed TestDpcRunDisk::dpc(const QStringList& words) const
{
    std::vector<std::string> arguments;
    for (const QString& word : words)
        arguments.push_back(word.toStdString());
    std::ostringstream out;
    std::ostringstream err;
    const int status = runDpc(arguments, {out, err, false});
    return {QByteArray::fromStdString(out.str()), QByteArray::fromStdString(err.str()), status};
}

void TestDpcRunDisk::tellsThatARunDoesNotFit_data()
{
    QTest::addColumn<QByteArray>("options");
    QTest::addColumn<QByteArray>("told");
    QTest::newRow("not one file") << QByteArray("nr_inodes=1")
                                  << QByteArray("run' can't be made: No space left on device");
    QTest::newRow("not all folders")
        << QByteArray("nr_inodes=4") << QByteArray("can't be written: the folder can't be made");
    QTest::newRow("not all files")
        << QByteArray("nr_inodes=8") << QByteArray("can't be written: No space left on device");
    QTest::newRow("not all bytes")
        << QByteArray("size=4k") << QByteArray("can't be written: No space left on device");
}

void TestDpcRunDisk::tellsThatARunDoesNotFit()
{
    QFETCH(QByteArray, options);
    QFETCH(QByteArray, told);
    mount(options);
    const test::Printed printed = m_series->run({"--to", onDisk("run")});
    QCOMPARE(printed.status, 2);
    QVERIFY2(printed.err.contains(told), printed.err.constData());
    QVERIFY(!QFile::exists(onDisk("run/state.json")));
}

void TestDpcRunDisk::tellsThatAnExportDoesNotFit()
{
    mount("nr_inodes=8");
    const test::Printed printed = dpc({"export", m_series->file("mytest.dpc"), onDisk("out")});
    QCOMPARE(printed.status, 2);
    QVERIFY2(printed.err.contains("can't be written: No space left on device"), printed.err);
    QVERIFY(QDir(m_series->file("disk")).isEmpty());
}

void TestDpcRunDisk::tellsThatTheResultsDoNotFit()
{
    mount("size=1m");
    qputenv("STANDIN_NOW",
            "test ! -e '" + onDisk("run/output/stage-1.txt").toUtf8() + "' || " + fill());
    const test::Printed printed = m_series->run({"--to", onDisk("run")});
    QVERIFY2(printed.status == 2, printed.err);
    QVERIFY2(printed.err.contains("No space left on device"), printed.err);
    // It looks like a run that was killed, and not like one that is complete.
    QCOMPARE(m_series->state("disk/run"), QStringLiteral("running"));
}

void TestDpcRunDisk::startsNoStageWithoutAManifest()
{
    mount("size=1m");
    qputenv("STANDIN_NOW", fill());
    const test::Printed printed = m_series->run({"--keep-going", "--to", onDisk("run")});
    QVERIFY2(printed.status == 2, printed.err);
    QVERIFY2(printed.err.contains("No space left on device"), printed.err);
    QVERIFY(QFile::exists(onDisk("run/output/stage-0.txt")));
    QVERIFY(!QFile::exists(onDisk("run/output/stage-1.txt")));
}

void TestDpcRunDisk::tellsThatAReportDoesNotFit()
{
    QCOMPARE(m_series->run({"--to", m_series->file("run")}).status, 0);
    mount("size=4k");
    const test::Printed printed =
        dpc({"report", "--format", "html", "-o", onDisk("report.html"), m_series->file("run")});
    QCOMPARE(printed.status, 2);
    QVERIFY2(printed.err.contains("report.html' can't be written: No space left"), printed.err);
    QVERIFY(QDir(m_series->file("disk")).isEmpty());
}

/// A file that it writes could get that place, and what is meant for people.
void TestDpcRunDisk::endsIfNothingCanTakeThePlaceOfAClosedStream()
{
    const QByteArray command = "'" TWDP_DPC "' --version";
    QCOMPARE(std::system(command + " <&-"), 0);
    const test::SmallDisk noDevices("/dev", "size=4k");
    QCOMPARE(WEXITSTATUS(std::system(command + " <&-")), 2);
    QCOMPARE(std::system(command), 0);
}

int main(int argc, char* argv[])
{
    test::allowMounts();
    TestDpcRunDisk tests;
    return QTest::qExec(&tests, argc, argv);
}
#include "tst_dpcrun_disk.moc"
