#include "engine/fiooutput.h"
#include "tests/support/files.h"

#include <QTest>

// The recordings are fio's own output, byte for byte.

class TestFioOutput : public QObject
{
    Q_OBJECT

private slots:
    void readsALocalRun();
    void readsMachinesWithoutFiosSums();
    void readsWhatStandsBeforeABreak();
    void takesNothingFromOtherTexts_data();
    void takesNothingFromOtherTexts();
    void leavesOutWhatNothingCanHaveMeasured_data();
    void leavesOutWhatNothingCanHaveMeasured();
    void takesAMeanOfNothing();
    void takesAsNothingMovedWhatIsNotSaid();
    void readsTheVersion_data();
    void readsTheVersion();
    void takesNamesInAnyEncoding();
    void takesBracesInMessages();
    void takesTheStartOfNewerVersions();
    void takesNumbersThatAreExact();
    void takesSectionsFromTheirListsOnly();
    void endsWithTheDocument();
};

namespace {

QByteArray recorded(const char* name)
{
    return test::contentOf(QStringLiteral(TWDP_SOURCE_DIR "/tests/data/fio/") + name);
}

const char figures[] = R"("io_bytes" : 4096, "total_ios" : 1, "runtime" : 7)";

QByteArray sectionWith(const QByteArray& fields)
{
    const QByteArray direction = QByteArray("{") + figures + "}";
    return "{ \"jobname\" : \"s1\", \"read\" : " + direction + ", \"write\" : " + direction + ", " +
           fields + " }";
}

QByteArray documentOf(const QByteArray& section)
{
    return "{\n  \"fio version\" : \"fio-3.33\",\n  \"jobs\" : [\n" + section + "\n  ]\n}\n";
}

} // namespace

void TestFioOutput::readsALocalRun()
{
    const FioOutput output = readFioOutput(recorded("local-3.33.txt"));
    QCOMPARE(output.version, QStringLiteral("fio-3.33"));
    QVERIFY(output.isWhole);
    QCOMPARE(output.sections.size(), size_t(5));

    const SectionReport& write = output.sections[0];
    QCOMPARE(write.name, QByteArray("s0-l3-i0"));
    QVERIFY(write.host.isEmpty());
    QCOMPARE(write.error, 0);
    QCOMPARE(write.write.bytes, qint64(4194304));
    QCOMPARE(write.write.ios, qint64(64));
    QCOMPARE(write.read.bytes, qint64(0));
    QVERIFY(!write.read.p50Ns.has_value());
    QCOMPARE(write.runtimeMs, qint64(419));
    QCOMPARE(write.syncs, qint64(63));
    QVERIFY(write.syncNs > 0);
    QVERIFY(*write.write.p50Ns <= *write.write.p99Ns);
    QVERIFY(!write.startMs.has_value());

    // Its guard said no: no error, no bytes.
    QCOMPARE(output.sections[2].error, 0);
    QCOMPARE(output.sections[2].write.bytes, qint64(0));
    // It met the end of a file that is too short.
    QCOMPARE(output.sections[4].error, 5);
    QCOMPARE(output.sections[4].read.bytes, qint64(4194304));
}

void TestFioOutput::readsMachinesWithoutFiosSums()
{
    const FioOutput output = readFioOutput(recorded("client-3.33.txt"));
    QVERIFY(output.isWhole);
    QStringList found;
    for (const SectionReport& section : output.sections)
        found << section.host + ':' + QString::number(section.port) + ' ' + section.name;
    found.sort();
    QCOMPARE(found, (QStringList{"127.0.0.11:8765 s0-l3-i0", "127.0.0.11:8765 s0-l4-i0",
                                 "127.0.0.12:8765 s0-l3-i0", "127.0.0.12:8765 s0-l4-i0"}));
}

