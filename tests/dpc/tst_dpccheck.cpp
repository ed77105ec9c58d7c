#include "check/text.h"
#include "tests/check/seriesfolder.h"
#include "tests/dpc/dpcrun.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <sys/stat.h>

/// Options of `dpc check` that golden files can't show.
class TestDpcCheck : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_series.reset(new SeriesFolder);
        m_series->put("a.dpc", goodLine({{1, "x"}}) + goodLine({{2, "Flush"}}));
    }

    void rulesFileTurnsRulesOffForItsFolder()
    {
        QCOMPARE(rulesFound("a.dpc"), (QStringList{"bad-line", "unknown-word"}));
        m_series->put("dpc.rules",
                      "# the lab\n\nbad-line: kept for the old machines # since May\n");
        for (const char* path : {"a.dpc", "", "a1.dpc"})
            QCOMPARE(rulesFound(path), QStringList{"unknown-word"});
        QCOMPARE(run("check " + m_series->root()).code, 0);
        // Together with those of the command line.
        QCOMPARE(rulesFound("a.dpc", "--no-rule unknown-word"), QStringList());
    }

    void rulesFileOfASeriesThatWaitsLiesOutside()
    {
        m_series->put("_wait/dpc.rules", "unknown-word: not here\n");
        m_series->put("dpc.rules", "bad-line: here\n");
        QCOMPARE(rulesFound("a.dpc"), QStringList{"unknown-word"});
        m_series->put("_wait/b.dpc", goodLine({{1, "x"}}) + goodLine({{2, "Flush"}}));
        QCOMPARE(rulesFound("_wait/b.dpc"), QStringList{"unknown-word"});
        QCOMPARE(rulesFound("b.dpc"), QStringList{"unknown-word"});
    }

    void rulesFileIsNamedAsTheFolderOfTheSeriesIs()
    {
        m_series->put("dpc.rules", "bad-lime: here\n");
        m_series->put("_wait/b.dpc", goodLine());
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_series->root()));
        const QByteArray here = run("check a.dpc").err;
        const QByteArray below = run("check _wait/b.dpc").err;
        QVERIFY(QDir::setCurrent("_wait"));
        const QByteArray above = run("check b.dpc").err;
        QVERIFY(QDir::setCurrent(before));
        QVERIFY2(here.startsWith("dpc: 'dpc.rules'"), here.constData());
        QVERIFY2(below.startsWith("dpc: 'dpc.rules'"), below.constData());
        QVERIFY2(above.startsWith("dpc: '../dpc.rules'"), above.constData());
    }

    void rulesFileThatCannotBeUsedIsStatus2_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QByteArray>("problem");
        QTest::newRow("unknown rule") << QByteArray("\nbad-lin: x\n")
                                      << QByteArray("', line 2: unknown rule 'bad-lin' (did you "
                                                    "mean bad-line?)\n");
        QTest::newRow("no reason") << QByteArray("bad-line:\n")
                                   << QByteArray("', line 1: the reason is missing; write "
                                                 "\"bad-line: reason\"\n");
        QTest::newRow("a comment for a reason") << QByteArray("bad-line: # x\n")
                                                << QByteArray("', line 1: the reason is missing; "
                                                              "write \"bad-line: reason\"\n");
        QTest::newRow("no colon") << QByteArray("bad-line\n")
                                  << QByteArray("', line 1: the reason is missing; write "
                                                "\"bad-line: reason\"\n");
        QTest::newRow("bytes") << QByteArray("\0", 1)
                               << QByteArray("' can't be read: it is not a text file in UTF-8\n");
    }

    void rulesFileThatCannotBeUsedIsStatus2()
    {
        QFETCH(QByteArray, content);
        QFETCH(QByteArray, problem);
        m_series->put("dpc.rules", content);
        m_series->put("b.dpc", goodLine());
        // Said once for all series of the folder, and in JSON as well.
        const DpcRun::Result result = run("check --format=json " + m_series->root());
        QCOMPARE(result.code, 2);
        const QByteArray sentence = '\'' + m_series->root().toUtf8() + "dpc.rules" + problem;
        QCOMPARE(result.err, "dpc: " + sentence);
        const QJsonArray problems = parsed(result.out)["problems"].toArray();
        QCOMPARE(problems.size(), 1);
        QCOMPARE(problems[0].toString().toUtf8() + '\n', sentence);
    }

    void rulesFileThatIsAPipeIsNotOpened()
    {
        QVERIFY(::mkfifo(qPrintable(m_series->root() + "dpc.rules"), 0600) == 0);
        const DpcRun::Result result = run("check " + m_series->root());
        QCOMPARE(result.code, 2);
        QVERIFY(result.err.contains("dpc.rules' can't be read: it is a pipe\n"));
    }

    void aFolderBelowAFileHasOneFinding()
    {
        m_series->put("f", "");
        m_series->put(
            "a.dpc",
            goodLine({{11, "[cfgPath]/x"}, {12, "[cfgPath]/f/e/l.txt"}, {13, "[cfgPath]/c.csv"}}));
        const DpcRun::Result result = run("check " + m_series->root() + "a.dpc");
        QCOMPARE(result.out.count('\n'), 1);
        QVERIFY(result.out.contains("can't lie below it"));
    }

    void summaryTellsWhatWasNotChecked()
    {
        m_series->put("a.dpc", goodLine({{10, "C:\\a"}, {11, "C:\\b"}}) +
                                   goodLine({{10, "C:\\a"}, {11, "//srv/share/[host][iter]"}}) +
                                   goodLine({{8, "2000000"}, {11, "/d/[host]_[iter]"}}));
        m_series->put("a_init.dpc", "");
        const QString path = ' ' + m_series->root() + "a.dpc";
        const auto lastLine = [&](const QString& options) {
            return run("check --summary " + options + path).err.trimmed().split('\n').last();
        };
        const QByteArray rest = "; not checked: 2 Windows paths, 1 path on file servers, all "
                                "iterations but the first of 2 tasks";
        QCOMPARE(lastLine("--machines 20"), "2 files, 3 tasks, 20 machines" + rest);
        QCOMPARE(lastLine({}),
                 "2 files, 3 tasks; no machines given: collisions not checked" + rest);
        QCOMPARE(lastLine("--hosts a --no-rule bad-line,winapi"),
                 "2 files, 3 tasks; 1 machine given: collisions not checked" + rest + ", 2 rules");
        // A series that only Windows can run has no path of this system.
        m_series->put("a.dpc", goodLine({{10, "\\d\\s.dat"}}));
        QVERIFY(lastLine({}).endsWith("not checked: 4 Windows paths"));
        m_series->put("a.dpc", goodLine({{10, "C:\\d\\s.dat"}}));
        QVERIFY(lastLine({}).endsWith("not checked: 1 Windows path"));
    }

    void summaryIsForTerminalsAndOnRequest()
    {
        m_series->put("a.dpc", goodLine());
        const std::string path = (m_series->root() + "a.dpc").toStdString();
        const auto errors = [&](std::vector<std::string> options, bool isTerminal) {
            std::ostringstream out;
            std::ostringstream err;
            options.insert(options.begin(), "check");
            options.push_back(path);
            runDpc(options, {out, err, false, false, isTerminal});
            return QString::fromStdString(err.str());
        };
        QVERIFY(errors({}, true).contains("1 file, 1 task; no machines given"));
        QVERIFY(!errors({}, false).contains("1 file"));
        for (const char* option : {"-q", "--format=json"}) {
            QCOMPARE(errors({option}, true), QString());
            QCOMPARE(errors({option, "--summary"}, false), QString());
        }
        // A single name is not a list of machines, and says so whoever reads it.
        QVERIFY(errors({"--hosts=a"}, false)
                    .endsWith("dpc: 1 machine given: collisions not checked\n"));
        QCOMPARE(errors({"--hosts=a", "-q"}, false), QString());
        QVERIFY(!errors({"--hosts=a,b"}, false).contains("machine given"));
        // So does a name that is there twice: often another one is meant.
        QVERIFY(
            errors({"--hosts=a,b,a"}, false).endsWith("dpc: a is named twice, and counts once\n"));
        QVERIFY(errors({"--hosts=a,b,a"}, true)
                    .endsWith("2 machines; a is named twice, and counts once\n"));
        QCOMPARE(errors({"--hosts=a,b,a", "-q"}, false), QString());
    }

    void jsonHoldsTheSameAsTheSummary()
    {
        m_series->put("a.dpc", goodLine({{10, "C:\\a"}}));
        const QJsonObject all =
            parsed(run("check --format=json --machines 3 " + m_series->root() + "a.dpc").out);
        QCOMPARE(all["version"].toInt(), 1);
        QCOMPARE(all["files"].toInt(), 1);
        QCOMPARE(all["tasks"].toInt(), 1);
        QCOMPARE(all["machines"].toInt(), 3);
        QCOMPARE(all["notChecked"].toArray().size(), 1);
        const QJsonObject item = all["notChecked"].toArray()[0].toObject();
        QCOMPARE(item["what"].toString(), QString("windows-paths"));
        QCOMPARE(item["count"].toInt(), 1);
        QCOMPARE(item["text"].toString(), QString("1 Windows path"));
    }

    void jsonCountsTheFindingsThatAreNotListed()
    {
        m_series->put("a.dpc", goodLine({{1, "Posx"}}).repeated(maxFindingsPerRule + 3));
        const QJsonArray findings =
            parsed(run("check --format=json " + m_series->root() + "a.dpc").out)["findings"]
                .toArray();
        QJsonArray more;
        for (const auto& finding : findings) {
            if (finding.toObject().contains("more"))
                more.append(finding.toObject()["more"]);
        }
        QCOMPARE(more, QJsonArray{3});
    }

    void annotationsEscapeWhatEndsTheirParts()
    {
        QVERIFY(QDir(m_series->root()).mkdir("a:b,c%"));
        m_series->put("a:b,c%/a.dpc", goodLine({{1, "50%"}}));
        const QByteArray out =
            run("check --format=github " + m_series->root() + "a:b,c%/a.dpc").out;
        QVERIFY2(out.startsWith("::error file="), out);
        QVERIFY2(out.contains("a%3Ab%2Cc%25/a.dpc,line=1,col=1,title=bad-line::"), out);
        QVERIFY2(out.contains("'50%25'"), out);
    }

    void folderOfManySeriesIsListedOnce()
    {
        // Numbers beyond those of a series are looked for in the list of the folder.
        for (int i = 0; i < 30; ++i) {
            m_series->put(QString("s%1x.dpc").arg(i), goodLine());
            m_series->put(QString("s%1x20.dpc").arg(i), goodLine());
        }
        m_series->put("s3x1_20.dpc", goodLine());
        m_series->put("_wait/s3x007.dpc", goodLine());
        const QStringList found = m_series->said({"number-limit"}, "");
        QCOMPARE(found.size(), 32);
        QVERIFY(found.contains("_wait/s3x007.dpc:1:1 number-limit"));
        QVERIFY(found.contains("s29x20.dpc:1:1 number-limit"));
    }

private:
    DpcRun::Result run(const QString& command) const { return m_dpc.run(command); }

    static QJsonObject parsed(const QByteArray& json)
    {
        return QJsonDocument::fromJson(json).object();
    }

    QStringList rulesFound(const QString& path, const QString& options = {}) const
    {
        QStringList rules;
        const QByteArray out =
            run("check --format=json " + options + ' ' + m_series->root() + path).out;
        for (const auto& finding : parsed(out)["findings"].toArray()) {
            const QString rule = finding.toObject()["rule"].toString();
            if (rule == "bad-line" || rule == "unknown-word")
                rules += rule;
        }
        return rules;
    }

    QScopedPointer<SeriesFolder> m_series;
    DpcRun m_dpc;
};

QTEST_APPLESS_MAIN(TestDpcCheck)
#include "tst_dpccheck.moc"
