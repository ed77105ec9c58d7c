#include "configset/seriesloader.h"
#include "model/pathvariables.h"
#include "tests/check/seriesfolder.h"

class TestSeriesRules : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_series.reset(new SeriesFolder); }

    void savedSeriesIsClean()
    {
        m_series->save({reading("[cfgPath]/s.dat"), marker(), reading("[cfgPath]/s.dat")});
        QCOMPARE(m_series->said(), QStringList());
        // Opened inside "_wait", its companion is beside that folder.
        QCOMPARE(m_series->said({}, "_wait/a1.dpc"), QStringList());
        QCOMPARE(m_series->said({}, ""), QStringList());
        // The companion by itself is a series of Write tasks.
        QCOMPARE(m_series->said({}, "a_init.dpc"), QStringList());
    }

    void defaultTaskThatWasSavedOnceLacksItsName()
    {
        TestTask task;
        task.setDefaults();
        m_series->save({task});
        const QStringList once = m_series->said();
        QCOMPARE(once,
                 (QStringList{"_wait/a.dpc:3:55 source-missing",
                              "_wait/a.dpc:3:102 dest-folder-local", "a_init.dpc:1:1 init-names"}));
        QVERIFY(m_series->text("source-missing").contains("load and save the series once more"));
        QVERIFY(m_series->text("init-names").contains("load and save the series once more"));

        // Loading and saving it again mends it, as the findings say.
        TaskList tasks;
        loadSeries({m_series->root(), "a"}, tasks, silent());
        m_series->save(tasks);
        QCOMPARE(m_series->said(), QStringList{"_wait/a.dpc:3:102 dest-folder-local"});
    }

    /// Whatever is set in the form: once saved, loaded and saved, nothing is to be said of it.
    void everyModeOfTheEditorIsClean_data()
    {
        QTest::addColumn<int>("method");
        QTest::addColumn<int>("type");
        for (const int method : {0, 1, 2, 3}) {
            for (const int type : {0, 1, 2})
                QTest::addRow("%d %d", method, type) << method << type;
        }
    }

    void everyModeOfTheEditorIsClean()
    {
        QFETCH(int, method);
        QFETCH(int, type);
        TaskList tasks;
        for (const int buffer : {-1, 0, 1, 2, 3, 4, 5}) {
            for (const int chunkKib : {0, 64, 1024}) {
                for (const bool isSet : {false, true})
                    tasks += taskOfForm(IoMethod(method), TestType(type), buffer, chunkKib, isSet);
            }
            tasks += marker();
        }
        tasks.removeLast();
        m_series->options().hosts = QStringList{"pc1", "pc2"};
        m_series->save(tasks);
        tasks.clear();
        loadSeries({m_series->root(), "a"}, tasks, silent());
        QCOMPARE(tasks.size(), 7 * 6 + 6);
        m_series->save(tasks);
        QCOMPARE(m_series->said(), QStringList());
    }

    void gapInTheNumbers()
    {
        m_series->put("a.dpc", goodLine() + "a1.dpc\n");
        m_series->put("a1.dpc", goodLine());
        QCOMPARE(m_series->said({"number-gap"}), QStringList());
        m_series->put("a4.dpc", goodLine());
        QCOMPARE(m_series->said({"number-gap", "leftover"}), QStringList{"a4.dpc:1:1 number-gap"});
        QCOMPARE(m_series->text("number-gap"),
                 QString("a2.dpc to a3.dpc are missing before this file"));
        QVERIFY(QFile::remove(m_series->root() + "a.dpc"));
        QCOMPARE(m_series->said({"number-gap"}),
                 (QStringList{"a1.dpc:1:1 number-gap", "a4.dpc:1:1 number-gap"}));
    }

    void numbersThatNoLoadLooksFor()
    {
        for (const char* name :
             {"a.dpc", "a19.dpc", "a20.dpc", "a01.dpc", "a2b.dpc", "_wait/a300.dpc"})
            m_series->put(name, goodLine());
        QCOMPARE(m_series->said({"number-limit"}),
                 (QStringList{"a01.dpc:1:1 number-limit", "a20.dpc:1:1 number-limit",
                              "_wait/a300.dpc:1:1 number-limit"}));
        // Chosen itself, it is said as well.
        QCOMPARE(m_series->said({"number-limit"}, "a20.dpc").size(), 3);
    }

    void filesThatNoSeriesHas()
    {
        for (const char* name : {"a.dpc", "x.y20.dpc", "b.dpc.dpc", "_wait/A.DPC"})
            m_series->put(name, goodLine());
        QCOMPARE(m_series->said({"not-loaded"}, ""),
                 (QStringList{"b.dpc.dpc:1:1 not-loaded", "x.y20.dpc:1:1 not-loaded",
                              "_wait/A.DPC:1:1 not-loaded"}));
        QVERIFY(m_series->text("not-loaded", "").endsWith("by its name it looks for 'b.dpc'"));
        m_series->options().rulesOff = {ruleNamed("not-loaded")};
        QCOMPARE(m_series->said({"not-loaded"}, ""), QStringList());
        for (const char* name : {"x.y20.dpc", "b.dpc.dpc", "_wait/A.DPC"})
            QVERIFY(QFile::remove(m_series->root() + name));
        m_series->options().rulesOff.clear();
        m_series->put("v1.2.dpc", goodLine());
        m_series->put("a20.dpc", goodLine());
        QCOMPARE(m_series->said({"not-loaded"}, ""), QStringList());
    }

    void sameNumberInBothFolders()
    {
        m_series->put("a.dpc", goodLine());
        m_series->put("_wait/a1.dpc", goodLine());
        QCOMPARE(m_series->said({"both-folders"}), QStringList());
        m_series->put("_wait/a.dpc", goodLine());
        QCOMPARE(m_series->said({"both-folders"}), QStringList{"_wait/a.dpc:1:1 both-folders"});
    }

    void markerThatNamesAnotherFile()
    {
        m_series->put("a1.dpc", goodLine());
        for (const char* good : {"[cfgPath]/a1.dpc", "[cfgPath]/_wait/a1.dpc", "a1.dpc"})
            QCOMPARE(m_series->hits("marker-target", goodLine() + good + "\n"), 0);
        for (const char* bad : {"[cfgPath]/a2.dpc", "[cfgPath]/b1.dpc", "[cfgPath]/a.dpc"}) {
            QCOMPARE(m_series->hits("marker-target", goodLine() + "  " + bad + "\n"), 1);
            QCOMPARE(m_series->said({"marker-target"}), QStringList{"a.dpc:2:3 marker-target"});
        }
    }

    void markerOfASeriesThatWasMoved()
    {
        m_series->put("a1.dpc", goodLine());
        QCOMPARE(m_series->hits("marker-folder", goodLine() + "/old/_wait/a1.dpc\n"), 1);
        QCOMPARE(m_series->hits("marker-folder",
                                goodLine() + m_series->root().toLatin1() + "_wait/a1.dpc\n"),
                 0);
    }

    void markerAtTheVeryEnd()
    {
        QCOMPARE(m_series->hits("last-marker", goodLine() + "[cfgPath]/a1.dpc\n"), 1);
        m_series->put("a1.dpc", goodLine());
        QCOMPARE(m_series->hits("last-marker", goodLine() + "[cfgPath]/a1.dpc\n"), 0);
    }

    void linesAfterAMarker()
    {
        m_series->put("a1.dpc", goodLine());
        QCOMPARE(m_series->hits("after-marker", goodLine() + "[cfgPath]/a1.dpc\n# end\n\n"), 0);
        QCOMPARE(m_series->hits("after-marker", "[cfgPath]/a1.dpc\n" + goodLine() + goodLine()), 1);
        QCOMPARE(m_series->said({"after-marker"}), QStringList{"a.dpc:2:1 after-marker"});
    }

    void filesOfAnOlderLongerSeries()
    {
        m_series->save({reading("/s"), marker(), reading("/s"), marker(), reading("/s")});
        QCOMPARE(m_series->said({"leftover"}), QStringList());
        m_series->save({reading("/s")});
        QCOMPARE(m_series->said({"leftover"}),
                 (QStringList{"_wait/a1.dpc:1:1 leftover", "_wait/a2.dpc:1:1 leftover"}));
    }

    void fileWithoutTasks()
    {
        QCOMPARE(m_series->hits("empty-file", "# info\n\n"), 1);
        QCOMPARE(m_series->hits("empty-file", ""), 1);
        QCOMPARE(m_series->hits("empty-file", goodLine()), 0);
        QCOMPARE(m_series->hits("empty-file", "[cfgPath]/a1.dpc\n"), 0);
    }

    void companionIsMissing()
    {
        m_series->put("a.dpc", goodLine());
        QCOMPARE(m_series->said({"init-missing"}), QStringList{"a.dpc:1:1 init-missing"});
        m_series->put("a_init.dpc", "");
        QCOMPARE(m_series->said({"init-missing"}), QStringList());
        // Nothing needed, nothing missing.
        QVERIFY(QFile::remove(m_series->root() + "a_init.dpc"));
        QCOMPARE(m_series->hits("init-missing", goodLine({{12, ""}, {13, ""}})), 0);
    }

    void companionIsOutdated()
    {
        const QSet<QString> rule{"init-outdated"};
        m_series->save({reading("[cfgPath]/s.dat")});
        QCOMPARE(m_series->said(rule), QStringList());
        // Lacks a name, makes one for nobody, makes one in another size.
        TaskList tasks{reading("[cfgPath]/other.dat")};
        const QByteArray companion = test::contentOf(m_series->root() + "a_init.dpc");
        m_series->save(tasks);
        m_series->put("a_init.dpc", companion);
        QCOMPARE(m_series->said(rule), QStringList{"a_init.dpc:1:1 init-outdated"});
        QCOMPARE(
            m_series->text("init-outdated"),
            QString(
                "lacks '[cfgPath]/other.dat', makes '[cfgPath]/s.dat' for no task: load and save "
                "the series again"));
        tasks = {reading("[cfgPath]/s.dat")};
        tasks[0].io.fileSize = 4096 * 1024;
        m_series->save(tasks);
        m_series->put("a_init.dpc", companion);
        QVERIFY(
            m_series->text("init-outdated").startsWith("makes '[cfgPath]/s.dat' in another size"));
    }

    void namesOfOtherMachinesAreNotCompared()
    {
        TestTask task = reading("[cfgPath]/s.dat");
        task.logPath = path("[cfgPath]/[host]/log.txt");
        m_series->save({task});
        const QString init = m_series->root() + "a_init.dpc";
        const QByteArray companion = test::contentOf(init);
        const QByteArray here = kvToQString(getComputerName()).toLatin1();
        QVERIFY(companion.contains(here));
        test::put(init, QByteArray(companion).replace(here, "elsewhere"));
        QCOMPARE(m_series->said({"init-outdated"}), QStringList());
    }

    void fileThatCannotBeRead()
    {
        m_series->put("a.dpc", goodLine() + "[cfgPath]/a1.dpc\n");
        QVERIFY(QDir(m_series->root()).mkdir("a1.dpc"));
        QCOMPARE(m_series->said({"unreadable"}), QStringList{"a1.dpc:1:1 unreadable"});
        // Chosen itself, a folder is a folder to look for series in.
        QVERIFY(!checkAll({m_series->root() + "a1.dpc"}, m_series->options()).problems.empty());
    }

    void linkThatLeadsNowhere()
    {
        m_series->put("a.dpc", goodLine() + "[cfgPath]/a1.dpc\n");
        QVERIFY(QFile::link("nowhere", m_series->root() + "a1.dpc"));
        QCOMPARE(m_series->said({"unreadable"}), QStringList{"a1.dpc:1:1 unreadable"});
        QVERIFY(QFile::remove(m_series->root() + "a.dpc"));
        QCOMPARE(m_series->said({"unreadable"}, ""), QStringList{"a1.dpc:1:1 unreadable"});
    }

    void moreThanCanBeChecked()
    {
        m_series->options().limits.entries = 3;
        QCOMPARE(m_series->hits("too-much", goodLine() + goodLine() + goodLine()), 0);
        QCOMPARE(m_series->hits("too-much", goodLine() + goodLine() + goodLine() + goodLine()), 1);
        // What is no entry does not count.
        QCOMPARE(m_series->hits("too-much", goodLine() + "\n# c\nx\n" + goodLine() + "\n# c\n"), 0);
    }

    void moreCommentsThanALoadTakes()
    {
        const QByteArray most = QByteArray("# c\n").repeated(5000);
        QCOMPARE(m_series->hits("too-much", most + goodLine()), 0);
        m_series->put("a.dpc", most + "# d\n# e\n" + goodLine());
        QCOMPARE(m_series->said({"too-much"}), QStringList{"a.dpc:5001:1 too-much"});
    }

    void longNameOfAConfigFile()
    {
        const QString folder(120, 'f');
        QVERIFY(QDir(m_series->root()).mkpath(folder + '/' + folder));
        const QString name = folder + '/' + folder + "/a.dpc";
        m_series->put(name, goodLine());
        QCOMPARE(m_series->said({"long-name"}, name).size(), 1);
        m_series->put("a.dpc", goodLine());
        QCOMPARE(m_series->said({"long-name"}), QStringList());
    }

    void lettersOutsideLatin1()
    {
        const QString folder = QString::fromUtf8("\xCE\xB4\xCE\xBF\xCE\xBA");
        QVERIFY(QDir(m_series->root()).mkdir(folder));
        m_series->put(folder + "/a.dpc", goodLine());
        QCOMPARE(m_series->said({}, folder + "/a.dpc"),
                 QStringList{folder + "/a.dpc:1:1 folder-letters"});
        QVERIFY(QDir(m_series->root())
                    .mkdir(QString::fromUtf8("Pr\xC3\xBC"
                                             "fung")));
        const QString german = QString::fromUtf8("Pr\xC3\xBC"
                                                 "fung/a.dpc");
        m_series->put(german, goodLine());
        QCOMPARE(m_series->said({"folder-letters", "unreadable"}, german), QStringList());
    }

