#include "check/ruletexts.h"
#include "configset/seriessaver.h"
#include "engine/lossrules.h"
#include "engine/names.h"
#include "tests/engine/plannedseries.h"

#include <QRegularExpression>

Q_DECLARE_METATYPE(const Rule*)

/// Each difference between a task and fio is named by the right rule, and nothing else is.
class TestLosses : public QObject
{
    Q_OBJECT

private slots:
    void exampleIsHitAndCounterexampleIsNot_data();
    void exampleIsHitAndCounterexampleIsNot();
    void everyRuleIsComplete();
    void everyRuleOfTheSourceIsListed();
    void documentHoldsTheTable();
    void lossesOfATask_data();
    void lossesOfATask();
    void formsDefaultsNeedNoPermission();
    void namesThatFioCannotTakeAreRefused_data();
    void namesThatFioCannotTakeAreRefused();
    void namesThatNoPathHoldsAreRefused_data();
    void namesThatNoPathHoldsAreRefused();
    void namesThatNoLineHoldsAreRefused();
    void logsThatNoLineHoldsAreRefused();
    void chunksThatFioCannotTakeAreRefused();
    void namesOfThisSystemAreJudged_data();
    void namesOfThisSystemAreJudged();
    void eachPlaceIsNamedOnce();
};

namespace {

constexpr const char* document = TWDP_SOURCE_DIR "/docs/running.md";

QByteArray bytesOf(std::string_view text)
{
    return {text.data(), int(text.size())};
}

/// Lays out an example and counts what its rule finds.
int hits(const Rule& rule, const RuleExample& example)
{
    PlannedSeries series;
    for (const ExampleFile& file : example.files) {
        if (!file.name.empty())
            series.put(QString::fromUtf8(bytesOf(file.name)), bytesOf(file.content));
    }
    const QString existing = QString::fromUtf8(bytesOf(example.existing));
    series.options().environment.look = [&](const QString& path) {
        PathStatus status;
        status.kind = !existing.isEmpty() && path == existing ? PathStatus::Kind::File
                                                              : PathStatus::Kind::Nothing;
        status.size = example.existingKib * 1024;
        return status;
    };
    const PlanResult result = series.plan();
    return int(std::count_if(result.losses.begin(), result.losses.end(),
                             [&](const Finding& loss) { return loss.rule == &rule; }));
}

QByteArray tableOfLosses()
{
    QByteArray table = "| rule | severity | what it means | what to do |\n|---|---|---|---|\n";
    for (const Rule* rule : lossRules())
        table += QByteArray("| `") + rule->name + "` | " + severityName(rule->severity) + " | " +
                 rule->meaning + " | " + rule->advice + " |\n";
    return table;
}

} // namespace

void TestLosses::exampleIsHitAndCounterexampleIsNot_data()
{
    QTest::addColumn<const Rule*>("rule");
    for (const Rule* rule : lossRules())
        QTest::newRow(rule->name) << rule;
}

void TestLosses::exampleIsHitAndCounterexampleIsNot()
{
    QFETCH(const Rule*, rule);
    QVERIFY(hits(*rule, rule->hit) > 0);
    QCOMPARE(hits(*rule, rule->miss), 0);
}

void TestLosses::everyRuleIsComplete()
{
    for (const Rule* rule : lossRules()) {
        QVERIFY2(QRegularExpression("^fio-[a-z0-9]+(-[a-z0-9]+)*$").match(rule->name).hasMatch(),
                 rule->name);
        QCOMPARE(lossRuleNamed(rule->name), rule);
        QVERIFY2(QByteArrayList({"lines", "paths", "series", "machines"}).contains(rule->category),
                 rule->name);
        for (const char* text : {rule->meaning, rule->advice})
            QVERIFY2(QByteArray(text).endsWith('.') && !QByteArray(text).contains('|'), rule->name);
    }
    QVERIFY(lossRuleNamed("fio-none") == nullptr);
    QCOMPARE(QByteArray(closestLossRuleName("fio-flash")), QByteArray("fio-flush"));
}

