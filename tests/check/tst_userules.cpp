#include "tests/check/seriesfolder.h"
#include "tests/check/tasklines.h"

/// The rules that ask who uses which file.
class TestUseRules : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_series.reset(new SeriesFolder); }

    void specialFiles()
    {
        const QByteArray special = m_series->root().toLatin1() + "special";
        const QByteArrayList lines = {reading(special), writing(special),
                                      withLog("[cfgPath]/[host].dat", special), withCsv(special)};
        m_series->put("a_init.dpc", dummy);
        for (const PathStatus::Kind kind : {PathStatus::Kind::Pipe, PathStatus::Kind::Socket}) {
            m_series->setSpecial(special, kind);
            for (const QByteArray& line : lines) {
                QCOMPARE(m_series->hits("special-file", line), 1);
                QCOMPARE(m_series->said().size(), 1);
                QCOMPARE(m_series->severity("special-file"), Severity::Error);
            }
        }
        m_series->setSpecial(special, PathStatus::Kind::Disk);
        QCOMPARE(m_series->hits("special-file", reading(special)), 0);
        QCOMPARE(m_series->hits("special-file", writing(special)), 1);
        QCOMPARE(m_series->severity("special-file"), Severity::Warning);
    }

    /// The file is there, so that no save makes it, and the task reads nothing.
    void sourceWithoutAnyBytes()
    {
        m_series->put("a_init.dpc", dummy);
        for (const char* device : {"/dev/null", "/dev/zero"})
            m_series->setSpecial(device, PathStatus::Kind::Device);
        QCOMPARE(m_series->hits("special-file", reading("/dev/null")), 1);
        QCOMPARE(m_series->severity("special-file"), Severity::Warning);
        QCOMPARE(m_series->said().size(), 1);
        m_series->put("a.dpc", reading("/dev/zero") + writing("/dev/null") +
                                   withLog("[cfgPath]/x", "/dev/null") + withCsv("/dev/null"));
        QCOMPARE(m_series->said(), QStringList());
    }

    /// "/e/x" is on the disk of Windows as well, if another path can be on no other.
    void rootOfWindowsIsNotLookedUpHere()
    {
        m_series->put("a_init.dpc", dummy);
        m_series->put("a.dpc", writing("\\e\\x") + reading("/e/x") + writing("/none/x") +
                                   withLog("[cfgPath]/[host]", "/none/l"));
        QCOMPARE(m_series->said(), QStringList());
        for (const QByteArray& line :
             {withLog("[cfgPath]/o", "\\e\\l"), withCsv("\\e\\c"), reading("\\e\\s")})
            QCOMPARE(m_series->hits("source-missing", line + reading("/e/x")), 0);
        QCOMPARE(m_series->hits("source-missing", writing("C:\\e\\x") + reading("/e/x")), 1);
        QCOMPARE(m_series->hits("source-missing", writing("\\\\nas\\e\\x") + reading("/e/x")), 1);
        QCOMPARE(m_series->hits("source-missing", writing("\\e\\x") + reading("[cfgPath]/x")), 1);
    }

    /// Only this machine's folder for temporary files has a name that is known.
    void csvThatIsTheLogOfATaskWithoutFiles()
    {
        QCOMPARE(m_series->hits("log-is-csv", task("MEMORY", "MEMORY", 1024, 1, "[cfgPath]/r.txt",
                                                   "[cfgPath]/r.txt")),
                 1);
    }

    void iterationInWhichSourceAndDestinationMeet()
    {
        m_series->put("a.dpc", goodLine({{8, "3"}, {10, "/d/1"}, {11, "/d/[iter]"}}));
        QVERIFY(m_series->text("same-file").contains("are the same file '/d/1' in iteration 1: "));
        m_series->put("a.dpc", goodLine({{8, "3"}, {10, "/d/0"}, {11, "/d/[iter]"}}));
        QVERIFY(m_series->text("same-file").contains("are the same file '/d/0': "));
    }

    void namesThatMeetInTheTemporaryFolder()
    {
        const QByteArray temp = QDir::tempPath().toLatin1();
        const QByteArray lines = task("[temp]/x", temp + "/x");
        QCOMPARE(m_series->hits("same-file", lines), 1);
        m_series->options().hosts = QStringList{"pc1", "pc2"};
        QCOMPARE(m_series->hits("same-file", lines), 0);
        QCOMPARE(m_series->hits("same-file", task("[temp]/e/../x", "[temp]/x")), 1);
        QCOMPARE(m_series->hits("results-over-data", withLog(temp + "/x", "[temp]/x")), 0);
        QCOMPARE(m_series->hits("results-over-data", withLog("[temp]/x", "[temp]\\x")), 1);
    }

    /// Nothing is lost in it, and nothing meets there.
    void devicesThatHoldNoBytesMayBeNamed()
    {
        const QByteArray null = m_series->root().toLatin1() + "null";
        m_series->setSpecial(null, PathStatus::Kind::Device);
        m_series->put("a_init.dpc", dummy);
        m_series->options().hosts = QStringList{"pc1", "pc2"};
        for (const QByteArray& lines :
             {writing(null), reading(null), task(null, null), reading(null) + writing(null),
              withLog(null, null), task("MEMORY", null, 1024, 1, null, null)}) {
            m_series->put("a.dpc", lines);
            QCOMPARE(m_series->said({"special-file", "same-file", "overwrites-source",
                                     "results-over-data", "log-is-csv", "shared-output",
                                     "shared-results", "maybe-shared"}),
                     QStringList());
        }
        QCOMPARE(m_series->hits("folder-is-file", writing(null + "/x")), 1);
    }

    void linksIntoFoldersThatDoNotExist()
    {
        m_series->put("a_init.dpc", dummy);
        const QString link = m_series->root() + "link";
        QVERIFY(QFile::link("none/x", link));
        for (const QByteArray& name : {QByteArray("[cfgPath]/link"), link.toLatin1()}) {
            for (const QByteArray& line :
                 {writing(name), withLog("[cfgPath]/[host].dat", name), withCsv(name)}) {
                QCOMPARE(m_series->hits("dest-folder", line), 1);
                QCOMPARE(m_series->said().size(), 1);
            }
        }
        m_series->put("a_init.dpc", making("[cfgPath]/none/dummyFile", 0) + dummy);
        QCOMPARE(m_series->hits("dest-folder", writing("[cfgPath]/link")), 0);
        QCOMPARE(m_series->said(), QStringList());
        QVERIFY(QDir(m_series->root()).mkdir("none"));
        m_series->put("a_init.dpc", dummy);
        QCOMPARE(m_series->hits("dest-folder", writing("[cfgPath]/link")), 0);
        // The file that it makes is a folder for another task.
        QVERIFY(QDir(m_series->root()).rmdir("none"));
        m_series->put("a.dpc", writing("[cfgPath]/link") + writing("[cfgPath]/none"));
        QVERIFY(m_series->said().contains("a.dpc:2:62 folder-is-file"));
    }

    /// Lines in which one rule finds something, and lines in which none does.
    void oneRuleHitsAndNoneMisses_data()
    {
        QTest::addColumn<QByteArray>("rule");
        QTest::addColumn<QByteArray>("init");
        QTest::addColumn<QByteArray>("bad");
        QTest::addColumn<QByteArray>("good");
        const auto row = [](const char* name, const char* rule, const QByteArray& bad,
                            const QByteArray& good, const QByteArray& made = {}) {
            QTest::newRow(name) << QByteArray(rule) << made + dummy << bad << good;
        };
        const QByteArray source = making("[cfgPath]/s.dat");
        row("same in a later iteration", "same-file",
            task("[cfgPath]/s.dat", "[cfgPath]/s[iter].dat", 1024, 3) +
                task("[cfgPath]/s2.dat", "[cfgPath]/s[iter].dat", 1024, 3),
            task("[cfgPath]/s.dat", "[cfgPath]/t[iter].dat", 1024, 3),
            source + making("[cfgPath]/s2.dat"));
        row("same by backslashes", "same-file", task("[cfgPath]/s.dat", "[cfgPath]\\s.dat"),
            task("[cfgPath]/s.dat", "[cfgPath]\\t.dat"), source);
        row("same on Windows", "same-file", task("C:\\e\\s.dat", "c:/E/S.dat"),
            task("C:\\e\\s.dat", "C:\\e\\t.dat"));
        row("same on a share", "same-file", task("//nas/e/s.dat", "\\\\NAS\\e\\s.dat"),
            task("//nas/e/s.dat", "\\\\nas\\e\\t.dat"));
        row("log is the destination", "results-over-data",
            withLog("[cfgPath]/[host].dat", "[cfgPath]/[host].dat"),
            withLog("[cfgPath]/[host].dat", "[cfgPath]/[host].log"));
        row("log is the destination of another task", "results-over-data",
            writing("[cfgPath]/a_[host].dat") +
                withLog("[cfgPath]/b_[host].dat", "[cfgPath]/a_[host].dat"),
            writing("[cfgPath]/a_[host].dat") +
                withLog("[cfgPath]/b_[host].dat", "[cfgPath]/c_[host].dat"));
        row("log is a destination in an iteration", "results-over-data",
            task("MEMORY", "[cfgPath]/[iter].dat", 1024, 3, "[cfgPath]/2.dat"),
            task("MEMORY", "[cfgPath]/[iter].dat", 1024, 3, "[cfgPath]/3.dat"));
        row("log is the destination in each iteration", "results-over-data",
            task("MEMORY", "[cfgPath]/[iter].dat", 1024, 3, "[cfgPath]/[iter].dat"),
            task("MEMORY", "[cfgPath]/[iter].dat", 1024, 3, "[cfgPath]/[iter].log"));
        row("csv is the source", "results-over-data",
            task("[cfgPath]/s.dat", "MEMORY", 1024, 1, "[cfgPath]/l.txt", "[cfgPath]/s.dat"),
            task("[cfgPath]/s.dat", "MEMORY", 1024, 1, "[cfgPath]/l.txt", "[cfgPath]/s.csv"),
            source);
        row("csv is the log", "log-is-csv", withCsv("[cfgPath]/r.txt", "[cfgPath]/r.txt"),
            withCsv("[cfgPath]/r.csv", "[cfgPath]/r.txt"));
        row("csv is the log of another task", "log-is-csv",
            withCsv("[cfgPath]/a.csv", "[cfgPath]/a.txt") +
                withCsv("[cfgPath]/./a.txt", "[cfgPath]/b.txt"),
            withCsv("[cfgPath]/a.csv", "[cfgPath]/a.txt") +
                withCsv("[cfgPath]/a.csv", "[cfgPath]/a.txt"));
        row("destination is the config file", "overwrites-series", writing("[cfgPath]/a.dpc"),
            writing("[cfgPath]/b.dpc"));
        row("destination is the file that waits", "overwrites-series",
            writing("[cfgPath]/_wait/[cfgName].dpc"), writing("[cfgPath]/[cfgName].dat"));
        row("log is the _init file", "overwrites-series",
            withLog("[cfgPath]/x_[host].dat", "[cfgPath]/[cfgName]_init.dpc"),
            withLog("[cfgPath]/x_[host].dat", "[cfgPath]/[cfgName]_init.txt"));
        row("csv is the next config file", "overwrites-series", withCsv("[cfgPath]/a1.dpc"),
            withCsv("[cfgPath]/a1.csv"));
        row("destination is the file of rules", "overwrites-series", writing("[cfgPath]/dpc.rules"),
            writing("[cfgPath]/dpc.rule"));
        row("csv is the file of rules", "overwrites-series", withCsv("[cfgPath]/x/../dpc.rules"),
            withCsv("[cfgPath]/_wait/dpc.rules"));
        row("two sizes", "source-size",
            reading("[cfgPath]/s.dat") + reading("[cfgPath]/s.dat", 2048),
            reading("[cfgPath]/s.dat") + reading("[cfgPath]/s.dat"), source);
        row("two sizes by two spellings", "source-size",
            reading("[cfgPath]/s.dat") + reading("[cfgPath]/e/../s.dat", 2048),
            reading("[cfgPath]/s.dat") + writing("[cfgPath]/t.dat", 2048) +
                reading("[cfgPath]/t.dat", 4096),
            source + making("[cfgPath]/t.dat", 4096));
        row("parts that come out the same", "names-meet",
            writing("[cfgPath]/o[cfgTaskID][iter].dat", 1024, 12).repeated(12),
            writing("[cfgPath]/o[cfgTaskID]_[iter].dat", 1024, 12).repeated(12));
        row("written again", "names-meet",
            writing("[cfgPath]/o[iter]", 1024, 11) + writing("[cfgPath]/o1[iter]", 1024, 1),
            writing("[cfgPath]/o[iter]", 1024, 3) + writing("[cfgPath]/o[iter]", 1024, 3) +
                writing("[cfgPath]/o2"));
        row("number of the task that is left again", "names-meet",
            writing("[cfgPath]/[cfgTaskID]/../x") + writing("[cfgPath]/[cfgTaskID]/../x", 2048),
            writing("[cfgPath]/[cfgTaskID]x") + writing("[cfgPath]/[cfgTaskID]x", 2048));
        row("number of the iteration that is left again", "names-meet",
            writing("[cfgPath]/[iter]/../x", 1024, 2), writing("[cfgPath]/[iter]/../x", 1024, 1));
        row("destination ends in a separator", "file-is-folder", writing("[cfgPath]/out/"),
            writing("[cfgPath]/out"));
        row("destination ends in a backslash", "file-is-folder", writing("C:\\out\\"),
            writing("C:\\out"));
        row("destination ends in a dot", "file-is-folder", writing("[cfgPath]/out/."),
            writing("[cfgPath]/out/.x"));
        row("destination ends in two dots", "file-is-folder", writing("[cfgPath]/out/x/.."),
            writing("[cfgPath]/out..") + writing("[cfgPath]/x"));
        for (const char letter : {'a', 'd', 'z', 'A', 'Z'}) {
            const QByteArray drive = QByteArray(1, letter) + ':';
            row(qPrintable("destination is the drive " + drive), "file-is-folder", writing(drive),
                writing(drive + 'x'));
        }
        row("destination is a server", "file-is-folder", writing("\\\\nas"),
            writing("\\\\nas\\e\\x"));
        row("source is a share", "file-is-folder", reading("//nas/e"), reading("//nas/e/x"));
        row("destination is a share of Windows", "file-is-folder", writing("\\\\?\\UNC\\nas\\e"),
            writing("\\\\nas\\x.dat"));
        row("log is a share", "log-is-folder", withLog("[cfgPath]/x", "\\\\nas\\e$"),
            withLog("[cfgPath]/x", "\\\\nas\\e$\\l"));
        row("csv is a share", "log-is-folder", withCsv("//nas/[host]"), withCsv("//nas/e/[host]"));
        row("same at the root of Windows", "same-file", task("\\e\\s.dat", "/e/S.dat"),
            task("\\e\\s.dat", "/e/t.dat"));
        row("log at the root of Windows", "results-over-data", withLog("/e/x", "\\e\\x"),
            withLog("/e/x", "\\e\\y"));
        row("destination is the folder", "file-is-folder", writing("[cfgPath]"),
            writing("[cfgPath]out"));
        row("destination is a folder that exists", "file-is-folder", writing("[cfgPath]/_wait"),
            writing("[cfgPath]/wait"));
        row("source is the temporary folder", "file-is-folder", reading("[temp]/."),
            writing("[temp]/x") + reading("[temp]/x"));
        row("log is a folder", "log-is-folder", withLog("[cfgPath]/x", "[cfgPath]"),
            withLog("[cfgPath]/x", "[cfgPath]/[host]"));
        row("csv is a folder that exists", "log-is-folder", withCsv("[cfgPath]/_wait"),
            withCsv("[cfgPath]/wait"));
        row("file that is a folder of another task", "folder-is-file",
            writing("[cfgPath]/o") + writing("[cfgPath]/o/x"),
            writing("[cfgPath]/o") + writing("[cfgPath]/ox"), making("[cfgPath]/o/dummyFile", 0));
        row("folder that is a config file", "folder-is-file", writing("[cfgPath]/a1.dpc/x"),
            writing("[cfgPath]/a1.dpx/x"), making("[cfgPath]/a1.dpx/dummyFile", 0));
        row("folder that the _init file makes as a file", "folder-is-file",
            writing("[cfgPath]/o/x"), writing("[cfgPath]/ox/x"),
            making("[cfgPath]/o") + making("[cfgPath]/ox/dummyFile", 0));
        row("named like a done file", "done-name", writing("[cfgPath]\\done_[host]"),
            writing("[cfgPath]\\done_[host].dat"));
        row("date that is written and then read", "source-date",
            writing("[cfgPath]/[date].dat") + reading("[cfgPath]/[date].dat"),
            writing("[cfgPath]/d.dat") + reading("[cfgPath]/d.dat"));
        row("read before it is written", "source-missing",
            reading("[cfgPath]/d.dat") + writing("[cfgPath]/d.dat"),
            writing("[cfgPath]/d.dat") + reading("[cfgPath]/d.dat"));
        QByteArray read;
        for (int i = 0; i < 10; ++i)
            read += making("[cfgPath]/a" + QByteArray::number(i));
        row("written in a later iteration", "source-missing",
            task("[cfgPath]/a[iter]", "[cfgPath]/a0[iter]", 1024, 12),
            task("[cfgPath]/a[iter]", "[cfgPath]/a1[iter]", 1024, 12), read);
        row("written by a later task", "source-missing",
            reading("[cfgPath]/a[iter]", 1024, 11) + writing("[cfgPath]/a10"),
            writing("[cfgPath]/a10") + reading("[cfgPath]/a[iter]", 1024, 11), read);
        row("missing in the last iteration", "source-missing",
            reading("[cfgPath]/s[iter].dat", 1024, 3), reading("[cfgPath]/s[iter].dat", 1024, 2),
            making("[cfgPath]/s0.dat") + making("[cfgPath]/s1.dat"));
    }

    void oneRuleHitsAndNoneMisses()
    {
        QFETCH(QByteArray, rule);
        QFETCH(QByteArray, init);
        QFETCH(QByteArray, bad);
        QFETCH(QByteArray, good);
        // The files that a save needs are not asked for here.
        m_series->options().rulesOff = {ruleNamed("init-outdated"), ruleNamed("init-unneeded")};
        m_series->put("a_init.dpc", init);
        m_series->put("a.dpc", bad);
        QStringList rules;
        for (const Finding& finding : m_series->findings())
            rules += finding.rule->name;
        QCOMPARE(rules, QStringList{QString(rule)});
        QVERIFY(!m_series->text(rule).isEmpty());
        m_series->put("a.dpc", good);
        QCOMPARE(m_series->hits(rule, good), 0);
        QCOMPARE(m_series->errorsAndWarnings(), QStringList());
    }

    void naturalSeriesAreClean_data()
    {
        QTest::addColumn<QByteArray>("init");
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<QStringList>("hosts");
        const auto row = [](const char* name, const QByteArray& made, const QByteArray& lines,
                            const QStringList& hosts = {}) {
            QTest::newRow(name) << made + dummy << lines << hosts;
        };
        const QStringList two{"pc1", "pc2"};
        row("write and read back", making("[cfgPath]/x.dat"),
            writing("[cfgPath]/x.dat") + reading("[cfgPath]/x.dat"));
        row("write and read back another size", making("[cfgPath]/x.dat", 2048),
            writing("[cfgPath]/x.dat") + reading("[cfgPath]/x.dat", 2048));
        row("each machine writes and reads back", making("[cfgPath]/here.dat"),
            writing("[cfgPath]/[host].dat") + reading("[cfgPath]/[host].dat"), two);
        row("in the temporary folder", making("/tmp/x.dat"),
            writing("[temp]/x.dat") + reading("[temp]/x.dat"), two);
        row("all iterations are read back", {},
            writing("[cfgPath]/[host]_[iter].dat", 1024, 3) +
                reading("[cfgPath]/[host]_[iter].dat", 1024, 3),
            two);
        row("copies in a chain", making("[cfgPath]/s"),
            task("[cfgPath]/s", "[cfgPath]/t_[host]") + task("[cfgPath]/t_[host]", "[temp]/u") +
                task("[temp]/u", "[cfgPath]/v_[host]"),
            two);
        row("copy there and back", making("[cfgPath]/s"),
            task("[cfgPath]/s", "[temp]/s") + task("[temp]/s", "[cfgPath]/s"));
        row("the same destination again and again", {},
            writing("[cfgPath]/x") + writing("[cfgPath]/x", 2048) +
                writing("[cfgPath]/x", 4096, 5));
        row("the same source for many", making("[cfgPath]/s"),
            reading("[cfgPath]/s") + reading("[cfgPath]/s", 1024, 5) +
                task("[cfgPath]/s", "[cfgPath]/[host]"),
            two);
        row("log and csv for all tasks", {},
            withCsv("[cfgPath]/[host].csv") + withCsv("[cfgPath]/[host].csv"), two);
        row("results with the date", {}, withCsv("[cfgPath]/[host]_[date].csv"), two);
        row("all read what one writes", making("[cfgPath]/pc1.dat"),
            writing("[cfgPath]/[host].dat") + reading("[cfgPath]/pc1.dat"), two);
        row("sources of both machines", making("[cfgPath]/pc1.dat") + making("[cfgPath]/pc2.dat"),
            reading("[cfgPath]/[host].dat"), two);
        row("share that can't be seen", making("//nas/e/s.dat"),
            task("//nas/e/s.dat", "//nas/e/[host].dat"), two);
        row("share without an _init file", {}, reading("\\\\nas\\e\\s.dat"));
        row("drive of Windows", {}, reading("D:\\e\\s.dat") + writing("D:\\e\\o\\[host].dat"), two);
    }

    void naturalSeriesAreClean()
    {
        QFETCH(QByteArray, init);
        QFETCH(QByteArray, lines);
        QFETCH(QStringList, hosts);
        m_series->options().rulesOff = {ruleNamed("init-outdated"), ruleNamed("init-unneeded")};
        m_series->options().hosts = hosts;
        m_series->put("a_init.dpc", init);
        m_series->put("a.dpc", lines);
        QCOMPARE(m_series->errorsAndWarnings(), QStringList());
    }

    /// A variable is replaced once, whatever the folder is called.
    void folderThatIsCalledAsAVariable()
    {
        for (const char* folder : {"[cfgPath]", "[cfgPath]x", "a[cfgPath]"}) {
            const QString series = QString(folder) + "/a.dpc";
            m_series->put(series, withCsv("[cfgPath]/[host].csv", "[cfgPath]l/[host].txt") +
                                      reading("[cfgPath]/s.dat"));
            m_series->put(QString(folder) + "/s.dat", {});
            m_series->setExisting(m_series->root() + folder + "/l/");
            m_series->options().hosts = QStringList{"pc1", "pc2"};
            QCOMPARE(m_series->said({}, series), QStringList());
        }
    }

    /// Long names take memory and time, not only many.
    void iterationsThatAreLookedAt()
    {
        const QByteArray lines = writing("[cfgPath]/x[iter]", 1024, 20);
        m_series->options().limits.names = 22;
        QCOMPARE(m_series->hits("many-iterations", lines), 0);
        m_series->options().limits.names = 21;
        QCOMPARE(m_series->hits("many-iterations", lines), 1);
        m_series->options().limits.names = 22;
        m_series->options().limits.nameCharacters = 20LL * 500;
        const QByteArray longName(480, 'x');
        QCOMPARE(m_series->hits("many-iterations", writing("/" + longName + "[iter]", 1024, 20)),
                 0);
        m_series->options().limits.nameCharacters = 20LL * 480;
        QCOMPARE(m_series->hits("many-iterations", writing("/" + longName + "[iter]", 1024, 20)),
                 1);
        QCOMPARE(m_series->hits("many-iterations", writing("/" + longName, 1024, 20)), 0);
        // Each variable may stand for as much as the longest.
        m_series->options().limits.nameCharacters = 20LL * 150;
        const QByteArray variables = "/d/" + QByteArray("[cfgName]").repeated(10);
        QCOMPARE(m_series->hits("many-iterations", writing(variables + "[iter]", 1024, 20)), 1);
    }

    void filesOfTheSeriesInAllIterationsAreOneFinding()
    {
        QCOMPARE(m_series->hits("overwrites-series", writing("[cfgPath]/a[iter].dpc", 1024, 3)), 1);
    }

    void tasksAreTheSameIfTheirFilesAre()
    {
        const auto twice = [](const QByteArray& one, const QByteArray& other) {
            return writing(one, 1024, 2) + writing(other, 1024, 2);
        };
        const QByteArray plain = "[cfgPath]/x_[host]";
        QCOMPARE(m_series->hits("same-task", twice(plain, plain)), 1);
        QCOMPARE(m_series->hits("same-task", twice(plain, "[cfgPath]/e/../x_[host]")), 1);
        QCOMPARE(m_series->hits("same-task", twice("[cfgPath]/[cfgTaskID]", "[cfgPath]/0")), 1);
        QCOMPARE(m_series->hits("same-task", twice("[cfgPath]/[cfgTaskID]", "[cfgPath]/[cfgline]")),
                 0);
        QCOMPARE(m_series->hits("same-task", twice(plain, "[cfgPath]/x_[host][iter]")), 0);
        const QByteArray line = writing(plain);
        QCOMPARE(m_series->hits("same-task", line + QByteArray(line).replace("true", "false")), 0);
        // On another machine it is another file.
        m_series->options().hosts = QStringList{"pc1", "pc2"};
        QCOMPARE(m_series->hits("same-task", twice(plain, "[cfgPath]/x_pc1")), 0);
    }

    void pathThroughAFileThatExists()
    {
        m_series->setExisting("/d/f");
        QCOMPARE(m_series->hits("folder-is-file", writing("/d/f/x")), 1);
        QCOMPARE(m_series->hits("folder-is-file", writing("/d/f/e/x")), 1);
        QCOMPARE(m_series->hits("dest-folder", writing("/d/f/x")), 0);
        QCOMPARE(m_series->hits("folder-is-file", writing("/d/g/x")), 0);
    }

    void growingFilesTakeRoom()
    {
        m_series->setExisting("/d/x", qint64(1024) * 1024);
        m_series->options().environment.space = [](const QString&) {
            return std::optional<DiskSpace>({1, qint64(1024) * 1024});
        };
        QCOMPARE(m_series->hits("disk-space", writing("/d/x", 2048)), 0);
        QCOMPARE(m_series->hits("disk-space", writing("/d/x", 2049)), 1);
        // A copy is as large as its source, whatever the line says.
        m_series->setExisting("/d/s", 1024 * 1024 + 1);
        QCOMPARE(m_series->hits("disk-space", task("/d/s", "/d/t", 64)), 1);
        // Files of other systems take no space here.
        QCOMPARE(m_series->hits("disk-space", writing("//nas/e/x", 4096) + writing("D:\\x", 4096)),
                 0);
    }

    void csvFileOfTwoConfigFiles()
    {
        const QByteArray own = withCsv("[cfgPath]/[cfgID]-[cfgTaskID].csv");
        const QByteArray shared = withCsv("[cfgPath]/[cfgTaskID].csv");
        const auto hits = [&](const QByteArray& lines) {
            m_series->put("a.dpc", lines + "[cfgPath]/a1.dpc\n");
            m_series->put("a1.dpc", lines);
            return m_series->said({"csv-across-files"});
        };
        QCOMPARE(hits(own + own), QStringList());
        QCOMPARE(hits(shared + shared).size(), 1);
    }

    /// Numbers of config files, tasks and iterations, in all orders and all that is written.
    void namesThatMeetAcrossConfigFiles_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<bool>("meet");
        const auto row = [](const char* path, bool meet) {
            QTest::newRow(path) << QByteArray(path) << meet;
        };
        row("[cfgPath]/x[cfgID][iter].dat", true);
        row("[cfgPath]/x[iter][cfgID].dat", true);
        row("[cfgPath]/[cfgNameID][iter].dat", true);
        row("[cfgPath]/[cfgID]/../x.dat", true);
        row("[cfgPath]/x[iter][cfgNameID].dat", false);
        row("[cfgPath]/x[cfgID]_[iter].dat", false);
        row("[cfgPath]/[cfgNameID]_[iter].dat", false);
    }

    void namesThatMeetAcrossConfigFiles()
    {
        QFETCH(QByteArray, path);
        QFETCH(bool, meet);
        const QByteArray dest = "[cfgPath]/o_[cfgID]_[iter]";
        const QByteArray log = "[cfgPath]/l_[cfgID]";
        const QByteArray csv = "[cfgPath]/c_[cfgID]";
        for (const QByteArray& line :
             {task("MEMORY", path, 1024, 12, log, csv), task("MEMORY", dest, 1024, 12, path, csv),
              task("MEMORY", dest, 1024, 12, log, path)}) {
            for (int i = 0; i < 12; ++i) {
                const QString name = i == 0 ? QString("a.dpc") : QString("a%1.dpc").arg(i);
                const QByteArray next = "[cfgPath]/a" + QByteArray::number(i + 1) + ".dpc\n";
                m_series->put(name, line + (i < 11 ? next : QByteArray()));
            }
            const QStringList said = m_series->said({"names-meet", "csv-across-files"});
            QCOMPARE(!said.isEmpty(), meet);
            QCOMPARE(said.filter("csv-across-files"), QStringList());
        }
    }

private:
    QScopedPointer<SeriesFolder> m_series;
};

QTEST_APPLESS_MAIN(TestUseRules)
#include "tst_userules.moc"
