#include "dpc/commandline.h"
#include "tests/engine/seriesrun.h"
#include "tests/support/childprocess.h"
#include "tests/support/faultinjection.h"
#include "tests/support/files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <sstream>
#include <sys/syscall.h>

using test::SeriesRun;

// A fault at each system call of an export. It is whole, or it is not there, and the exit status
// says which.

class TestExportFaults : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void anyErrorLeavesAWholeExportOrNone_data();
    void anyErrorLeavesAWholeExportOrNone();
    void aShortWriteLeavesAWholeExportOrNone();
    void aDiskThatGoesAwayLeavesNoPartOfIt();
    void oldFileSystemsTakeItAsWell();
    void whatCameMeanwhileIsLeftAlone_data();
    void whatCameMeanwhileIsLeftAlone();

private:
    QString out() const { return m_series->file("out"); }
    test::TracedRun run(const test::Injection& injection,
                        const std::function<void()>& meanwhile = {}) const;
    void failEverywhere(test::Fault fault, int error);
    int placeOf(long call) const;

    std::unique_ptr<SeriesRun> m_series;
    test::TracedRun m_clean;
    test::Snapshot m_whole;
};

/// A clean export to compare with.
void TestExportFaults::init()
{
    m_series = std::make_unique<SeriesRun>();
    m_series->putSeries({{SeriesRun::line("", "[cfgPath]/a.dat", 1000, 300, 1)},
                         {SeriesRun::line("[cfgPath]/a.dat", "", 1000, 300)}});
    run({});
    QVERIFY(QDir(out()).removeRecursively());
    m_clean = run({});
    QVERIFY(m_clean.endedWell);
    m_whole = test::snapshotOf(out());
    QVERIFY(QDir(out()).removeRecursively());
}

test::TracedRun TestExportFaults::run(const test::Injection& injection,
                                      const std::function<void()>& meanwhile) const
{
    return test::runWithFault(
        [this] {
            std::ostringstream text;
            const int status =
                runDpc({"export", "--date", "today", m_series->file("mytest.dpc").toStdString(),
                        out().toStdString()},
                       {text, text, false});
            if (status != 0)
                test::endChild(status);
        },
        injection, meanwhile);
}

void TestExportFaults::failEverywhere(test::Fault fault, int error)
{
    int injected = 0;
    // No disk has a part in the name of the machine. The right to read a file is only asked for;
    // what counts is whether it can be read.
    const QVector<long> passedOver = {SYS_uname, SYS_access};
    for (int at = 0; at < int(m_clean.calls.size()); ++at) {
        if (passedOver.contains(m_clean.calls[at]) ||
            (fault == test::Fault::Short && m_clean.calls[at] != SYS_write))
            continue;
        ++injected;
        const bool isGood = run({fault, at, error}).endedWell;
        const QString where =
            QStringLiteral("call %1 (%2)").arg(at).arg(test::callName(m_clean.calls[at]));
        QVERIFY2(QFile::exists(out()) == isGood, qPrintable(where));
        if (isGood)
            QVERIFY2(test::snapshotOf(out()) == m_whole, qPrintable(where));
        QDir(out()).removeRecursively();
        for (const QString& name : QDir(m_series->folder()).entryList({"out.*"}))
            QVERIFY(QDir(m_series->file(name)).removeRecursively());
    }
    qInfo("%d faults", injected);
    QVERIFY(injected >= 4);
}

void TestExportFaults::anyErrorLeavesAWholeExportOrNone_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("full disk") << ENOSPC;
    QTest::newRow("broken disk") << EIO;
    QTest::newRow("missing rights") << EACCES;
}

void TestExportFaults::anyErrorLeavesAWholeExportOrNone()
{
    QFETCH(int, error);
    failEverywhere(test::Fault::Fail, error);
}

void TestExportFaults::aShortWriteLeavesAWholeExportOrNone()
{
    failEverywhere(test::Fault::Short, 0);
}

void TestExportFaults::aDiskThatGoesAwayLeavesNoPartOfIt()
{
    failEverywhere(test::Fault::FailOnwards, EIO);
}

int TestExportFaults::placeOf(long call) const
{
    const auto found = std::find(m_clean.calls.begin(), m_clean.calls.end(), call);
    return found == m_clean.calls.end() ? -1 : int(found - m_clean.calls.begin());
}

/// Those can't ask whether a name is free and rename in one step.
void TestExportFaults::oldFileSystemsTakeItAsWell()
{
    const int at = placeOf(SYS_renameat2);
    QVERIFY(at >= 0);
    QVERIFY(run({test::Fault::Refuse, at, EINVAL}).endedWell);
    QCOMPARE(test::snapshotOf(out()).keys(), m_whole.keys());
}

void TestExportFaults::whatCameMeanwhileIsLeftAlone_data()
{
    QTest::addColumn<int>("error");
    QTest::newRow("on any file system") << EEXIST;
    QTest::newRow("on an old file system") << EINVAL;
}

void TestExportFaults::whatCameMeanwhileIsLeftAlone()
{
    QFETCH(int, error);
    const auto other = [&] { QVERIFY(QDir().mkdir(out())); };
    QVERIFY(!run({test::Fault::Refuse, placeOf(SYS_renameat2), error}, other).endedWell);
    QVERIFY(QDir(out()).isEmpty());
    QCOMPARE(QDir(m_series->folder()).entryList({"out*"}), QStringList("out"));
}

QTEST_APPLESS_MAIN(TestExportFaults)
#include "tst_exportfaults.moc"