void TestFioOutput::readsWhatStandsBeforeABreak()
{
    const QByteArray whole = recorded("local-3.33.txt");
    const int second = whole.indexOf("s0-l4-i0", whole.indexOf("\n{"));
    const int third = whole.indexOf("s0-l5-i0", second);
    const FioOutput output = readFioOutput(whole.left(third));
    QVERIFY(!output.isWhole);
    QCOMPARE(output.sections.size(), size_t(2));
    QCOMPARE(output.sections[1].name, QByteArray("s0-l4-i0"));
    for (int length = 0; length < whole.size(); length += 97)
        QVERIFY(readFioOutput(whole.left(length)).sections.size() <= 5);
}

void TestFioOutput::takesNothingFromOtherTexts_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("a message") << QByteArray("fio: failed to connect to 127.0.0.11:8765\n");
    QTest::newRow("one brace") << QByteArray("{");
    QTest::newRow("closing braces") << QByteArray("{}}}}]]]");
    QTest::newRow("an open text") << QByteArray("{\"jobs\" : [ \"");
    QTest::newRow("an escape at the end") << QByteArray("{\"jobs\" : [ \"\\");
    QTest::newRow("another document") << QByteArray("{\"jobs\" : 5, \"x\" : [{\"error\" : 0}]}");
    QTest::newRow("zero bytes") << QByteArray(1000, '\0');
    QTest::newRow("many brackets") << QByteArray(200000, '[').prepend("{\"jobs\" : ");
}

void TestFioOutput::takesNothingFromOtherTexts()
{
    QFETCH(QByteArray, text);
    QVERIFY(readFioOutput(text).sections.empty());
}

void TestFioOutput::leavesOutWhatNothingCanHaveMeasured_data()
{
    QTest::addColumn<QByteArray>("section");
    QTest::newRow("no error number") << sectionWith("\"x\" : 0");
    QTest::newRow("an error as a text") << sectionWith("\"error\" : \"0\"");
    QTest::newRow("a negative error") << sectionWith("\"error\" : -1");
    QTest::newRow("no name") << sectionWith("\"error\" : 0").replace("jobname", "name");
    QTest::newRow("negative bytes") << sectionWith("\"error\" : 0").replace("4096", "-4096");
    QTest::newRow("endless bytes") << sectionWith("\"error\" : 0").replace("4096", "1e300");
    QTest::newRow("bytes as a text") << sectionWith("\"error\" : 0").replace("4096", "\"4096\"");
    QTest::newRow("no reads") << sectionWith("\"error\" : 0").replace("\"read\"", "\"trim\"");
    QTest::newRow("a list") << QByteArray("[ 1, 2 ]");
}

void TestFioOutput::leavesOutWhatNothingCanHaveMeasured()
{
    QCOMPARE(readFioOutput(documentOf(sectionWith("\"error\" : 0"))).sections.size(), size_t(1));
    QFETCH(QByteArray, section);
    const FioOutput output = readFioOutput(documentOf(section));
    QVERIFY(output.isWhole);
    QVERIFY(output.sections.empty());
}

void TestFioOutput::takesAMeanOfNothing()
{
    const QByteArray section = sectionWith("\"error\" : 0, \"util\" : -nan, \"x\" : inf");
    QCOMPARE(readFioOutput(documentOf(section)).sections.size(), size_t(1));
}

void TestFioOutput::takesAsNothingMovedWhatIsNotSaid()
{
    const QByteArray nothing = R"({ "io_bytes" : 0, "total_ios" : 0 })";
    const FioOutput output =
        readFioOutput(documentOf(R"({ "jobname" : "s1", "error" : 0, "read" : )" + nothing +
                                 ", \"write\" : " + nothing + " }"));
    QCOMPARE(output.sections.size(), size_t(1));
    const SectionReport& section = output.sections[0];
    QCOMPARE(section.error, 0);
    QCOMPARE(section.port, 0);
    QCOMPARE(section.runtimeMs, qint64(0));
    QCOMPARE(section.syncs, qint64(0));
    QCOMPARE(section.syncNs, 0.0);
    QCOMPARE(section.bytes(), qint64(0));
    for (const IoFigures& direction : {section.read, section.write}) {
        QCOMPARE(direction.ios, qint64(0));
        QCOMPARE(direction.ioNs, 0.0);
        QVERIFY(!direction.p50Ns && !direction.p99Ns && !direction.maxNs);
    }
    const SectionReport empty;
    QCOMPARE(empty.read.ios + empty.write.ios + empty.bytes() + empty.syncs, qint64(0));
}

