#include "tests/dpc/runrecordingtest.h"

#include <QDir>

using test::SeriesRun;

/// Reports of runs of each kind, in all formats.
class TestDpcRunReports : public RunRecordingTest
{
    Q_OBJECT

private slots:
    void reportsEachKindOfRun_data();
    void reportsEachKindOfRun();
};

void TestDpcRunReports::reportsEachKindOfRun_data()
{
    QTest::addColumn<QString>("format");
    for (const char* format : {"text", "json", "csv", "html"})
        QTest::newRow(format) << format;
}

void TestDpcRunReports::reportsEachKindOfRun()
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

QTEST_APPLESS_MAIN(TestDpcRunReports)
#include "tst_dpcrunreports.moc"
