#include "check/rules/catalogue.h"
#include "check/ruletexts.h"
#include "check/text.h"
#include "configset/seriesloader.h"
#include "dpc/alignment.h"
#include "dpc/json.h"
#include "dpc/listing.h"
#include "dpc/printer.h"
#include "dpc/roundtrip.h"
#include "dpc/totals.h"
#include "tests/check/seriesfolder.h"
#include "tests/dpc/dpcrun.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

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

    void savedAndLoadedSeriesComesThroughARoundTrip()
    {
        TestTask task;
        task.setDefaults();
        task.sourcePath = path("[cfgPath]/s.dat");
        m_series->save({task, marker(), task});
        // The names of the series come in with the second save, and then stay.
        TaskList tasks;
        loadSeries(
            {m_series->root(), "a"}, tasks,
            {[] { return false; }, [](const QString&) {}, [](const QString&, const QString&) {}});
        m_series->save(tasks);
        QCOMPARE(changes(), QString());
    }

    void roundTripTellsOfFilesThatAreCutAndLeftOver()
    {
        m_series->put("a.dpc", goodLine({{12, "[cfgPath]/l"}, {13, "[cfgPath]/c"}}).repeated(60));
        QVERIFY(changes().contains("_wait/a.dpc: is created"));
        QVERIFY(changes().contains(QString("_wait/a.dpc: is cut at %1 of ").arg(maxConfigFile)));
        QVERIFY(changes().contains("\na.dpc: stays as it is, and is loaded again next time\n"));
        QVERIFY(changes().contains("a_init.dpc: is created"));
        QCOMPARE(changesInJson(), (QStringList{"change created; cutAt 5000; file _wait/a.dpc; "
                                               "lineCount 49",
                                               "change created; file a_init.dpc; lineCount 1",
                                               "change kept; file a.dpc"}));
    }

    void roundTripTellsWhatCannotBeWritten()
    {
        m_series->put("a.dpc", goodLine());
        QVERIFY(QDir(m_series->root()).mkdir("_wait/a.dpc"));
        QVERIFY(changes().contains("_wait/a.dpc: can't be written: what is there is not a file\n"));
        QVERIFY(QDir(m_series->root() + "_wait").removeRecursively());
        m_series->put("_wait", "");
        QVERIFY(changes().contains("_wait/a.dpc: can't be written: the folder is a file\n"));
        QCOMPARE(changesInJson().value(0),
                 QString("change blocked; file _wait/a.dpc; reason the folder is a file"));
        QVERIFY(changes().contains("a_init.dpc: is created"));
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

    void roundTripKnowsTheFilesThatTheSaveMakes()
    {
        m_series->put("a.dpc", goodLine({{10, "[cfgPath]/_wait/a.dpc"}, {11, ""}}));
        m_series->put("a_init.dpc", "");
        QVERIFY(
            changes().contains(QRegularExpression("1 [+] # Stream.*[[]cfgPath\\]/_wait/a.dpc;")));
    }

    void roundTripComparesALargeFileInPart()
    {
        constexpr int compared = 256 * 1024;
        m_series->put("a.dpc", goodLine());
        m_series->put("a_init.dpc", QByteArray("a\n").repeated(compared / 2));
        QVERIFY(!changes().contains("not shown"));
        QCOMPARE(changes().count(" - a\n"), compared / 2);
        // The line at the edge is not shown in part.
        m_series->put("a_init.dpc", QByteArray("aa\n").repeated(compared));
        QCOMPARE(changes().count(" - aa\n"), compared / 3);
        const int rest = 3 * (compared - compared / 3);
        QVERIFY(changes().contains(
            QString("a_init.dpc: %1 more bytes go, and are not shown\n").arg(rest)));
        QVERIFY(changesInJson().contains(
            QString("bytesNotShown %1; change changed; file a_init.dpc").arg(rest)));
    }

    void aFileThatStaysAsItIsIsToldIfItIsCut()
    {
        TestTask task;
        task.setDefaults();
        task.sourcePath = path("[cfgPath]/[iter].dat");
        task.iterations = 100;
        m_series->save({task});
        // The names of the series come in with the second save, and then stay.
        TaskList tasks;
        loadSeries({m_series->root(), "a"}, tasks, silentListener());
        m_series->save(tasks);
        QCOMPARE(test::contentOf(m_series->root() + "a_init.dpc").size(), maxConfigFile);
        QCOMPARE(changes().remove(m_series->root()),
                 QString("a_init.dpc: is cut at %1 characters\n").arg(maxConfigFile));
        QCOMPARE(changesInJson(), QStringList("change unchanged; cutAt 5000; file a_init.dpc"));
        QCOMPARE(m_dpc.run("roundtrip " + m_series->root() + "a.dpc").code, 1);
    }

    void aLargeFileWithoutALineEndIsComparedInPart()
    {
        constexpr int compared = 256 * 1024;
        m_series->put("a.dpc", goodLine());
        m_series->put("a_init.dpc", QByteArray(compared, 'a'));
        const QString line = " - " + QString(compared, 'a') + " (no line end)\n";
        QVERIFY(changes().contains(line));
        QVERIFY(!changes().contains("not shown"));
        m_series->put("a_init.dpc", QByteArray(compared + 1, 'a'));
        QVERIFY(changes().contains(line));
        QVERIFY(changes().contains("a_init.dpc: 1 more bytes go, and are not shown\n"));
    }

    void roundTripOfEndlessIterationsEnds()
    {
        m_series->put("a.dpc", goodLine({{8, "2000000000"}, {10, "[cfgPath]/[iter]"}}));
        QVERIFY(changes().contains(
            QString("a_init.dpc: is cut at %1 characters\n").arg(maxConfigFile)));
    }

    void alignmentPairsWhatIsEqual()
    {
        QCOMPARE(pairs({"a", "b", "c"}, {"a", "x", "b", "c"}), QString("0-0 ?-1 1-2 2-3"));
        QCOMPARE(pairs({"a", "b", "c"}, {"a", "c"}), QString("0-0 1-? 2-1"));
        QCOMPARE(pairs({"a", "b", "c"}, {"a", "d", "c"}), QString("0-0 1-1 2-2"));
        QCOMPARE(pairs({}, {"a"}), QString("?-0"));
        QCOMPARE(pairs({}, {}), QString());
    }

    void alignmentOfVeryLongListsIsByPlaces()
    {
        std::vector<std::string> first(4000, "a");
        std::vector<std::string> second(4001, "b");
        const auto aligned = align(first, second);
        QCOMPARE(aligned.size(), size_t(4001));
        QCOMPARE(aligned[3999].first, 3999);
        QCOMPARE(aligned[4000].first, -1);
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
    /// For each file what the JSON tells of it, but for the lines: keys in their order, and values.
    QStringList changesInJson() const
    {
        const QByteArray json =
            m_dpc.run("roundtrip --format=json " + m_series->root() + "a.dpc").out;
        QStringList texts;
        for (const QJsonValue value : QJsonDocument::fromJson(json).object()["files"].toArray()) {
            QJsonObject file = value.toObject();
            file.remove("lines");
            QStringList parts;
            for (auto part = file.constBegin(); part != file.constEnd(); ++part)
                parts += part.key() + ' ' + part.value().toVariant().toString();
            texts += parts.join("; ").remove(m_series->root());
        }
        return texts;
    }

    QString changes() const
    {
        return QString::fromStdString(changesAsText(roundTrip(m_series->facts())));
    }

    static QByteArray everyByte()
    {
        QByteArray bytes;
        for (int i = 0; i < 256; ++i)
            bytes +=
                "Posix;" + QByteArray(1, char(i)) + ";;;;;;1;;" + QByteArray(1, char(i)) + "/x;y\n";
        return bytes;
    }

    static QString pairs(const std::vector<std::string>& first,
                         const std::vector<std::string>& second)
    {
        const auto name = [](int place) {
            return place < 0 ? QString("?") : QString::number(place);
        };
        QStringList texts;
        for (const AlignedPair& pair : align(first, second))
            texts += name(pair.first) + '-' + name(pair.second);
        return texts.join(' ');
    }

    QScopedPointer<SeriesFolder> m_series;
    DpcRun m_dpc;
};

QTEST_APPLESS_MAIN(TestDpcCommands)
#include "tst_dpccommands.moc"