void TestFioOutput::readsTheVersion_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("version");
    const auto row = [](const char* text, const char* version) {
        QTest::newRow(text) << QByteArray(text) << version;
    };
    row(R"({"fio version":"fio-3.33"})", "fio-3.33");
    row("{ \"fio version\" \t\r\n: \"fio-3\" }", "fio-3");
    row(R"({"fio version" : 3})", "");
    row(R"({"fio version" : "fio-3)", "");
    row(R"({"fio version" : )", "");
    row(R"({"fio version")", "");
    row(R"({"fio versio" : "fio-3"})", "");
    row(R"({"fio versioN" : "fio-3"})", "");
    row(R"({"fio versions" : "fio-3"})", "");
    row(R"({"a" : {"fio version" : "fio-3"}})", "");
}

void TestFioOutput::readsTheVersion()
{
    QFETCH(const QByteArray, text);
    QTEST(readFioOutput(text).version, "version");
}

void TestFioOutput::takesNamesInAnyEncoding()
{
    const QByteArray section = sectionWith("\"error\" : 0, \"filename\" : \"/tmp/Pr\xFC"
                                           "fung{\"");
    QCOMPARE(readFioOutput(documentOf(section)).sections.size(), size_t(1));
}

void TestFioOutput::takesBracesInMessages()
{
    const QByteArray text = "fio: can't open '/tmp/{x}' [y\n" +
                            documentOf(sectionWith("\"error\" : 2, \"x\" : \"]}\\\"}\""));
    const FioOutput output = readFioOutput(text);
    QCOMPARE(output.sections.size(), size_t(1));
    QCOMPARE(output.sections.front().error, 2);
    QVERIFY(output.isWhole);
    const QByteArray document = documentOf(sectionWith("\"error\" : 2"));
    QCOMPARE(readFioOutput("fio: " + document.simplified()).sections.size(), size_t(1));
}

void TestFioOutput::takesTheStartOfNewerVersions()
{
    const QByteArray section = sectionWith("\"error\" : 0, \"job_start\" : 1795301642763");
    const FioOutput output = readFioOutput(documentOf(section));
    QCOMPARE(output.sections.size(), size_t(1));
    QCOMPARE(output.sections.front().startMs, std::optional<qint64>(1795301642763));
}

void TestFioOutput::takesNumbersThatAreExact()
{
    const auto startOf = [](const QByteArray& number) {
        const QByteArray section = sectionWith("\"error\" : 0, \"job_start\" : " + number);
        return readFioOutput(documentOf(section)).sections.front().startMs;
    };
    QCOMPARE(startOf("0"), std::optional<qint64>(0));
    QCOMPARE(startOf("9007199254740992"), std::optional<qint64>(9007199254740992));
    QCOMPARE(startOf("9007199254740994"), std::optional<qint64>());
    QCOMPARE(startOf("-1"), std::optional<qint64>());
}

void TestFioOutput::takesSectionsFromTheirListsOnly()
{
    const QByteArray section = sectionWith("\"error\" : 0");
    const QByteArray others = "\"others\" : [ " + section + " ]";
    const QByteArray jobs = "\"jobs\" : [ " + section + " ]";
    for (const QByteArray& text : {others, others + ", " + jobs, jobs + ", " + others})
        QCOMPARE(readFioOutput("{ " + text + " }\n").sections.size(),
                 size_t(text == others ? 0 : 1));
}

void TestFioOutput::endsWithTheDocument()
{
    const QByteArray document = documentOf(sectionWith("\"error\" : 0"));
    QCOMPARE(readFioOutput(document + document).sections.size(), size_t(1));
}

QTEST_APPLESS_MAIN(TestFioOutput)
#include "tst_fiooutput.moc"
