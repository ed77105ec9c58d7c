#include "tests/engine/seriesrun.h"
#include "tests/support/files.h"

#include <QDir>
#include <QFile>
#include <QTest>

using test::SeriesRun;

// A run that is refused leaves everything as it is, and tells why.

class TestRunRefusals : public QObject
{
    Q_OBJECT

private slots:
    void leavesADestinationAsItIs_data();
    void leavesADestinationAsItIs();
    void leavesASourceAsItIs_data();
    void leavesASourceAsItIs();
    void tellsAllReasonsTogether();
    void makesNoFolderThatIsThere();
    void aDryRunLeavesNothing();
    void refusesWhatTheCheckRefuses();
    void rulesThatAreTurnedOffDoNotRefuse();
    void warningsDoNotRefuse();
    void refusesALossThatIsNotAllowed();
};

void TestRunRefusals::leavesADestinationAsItIs_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : {"smaller", "larger", "same size", "empty", "read-only", "folder",
                             "FIFO", "link", "dangling link"})
        QTest::newRow(kind) << kind;
}

void TestRunRefusals::leavesADestinationAsItIs()
{
    QFETCH(QString, kind);
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("", "[cfgPath]/new.dat", 128),
                       SeriesRun::line("", "[cfgPath]/taken.dat", 128)}});
    series.putKind(kind, "taken.dat");
    const test::Snapshot before = series.canaries();
    const test::Printed printed = series.run({"--to", series.file("run")});
    QCOMPARE(printed.status, 1);
    QVERIFY(printed.err.contains("taken.dat"));
    QCOMPARE(series.canaries(), before);
    QCOMPARE(series.state("run"), QStringLiteral("refused"));
    QVERIFY(!QFile::exists(series.file("new.dat")));
}

void TestRunRefusals::leavesASourceAsItIs_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : {"empty", "folder", "FIFO", "dangling link"})
        QTest::newRow(kind) << kind;
}

void TestRunRefusals::leavesASourceAsItIs()
{
    QFETCH(QString, kind);
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("", "[cfgPath]/new.dat", 128),
                       SeriesRun::line("[cfgPath]/source.dat", "", 128)}});
    series.putKind(kind, "source.dat");
    const test::Snapshot before = series.canaries();
    const test::Printed printed = series.run({"--to", series.file("run")});
    QCOMPARE(printed.status, 1);
    QCOMPARE(series.canaries(), before);
    QCOMPARE(series.state("run"), QStringLiteral("refused"));
}

void TestRunRefusals::tellsAllReasonsTogether()
{
    const SeriesRun series;
    constexpr int count = 80;
    series.putSeries({{SeriesRun::line("", "[cfgPath]/taken[iter]", 64, 64, 0, count)}});
    for (int i = 0; i < count; i += 2)
        test::put(series.file("taken" + QString::number(i)), "canary");
    const test::Snapshot before = series.canaries();
    QCOMPARE(series.run({"--to", series.file("run")}).status, 1);
    QCOMPARE(series.canaries(), before);
    const QStringList reasons = series.reasons("run");
    QCOMPARE(reasons.size(), count / 2);
    for (int i = 0; i < count; ++i) {
        const QStringList told = reasons.filter(QStringLiteral("taken%1' is there").arg(i));
        QCOMPARE(told.size(), i % 2 == 0 ? 1 : 0);
        if (!told.isEmpty())
            QVERIFY(told.first().contains("mytest.dpc:1: "));
    }
}

void TestRunRefusals::makesNoFolderThatIsThere()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 128)}});
    for (const char* kind : {"folder", "smaller", "dangling link"}) {
        const QString name = QStringLiteral("place of ") + kind;
        series.putKind(kind, name);
        const test::Snapshot before = series.canaries();
        const test::Printed printed = series.run({"--to", series.file(name)});
        QCOMPARE(printed.status, 2);
        QVERIFY(printed.err.contains("is there already"));
        QVERIFY(printed.err.contains("name a folder that does not exist yet"));
        QCOMPARE(series.canaries(), before);
    }
}

void TestRunRefusals::aDryRunLeavesNothing()
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

void TestRunRefusals::refusesWhatTheCheckRefuses()
{
    const SeriesRun series;
    series.putSeries({{SeriesRun::line("[cfgPath]/none.dat", "", 128),
                       SeriesRun::line("", "[cfgPath]/a.dat", 128)}});
    const test::Printed printed = series.run({"--to", series.file("run")});
    QCOMPARE(printed.status, 1);
    QVERIFY(printed.err.contains("[source-missing]"));
    QCOMPARE(series.state("run"), QStringLiteral("refused"));
    QCOMPARE(series.reasons("run").filter("source-missing").size(), 1);
    QVERIFY(!QFile::exists(series.file("a.dat")));
}

void TestRunRefusals::rulesThatAreTurnedOffDoNotRefuse()
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
void TestRunRefusals::warningsDoNotRefuse()
{
    const SeriesRun series;
    series.putSeries({{"# " + QByteArray(1100, 'x'), SeriesRun::line("", "[cfgPath]/a.dat", 128)}});
    const test::Printed printed = series.run({"--dry-run"});
    QVERIFY2(printed.status == 0 && !printed.err.contains("[long-line]"), printed.err);
}

void TestRunRefusals::refusesALossThatIsNotAllowed()
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

int main(int count, char** arguments)
{
    test::needFio();
    TestRunRefusals tests;
    return QTest::qExec(&tests, count, arguments);
}
#include "tst_runrefusals.moc"