void TestLosses::everyRuleOfTheSourceIsListed()
{
    static const QRegularExpression constant("const Rule \\w+ = \\{\\s*\"([^\"]+)\"");
    QStringList written;
    auto matches = constant.globalMatch(test::contentOf(TWDP_SOURCE_DIR "/engine/lossrules.cpp"));
    while (matches.hasNext())
        written += matches.next().captured(1);
    QStringList listed;
    for (const Rule* rule : lossRules())
        listed += rule->name;
    QCOMPARE(listed, written);
}

void TestLosses::documentHoldsTheTable()
{
    const QByteArray text = test::contentOf(document);
    const QByteArray begin = "<!-- losses -->\n";
    const int start = text.indexOf(begin) + begin.size();
    const int end = text.indexOf("<!-- end of losses -->");
    QVERIFY(start >= begin.size() && end >= start);
    if (qEnvironmentVariableIntValue("TWDP_UPDATE_GOLDEN") == 1)
        test::put(document, text.left(start) + tableOfLosses() + text.mid(end));
    else
        QCOMPARE(QString::fromUtf8(text.mid(start, end - start)),
                 QString::fromUtf8(tableOfLosses()));
}

void TestLosses::lossesOfATask_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QStringList>("rules");
    const auto row = [](const char* name, const Line& line, const QStringList& rules) {
        QTest::newRow(name) << line.text() << rules;
    };
    const QByteArray file = "[cfgPath]/a.dat";
    Line write;
    write.destination = file;
    row("a plain write", write, {});

    Line line = write;
    line.method = "System";
    line.flush = line.preallocate = true;
    row("no copying by the system, and nothing else beside it", line, {"1:1 fio-no-sendfile"});

    line = write;
    line.method = "AnsiC";
    row("AnsiC has a buffer", line, {"1:1 fio-buffer-sizes"});
    line.buffer = 0;
    row("AnsiC without its buffer", line, {"1:6 fio-system-buffer"});
    line.buffer = 1;
    row("AnsiC with a buffer of a chunk", line, {"1:6 fio-system-buffer"});
    line.method = "Stream";
    row("a stream with a buffer of a chunk", line, {"1:6 fio-system-buffer"});
    line.buffer = -1;
    row("a stream with large chunks", line, {});
    line.chunk = 8;
    row("a stream with chunks of 8 KiB", line, {});
    line.chunk = 7;
    row("a stream with small chunks", line, {"1:5 fio-buffer-sizes"});
    line.size = 7;
    row("a stream in one small chunk", line, {});
    line.chunk = 0;
    row("a stream at once", line, {});

    line = write;
    line.buffer = 1;
    row("Posix says that it reads in sequence", line, {});
    line.buffer = 0;
    row("Posix has no such setting", line, {"1:6 fio-system-buffer"});

    line = write;
    line.flush = true;
    row("a flush without a wait", line, {});
    line.wait = 1;
    row("a flush with a wait", line, {"1:2 fio-flush"});
    line.flush = false;
    row("a wait without a flush", line, {});

    line = write;
    line.preallocate = true;
    row("pre-allocation", line, {"1:3 fio-preallocate"});

    for (const int mode : {1, 2, 3, 4, 5}) {
        line = write;
        line.cache = mode;
        QTest::addRow("cache mode %d", mode) << line.text() << QStringList{"1:9 fio-cache-mode"};
    }

    line = write;
    line.size = 0;
    row("nothing to write", line, {"1:7 fio-size"});
    line.size = -1;
    row("less than nothing to write", line, {"1:7 fio-size"});
    line = write;
    line.chunk = -64;
    row("chunks of less than nothing", line, {"1:5 fio-size"});
    line = write;
    line.wait = -1;
    row("a wait of less than nothing", line, {"1:4 fio-wait"});
    line.wait = 4294967;
    row("the longest wait", line, {});
    line.wait = 4294968;
    row("a longer wait", line, {"1:4 fio-wait"});

    line = write;
    line.destination = "MEMORY";
    row("neither source nor destination", line, {"1:10 fio-no-file"});

    line = write;
    line.chunk = 100;
    row("a shorter last chunk", line, {});
    line.destination = "[cfgPath]/a b.dat";
    row("a shorter last chunk, and a name with a blank", line, {"1:5 fio-last-chunk"});
    line.flush = true;
    row("a flush and a name with a blank", line, {"1:2 fio-flush", "1:5 fio-last-chunk"});
    line.chunk = 64;
    row("a flush, no shorter chunk, and a blank", line, {"1:2 fio-flush"});
    line.flush = false;
    line.iterations = 2;
    row("the same file twice", line, {"1:11 fio-overwrite"});
    line.iterations = 0;
    row("no iteration", line, {});
}