private:
    static TestTask reading(const char* source)
    {
        TestTask task;
        task.setDefaults();
        task.sourcePath = path(source);
        task.destPath.clear();
        task.logPath = path("[cfgPath]/[host].txt");
        task.csvPath = path("[cfgPath]/[host]-[cfgID].csv");
        return task;
    }

    static TestTask taskOfForm(IoMethod method, TestType type, int buffer, int chunkKib, bool isSet)
    {
        TestTask task;
        task.setDefaults();
        task.method = method;
        task.io.sysBufferMode = buffer;
        task.setChunkSize(bytesFromKib(chunkKib));
        task.io.flush = task.io.preallocate = isSet;
        task.io.cacheMode = buffer < 0 ? 0 : buffer;
        task.iterations = isSet ? 3 : 1;
        task.sourcePath = path("[cfgPath]/s[cfgID]-[cfgTaskID].dat");
        task.destPath = path("[cfgPath]/[host]/d[cfgID]-[cfgTaskID]_[iter].dat");
        if (type == TestType::Write)
            task.sourcePath.clear();
        if (type == TestType::Read)
            task.destPath.clear();
        task.logPath = path("[cfgPath]/[host].txt");
        task.csvPath = path("[cfgPath]/[cfgName]_[cfgID]_[host].csv");
        return task;
    }

    static LoadListener silent()
    {
        return {[] { return false; }, [](const QString&) {}, [](const QString&, const QString&) {}};
    }

    QScopedPointer<SeriesFolder> m_series;
};

QTEST_APPLESS_MAIN(TestSeriesRules)
#include "tst_seriesrules.moc"
