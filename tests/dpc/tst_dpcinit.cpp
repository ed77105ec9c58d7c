#include "configset/seriesloader.h"
#include "configset/seriessaver.h"
#include "dpc/roundtrip.h"
#include "tests/check/seriesfolder.h"
#include "tests/dpc/dpcrun.h"

#include <sys/stat.h>
#include <unistd.h>

/// `dpc init` makes the _init file that a load and a save make, and no other.
class TestDpcInit : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_series.reset(new SeriesFolder);
        m_series->put("a.dpc", goodLine({{10, "[cfgPath]/s_[iter].dat"},
                                         {11, "[cfgPath]/\xFC/x"},
                                         {12, "[cfgPath]/l"},
                                         {13, "[cfgPath]/c"}}));
    }

    void printsTheBytesThatASaveWrites()
    {
        const DpcRun::Result result = run("init");
        QCOMPARE(result.code, 0);
        QCOMPARE(result.err, QByteArray());
        QCOMPARE(result.out.count('\n'), 5);
        QVERIFY(result.out.contains("s_2.dat") && result.out.contains("/\xFC/dummyFile"));
        QVERIFY(!QFile::exists(initPath()));
        saveInTheEditor();
        QCOMPARE(result.out, test::contentOf(initPath()));
    }

    void writesTheFileInPlaceOfPrintingIt()
    {
        const QByteArray printed = run("init").out;
        const DpcRun::Result result = run("init --write");
        QCOMPARE(result.code, 0);
        QCOMPARE(test::contentOf(initPath()), printed);
        QVERIFY(result.out.endsWith("a_init.dpc: is written, with 5 lines\n"));
        QVERIFY(run("init --write").out.endsWith("a_init.dpc: is up to date\n"));
        QCOMPARE(QDir(m_series->root()).entryList(QDir::Files),
                 (QStringList{"a.dpc", "a_init.dpc"}));
        for (const FileChange& change : roundTrip(m_series->facts()))
            QVERIFY(!change.shownPath.endsWith("a_init.dpc"));
    }

    /// The one inside of "_wait" would not be that of the series.
    void writesItBesideWaitAlsoForASeriesPickedInside()
    {
        const QByteArray printed = run("init").out;
        QVERIFY(QFile::rename(m_series->root() + "a.dpc", m_series->root() + "_wait/a.dpc"));
        for (const char* picked : {"_wait/a.dpc", "a.dpc"}) {
            const DpcRun::Result result = m_dpc.run("init --write " + m_series->root() + picked);
            QCOMPARE(result.code, 0);
            QVERIFY2(result.out.startsWith(m_series->root().toUtf8() + "a_init.dpc: is "),
                     result.out);
            QCOMPARE(test::contentOf(initPath()), printed);
        }
        QCOMPARE(test::entriesOf(m_series->root() + "_wait"), QStringList{"a.dpc"});
    }

    void linesOfTheWholeSeriesCountAlsoIfItIsPickedInsideOfWait()
    {
        const QByteArray line = goodLine();
        m_series->put("a.dpc", line.repeated(maxSeriesEntries - 1) + QByteArray("# text\n"));
        m_series->put("_wait/a1.dpc", line);
        const QString command = "init " + m_series->root() + "_wait/a1.dpc";
        QCOMPARE(m_dpc.run(command).code, 0);
        m_series->put("_wait/a1.dpc", line + line);
        const DpcRun::Result result = m_dpc.run(command);
        QCOMPARE(result.code, 2);
        QCOMPARE(result.out, QByteArray());
        QCOMPARE(result.err, QByteArray("dpc: the series has more than 50000 lines\n"));
    }

    void filesThatAreThereBecomeComments()
    {
        m_series->put("s_1.dat", "x");
        const DpcRun::Result result = run("init");
        QCOMPARE(result.code, 0);
        QVERIFY(result.out.contains("\n# Stream"));
    }

    void refusesToMakeAnExistingSourceAnew()
    {
        // Picked inside of _wait, the series looks for its sources there, and finds none.
        QVERIFY(QFile::rename(m_series->root() + "a.dpc", m_series->root() + "_wait/a.dpc"));
        m_series->put("s_1.dat", "precious");
        for (const char* command : {"init", "init --write"}) {
            const DpcRun::Result result =
                m_dpc.run(command + (' ' + m_series->root() + "_wait/a.dpc"));
            QCOMPARE(result.code, 1);
            QCOMPARE(result.out, QByteArray());
            QCOMPARE(result.err, "dpc: line 2 would make '" + m_series->root().toUtf8() +
                                     "s_1.dat' anew, which is there already, with 8 bytes\n");
        }
        QCOMPARE(test::entriesOf(m_series->root() + "_wait"), QStringList{"a.dpc"});
    }

    void aFolderInPlaceOfASourceIsNotDestroyed()
    {
        QVERIFY(QFile::rename(m_series->root() + "a.dpc", m_series->root() + "_wait/a.dpc"));
        QVERIFY(QDir(m_series->root()).mkdir("s_1.dat"));
        QCOMPARE(m_dpc.run("init " + m_series->root() + "_wait/a.dpc").code, 0);
    }

    /// It is empty, and only there to have its folder made.
    void aDummyFileThatIsThereIsNotDestroyed()
    {
        m_series->put("a.dpc", goodLine({{10, "[cfgPath]/s"}, {11, "[cfgPath]/out/x"}}));
        QVERIFY(QFile::rename(m_series->root() + "a.dpc", m_series->root() + "_wait/a.dpc"));
        for (const char* content : {"", "\n"}) {
            m_series->put("out/dummyFile", content);
            QCOMPARE(run("init --write").code, 0);
        }
        m_series->put("out/dummyFile", "ab");
        QVERIFY(run("init").err.contains("which is there already, with 2 bytes"));
        m_series->put("out/dummyFile", "notes");
        const DpcRun::Result result = run("init --write");
        QCOMPARE(result.code, 1);
        QVERIFY2(result.err.contains("dummyFile' anew, which is there already, with 5 bytes"),
                 result.err);
    }

    void refusesASeriesWithALineThatDoesNotLoad()
    {
        m_series->put("a.dpc", goodLine() + goodLine({{1, "WinApi"}}) + goodLine({{1, "Posx"}}));
        m_series->put("a_init.dpc", "old");
        const DpcRun::Result result = run("init --write");
        QCOMPARE(result.code, 1);
        QCOMPARE(result.err.count("does not load"), 2);
        QVERIFY(result.err.contains("a.dpc:2 ") && result.err.contains("a.dpc:3 "));
        QCOMPARE(test::contentOf(initPath()), QByteArray("old"));
    }

    void refusesASeriesWithAFileThatCannotBeRead()
    {
        QVERIFY(QDir(m_series->root()).mkdir("a1.dpc"));
        const DpcRun::Result result = run("init --write");
        QCOMPARE(result.code, 1);
        QCOMPARE(result.err,
                 "dpc: " + m_series->root().toUtf8() + "a1.dpc does not load: it is a folder\n");
        QVERIFY(!QFile::exists(initPath()));
    }

    void saysThatTheFileIsCut()
    {
        m_series->put("a.dpc", goodLine({{8, "100"}, {10, "[cfgPath]/s_[iter].dat"}}));
        const DpcRun::Result result = run("init");
        QCOMPARE(result.code, 0);
        QCOMPARE(result.out.size(), maxConfigFile);
        QVERIFY(
            result.err.contains(QString("is cut at %1 characters").arg(maxConfigFile).toUtf8()));
    }

    void aSeriesWithoutTasksHasNoInitFile()
    {
        m_series->put("a.dpc", "# text\n");
        const DpcRun::Result result = run("init --write");
        QCOMPARE(result.code, 1);
        QCOMPARE(result.err, QByteArray("dpc: the series holds no task\n"));
        QVERIFY(!QFile::exists(initPath()));
    }

    void whatIsInTheWayOfTheFileIsSaid()
    {
        QVERIFY(QDir(m_series->root()).mkdir("a_init.dpc"));
        const DpcRun::Result result = run("init --write");
        QCOMPARE(result.code, 1);
        QVERIFY2(result.err.contains("a_init.dpc can't be written: what is there is not a file\n"),
                 result.err);
    }

    void aTerminalIsNotSteered()
    {
        m_series->put("a.dpc", goodLine({{10, "[cfgPath]/\x1B[2J"}}));
        std::ostringstream out;
        std::ostringstream err;
        const std::vector<std::string> typed = {"init", (m_series->root() + "a.dpc").toStdString()};
        QCOMPARE(runDpc(typed, {out, err, false, true}), 0);
        QVERIFY(out.str().find("\\x1B[2J") != std::string::npos);
        QVERIFY(out.str().find('\x1B') == std::string::npos);
    }

private:
    QString initPath() const { return m_series->root() + "a_init.dpc"; }

    DpcRun::Result run(const QString& command) const
    {
        return m_dpc.run(command + ' ' + m_series->root() + "a.dpc");
    }

    void saveInTheEditor() const
    {
        TaskList tasks;
        loadSeries(
            {m_series->root(), "a"}, tasks,
            {[] { return false; }, [](const QString&) {}, [](const QString&, const QString&) {}});
        m_series->save(tasks);
    }

    QScopedPointer<SeriesFolder> m_series;
    DpcRun m_dpc;
};

QTEST_APPLESS_MAIN(TestDpcInit)
#include "tst_dpcinit.moc"
