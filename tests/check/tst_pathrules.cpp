#include "tests/check/seriesfolder.h"

namespace {

QByteArray reading(const QByteArray& source)
{
    return goodLine({{2, "NOflush"}, {3, "NOprealloc"}, {10, source}, {11, "MEMORY"}});
}

QByteArray writing(const QByteArray& dest)
{
    return goodLine({{11, dest}});
}

/// A path of so many characters, with names that file systems take.
QByteArray folders(int length)
{
    QByteArray path(length, 'x');
    for (int i = 99; i + 1 < length; i += 100)
        path[i] = '/';
    return path;
}

QByteArray creating(const char* dest)
{
    return lineTo(dest).toLatin1();
}

} // namespace

class TestPathRules : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_series.reset(new SeriesFolder); }

    void ruleHitsAndMisses_data()
    {
        QTest::addColumn<QByteArray>("rule");
        QTest::addColumn<QByteArray>("bad");
        QTest::addColumn<QByteArray>("good");
        const auto row = [](const char* name, const char* rule, const QByteArray& bad,
                            const QByteArray& good = goodLine()) {
            QTest::newRow(name) << QByteArray(rule) << bad << good;
        };
        row("both in memory", "no-paths", goodLine({{11, "MEMORY"}}));
        row("neither path", "no-paths", goodLine({{10, ""}, {11, ""}}));
        row("empty log", "empty-log", goodLine({{12, ""}}));
        row("empty csv", "empty-log", goodLine({{13, ""}}));
        row("log is a folder", "log-is-folder", goodLine({{12, "/d/"}}));
        row("csv is a folder", "log-is-folder", goodLine({{13, "/d/"}}));
        row("unknown variable", "unknown-variable", writing("/d/[user]"), writing("/d/[host]"));
        row("wrong capitals", "unknown-variable", writing("/d/[Host]"));
        row("nested brackets", "unknown-variable", writing("/d/[[hots]"), writing("/d/[[host]"));
        row("variable without its end", "unknown-variable", writing("/d/[host"));
        row("variable without its start", "unknown-variable", writing("/d/x_host].dat"),
            writing("/d/x].dat"));
        row("variable without its end before another", "unknown-variable",
            writing("/d/[iter_[host]"), writing("/d/[x_[host]"));
        for (const char* path :
             {"/d/{host}", "/d/${HOST}", "/d/$HOSTNAME", "/d/%COMPUTERNAME%", "/d/<host>",
              "/d/$(hostname)", "/d/(host)", "/d/(cfgName)", "/d/!hostname!", "/d/@HOST@",
              "/d/(date)", "/d/x (temp)", "/d/{name}", "/d/<path>"})
            row(path, "other-notation", writing(path),
                writing("/d/a$b{c}d<e>f%g%(h)!i!@j@(dats)(my temp)"));
        row("temporary folder without a separator", "folder-variable", writing("[temp]x"),
            writing("[temp]/x"));
        row("temporary folder by itself", "folder-variable", writing("/d/[temp]/x"),
            writing("[temp]"));
        row("folder inside of a path", "folder-variable", writing("/d/[cfgPath]/x"),
            writing("[cfgPath]x"));
        row("control character", "control-character", writing("/d/a\tb"), writing("/d/a b"));
        row("last control character before the blank", "control-character",
            writing("/d/a\x1F"
                    "b"),
            writing("/d/a b"));
        row("first character after the visible ones", "control-character",
            writing("/d/a\x7F"
                    "b"),
            writing("/d/a~b"));
        row("C1 control character", "control-character",
            writing("/d/a\x85"
                    "b"),
            writing("/d/a\xE4\xDF"
                    "b"));
        row("soft hyphen", "control-character",
            writing("/d/a\xAD"
                    "b"),
            writing("/d/a\xA7\xB0"
                    "b"));
        // One letter in UTF-8.
        row("C1 control character beside a letter", "control-character", writing("/d/\xE4\x9F"),
            writing("/d/\xC3\x9F"));
        row("DEL beside a letter in UTF-8", "control-character", writing("/d/\xC3\x84\x7F"),
            writing("/d/\xC3\x80"));
        row("no-break blank at the end", "control-character", writing("/d/a\xA0"),
            writing("/d/a b"));
        row("blank at the end of a folder", "control-character", writing("/d /a"));
        row("blank at the beginning of a name", "control-character", writing("/d/ a"),
            writing("   /d/a   "));
        row("variable in a log", "unknown-variable", goodLine({{12, "/d/[name]"}}));
        row("variable in a marker", "unknown-variable", "[CfgPath]/a1.dpc\n", "[cfgPath]/a1.dpc\n");
        row("long marker", "long-path", '/' + QByteArray(496, 'x') + ".dpc\n",
            '/' + QByteArray(495, 'x') + ".dpc\n");
        row("relative marker", "relative-path", "a1.dpc\n", "[cfgPath]/a1.dpc\n");
        row("relative source", "relative-path", reading("s.dat"), reading("/s.dat"));
        row("relative destination", "relative-path", writing("out/x"), writing("[cfgPath]/out/x"));
        row("relative log", "relative-path", goodLine({{12, "x.txt"}}));
        row("variable alone", "relative-path", writing("[host]/x"), writing("[temp]/x"));
        row("memory in small letters", "relative-path", reading("Memory"), writing("C:\\x"));
        row("same file", "same-file", goodLine({{10, "/d/x.dat"}}), goodLine({{10, "/d/y.dat"}}));
        row("same file by another way", "same-file", goodLine({{10, "/d/e/..//x.dat"}}));
        row("same file by a variable", "same-file",
            goodLine({{10, "[cfgPath]/[cfgName]"}, {11, "[cfgPath]/a"}}),
            goodLine({{10, "[cfgPath]/[cfgName]"}, {11, "[cfgPath]/b"}}));
        row("missing source", "source-missing", reading("/s.dat"),
            writing("/s.dat") + reading("/s.dat"));
        row("source made too late", "source-missing", reading("/s.dat") + writing("/s.dat"));
        row("dated source", "source-date", reading("/s_[date].dat"), reading("/s_date.dat"));
        row("dated source that was written", "source-date",
            writing("/s_[date].dat") + reading("/s_[date].dat"));
        row("source of each machine", "source-local", reading("[temp]/s"),
            writing("[temp]/s") + reading("[temp]/s"));
        row("source by host", "source-local", reading("/d/[host].dat"), reading("/d/host.dat"));
        row("destination folder", "dest-folder", writing("/none/x"), writing("[cfgPath]/none/x"));
        row("dated folder", "dest-folder", writing("/d/[date]/x"), writing("[temp]/[date]"));
        row("folder of another system", "dest-folder", writing("/none/x"),
            writing("\\\\nas\\e\\x"));
        row("local folder", "dest-folder-local", writing("[temp]/none/x"), writing("[temp]/x"));
        row("many iterations", "many-iterations", goodLine({{8, "2000000000"}, {11, "/d/[iter]"}}),
            goodLine({{8, "2000000000"}}));
    }

    void ruleHitsAndMisses()
    {
        QFETCH(QByteArray, rule);
        QFETCH(QByteArray, bad);
        QFETCH(QByteArray, good);
        QVERIFY(m_series->hits(rule, bad) >= 1);
        QCOMPARE(m_series->hits(rule, good), 0);
    }

    /// A blank is what a person sees, and a part of the name in any case.
    void blanksThatAreNotSeen()
    {
        const auto severity = [&](const QByteArray& path) {
            m_series->put("a.dpc", writing(path));
            return m_series->said({"control-character"}).size() == 1
                       ? m_series->severity("control-character")
                       : Severity::Error;
        };
        for (const char* path : {"/d/\xA0x", "/d/x\xA0", "/d\xA0/x", "C:\\d\xA0\\x", "\xA0/d/x"})
            QCOMPARE(severity(path), Severity::Warning);
        for (const char* path : {"/d/x\xA0y", "/d/ x", "/d /x", "C:\\ d\\x"})
            QCOMPARE(severity(path), Severity::Note);
        // The worst of several is said.
        QCOMPARE(severity("/d/ x\xA0y\tz"), Severity::Warning);
        QVERIFY(m_series->text("control-character").contains("\\x09"));
        QCOMPARE(severity("/d/ x\xA0y"), Severity::Note);
        QVERIFY(m_series->text("control-character").contains("begins or ends with a blank"));
        QCOMPARE(m_series->hits("control-character", writing("/d/\xC3\xA0")), 0);
        // The path is relative by that character only.
        QCOMPARE(m_series->hits("relative-path", writing("\xA0[cfgPath]/x")), 0);
    }

    void emptyCsvAtTheEndOfTheLine()
    {
        QByteArray line = goodLine({{13, ""}});
        line.truncate(line.indexOf("true"));
        QCOMPARE(m_series->hits("empty-log", line + '\n'), 1);
    }

    /// Exactly 500 characters fit, with the values of any machine.
    void pathThatIsLongByItsVariables()
    {
        const int folder = m_series->root().size();
        const auto line = [&](int length) {
            return writing("[cfgPath]" + folders(length - folder));
        };
        QCOMPARE(m_series->hits("long-path", line(500)), 0);
        QCOMPARE(m_series->hits("long-path", line(501)), 1);
        const QByteArray byHost = writing('/' + folders(480) + "[host]");
        m_series->options().hosts = QStringList{"pc1", QString(19, 'p')};
        QCOMPARE(m_series->hits("long-path", byHost), 0);
        m_series->options().hosts = QStringList{"pc1", QString(20, 'p')};
        QCOMPARE(m_series->hits("long-path", byHost), 1);
        // The last iteration has seven digits.
        m_series->options().hosts = QStringList{QString(60, 'p')};
        const auto iterations = [](const char* count) {
            return goodLine({{8, count}, {11, '/' + folders(432) + "[host][iter]"}});
        };
        QCOMPARE(m_series->hits("long-path", iterations("10000000")), 0);
        QCOMPARE(m_series->hits("long-path", iterations("10000001")), 1);
        // Also for a name that is longer than all other values.
        m_series->options().hosts = QStringList{QString(120, 'p')};
        QCOMPARE(m_series->hits("long-path", writing('/' + folders(379) + "[host]")), 0);
        QCOMPARE(m_series->hits("long-path", writing('/' + folders(380) + "[host]")), 1);
    }

    /// Linux counts the bytes of UTF-8, Windows characters.
    void nameThatIsLongerThanFileSystemsTake()
    {
        const QByteArray name(255, 'x');
        QCOMPARE(m_series->hits("long-path", writing("/d/" + name + "/x")), 0);
        QCOMPARE(m_series->hits("long-path", writing("/d/x" + name + "/x")), 1);
        QVERIFY(m_series->text("long-path").contains("a name in the destination has 256 bytes"));
        QCOMPARE(m_series->hits("long-path", reading("/d/x" + name)), 1);
        QCOMPARE(m_series->hits("long-path", goodLine({{12, "/d/x" + name}})), 1);
        const QByteArray umlauts(128, '\xFC');
        QCOMPARE(m_series->hits("long-path", writing("/d/" + umlauts)), 1);
        QCOMPARE(m_series->hits("long-path", writing("/d/" + umlauts.left(127))), 0);
        QCOMPARE(m_series->hits("long-path", writing("/d/" + QByteArray(128, '\x80'))), 1);
        QCOMPARE(m_series->hits("long-path", writing("C:\\d\\" + umlauts)), 0);
        QCOMPARE(m_series->hits("long-path", writing("C:\\d\\x" + name)), 1);
        const QByteArray byHost = writing("/d/" + name.left(250) + "_[host]");
        m_series->options().hosts = QStringList{"pc1", "pc12"};
        QCOMPARE(m_series->hits("long-path", byHost), 0);
        m_series->options().hosts = QStringList{"pc1", "pc123"};
        QCOMPARE(m_series->hits("long-path", byHost), 1);
        const QByteArray byLongHost = writing("/d/" + name.left(200) + "[host]");
        m_series->options().hosts = QStringList{"pc1", QString(55, 'h')};
        QCOMPARE(m_series->hits("long-path", byLongHost), 0);
        m_series->options().hosts = QStringList{"pc1", QString(56, 'h')};
        QCOMPARE(m_series->hits("long-path", byLongHost), 1);
        const QString chosen = QString(240, 'n') + ".dpc";
        m_series->put(chosen, writing("/d/" + name.left(15) + "[cfgName]"));
        QCOMPARE(m_series->said({"long-path"}, chosen), QStringList());
        m_series->put(chosen, writing("/d/" + name.left(16) + "[cfgName]"));
        QCOMPARE(m_series->said({"long-path"}, chosen).size(), 1);
    }

    void wrongVariableGetsTheOneThatIsMeant()
    {
        m_series->put("a.dpc", writing("/d/[cfgpath]"));
        QVERIFY(m_series->text("unknown-variable").contains("did you mean [cfgPath]?"));
        m_series->put("a.dpc", writing("/d/[something]"));
        QVERIFY(!m_series->text("unknown-variable").contains("did you mean"));
        const QMap<QByteArray, QByteArrayList> meant = {
            {"[host]",
             {"hostname", "ComputerName", "computer", "machine", "MachineName", "node", "PC",
              " host "}},
            {"[date]", {"Date", "time", "datetime", "timestamp", "now"}},
            {"[temp]", {"tmp", "tmpdir", "TEMPDIR", "tmppath", "temppath"}},
            {"[iter]", {"iteration", "loop", "run"}},
            {"[cfgPath]", {"pwd", "path", "dir", "folder", "CFGPATH"}},
            {"[cfgName]", {"name", "cfgFile"}},
            {"[cfgTaskID]", {"TaskID", "task", "cfgtask"}},
            {"[cfgID]", {"cfgid", "id"}},
            {"[cfgNameID]", {"CFGNAMEID"}}};
        for (auto variable = meant.begin(); variable != meant.end(); ++variable) {
            for (const QByteArray& word : variable.value()) {
                m_series->put("a.dpc", writing("/d/x_[" + word + ']'));
                QVERIFY2(m_series->text("unknown-variable")
                             .contains("did you mean " + variable.key() + '?'),
                         word);
            }
        }
        m_series->put("a.dpc", reading("memory"));
        QVERIFY(m_series->text("relative-path").contains("write MEMORY in capitals"));
    }

    void variableThatLacksABracketIsTheLongestOfItsName()
    {
        const auto isMeant = [&](const QByteArray& name, const char* variable) {
            m_series->put("a.dpc", writing("/d/" + name));
            return m_series->text("unknown-variable")
                .contains(QStringLiteral("is missing (did you mean %1?)").arg(variable));
        };
        QVERIFY(isMeant("[cfgnameid.dat", "[cfgNameID]"));
        QVERIFY(isMeant("[CfgName.dat", "[cfgName]"));
        QVERIFY(isMeant("x_cfgNameID].dat", "[cfgNameID]"));
        QVERIFY(isMeant("x_CFGNAME].dat", "[cfgName]"));
        QVERIFY(isMeant("[host]_cfgID]_host.dat", "[cfgID]"));
        QCOMPARE(m_series->hits("unknown-variable", writing("/d/[cfgN.dat")), 0);
        QCOMPARE(m_series->hits("unknown-variable", writing("/d/host.dat")), 0);
    }

    /// The name of each is looked for on the disk, so that there is an end to it.
    void manyUnknownVariablesAreCounted()
    {
        m_series->put("a.dpc", writing("/d/[user]").repeated(maxFindingsPerRule + 3));
        const QStringList said = m_series->said({"unknown-variable"});
        QCOMPARE(said.size(), maxFindingsPerRule + 1);
        QCOMPARE(said.last(), QString("a.dpc:%1:49 unknown-variable").arg(maxFindingsPerRule + 1));
        const auto findings = m_series->findings();
        const auto last = std::find_if(findings.begin(), findings.end(), [](const Finding& f) {
            return f.rule == ruleNamed("unknown-variable") && f.more > 0;
        });
        QVERIFY(last != findings.end());
        QCOMPARE(last->more, 3);
    }

    void nameInBracketsThatIsThereIsNoVariable()
    {
        m_series->setExisting("/d/[user]/");
        m_series->setExisting("/d/[old].dat");
        for (const char* name : {"/d/[user]/x", "/d/[user]/x/y", "/d/[old].dat"})
            QCOMPARE(m_series->hits("unknown-variable", writing(name)), 0);
        for (const char* name : {"/d/[users]/x", "/d/[old].dat2", "/d/[user]x"})
            QCOMPARE(m_series->hits("unknown-variable", writing(name)), 1);
    }

    /// One mistake, which has one finding beside that of the folder.
    void otherNotationInPlaceOfAFolder()
    {
        for (const char* path : {"%temp%/x", "$TEMP/x", "{temp}/x", "<temp>/x", "(temp)/x"}) {
            QCOMPARE(m_series->hits("other-notation", writing(path)), 1);
            QCOMPARE(m_series->severity("other-notation"), Severity::Warning);
            QCOMPARE(m_series->hits("relative-path", writing(path)), 0);
        }
        // A name in capitals after "$" is a variable; others are only if they are known.
        for (const char* path : {"/d/$FOO", "/d/$FOO_1", "/d/$host"})
            QCOMPARE(m_series->hits("other-notation", writing(path)), 1);
        for (const char* path : {"/d/$foo", "/d/$_1", "/d/$", "/d/%FOO%", "/d/{foo}"})
            QCOMPARE(m_series->hits("other-notation", writing(path)), 0);
        QCOMPARE(m_series->hits("other-notation", writing("/d/%temp%")), 1);
        QCOMPARE(m_series->severity("other-notation"), Severity::Note);
        QCOMPARE(m_series->hits("relative-path", writing("x/%temp%")), 1);
    }

    void bracketsInTheFolderAreNoVariable()
    {
        const QString folder = m_series->root() + "[old]/";
        QVERIFY(QDir().mkpath(folder + "_wait"));
        const QByteArray next = folder.toLatin1() + "_wait/a1.dpc\n";
        m_series->put("[old]/_wait/a.dpc", goodLine() + next);
        m_series->put("[old]/_wait/a1.dpc", goodLine());
        const QSet<QString> rules{"unknown-variable", "marker-target", "marker-folder"};
        QCOMPARE(m_series->said(rules, "[old]/a.dpc"), QStringList());
        m_series->put("[old]/_wait/a.dpc", goodLine() + folder.toLatin1() + "[b]/a1.dpc\n");
        QVERIFY(m_series->said(rules, "[old]/a.dpc").last().endsWith(" unknown-variable"));
    }

    void existingSourceIsNotMissing()
    {
        m_series->setExisting("/s.dat");
        QCOMPARE(m_series->hits("source-missing", reading("/s.dat")), 0);
        // A relative one lies beside the config file, and one in "_wait" outside of it.
        m_series->setExisting(m_series->root() + "r.dat");
        QCOMPARE(m_series->hits("source-missing", reading("r.dat")), 0);
        m_series->put("_wait/b.dpc", reading("[cfgPath]/r.dat"));
        QCOMPARE(m_series->said({"source-missing"}, "_wait/b.dpc"), QStringList());
    }

    void sourceThatTheInitFileMakesIsNotMissing()
    {
        m_series->put("a_init.dpc", creating("[cfgPath]/s_a.dat"));
        QCOMPARE(m_series->hits("source-missing", reading("[cfgPath]/s_[cfgName].dat")), 0);
        // Commented out, nothing makes it.
        m_series->put("a_init.dpc", "# " + creating("[cfgPath]/s_a.dat"));
        QCOMPARE(m_series->hits("source-missing", reading("[cfgPath]/s_[cfgName].dat")), 1);
        QVERIFY(
            m_series->text("source-missing").contains("line 1 of the _init file is commented out"));
        // Written by hand: the first iteration is number 0.
        m_series->put("a_init.dpc", creating("[cfgPath]/s[iter].dat"));
        QCOMPARE(m_series->hits("source-missing", reading("[cfgPath]/s0.dat")), 0);
        QCOMPARE(m_series->hits("source-missing", reading("[cfgPath]/s1.dat")), 1);
    }

    void everyIterationNeedsItsSource()
    {
        const QByteArray three = goodLine({{2, ""}, {3, ""}, {8, "3"}, {10, "/s[iter]"}, {11, ""}});
        m_series->setExisting("/s0");
        m_series->setExisting("/s1");
        QCOMPARE(m_series->hits("source-missing", three), 1);
        QVERIFY(m_series->text("source-missing").contains("'/s2'"));
        m_series->setExisting("/s2");
        QCOMPARE(m_series->hits("source-missing", three), 0);
    }

    void fileThatIsWrittenAndReadBackIsNoSource()
    {
        const QByteArray lines = writing("/s.dat") + reading("/s.dat");
        QCOMPARE(m_series->hits("overwrites-source", lines), 0);
        // After a first save, and after a first run.
        m_series->put("a_init.dpc", creating("/s.dat"));
        QCOMPARE(m_series->hits("overwrites-source", lines), 0);
        m_series->setExisting("/s.dat", qint64(1024) * 1024);
        QCOMPARE(m_series->hits("overwrites-source", lines), 0);
        // A copy there and back holds what it held before.
        m_series->put("a_init.dpc", creating("/c.dat"));
        const QByteArray there = goodLine({{10, "/c.dat"}, {11, "/d.dat"}});
        const QByteArray back = goodLine({{10, "/d.dat"}, {11, "/c.dat"}});
        QCOMPARE(m_series->hits("overwrites-source", there + back + there), 0);
    }

    void overwrittenSourceIsOneThatWasThereBefore()
    {
        const QByteArray lines = writing("/s.dat") + reading("/s.dat");
        m_series->setExisting("/s.dat", 1234);
        QCOMPARE(m_series->hits("overwrites-source", lines), 1);
        QCOMPARE(m_series->said({"overwrites-source"}),
                 QStringList{"a.dpc:1:46 overwrites-source"});
        QVERIFY(m_series->text("overwrites-source").contains("a.dpc:2"));
        // The same size by chance, or made by a run of the _init file.
        m_series->setExisting("/s.dat", qint64(1024) * 1024);
        QCOMPARE(m_series->hits("overwrites-source", lines), 0);
    }

    void sourceThatIsReadAndThenOverwritten()
    {
        m_series->put("a_init.dpc", creating("/s.dat"));
        QCOMPARE(m_series->hits("overwrites-source", reading("/s.dat") + writing("/s.dat")), 1);
        QCOMPARE(m_series->said({"overwrites-source"}),
                 QStringList{"a.dpc:2:46 overwrites-source"});
        // A file that a task wrote may be written again.
        QCOMPARE(m_series->hits("overwrites-source",
                                writing("/s.dat") + reading("/s.dat") + writing("/s.dat")),
                 0);
    }

    void aTaskThatOverwritesSeveralSourcesIsToldOnce()
    {
        m_series->setExisting("/s0", 5);
        m_series->setExisting("/s1", 5);
        const QByteArray readsBoth =
            goodLine({{2, ""}, {3, ""}, {8, "2"}, {10, "/s[iter]"}, {11, ""}});
        QCOMPARE(
            m_series->hits("overwrites-source", readsBoth + goodLine({{8, "2"}, {11, "/s[iter]"}})),
            1);
    }

    void aTaskThatOverwritesSeveralFilesReadLaterIsToldOnce()
    {
        m_series->setExisting("/s0", 5);
        m_series->setExisting("/s1", 5);
        const QByteArray readsBoth =
            goodLine({{2, ""}, {3, ""}, {8, "2"}, {10, "/s[iter]"}, {11, ""}});
        QCOMPARE(
            m_series->hits("overwrites-source", goodLine({{8, "2"}, {11, "/s[iter]"}}) + readsBoth),
            1);
    }

    void missingSourcesAreCountedBeyondThoseThatAreListed()
    {
        m_series->put("a.dpc", reading("/s.dat").repeated(maxFindingsPerRule + 3));
        const auto findings = m_series->findings();
        const auto ending =
            std::find_if(findings.begin(), findings.end(), [](const Finding& finding) {
                return finding.rule == ruleNamed("source-missing") && finding.more > 0;
            });
        QVERIFY(ending != findings.end());
        QCOMPARE(ending->more, 3);
    }

    void datedSourceOfAllIterationsIsToldOnce()
    {
        const QByteArray lines =
            goodLine({{2, ""}, {3, ""}, {8, "3"}, {10, "/d/[date]_[iter]"}, {11, "MEMORY"}});
        QCOMPARE(m_series->hits("source-date", lines), 1);
    }

    void eachFolderIsNamedOnce()
    {
        QCOMPARE(m_series->hits("dest-folder", writing("/n/x") + writing("/n/y") + writing("/m/y")),
                 2);
        m_series->setExisting("/n/");
        QCOMPARE(m_series->hits("dest-folder", writing("/n/x")), 0);
        // A log in the same folder has the _init file make it.
        m_series->put("a_init.dpc", creating("/m/dummyFile"));
        QCOMPARE(m_series->hits("dest-folder", writing("/m/y")), 0);
    }

private:
    QScopedPointer<SeriesFolder> m_series;
};

QTEST_APPLESS_MAIN(TestPathRules)
#include "tst_pathrules.moc"
