#include "check/rules/catalogue.h"
#include "check/ruletexts.h"
#include "check/text.h"
#include "dpc/json.h"
#include "dpc/listing.h"
#include "dpc/options.h"
#include "dpc/printer.h"
#include "dpc/totals.h"
#include "tests/check/seriesfolder.h"
#include "tests/dpc/dpcrun.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <fmt/format.h>

#include <limits>

/// Tests beyond golden files: properties, limits, and input that nobody writes on purpose.
class TestDpcCommands : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_series.reset(new SeriesFolder); }

    void versionIsPrinted()
    {
        const DpcRun::Result result = m_dpc.run("--version");
        QCOMPARE(result.code, 0);
        QVERIFY(result.out.startsWith("dpc 0."));
    }

    void namesAreShownAsTheRunThatIsAskedForMakesThem()
    {
        m_series->put("a.dpc", goodLine({{11, "/x/[host]/[date]/[iter].dat"}}));
        const QString file = m_series->root() + "a.dpc";
        const auto shown = [&](const QString& options) {
            return m_dpc.run("show --format=csv " + options + ' ' + file).out;
        };
        QVERIFY(shown({}).contains("/x/[host]/[date]/[iter].dat"));
        QVERIFY(
            shown("--expand --host pc7 --iteration 3 --date 2001").contains("/x/pc7/2001/3.dat"));
        QVERIFY(shown("--expand --host pc7 --date 2001").contains("/x/pc7/2001/0.dat"));
        // Without a date it is that of now.
        const QString now = shown("--expand --host pc7");
        QVERIFY(now.contains(QRegularExpression("/x/pc7/[^/]*[0-9]+[^/]*/0\\.dat")));
    }

    void helpIsThatOfTheFirstCommandThatIsNamed()
    {
        const QByteArray main = m_dpc.run("--help").out;
        const QByteArray show = m_dpc.run("show --help").out;
        QVERIFY(main.contains("dpc COMMAND") && show.contains("dpc show"));
        QCOMPARE(m_dpc.run("-h").out, main);
        QCOMPARE(m_dpc.run("-h --help").out, main);
        QCOMPARE(m_dpc.run("--help show").out, show);
        QCOMPARE(m_dpc.run("-h show check").out, show);
        const DpcRun::Result result = m_dpc.run("--help chekc");
        QCOMPARE(result.code, 2);
        QCOMPARE(result.err, QByteArray("dpc: unknown option 'chekc' (see dpc --help)\n"));
    }

    void anEmptyNameIsNotACommand()
    {
        std::ostringstream out;
        std::ostringstream err;
        QCOMPARE(runDpc({""}, {out, err}), 2);
        QCOMPARE(err.str(), std::string("dpc: unknown command '' (see dpc --help)\n"));
    }

    void rulesAreListedWithoutAPathBesideAnyOption()
    {
        const DpcRun::Result result = m_dpc.run("check --list-rules --werror --quiet --summary");
        QCOMPARE(result.code, 0);
        QCOMPARE(result.out, m_dpc.run("check --list-rules").out);
    }

    void notesNeverFail()
    {
        m_series->put("a.dpc", goodLine({{11, "[cfgPath]/[iter].dat"}, {12, ""}, {13, ""}}));
        const DpcRun::Result result = m_dpc.run("check --werror " + m_series->root() + "a.dpc");
        QCOMPARE(result.err, QByteArray("0 errors, 0 warnings, 2 notes\n"));
        QCOMPARE(result.code, 0);
    }

    void machinesOfAFileComeFirst()
    {
        m_series->put("hosts.txt", "pc1\npc2\npc2\n");
        const auto listOf = [&](const char* names) {
            Arguments arguments;
            arguments.add(hostsFileOption, {m_series->root().toStdString() + "hosts.txt"});
            arguments.add(hostsOption, {names});
            return machinesOf(arguments);
        };
        const MachineList list = listOf("pc3,pc1,pc4,pc4");
        QCOMPARE(list.names(), (QStringList{"pc1", "pc2", "pc3", "pc4"}));
        QCOMPARE(list.repeated, std::string("pc2 is named twice, and counts once"));
        QCOMPARE(list.repeatedCount, 2);
        m_series->put("hosts.txt", "pc1\n");
        QCOMPARE(listOf("pc4,pc4").repeated, std::string("pc4 is named twice, and counts once"));
        QCOMPARE(listOf("pc1").repeatedCount, 0);
    }

    void aNumberOfMachinesStandsAlone()
    {
        m_series->put("hosts.txt", "pc1\n");
        for (const QString& option :
             {QString("--hosts pc1"), "--hosts-file " + m_series->root() + "hosts.txt"}) {
            const DpcRun::Result result =
                m_dpc.run("check --machines 3 " + option + ' ' + m_series->root());
            QCOMPARE(result.code, 2);
            QCOMPARE(result.err, QByteArray("dpc: --machines: can't stand beside --hosts or "
                                            "--hosts-file (see dpc check --help)\n"));
        }
    }

    void aTaskThatBecameAMarkerIsTwoDifferences()
    {
        m_series->put("a.dpc", goodLine() + goodLine({{10, "/d/y"}}) + goodLine());
        m_series->put("b.dpc", goodLine() + "b1.dpc\n" + goodLine());
        const QString b = m_series->root() + "b.dpc";
        const DpcRun::Result result = m_dpc.run("diff " + m_series->root() + "a.dpc " + b);
        QCOMPARE(result.code, 1);
        QCOMPARE(result.out.count('\n'), 2);
        QVERIFY2(result.out.contains("a.dpc:2: only in the first series: Posix "), result.out);
        QVERIFY2(result.out.contains(
                     "b.dpc:2: only in the second series: wait for the next config file\n"),
                 result.out);
    }

    void findingsOfAFolderAreThoseOfItsSeries()
    {
        m_series->put("a.dpc", goodLine({{1, "x"}}));
        m_series->put("_wait/b.dpc", goodLine({{1, "y"}}));
        m_series->put("b_init.dpc", "");
        m_series->put("c_init.dpc", goodLine({{1, "z"}}));
        QCOMPARE(m_series->said({"bad-line"}, ""),
                 (QStringList{"a.dpc:1:1 bad-line", "_wait/b.dpc:1:1 bad-line",
                              "c_init.dpc:1:1 bad-line"}));
    }

    void eachSeriesIsCheckedOnce()
    {
        m_series->put("a.dpc", goodLine({{1, "x"}}));
        m_series->put("a1.dpc", goodLine());
        m_series->put("a_init.dpc", "");
        m_series->put("a.dpc.dpc", "");
        const QString& root = m_series->root();
        const auto once = checkAll({root}, m_series->options());
        const auto all = checkAll({root + "a.dpc", root + "a1.dpc", root + "a_init.dpc", root,
                                   root + "../" + QDir(root).dirName()},
                                  m_series->options());
        QCOMPARE(findingsAsText(all.findings, false), findingsAsText(once.findings, false));
        QCOMPARE(all.problems, std::vector<std::string>());
        // A problem of another path is still told.
        const auto some = checkAll({root + "a.dpc", root + "a.dpc.dpc"}, m_series->options());
        QCOMPARE(some.problems.size(), size_t(1));
        QVERIFY(!some.findings.empty());
    }

    void seriesIsFoundByAFileThatIsNotThere()
    {
        m_series->put("_wait/a.dpc", goodLine({{1, "x"}}));
        QCOMPARE(m_series->said({"bad-line"}, "a3.dpc"), QStringList{"_wait/a.dpc:1:1 bad-line"});
        QVERIFY(!checkAll({m_series->root() + "none.dpc"}, m_series->options()).problems.empty());
    }

    void anyBytesAreAFindingOrAProblem_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("zeros") << QByteArray(3000, '\0');
        QTest::newRow("semicolons") << QByteArray(3000, ';');
        QTest::newRow("line ends") << QByteArray(30000, '\n');
        QTest::newRow("markers") << QByteArray("x.dpc\n").repeated(3000);
        QTest::newRow("brackets") << "Posix;;;;;;;1;;" + QByteArray("[").repeated(490) + ";]";
        QTest::newRow("huge numbers") << goodLine({{4, "99999999999999999999"},
                                                   {5, "-99999999999999999999"},
                                                   {7, "2147483647"},
                                                   {8, "2147483647"},
                                                   {10, "[iter]"},
                                                   {11, "[iter]"},
                                                   {12, "[iter]"},
                                                   {13, "[iter]/"}});
        QTest::newRow("utf-16") << QByteArray("\xFF\xFEP\0o\0s\0i\0x\0;\0\n\0", 16);
        QTest::newRow("every byte") << everyByte();
        QTest::newRow("percent") << goodLine({{10, "%1 %2 {} {0}"}, {11, "[%1]/{}"}});
    }

    void anyBytesAreAFindingOrAProblem()
    {
        QFETCH(QByteArray, content);
        m_series->options().hosts = QStringList{"a", "b", "[host]", "%1{}"};
        m_series->put("a.dpc", content);
        m_series->put("a_init.dpc", content);
        const CheckResult result = checkAll({m_series->root()}, m_series->options());
        QVERIFY(!result.findings.empty());
        for (const Finding& finding : result.findings) {
            QVERIFY(finding.line >= 1 && finding.column >= 1);
            QVERIFY(finding.text.find('\n') == std::string::npos);
        }
        // Neither do the others fail; their output does not matter here.
        for (const char* command :
             {"show", "show --expand --format=csv --host=pc", "show --format=json", "roundtrip"})
            QVERIFY(m_dpc.run(QString(command) + ' ' + m_series->root() + "a.dpc").code <= 2);
    }

    void pathsThatAreNoSeriesAreOneSentence()
    {
        m_series->put("text.txt", "x");
        QVERIFY(QDir(m_series->root()).mkdir("empty"));
        for (const char* path : {"text.txt", "empty", "none", "none/none.dpc", "empty/"}) {
            const DpcRun::Result result = m_dpc.run("check " + m_series->root() + path);
            QCOMPARE(result.code, 2);
            QCOMPARE(result.out, QByteArray());
            QCOMPARE(result.err.count('\n'), 1);
        }
    }

    void seriesWithTooManyLinesIsOneSentence()
    {
        m_series->put("a.dpc", QByteArray("x.dpc\n").repeated(maxSeriesEntries + 1));
        for (const char* command : {"show ", "roundtrip ", "init "}) {
            const DpcRun::Result result = m_dpc.run(command + m_series->root() + "a.dpc");
            QCOMPARE(result.code, 2);
            QCOMPARE(result.err, QByteArray("dpc: the series has more than 50000 lines\n"));
        }
        m_series->put("a.dpc", QByteArray("x.dpc\n").repeated(maxSeriesEntries));
        QCOMPARE(m_dpc.run("show " + m_series->root() + "a.dpc").code, 0);
    }

    void totalsDoNotWrapRound()
    {
        const QByteArray line = goodLine({{4, "500"}, {5, "1"}, {7, "1048576"}, {8, "2147483647"}});
        m_series->put("a.dpc", line.repeated(10));
        const Totals totals = totalsOf(m_series->facts());
        QCOMPARE(totals.tasks, 10);
        QCOMPARE(totals.bytesWritten, std::numeric_limits<qint64>::max());
        QCOMPARE(totals.bytesRead, qint64(0));
        QCOMPARE(totals.leastWait, std::numeric_limits<qint64>::max());
    }

    void lastChunkCountsAsAWholeOne()
    {
        m_series->put("a.dpc", goodLine({{4, "10"}, {5, "1000"}, {7, "2001"}, {8, "2"}}));
        QCOMPARE(totalsOf(m_series->facts()).leastWait, qint64(3 * 10 * 2));
        m_series->put("a.dpc", goodLine({{5, "0"}}));
        QCOMPARE(totalsOf(m_series->facts()).leastWait, qint64(0));
    }

    /// It opens, and each read fails.
    void seriesWhoseOnlyFileFailsToReadIsOneSentence()
    {
        const QString file = m_series->root() + "a.dpc";
        QVERIFY(QFile::link("/proc/self/mem", file));
        for (const char* command : {"show ", "roundtrip ", "init ", "export ", "diff "}) {
            QString words = command + file;
            if (words.startsWith("export"))
                words += " out";
            if (words.startsWith("diff"))
                words += ' ' + file;
            const DpcRun::Result result = m_dpc.run(words);
            QCOMPARE(result.code, 2);
            const QByteArray sentence =
                "dpc: no file of the series of '" + file.toUtf8() + "' can be read\n";
            QCOMPARE(result.err, sentence.repeated(words.startsWith("diff") ? 2 : 1));
        }
    }

    void jsonShowsNoCharacterThatSteersATerminal()
    {
        // An invisible letter beyond the first plane, a control character, a turn of the direction.
        const QString text = QString::fromUtf8("a\xF3\xA0\x80\x81z\x1B\xE2\x80\xAE");
        const QString seen = QString::fromUtf8("\xC3\xBC\xF0\x9F\x98\x80");
        const QJsonObject object{{"text", text + seen}};
        const std::string json = jsonText(object);
        QCOMPARE(QString::fromStdString(json),
                 "{\n    \"text\": \"a\\udb40\\udc01z\\u001b\\u202e" + seen + "\"\n}\n");
        QCOMPARE(QJsonDocument::fromJson(QByteArray::fromStdString(json)).object(), object);
    }

    void roundTripOfWhatCannotBeReadIsOneSentence()
    {
        QVERIFY(QDir(m_series->root()).mkdir("a.dpc"));
        for (const char* command : {"show ", "roundtrip ", "roundtrip --format=json "})
            QCOMPARE(m_dpc.run(command + m_series->root() + "a.dpc").code, 2);
    }

    void aFileThatIsLeftOutIsTold()
    {
        m_series->put("a.dpc", goodLine());
        QVERIFY(QDir(m_series->root()).mkdir("a1.dpc"));
        const QString path = ' ' + m_series->root() + "a.dpc";
        for (const char* command : {"show", "show --format=csv"}) {
            const DpcRun::Result result = m_dpc.run(command + path);
            QCOMPARE(result.code, 0);
            QCOMPARE(result.err, QByteArray("dpc: 1 file of a can't be read and is left out; dpc "
                                            "check tells why\n"));
        }
        QVERIFY(QDir(m_series->root()).mkdir("a2.dpc"));
        const QByteArray json = m_dpc.run("show --format=json" + path).out;
        const QJsonArray lost = QJsonDocument::fromJson(json).object()["notChecked"].toArray();
        QCOMPARE(lost.size(), 1);
        const QJsonObject expected{
            {"what", "unreadable-files"},
            {"count", 2},
            {"text", "2 files of a can't be read and are left out; dpc check tells why"}};
        QCOMPARE(lost[0].toObject(), expected);
    }

    void rulesCanBeListedForPrograms()
    {
        const QByteArray json = m_dpc.run("check --list-rules --format=json").out;
        const QJsonArray list = QJsonDocument::fromJson(json).object()["rules"].toArray();
        QCOMPARE(list.size(), int(allRules().size()));
        for (int i = 0; i < list.size(); ++i) {
            const Rule& rule = *allRules()[size_t(i)];
            const QJsonObject expected{{"rule", rule.name},
                                       {"severity", severityName(rule.severity)},
                                       {"category", rule.category},
                                       {"meaning", rule.meaning},
                                       {"advice", rule.advice}};
            QCOMPARE(list[i].toObject(), expected);
        }
    }

    void wordsThatAreClose()
    {
        const char* const words[] = {"[cfgPath]", "[host]"};
        QCOMPARE(closest("[CFGPATH]", words), "[cfgPath]");
        QCOMPARE(closest("[cfgPth]", words), "[cfgPath]");
        QCOMPARE(closest("[hsot]", words), "[host]");
        QVERIFY(closest("[user]", words) == nullptr);
        QVERIFY(closest("", words) == nullptr);
    }

    void printableTextHasNoControlCharacters()
    {
        QCOMPARE(printable(QString("a\n\x1B[0m") + QChar(0x9B) + QChar(0x202E)),
                 std::string("a\\x0A\\x1B[0m\\x9B\\x202E"));
        QCOMPARE(printable(QString::fromUtf8("f\xC3\xBC\xF0\x9F\x98\x80")),
                 std::string("f\xC3\xBC\xF0\x9F\x98\x80"));
        QCOMPARE(quoted(QString(1000, 'x')).size(), size_t(165));
        for (const ushort character : {0x00, 0x1B, 0x7F, 0x85, 0x9F, 0xAD, 0x61C, 0x200B, 0x200F,
                                       0x2028, 0x202A, 0x2060, 0x2066, 0x2069, 0xFEFF})
            QCOMPARE(printable(QString("a") + QChar(character) + "b"),
                     fmt::format("a\\x{:02X}b", character));
        // A letter of the plane of tags, which nothing shows.
        QCOMPARE(printable(QString::fromUtf8("a\xF3\xA0\x81\x81")), std::string("a\\xE0041"));
        // Blanks, letters and marks of any language are seen.
        const QString seen = QString::fromUtf8(" ~\xC2\xA0\xC3\xA9\xCE\xB1\xE4\xB8\xAD");
        QCOMPARE(printable(seen), seen.toStdString());
    }

    void nothingThatIsPrintedSteersATerminal()
    {
        const QByteArray unsafe = "\x1B[2J\x7F\x9B"
                                  "0m\xAD";
        m_series->put("a.dpc", goodLine({{10, unsafe}, {11, '/' + unsafe}}));
        for (const char* command : {"check", "check --format=json", "show", "show --format=csv",
                                    "show --format=json", "show --expand --host=pc", "roundtrip"}) {
            const DpcRun::Result result =
                m_dpc.run(QString(command) + ' ' + m_series->root() + "a.dpc");
            const QString text = QString::fromUtf8(result.out + result.err);
            for (const QChar c : text)
                QVERIFY2(c == '\n' || c == '\r' || (c.isPrint() && c.unicode() != 0xAD), command);
            QVERIFY2(text.contains("[2J") || result.out.contains("is created"), command);
        }
    }

    void cellsThatSpreadsheetsWouldComputeAreText()
    {
        QCOMPARE(csvLine({"=1+1", "@x", "+a", "-b", "\t=1"}),
                 std::string("'=1+1,'@x,'+a,'-b,\\x09=1\r\n"));
        QCOMPARE(csvLine({"=\"a\",b", "+1,2"}), std::string("\"'=\"\"a\"\",b\",\"'+1,2\"\r\n"));
        QCOMPARE(csvLine({"a=b", "-1", "", "+5"}), std::string("a=b,-1,,+5\r\n"));
    }

private:
    static QByteArray everyByte()
    {
        QByteArray bytes;
        for (int i = 0; i < 256; ++i)
            bytes +=
                "Posix;" + QByteArray(1, char(i)) + ";;;;;;1;;" + QByteArray(1, char(i)) + "/x;y\n";
        return bytes;
    }

    QScopedPointer<SeriesFolder> m_series;
    DpcRun m_dpc;
};

QTEST_APPLESS_MAIN(TestDpcCommands)
#include "tst_dpccommands.moc"
