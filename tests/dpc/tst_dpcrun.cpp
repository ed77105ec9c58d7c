#include "dpc/commandline.h"
#include "dpc/runtext.h"
#include "tests/dpc/runrecordingtest.h"
#include "tests/support/childprocess.h"

#include <QDir>

#include <array>
#include <iostream>
#include <pty.h>
#include <unistd.h>

using test::SeriesRun;

/// All that runs tell which do what is asked, and the files that they leave.
class TestDpcRun : public RunRecordingTest
{
    Q_OBJECT

private slots:
    void tellsOfAGoodRun();
    void tellsOfTheWorkOfEachKind();
    void tellsOfThreeMachines();
    void tellsOfADryRun();
    void tellsOfAnExport();
    void tellsOfAStageAlone();
    void countsAFileOnceByItsLargestWrite();
    void tellsWhatMayBeOverwritten();
    void tellsHowFarItIs();
    void fitsItsProgressIntoTheTerminal_data();
    void fitsItsProgressIntoTheTerminal();
};

namespace {

constexpr int kib = 1024;

} // namespace

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

void TestDpcRun::countsAFileOnceByItsLargestWrite()
{
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128)},
                         {SeriesRun::line("", "[cfgPath]/a.dat", 64)}});
    command({"run", "--to", m_series->file("run"), m_series->file("mytest.dpc")}, 0);
    const QByteArray told = test::contentOf(m_tools.filePath("err"));
    QVERIFY2(told.contains("\n1 file with 131072 bytes (0.1 MiB) stays behind;"), told);
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

void TestDpcRun::fitsItsProgressIntoTheTerminal_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<QByteArray>("first");
    const QByteArray begin = "stage 0 (1 in all): ";
    // The last column stays free: a letter there may begin a new line.
    QTest::newRow("as wide as its begin") << begin.size() + 1 << begin;
    QTest::newRow("two columns") << 2 << QByteArray("s");
    QTest::newRow("one column, too few for any text") << 1 << begin;
    QTest::newRow("an unknown width") << 0 << begin;
}

void TestDpcRun::fitsItsProgressIntoTheTerminal()
{
    QFETCH(int, columns);
    QFETCH(QByteArray, first);
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128)}});
    const QString seen = m_series->file("seen");
    // It works until its progress has been seen.
    putFio("case \"$*\" in *stage-0*) while ! test -e '" + seen.toUtf8() +
           "'; do sleep 0.05; done;; esac");
    int terminal = 0;
    winsize size{};
    size.ws_col = static_cast<unsigned short>(columns);
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) {
        ::alarm(test::childSeconds);
        test::endChild(runDpc({"run", m_series->file("mytest.dpc").toStdString(), "--to",
                               m_series->file("run").toStdString()},
                              {std::cout, std::cerr, false}));
    }
    const QByteArray begin = "\r\x1B[K";
    QByteArray shown;
    std::array<char, 4096> bytes{};
    for (ssize_t got = 1; got > 0;) {
        got = ::read(terminal, bytes.data(), bytes.size());
        shown.append(bytes.data(), int(std::max<ssize_t>(got, 0)));
        if (shown.count(begin) > 1 && !QFile::exists(seen))
            test::put(seen, "");
    }
    ::close(terminal);
    QCOMPARE(SeriesRun::statusOf(child), 0);
    const int from = shown.indexOf(begin) + begin.size();
    const QByteArray drawn = shown.mid(from, shown.indexOf('\r', from) - from);
    if (columns > 1)
        QCOMPARE(drawn, first);
    else
        QVERIFY2(drawn.startsWith(first) && drawn.contains(" of 0.1 MiB, "), drawn);
}

QTEST_APPLESS_MAIN(TestDpcRun)
#include "tst_dpcrun.moc"