void TestLosses::lossesOfATask()
{
    QFETCH(QByteArray, line);
    QFETCH(QStringList, rules);
    PlannedSeries series;
    QCOMPARE(series.lossesOf(line), rules);
}

void TestLosses::formsDefaultsNeedNoPermission()
{
    PlannedSeries series;
    TestTask task;
    task.setDefaults();
    TaskList tasks = {task};
    saveSeries(tasks, "info", {series.root(), "mytest"});
    // As the second save writes it, once the names have a series.
    series.put("mytest_init.dpc", "Stream;NOflush;NOprealloc;  0;    0; -1; 102400;1;0;  MEMORY;  "
                                  "[cfgPath]/testfile_mytest-0.dat;  ;  ;  true;\n"
                                  "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  "
                                  "[cfgPath]/mytest/dummyFile;  ;  ;  true;\n");
    const PlanResult result = series.plan();
    QVERIFY(result.problems.empty() && result.misuse.empty());
    for (const Finding& loss : result.losses)
        QVERIFY2(loss.rule->severity == Severity::Note, loss.rule->name);
    QCOMPARE(result.plan.jobs.size(), size_t(2));
}

void TestLosses::namesThatFioCannotTakeAreRefused_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QStringList>("rules");
    const auto bad = [](const char* name) {
        QTest::newRow(name) << QByteArray(name) << QStringList{"1:11 fio-name"};
    };
    const auto good = [](const char* name) {
        QTest::newRow(name) << QByteArray(name) << QStringList();
    };
    bad("/d/a#b.dat");
    bad("/d/#");
    bad("/d/${HOME}.dat");
    bad("/d/a$ncpus");
    bad("/d/$pagesize.dat");
    bad("/d/$mb_memory");
    bad("/d/a\tb");
    bad("/d/a\x7F");
    bad("/d/folder/");
    bad("//server/share/a.dat");
    bad("C:\\data\\a.dat");
    bad("C:/data/a.dat");

    good("/d/a$b.dat");
    good("/d/$HOME");
    good("/d/a$ {b}");
    good("/d/a:b,c%d'e\"f=g|h*i?j[k]l\\m`n");
    good("/d/pr\xFC"
         "fung.dat");
    good("/d/-");
    for (const char* name : {"/dev/null", "/dev/shm/a.dat", "/proc/a", "/sys/a", "/d/../dev/sda"})
        QTest::newRow(name) << QByteArray(name) << QStringList{"1:11 fio-special-file"};
}

void TestLosses::namesThatFioCannotTakeAreRefused()
{
    QFETCH(QByteArray, name);
    QFETCH(QStringList, rules);
    PlannedSeries series;
    Line line;
    line.size = 1;
    line.chunk = 1;
    line.destination = name;
    QCOMPARE(series.lossesOf(line.text()), rules);
}

void TestLosses::namesThatNoPathHoldsAreRefused_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("fits");
    // A name of 500 characters may be the rest of a longer one.
    QTest::newRow("fits") << QByteArray("/d") << 499 << true;
    QTest::newRow("may be cut") << QByteArray("/d") << 500 << false;
    QTest::newRow("a variable, far from it") << QByteArray("[cfgPath]") << 300 << true;
    QTest::newRow("a variable, fits") << QByteArray("[cfgPath]") << 499 << true;
    QTest::newRow("a variable, may be cut") << QByteArray("[cfgPath]") << 500 << false;
    QTest::newRow("a variable, is cut") << QByteArray("[cfgPath]") << 501 << false;
}

