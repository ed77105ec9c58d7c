#include "model/tasklinereader.h"
#include "model/tasklinewriter.h"
#include "shared/kvtext.h"
#include "tests/model/describetask.h"
#include "tests/model/slowreading.h"

#include <QTest>

#include <random>

// Writer and reader as a pair, and the reader against a second reading of the same rules.

namespace {

using Path = _kvString8_allSize<500>;
const Path configPath("/cfg/set.dpc");

_kvString<1000> lineOf(TestTask task)
{
    _kvString<1000> line;
    writeTaskLine(line, task);
    return line;
}

/// All combinations of settings that a line can carry, in steps that touch each rule's borders.
template <class Visit>
void forEachRecord(const Visit& visit)
{
    for (const int method : {0, 1, 2, 3}) {
        for (const int paths : {0, 1, 2}) {
            for (const int flags : {0, 1, 2, 3, 4, 5, 6, 7}) {
                for (const int chunkKib : {0, 1, 64, 10240}) {
                    for (const int buffer : {-1, 0, 1}) {
                        TestTask task;
                        task.method = static_cast<IoMethod>(method);
                        task.sourcePath = Path(paths == 1 ? "" : "[cfgPath]/s");
                        task.destPath = Path(paths == 2 ? "" : "/d\xFC");
                        task.logPath = Path("/l");
                        task.csvPath = Path("[temp]/c");
                        task.io.flush = (flags & 1) != 0;
                        task.io.preallocate = (flags & 2) != 0;
                        task.writeDone = (flags & 4) != 0;
                        task.setChunkSize(bytesFromKib(chunkKib));
                        task.setChunkWait(chunkKib + 1);
                        task.io.sysBufferMode = buffer;
                        task.io.fileSize = bytesFromKib(chunkKib * 100);
                        task.iterations = chunkKib % 100;
                        task.io.cacheMode = buffer + 1;
                        task.normalise();
                        visit(task);
                    }
                }
            }
        }
    }
}

template <class Engine>
QString pick(Engine& engine, const QStringList& choices)
{
    return choices[std::uniform_int_distribution<int>(0, choices.size() - 1)(engine)];
}

QString randomLine(std::mt19937& engine)
{
    const QStringList methods = {"Posix",    "System", "Stream", "AnsiC", " Stream ",
                                 "AnsiC \t", "WinApi", "posix",  "",      "System2"};
    const QStringList flags = {"flush", "NOflush", "true", "1", "0", "prealloc ", "NOprealloc", ""};
    const QStringList numbers = {
        "0",       "1",       "-1",      "50",       " 1024",
        "2097152", "4194304", "1048576", "2000000",  "-",
        "",        "9",       "5x",      "-2097152", "99999999999999999999",
        "007",     "10240"};
    const QStringList paths = {"MEMORY",      "",        "/t/x.dat",        "out/x.dat",
                               "[cfgPath]/x", "[temp]",  "C:\\x",           "\\\\h\\x",
                               "[host].txt",  "  a b  ", QString(510, 'p'), QString(QChar(0xFC)),
                               "memory"};
    QStringList fields{pick(engine, methods), pick(engine, flags), pick(engine, flags)};
    for (int i = 0; i < 6; ++i)
        fields += pick(engine, numbers);
    for (int i = 0; i < 4; ++i)
        fields += pick(engine, paths);
    fields += pick(engine, {"true", "false", "1", " true ", ""});
    // Some lines are too short, some lack the last ";", some have more.
    const int kept = std::uniform_int_distribution<int>(0, 40)(engine);
    if (kept < fields.size())
        fields = fields.mid(0, kept);
    return fields.join(';') + pick(engine, {";", "", ";;", "; ", ";rest"});
}

} // namespace

class TestTaskLinePair : public QObject
{
    Q_OBJECT

private slots:
    void whatTheFormatHoldsComesBack()
    {
        int records = 0;
        forEachRecord([&](const TestTask& task) {
            TestTask back;
            QVERIFY(readTaskLine(back, lineOf(task), configPath));
            QCOMPARE(describe(back), describe(task));
            ++records;
        });
        QCOMPARE(records, 4 * 3 * 8 * 4 * 3);
    }

    void everyPathByteComesBack()
    {
        for (int code = 1; code < 256; ++code) {
            const char byte = static_cast<char>(code);
            if (byte == ';')
                continue;
            TestTask task;
            task.setFileCreation(Path("/d"), 1024);
            for (Path* path : {&task.sourcePath, &task.destPath, &task.logPath, &task.csvPath}) {
                *path = Path("/a");
                path->addChar(byte);
                path->add("b");
            }
            TestTask back;
            QVERIFY(readTaskLine(back, lineOf(task), configPath));
            QCOMPARE(describe(back), describe(task));
        }
    }

    void remaindersOfAKiBAreLost()
    {
        TestTask task;
        task.setFileCreation(Path("/d"), 1048577);
        task.setChunkSize(1536);
        TestTask back;
        QVERIFY(readTaskLine(back, lineOf(task), configPath));
        QCOMPARE(back.io.fileSize, 1048576);
        QCOMPARE(back.io.chunkSize, 1024);
    }

    void winApiDoesNotComeBack()
    {
        TestTask task;
        task.setDefaults();
        task.method = IoMethod::WinApi;
        TestTask back;
        QVERIFY(!readTaskLine(back, lineOf(task), configPath));
    }

    void writingWhatWasReadIsStableFromTheSecondTimeOn()
    {
        std::mt19937 engine(20260102);
        int accepted = 0;
        for (int i = 0; i < 5000; ++i) {
            const QString text = randomLine(engine);
            TestTask first;
            if (!readTaskLine(first, kvToString16<1000>(text), configPath) ||
                first.waitForNextConfig)
                continue;
            const auto once = lineOf(first);
            TestTask second;
            QVERIFY2(readTaskLine(second, once, configPath), qPrintable(text));
            const auto twice = lineOf(second);
            QCOMPARE(kvToQString(twice), kvToQString(once));
            ++accepted;
        }
        QVERIFY(accepted > 500);
    }

    void readerAgreesWithTheSlowReading()
    {
        std::mt19937 engine(4711);
        int accepted = 0;
        int rejected = 0;
        for (int i = 0; i < 20000; ++i) {
            const QString text = randomLine(engine).left(1000);
            if (text.endsWith(".dpc"))
                continue;
            const auto expected = slowreading::read(text, "/cfg/");
            TestTask task;
            const bool taken = readTaskLine(task, kvToString16<1000>(text), configPath);
            QVERIFY2(taken == expected.has_value(), qPrintable(text));
            ++(taken ? accepted : rejected);
            if (taken)
                QCOMPARE(describe(task), describe(*expected));
        }
        QVERIFY(accepted > 2000 && rejected > 2000);
    }
};

QTEST_APPLESS_MAIN(TestTaskLinePair)
#include "tst_tasklinepair.moc"
