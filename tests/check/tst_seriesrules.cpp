#include "model/pathvariables.h"
#include "tests/check/seriesfolder.h"

class TestSeriesRules : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_series.reset(new SeriesFolder); }

    void savedSeriesIsClean()
    {
        m_series->save({readingTask("[cfgPath]/s.dat"), marker(), readingTask("[cfgPath]/s.dat")});
        QCOMPARE(m_series->said(), QStringList());
        // Opened inside "_wait", its _init file is beside that folder.
        QCOMPARE(m_series->said({}, "_wait/a1.dpc"), QStringList());
        QCOMPARE(m_series->said({}, ""), QStringList());
        // The _init file by itself is a series of Write tasks.
        QCOMPARE(m_series->said({}, "a_init.dpc"), QStringList());
    }

    void defaultTaskThatWasSavedOnceLacksItsName()
    {
        TestTask task;
        task.setDefaults();
        m_series->save({task});
        const QStringList once = m_series->said();
        QCOMPARE(once, (QStringList{"_wait/a.dpc:3:55 source-missing",
                                    "_wait/a.dpc:3:102 dest-folder-local",
                                    "_wait/a.dpc:3:156 init-names"}));
        QVERIFY(m_series->text("source-missing").contains("load and save the series again"));
        QVERIFY(m_series->text("source-missing")
                    .contains("line 1 of the _init file makes '[cfgPath]/testfile_-0.dat', because "
                              "the task had no config file yet"));
        QVERIFY(m_series->text("init-names").contains("load and save the series again"));

        // Loading and saving it again mends it, as the findings say.
        TaskList tasks;
        loadSeries({m_series->root(), "a"}, tasks, silentListener());
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
        loadSeries({m_series->root(), "a"}, tasks, silentListener());
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
                 QString("a2.dpc to a3.dpc are missing before this file; rename the files, so that "
                         "their numbers follow each other"));
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
        // The name of a series may be a number.
        m_series->put("7.dpc", goodLine());
        QCOMPARE(m_series->said({"number-limit"}, "7.dpc"), QStringList());
        m_series->put("720.dpc", goodLine());
        QCOMPARE(m_series->said({"number-limit"}, "7.dpc"),
                 QStringList{"720.dpc:1:1 number-limit"});
        m_series->put("799.dpc", goodLine());
        QCOMPARE(m_series->said({"number-limit"}, "7.dpc"),
                 (QStringList{"720.dpc:1:1 number-limit", "799.dpc:1:1 number-limit"}));
    }

    void linkIsTakenForTheFileThatItLeadsTo()
    {
        m_series->put("a.dpc", goodLine());
        QVERIFY(QFile::link(m_series->root() + "a.dpc", m_series->root() + "a20.dpc"));
        QVERIFY(QFile::link(m_series->root(), m_series->root() + "a21.dpc"));
        QCOMPARE(m_series->said({"number-limit"}), QStringList{"a20.dpc:1:1 number-limit"});
    }

    void filesThatNoSeriesHas()
    {
        for (const char* name : {"a.dpc", "x.y20.dpc", "b.dpc.dpc", "_wait/A.DPC"})
            m_series->put(name, goodLine());
        QCOMPARE(m_series->said({"not-loaded"}, ""),
                 (QStringList{"b.dpc.dpc:1:1 not-loaded", "x.y20.dpc:1:1 not-loaded",
                              "_wait/A.DPC:1:1 not-loaded"}));
        QVERIFY(m_series->text("not-loaded", "").contains("by its name it looks for 'b.dpc'"));
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
        m_series->put("_wait/a.dpc", goodLine() + goodLine());
        QCOMPARE(m_series->said({"both-folders"}), QStringList{"_wait/a.dpc:1:1 both-folders"});
        QCOMPARE(m_series->severity("both-folders"), Severity::Warning);
        // Of the same size.
        m_series->put("_wait/a.dpc", goodLine().replace("/d/x", "/d/y"));
        QCOMPARE(m_series->severity("both-folders"), Severity::Warning);
    }

    /// A start copies the file out of "_wait".
    void copyOfAStartedFileIsANoteAndNotCheckedTwice()
    {
        m_series->save({readingTask("[cfgPath]/s.dat"), marker(), readingTask("[cfgPath]/s.dat")});
        m_series->put("a.dpc", test::contentOf(m_series->root() + "_wait/a.dpc"));
        QCOMPARE(m_series->said(), QStringList{"_wait/a.dpc:1:1 both-folders"});
        QCOMPARE(m_series->severity("both-folders"), Severity::Note);
        QVERIFY(m_series->text("both-folders").contains("before you load the series"));
        m_series->put("a.dpc", "Posx\n" + goodLine());
        m_series->put("_wait/a.dpc", "Posx\n" + goodLine());
        QCOMPARE(m_series->said({"bad-line"}), QStringList{"a.dpc:1:1 bad-line"});
    }

    void filesOfAnOlderLongerSeries()
    {
        m_series->save(
            {readingTask("/s"), marker(), readingTask("/s"), marker(), readingTask("/s")});
        QCOMPARE(m_series->said({"leftover"}), QStringList());
        m_series->save({readingTask("/s")});
        QCOMPARE(m_series->said({"leftover"}),
                 (QStringList{"_wait/a1.dpc:1:1 leftover", "_wait/a2.dpc:1:1 leftover"}));
    }

    /// Who follows the advice to remove the file loses what the line was meant to be.
    void mistypedLineIsNotAlsoAnotherMistake()
    {
        m_series->put("a1.dpc", goodLine());
        for (const char* marker : {"[cfgPath]/a1.DPC\n", "[cfgPath]/a1.dcp\n"})
            QCOMPARE(m_series->hits("leftover", goodLine() + marker), 0);
        QCOMPARE(m_series->hits("leftover", goodLine() + "Posx;\n"), 1);
        QCOMPARE(m_series->hits("empty-file", goodLine({{1, "Posx"}})), 0);
        // A file that can't be read has a finding of its own.
        QVERIFY(QFile::remove(m_series->root() + "a1.dpc"));
        QVERIFY(QDir(m_series->root()).mkdir("a1.dpc"));
        QCOMPARE(m_series->hits("leftover", goodLine()), 0);
    }

    void fileWithoutTasks()
    {
        QCOMPARE(m_series->hits("empty-file", "# info\n\n"), 1);
        QCOMPARE(m_series->hits("empty-file", ""), 1);
        QCOMPARE(m_series->hits("empty-file", goodLine()), 0);
        QCOMPARE(m_series->hits("empty-file", "[cfgPath]/a1.dpc\n"), 0);
    }

    /// The folder and its "_wait" hold one series.
    void seriesThatIsNamedTwiceIsCheckedOnce()
    {
        m_series->put("_wait/a.dpc", "Posx\n" + goodLine());
        const QString root = m_series->root();
        QVERIFY(QFile::link(root, root + "link"));
        for (const QStringList& paths :
             {QStringList{root, root + "_wait"}, QStringList{root + "_wait/a.dpc", root + "a.dpc"},
              QStringList{root + "_wait", root + "./", root}, QStringList{root, root + "link"}}) {
            const auto findings = checkAll(paths, m_series->options()).findings;
            QCOMPARE(std::count_if(findings.begin(), findings.end(),
                                   [](const Finding& finding) {
                                       return finding.rule == ruleNamed("bad-line");
                                   }),
                     1);
        }
    }

    void manyFindingsOfARuleAreCounted()
    {
        m_series->put("a.dpc", goodLine({{1, "Posx"}}).repeated(maxFindingsPerRule + 7));
        const auto findings = m_series->findings();
        QCOMPARE(m_series->said({"bad-line"}).size(), maxFindingsPerRule + 1);
        QCOMPARE(m_series->said({"bad-line"}).last(), QString("a.dpc:101:1 bad-line"));
        const auto last = std::find_if(findings.begin(), findings.end(),
                                       [](const Finding& finding) { return finding.more > 0; });
        QVERIFY(last != findings.end());
        QCOMPARE(last->more, 7);
        QCOMPARE(QString::fromStdString(last->text),
                 QString("7 more findings of this rule in the file: only 100 are listed"));
        m_series->put("a.dpc", goodLine({{1, "Posx"}}).repeated(maxFindingsPerRule));
        QCOMPARE(m_series->said({"bad-line"}).size(), maxFindingsPerRule);
    }

    /// An error among the many is not hidden behind comments that are too long.
    void countedFindingsAreAsBadAsTheWorst()
    {
        const QByteArray comment = '#' + QByteArray(1100, 'x') + '\n';
        m_series->put("a.dpc", comment.repeated(maxFindingsPerRule + 1) +
                                   goodLine({{11, '/' + QByteArray(1100, 'x')}}));
        const auto findings = m_series->findings();
        const auto last = std::find_if(findings.begin(), findings.end(),
                                       [](const Finding& finding) { return finding.more > 0; });
        QVERIFY(last != findings.end());
        QCOMPARE(last->severity, Severity::Error);
    }

    void moreThanCanBeChecked()
    {
        m_series->options().limits.entries = 3;
        QCOMPARE(m_series->hits("too-much", goodLine() + goodLine() + goodLine()), 0);
        QCOMPARE(m_series->hits("too-much", goodLine() + goodLine() + goodLine() + goodLine()), 1);
        // Lines that are not entries do not count.
        QCOMPARE(m_series->hits("too-much", goodLine() + "\n# c\nx\n" + goodLine() + "\n# c\n"), 0);
    }

    void moreCommentsThanALoadTakes()
    {
        const QByteArray most = QByteArray("# c\n").repeated(maxSeriesComments);
        QCOMPARE(m_series->hits("too-much", most + goodLine()), 0);
        m_series->put("a.dpc", most + "# d\n# e\n" + goodLine());
        QCOMPARE(m_series->said({"too-much"}), QStringList{"a.dpc:5001:1 too-much"});
        // The text goes on in the next file as long as it is empty.
        m_series->put("a.dpc", QByteArray("#\n").repeated(maxSeriesComments) + goodLine() +
                                   "[cfgPath]/a1.dpc\n");
        m_series->put("a1.dpc", "# c\n" + goodLine());
        QCOMPARE(m_series->said({"too-much"}), QStringList{"a1.dpc:1:1 too-much"});
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
        for (const int length : {maxFileName, maxFileName + 1}) {
            const QString file = m_series->root() + folder + '/' + folder + "/a.dpc";
            const QString path = file.left(length - 4).leftJustified(length - 4, 'n') + ".dpc";
            test::put(path, goodLine());
            const auto findings = checkAll({path}, m_series->options()).findings;
            QCOMPARE(std::count_if(findings.begin(), findings.end(),
                                   [](const Finding& finding) {
                                       return finding.rule == ruleNamed("long-name");
                                   }),
                     length - maxFileName);
        }
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
    static TestTask taskOfForm(IoMethod method, TestType type, int buffer, int chunkKib, bool isSet)
    {
        TestTask task;
        task.setDefaults();
        task.method = method;
        task.io.sysBufferMode = buffer;
        task.setChunkSize(bytesFromKib(chunkKib));
        task.io.flush = task.io.preallocate = isSet;
        task.iterations = isSet ? 3 : 1;
        task.sourcePath = path("[cfgPath]/s[cfgID]-[cfgTaskID].dat");
        task.destPath = path("[cfgPath]/d[cfgID]-[cfgTaskID]_[host]_[iter].dat");
        if (type == TestType::Write)
            task.sourcePath.clear();
        if (type == TestType::Read)
            task.destPath.clear();
        task.logPath = path("[cfgPath]/[host].txt");
        task.csvPath = path("[cfgPath]/[cfgName]_[cfgID]_[host].csv");
        return task;
    }

    QScopedPointer<SeriesFolder> m_series;
};

QTEST_APPLESS_MAIN(TestSeriesRules)
#include "tst_seriesrules.moc"