void TestLosses::namesThatNoPathHoldsAreRefused()
{
    QFETCH(const QByteArray, start);
    QFETCH(const int, length);
    QFETCH(const bool, fits);
    PlannedSeries series;
    // The folder's name ends with a slash, and another one follows.
    const int before = start.startsWith('[') ? series.root().size() : start.size();
    QByteArray name = start;
    for (int at = before; at < length; ++at)
        name += (at - before) % 100 == 0 ? '/' : 'a';
    QCOMPARE(series.lossesOf(writing(name).text()),
             fits ? QStringList() : QStringList("1:11 fio-name"));
}

void TestLosses::namesThatNoLineHoldsAreRefused()
{
    PlannedSeries series;
    series.options().mayOverwrite = [](const QString&, const QString&) { return true; };
    Line line;
    line.destination = "/d/" + QByteArray(400, 'x');
    QCOMPARE(series.lossesOf(line.text()), QStringList());
    // A shell needs four characters for each.
    line.destination = "/d/" + QByteArray(490, '\'');
    line.preallocate = true;
    QCOMPARE(series.lossesOf(line.text()), QStringList({"1:3 fio-preallocate", "1:10 fio-name"}));
    // More than the variables of a name can hold.
    line.preallocate = false;
    line.destination = "/d/[cfgPath]" + QByteArray(485, 'x');
    QCOMPARE(series.lossesOf(line.text()), QStringList("1:11 fio-name"));
}

void TestLosses::logsThatNoLineHoldsAreRefused()
{
    PlannedSeries series;
    // A shell needs four characters for each. On this machine a log is a file of its own.
    const QByteArray odd = "/d/" + QByteArray(250, '\'');
    Line line = writing(odd);
    line.flush = true;
    const Line copy = copying(odd + '1', odd + '2');
    QCOMPARE(series.lossesOf(line.text() + copy.text()), QStringList());
    series.options().machines = {{"pc1", "ip:127.0.0.1,1", "/scratch"}};
    QCOMPARE(series.lossesOf(line.text() + copy.text()), QStringList("2:10 fio-name"));
}

void TestLosses::chunksThatFioCannotTakeAreRefused()
{
    PlannedSeries series;
    constexpr qint64 gib = 1 << 30;
    qint64 size = gib;
    series.options().environment.look = [&](const QString&) {
        PathStatus status;
        status.kind = PathStatus::Kind::File;
        status.size = size;
        return status;
    };
    Line line = reading("/d/a.dat");
    line.chunk = 0;
    QCOMPARE(series.lossesOf(line.text()), QStringList());
    // Only a file that is there can be larger than what a task makes.
    size = gib + 1;
    QCOMPARE(series.lossesOf(line.text()), QStringList("1:5 fio-size"));
}

void TestLosses::namesOfThisSystemAreJudged_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("problem");
    QTest::newRow("plain") << "/d/a.dat" << QByteArray();
    QTest::newRow("a blank inside") << "/d/a b" << QByteArray();
    QTest::newRow("a blank at the end")
        << "/d/a " << QByteArray("ends with a blank, which fio cuts");
    QTest::newRow("no blank at the end, but another")
        << "/d/a\t" << QByteArray("holds a control character, which a job file of fio can't hold");
    QTest::newRow("half a letter")
        << QString("/d/") + QChar(0xD800)
        << QByteArray("has letters that the encoding of file names can't hold");
    QTest::newRow("relative") << "a.dat" << QByteArray("is not an absolute path of this system");
}

void TestLosses::namesOfThisSystemAreJudged()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, problem);
    QCOMPARE(QByteArray::fromStdString(nameProblem(path)), problem);
}

void TestLosses::eachPlaceIsNamedOnce()
{
    PlannedSeries series;
    series.options().machines = {{"pc1", "ip:127.0.0.1,1", {}}, {"pc2", "ip:127.0.0.1,2", {}}};
    Line line;
    line.method = "AnsiC";
    line.iterations = 3;
    line.destination = "[cfgPath]/[host]/a#[iter]";
    QCOMPARE(series.lossesOf(line.text() + line.text()),
             QStringList({"1:1 fio-buffer-sizes", "1:11 fio-name", "2:1 fio-buffer-sizes",
                          "2:11 fio-name"}));
}

QTEST_APPLESS_MAIN(TestLosses)
#include "tst_losses.moc"
