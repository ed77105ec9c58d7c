#include "configset/filestocreate.h"
#include "model/pathvariables.h"
#include "tests/check/seriesfolder.h"

/// The rules about the "_init" file of a series.
class TestInitRules : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_series.reset(new SeriesFolder); }

    void initFileIsMissing()
    {
        m_series->put("a.dpc", goodLine());
        QCOMPARE(m_series->said({"init-missing"}), QStringList{"a.dpc:1:55 init-missing"});
        QVERIFY(m_series->text("init-missing").contains("the folder '/d/' does not exist"));
        m_series->put("a_init.dpc", "");
        QCOMPARE(m_series->said({"init-missing"}), QStringList());
        // Nothing needed, nothing missing.
        QVERIFY(QFile::remove(m_series->root() + "a_init.dpc"));
        QCOMPARE(m_series->hits("init-missing", goodLine({{12, ""}, {13, ""}})), 0);
    }

    void whatIsThereNeedsNoInitFile()
    {
        const QByteArray line =
            goodLine({{10, "/d/s"}, {12, "[cfgPath]/l.txt"}, {13, "[cfgPath]/c.csv"}});
        m_series->put("a.dpc", line);
        // The source is one fault, and the missing file its cause.
        QCOMPARE(m_series->said({"source-missing", "init-missing"}),
                 QStringList{"a.dpc:1:39 source-missing"});
        QVERIFY(m_series->text("source-missing")
                    .contains("and the series has no a_init.dpc that makes it"));
        m_series->setExisting("/d/s");
        QCOMPARE(m_series->said({"source-missing", "init-missing"}), QStringList());
        m_series->put("a_init.dpc", "");
        QCOMPARE(m_series->hits("init-outdated", line), 0);
    }

    /// Also the folder of a machine lies in one that must be there.
    void folderAboveThoseOfTheMachines()
    {
        const QByteArray line = goodLine({{11, "[cfgPath]/out/[host]/x"},
                                          {12, "[cfgPath]/log/[host]/l.txt"},
                                          {13, "[cfgPath]/[host].csv"}});
        m_series->put("a.dpc", line);
        QCOMPARE(m_series->said({"init-missing"}), QStringList{"a.dpc:1:46 init-missing"});
        QVERIFY(m_series->text("init-missing").startsWith("the folder '[cfgPath]/out/' does not"));
        m_series->put("a_init.dpc", lineTo("[cfgPath]/log/elsewhere/dummyFile").toLatin1());
        QCOMPARE(m_series->said({"init-outdated"}), QStringList{"a.dpc:1:46 init-outdated"});
        QVERIFY(QDir(m_series->root()).mkdir("out"));
        QCOMPARE(m_series->said({"init-outdated"}), QStringList());
    }

    void initFileNamesAreComparedAsFiles()
    {
        const QByteArray root = m_series->root().toLatin1();
        m_series->put("a_init.dpc",
                      lineTo(root + "s.dat").toLatin1() + lineTo("[cfgPath]/out/x").toLatin1());
        const QByteArray line = goodLine({{10, "[cfgPath]/s.dat"},
                                          {11, "[cfgPath]/out/[host]"},
                                          {12, "[cfgPath]/l"},
                                          {13, "[cfgPath]/c"}});
        m_series->put("a.dpc", line);
        QCOMPARE(m_series->said({"init-outdated", "init-unneeded"}), QStringList());
    }

    void initFileIsOutdated()
    {
        const QSet<QString> rules{"init-outdated", "init-unneeded"};
        m_series->save({readingTask("[cfgPath]/s.dat")});
        QCOMPARE(m_series->said(rules), QStringList());
        // Lacks a name, makes one for nobody, makes one in another size.
        TaskList tasks{readingTask("[cfgPath]/other.dat")};
        const QByteArray init = test::contentOf(m_series->root() + "a_init.dpc");
        m_series->save(tasks);
        m_series->put("a_init.dpc", init);
        // One finding is enough for a source that nothing makes.
        QCOMPARE(m_series->said(),
                 (QStringList{"_wait/a.dpc:3:55 source-missing", "a_init.dpc:1:1 init-unneeded"}));
        QCOMPARE(m_series->text("source-missing"),
                 QString("the source '[cfgPath]/other.dat' does not exist, and nothing makes it; "
                         "correct the name; or, for the _init file to make it, run dpc init "
                         "--write, or load and save the series again"));
        tasks = {readingTask("[cfgPath]/s.dat")};
        tasks[0].io.fileSize = 4096 * 1024;
        m_series->save(tasks);
        m_series->put("a_init.dpc", init);
        QVERIFY(m_series->text("init-outdated")
                    .startsWith("line 1 of the _init file makes '[cfgPath]/s.dat' with 102400 KiB, "
                                "but the task has 4096 KiB"));
    }

    void allNamesThatTheInitFileLacksAreTold()
    {
        TestTask task = readingTask("[cfgPath]/s_[iter].dat");
        task.iterations = 3;
        m_series->save({task});
        m_series->put("a_init.dpc", "");
        const auto findings = m_series->findings();
        const auto lack = std::find_if(findings.begin(), findings.end(), [](const Finding& f) {
            return f.rule == ruleNamed("source-missing");
        });
        QVERIFY(lack != findings.end());
        QVERIFY(QString::fromStdString(lack->text)
                    .startsWith("the source '[cfgPath]/s_0.dat' does not exist, nor 2 more, and "));
        QCOMPARE(lack->names, (std::vector<std::string>{"[cfgPath]/s_0.dat", "[cfgPath]/s_1.dat",
                                                        "[cfgPath]/s_2.dat"}));
    }

    void foldersOfAllIterationsThatLackAreOneFinding()
    {
        m_series->put("a_init.dpc", "");
        m_series->put(
            "a.dpc",
            goodLine(
                {{8, "3"}, {11, "[cfgPath]/o[iter]/x"}, {12, "[cfgPath]/l"}, {13, "[cfgPath]/c"}}));
        QCOMPARE(m_series->said({"init-outdated"}).size(), 1);
        QVERIFY(m_series->text("init-outdated")
                    .startsWith("the folder '[cfgPath]/o0/' does not exist, nor 2 more, and "));
    }

    /// In whatever order they are, and however the file is spelled.
    void lineThatIsCommentedOutHidesNoneThatMakesTheFile()
    {
        const QByteArray makes = lineTo("[cfgPath]/s.dat").toLatin1();
        const QByteArray full = m_series->root().toLatin1() + "s.dat";
        const QByteArray comment = "# " + QByteArray(makes).replace("[cfgPath]/s.dat", full);
        m_series->put("a.dpc", goodLine({{7, "77"}, {10, "[cfgPath]/s.dat"}, {11, "MEMORY"}}));
        for (const QByteArray& init : {makes + comment, comment + makes}) {
            m_series->put("a_init.dpc", init);
            QCOMPARE(m_series->said({"source-missing"}), QStringList());
            QVERIFY(m_series->text("init-outdated")
                        .startsWith(QString("line %1 of the _init file makes")
                                        .arg(init.startsWith('#') ? 2 : 1)));
        }
        m_series->put("a_init.dpc", comment + comment);
        QCOMPARE(m_series->said({"source-missing"}).size(), 1);
    }

    void commentedLineMakesNothing()
    {
        m_series->put("a_init.dpc", "# " + lineTo("[cfgPath]/out/dummyFile").toLatin1());
        const QByteArray line =
            goodLine({{11, "[cfgPath]/out/x"}, {12, "[cfgPath]/l"}, {13, "[cfgPath]/c"}});
        QCOMPARE(m_series->hits("init-outdated", line), 1);
        QVERIFY(
            m_series->text("init-outdated").contains("line 1 of the _init file is commented out"));
        QVERIFY(QDir(m_series->root()).mkdir("out"));
        QCOMPARE(m_series->hits("init-outdated", line), 0);
    }

    /// A line that does not load may be the one that needs it, and so may a file that lacks.
    void whatTheInitFileMakesForLinesThatDoNotLoadIsNotUnneeded()
    {
        const QByteArray read = goodLine({{10, "[cfgPath]/s.dat"}, {11, "MEMORY"}});
        m_series->put("a_init.dpc", lineTo("[cfgPath]/s.dat").toLatin1());
        m_series->put("a.dpc", goodLine());
        QCOMPARE(m_series->said({"init-unneeded"}), QStringList{"a_init.dpc:1:1 init-unneeded"});
        for (const QByteArray& lines :
             {QByteArray(read).replace("Posix", "Posx"), goodLine() + "[cfgPath]/a1.dpc\n"})
            QCOMPARE(m_series->hits("init-unneeded", goodLine() + lines), 0);
        // Nor is it known of a file that can't be read.
        QVERIFY(QDir(m_series->root()).mkdir("a1.dpc"));
        QCOMPARE(m_series->hits("init-unneeded", goodLine() + "[cfgPath]/a1.dpc\n"), 0);
        QVERIFY(QDir(m_series->root()).rmdir("a1.dpc"));
        m_series->put("a1.dpc", goodLine());
        QCOMPARE(m_series->hits("init-unneeded", goodLine() + "[cfgPath]/a1.dpc\n"), 1);
        QVERIFY(QFile::remove(m_series->root() + "a.dpc"));
        QCOMPARE(m_series->said({"init-unneeded"}, "a1.dpc"), QStringList());
    }

    void linesAreComparedWithTheFirstOfVeryManyIterations()
    {
        m_series->put("a_init.dpc",
                      lineTo("[cfgPath]/s0").toLatin1() + lineTo("[cfgPath]/x0").toLatin1());
        m_series->put(
            "a.dpc",
            goodLine(
                {{2, ""}, {3, ""}, {8, "2147483647"}, {10, "[cfgPath]/s[iter]"}, {11, "MEMORY"}}));
        QCOMPARE(m_series->said({"init-unneeded"}), QStringList{"a_init.dpc:2:1 init-unneeded"});
    }

    void linesForNamesOfAnyMachineAreNotUnneeded_data()
    {
        QTest::addColumn<QByteArray>("made");
        QTest::addColumn<QByteArray>("used");
        QTest::addColumn<int>("unneeded");
        const auto row = [](const char* made, const char* used, int unneeded) {
            QTest::addRow("%s for %s", made, used)
                << "[cfgPath]/" + QByteArray(made) << "[cfgPath]/" + QByteArray(used) << unneeded;
        };
        row("a_1.dat", "a_[host].dat", 0);
        row("a_.dat", "a_[host].dat", 0);
        row("b_1.dat", "a_[host].dat", 1);
        row("a_1.dax", "a_[host].dat", 1);
        row("a_1.dat2", "a_[host].dat", 1);
        row("a_1.da", "a_[host].dat", 1);
        row("p_q_x", "[host]_[date]_x", 0);
        row("p_qx", "[host]_[date]_x", 1);
        row("xabyab.dat", "[host]ab.dat", 0);
        row("xaby.dat", "[host]ab.dat", 1);
        row("aab", "[host]ab[date]", 0);
        row("o_p/dummyFile", "o_[host]/x", 0);
        row("q_p/dummyFile", "o_[host]/x", 1);
        row("o_p.d/dummyFile", "o_[host].d/x/y", 0);
        row("o_p.d/x/dummyFile", "o_[host].d/x/y", 0);
        row("o_p.e/dummyFile", "o_[host].d/x/y", 1);
        row("o_p.d/y", "o_[host].d/x/y", 1);
        row("o_p.d/x/y/z", "o_[host].d/x/y", 1);
        row("dummyFile", "a_[host].dat", 0);
        row("a.dat", "a.dat", 0);
        row("b.dat", "a.dat", 1);
    }

    /// A file that a machine may use, or the folder of one.
    void linesForNamesOfAnyMachineAreNotUnneeded()
    {
        QFETCH(QByteArray, made);
        QFETCH(QByteArray, used);
        m_series->put("a_init.dpc", lineTo(made).toLatin1());
        QFETCH(int, unneeded);
        QCOMPARE(m_series->hits("init-unneeded", goodLine({{11, used}, {12, used}, {13, used}})),
                 unneeded);
    }

    /// The editor puts them there: the folder of an empty field, a path of another system.
    void whatASaveWritesIntoTheInitFileIsNotUnneeded()
    {
        for (const char* log : {"", "x.txt", "D:\\log\\x.txt"}) {
            TestTask task = readingTask("[cfgPath]/s.dat");
            task.logPath = path(log);
            m_series->save({task});
            TaskList tasks;
            loadSeries({m_series->root(), "a"}, tasks, silentListener());
            m_series->save(tasks);
            QCOMPARE(m_series->said({"init-unneeded"}), QStringList());
        }
    }

    /// The editor has just made the _init file for them.
    void noFolderLacksAfterASave_data()
    {
        QTest::addColumn<QByteArray>("folder");
        for (const char* parent : {"[cfgPath]/", "", "/d/", "../", "[cfgPath]/../", "x/../"}) {
            QTest::addRow("%s", parent) << parent + QByteArray("o");
            for (const int cut : {481, 490, 499})
                QTest::addRow("%s, %d", parent, cut)
                    << (parent + QByteArray("123456789/").repeated(50)).left(cut) + 'x';
        }
    }

    void noFolderLacksAfterASave()
    {
        QFETCH(QByteArray, folder);
        TestTask task = readingTask("[cfgPath]/s.dat");
        task.logPath = path((folder + "/l").constData());
        m_series->save({task});
        QCOMPARE(m_series->said({"init-missing", "init-outdated", "init-unneeded"}), QStringList());
    }

    /// A save takes a source for missing that lies beside the config files in "_wait".
    void saveIsNotAdvisedWhereASourceWouldBeMadeAnew()
    {
        m_series->put("_wait/a.dpc",
                      goodLine({{10, "[cfgPath]/s.dat"}, {11, "[cfgPath]/new/x.dat"}}));
        m_series->put("a_init.dpc", "");
        QVERIFY(m_series->text("init-outdated").endsWith("load and save the series again"));
        m_series->setExisting(m_series->root() + "s.dat", 77);
        QVERIFY(m_series->text("init-outdated").contains("into the _init file by hand"));
        QVERIFY(m_series->text("init-outdated").contains("'[cfgPath]/s.dat' anew"));
    }

    /// A load and a save lose a line that does not load, so nobody is told to do that.
    void saveIsNotAdvisedWhereALineWouldBeLost_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("reason");
        QTest::newRow("mistyped") << goodLine({{1, "Posx"}}) << "a.dpc:2 does not load";
        QTest::newRow("winapi") << goodLine({{1, "WinApi"}}) << "a.dpc:2 does not load";
        QTest::newRow("semicolon")
            << goodLine({{11, "/d/a;b"}}) << "a.dpc:2 is cut when it is loaded";
        QTest::newRow("long path")
            << goodLine({{11, '/' + QByteArray(600, 'x')}}) << "a.dpc:2 is cut when it is loaded";
        QTest::newRow("zero byte")
            << goodLine().chopped(1) + QByteArray("\0x\n", 3) << "a.dpc:2 is cut when it is loaded";
        QTest::newRow("long line") << goodLine({{14, "true" + QByteArray(1000, ' ')}})
                                   << "a.dpc:2 is cut when it is loaded";
        QTest::newRow("split line")
            << goodLine().replace("/d/[host].txt", "/d/\n[host].txt") << "a.dpc:2 loads in part";
        QTest::newRow("long file")
            << goodLine().repeated(60) << QString("a.dpc would be cut at %1").arg(maxConfigFile);
    }

    void saveIsNotAdvisedWhereALineWouldBeLost()
    {
        QFETCH(QByteArray, line);
        QFETCH(QString, reason);
        m_series->put("a_init.dpc", "");
        m_series->put("a.dpc", goodLine() + line);
        for (const Finding& finding : m_series->findings())
            QVERIFY2(finding.text.find("load and save") == std::string::npos, finding.text.c_str());
        QVERIFY2(m_series->text("init-outdated").contains(reason),
                 qPrintable(m_series->text("init-outdated")));
        m_series->put("a.dpc", goodLine());
        QVERIFY(m_series->text("init-outdated").contains("load and save the series again"));
    }

    /// Each path looks for the folder that a save without a name made another one for.
    void folderIsMadeUnderTheNameOfNoSeries_data()
    {
        QTest::addColumn<int>("path");
        QTest::addColumn<QByteArray>("folder");
        QTest::newRow("destination") << 11 << QByteArray("o");
        QTest::newRow("log") << 12 << QByteArray("l");
        QTest::newRow("csv") << 13 << QByteArray("c");
    }

    void folderIsMadeUnderTheNameOfNoSeries()
    {
        QFETCH(int, path);
        QFETCH(QByteArray, folder);
        m_series->put("a.dpc", goodLine({{path, "[cfgPath]/[cfgName]" + folder + "/x"}}));
        const QString made = "[cfgPath]/" + folder + '/' + dummyFileName;
        m_series->put("a_init.dpc", lineTo(qPrintable(made)).toLatin1());
        QCOMPARE(m_series->said({"init-names"}).size(), 1);
        QVERIFY2(m_series->text("init-names").contains("makes '" + made + '\''),
                 qPrintable(m_series->text("init-names")));
    }

    void saveIsNotAdvisedForASeriesThatIsTooLongToLoad()
    {
        m_series->put("a_init.dpc", "");
        m_series->put("a.dpc", goodLine({{10, "[cfgPath]/s.dat"}}).repeated(3));
        m_series->options().limits.entries = 2;
        QVERIFY(m_series->text("source-missing").contains("(the series is too long to load)"));
        m_series->options().limits.entries = 3;
        QVERIFY(m_series->text("source-missing").contains("load and save the series again"));
    }

    /// Two spellings, of which each is a mistake of its own.
    void folderThatLacksIsToldOfEachPathThatNeedsIt()
    {
        const QByteArray line = goodLine({{11, "[cfgPath]/o/x"},
                                          {12, m_series->root().toLatin1() + "o/l.txt"},
                                          {13, "[cfgPath]/c.csv"}});
        m_series->put("a.dpc", line);
        m_series->put("a_init.dpc", "");
        QCOMPARE(m_series->said({"init-outdated"}).size(), 2);
        QVERIFY(QDir(m_series->root()).mkdir("o"));
        QCOMPARE(m_series->said({"init-outdated"}), QStringList());
    }

    void lineForNoTaskOfAnyConfigFileIsUnneeded()
    {
        m_series->put("a.dpc", "# info\n" + goodLine() + "[cfgPath]/a1.dpc\n");
        m_series->put("a1.dpc", goodLine({{10, "[cfgPath]/s1.dat"}}));
        m_series->put("a_init.dpc", lineTo("[cfgPath]/s1.dat").toLatin1() +
                                        lineTo("[cfgPath]/s2.dat").toLatin1());
        QCOMPARE(m_series->said({"init-unneeded"}), QStringList{"a_init.dpc:2:1 init-unneeded"});
    }

    /// Their names would fill the memory.
    void foldersOfALargeInitFileAreTakenForMade()
    {
        const auto deep = [](int i) {
            const QByteArray folder = '/' + QByteArray::number(i);
            return lineTo(folder + QByteArray("/a").repeated(240) + "/x").toLatin1();
        };
        m_series->options().rulesOff = {ruleNamed("init-unneeded")};
        QByteArray init;
        for (int i = 0; i < 100; ++i)
            init += deep(i);
        m_series->put("a_init.dpc", init);
        QCOMPARE(m_series->hits("init-outdated", goodLine()), 1);
        for (int i = 100; i < 200; ++i)
            init += deep(i);
        m_series->put("a_init.dpc", init);
        QCOMPARE(m_series->hits("init-outdated", goodLine()), 0);
    }

    void namesOfOtherMachinesAreNotCompared()
    {
        TestTask task = readingTask("[cfgPath]/s.dat");
        task.logPath = path("[cfgPath]/[host]/log.txt");
        m_series->save({task});
        const QString init = m_series->root() + "a_init.dpc";
        const QByteArray content = test::contentOf(init);
        const QByteArray here = kvToQString(getComputerName()).toLatin1();
        QVERIFY(content.contains(here));
        test::put(init, QByteArray(content).replace(here, "elsewhere"));
        QCOMPARE(m_series->said({"init-outdated", "init-unneeded"}), QStringList());
    }

    void initFileIsJudgedLikeAnyOther()
    {
        m_series->put("a.dpc", goodLine());
        m_series->put("a_init.dpc", "Strem;x\n" + goodLine({{11, "[CfgPath]/x"}, {12, ""}}));
        const QStringList said =
            m_series->said({"bad-line", "unknown-variable", "empty-log", "beyond-form"});
        QCOMPARE(said,
                 (QStringList{"a_init.dpc:1:1 bad-line", "a_init.dpc:2:46 unknown-variable"}));
        QVERIFY(QFile::remove(m_series->root() + "a_init.dpc"));
        QVERIFY(QDir(m_series->root()).mkdir("a_init.dpc"));
        QCOMPARE(m_series->said({"unreadable", "init-missing"}),
                 QStringList{"a_init.dpc:1:1 unreadable"});
    }

    /// One finding for each fault, of the rule that names the cause.
    void causeIsToldInPlaceOfWhatFollows()
    {
        const auto writing = [](const char* dest) {
            return goodLine({{11, dest}, {12, "[cfgPath]/l.txt"}, {13, "[cfgPath]/c.csv"}});
        };
        m_series->put("f", "");
        m_series->put("a_init.dpc", "");
        for (const char* dest : {"[cfgPath]/f/x", "[cfgPath]/f/e/d/x"}) {
            m_series->put("a.dpc", writing(dest));
            QCOMPARE(m_series->errorsAndWarnings(), QStringList{"a.dpc:1:46 folder-is-file"});
        }
        m_series->put(
            "a.dpc",
            goodLine({{11, "[cfgPath]/x"}, {12, "[cfgPath]/f/e/l.txt"}, {13, "[cfgPath]/c.csv"}}));
        QCOMPARE(m_series->errorsAndWarnings(), QStringList{"a.dpc:1:58 folder-is-file"});
        m_series->put(
            "a.dpc",
            goodLine({{11, "[cfgPath]/x"}, {12, "[cfgPath]/x/l.txt"}, {13, "[cfgPath]/c.csv"}}));
        QCOMPARE(m_series->said({"folder-is-file"}), QStringList{"a.dpc:1:46 folder-is-file"});
        m_series->put("a_init.dpc", lineTo("[cfgPath]/o").toLatin1());
        m_series->put("a.dpc", writing("[cfgPath]/o/x"));
        QCOMPARE(m_series->errorsAndWarnings(), QStringList{"a.dpc:1:46 folder-is-file"});
        m_series->put("a_init.dpc", (lineTo("[cfgPath]/o") + lineTo("[cfgPath]o")).toLatin1());
        QCOMPARE(m_series->said({"folder-is-file"}), QStringList{"a.dpc:1:46 folder-is-file"});
        m_series->put("a.dpc", writing("[cfgPath]/o/x") + writing("[cfgPath]/o/y"));
        QCOMPARE(m_series->said({"folder-is-file"}), QStringList{"a.dpc:1:46 folder-is-file"});
        m_series->put("a.dpc", writing("[cfgPath]/o/x"));
        m_series->put("a_init.dpc", "# " + lineTo("[cfgPath]/o").toLatin1());
        QCOMPARE(m_series->said({"folder-is-file"}), QStringList());
        m_series->put("a_init.dpc", "");
        QVERIFY(QFile::link("nowhere", m_series->root() + "o"));
        QCOMPARE(m_series->said({"folder-is-file"}), QStringList());

        QVERIFY(QFile::remove(m_series->root() + "a_init.dpc"));
        QVERIFY(QDir(m_series->root()).mkdir("a_init.dpc"));
        m_series->put("a.dpc", goodLine({{10, "[cfgPath]/s"},
                                         {11, "MEMORY"},
                                         {12, "[cfgPath]/l.txt"},
                                         {13, "[cfgPath]/c.csv"}}));
        QCOMPARE(m_series->said({"source-missing", "unreadable"}),
                 QStringList{"a_init.dpc:1:1 unreadable"});
    }

    void existingFileInThePlaceOfAFolderIsToldOnce()
    {
        m_series->setExisting(m_series->root() + "o");
        m_series->put("a_init.dpc", lineTo("[cfgPath]/o").toLatin1());
        m_series->put("a.dpc", goodLine({{11, "[cfgPath]/o/x"}}));
        QCOMPARE(m_series->said({"folder-is-file"}), QStringList{"a.dpc:1:46 folder-is-file"});
    }

    /// They are there when the task runs, also if they still wait.
    void configFileAsASourceIsNotMissing()
    {
        m_series->put("_wait/a.dpc", goodLine({{10, "[cfgPath]/[cfgName].dpc"}}));
        QCOMPARE(m_series->said({"source-missing"}), QStringList());
    }

    void initFileInWaitIsNotThatOfTheSeries()
    {
        m_series->save({readingTask("[cfgPath]/s.dat")});
        QVERIFY(
            QFile::rename(m_series->root() + "a_init.dpc", m_series->root() + "_wait/a_init.dpc"));
        for (const char* chosen : {"a.dpc", "_wait/a.dpc", ""})
            QCOMPARE(m_series->said({"source-missing", "init-place"}, chosen),
                     (QStringList{"_wait/a.dpc:3:55 source-missing",
                                  "_wait/a_init.dpc:1:1 init-place"}));
    }

    /// The path of each file is one that the user can open from where the check was started.
    void initFileIsShownFromInsideOfWait()
    {
        m_series->put("_wait/a.dpc", goodLine());
        m_series->put("a_init.dpc", "Posx\n");
        const auto shown = [&](const QString& path) {
            for (const Finding& finding : checkAll({path}, m_series->options()).findings) {
                if (finding.rule == ruleNamed("bad-line"))
                    return finding.path;
            }
            return QString();
        };
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_series->root() + "_wait"));
        const QString inside = shown("a.dpc");
        QVERIFY(QDir::setCurrent(m_series->root()));
        const QString above = shown("_wait/a.dpc");
        QVERIFY(QDir::setCurrent(before));
        QCOMPARE(inside, QString("../a_init.dpc"));
        QCOMPARE(above, QString("a_init.dpc"));
    }

private:
    QScopedPointer<SeriesFolder> m_series;
};

QTEST_APPLESS_MAIN(TestInitRules)
#include "tst_initrules.moc"
