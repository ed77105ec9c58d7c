#include "model/methods.h"
#include "model/taskcells.h"
#include "model/tasklinereader.h"
#include "model/tasklinewriter.h"
#include "shared/kvtext.h"

#include <QTest>

namespace {

/// All that is said of a method, in one line.
QString rowOf(const MethodInfo& method)
{
    const char* const chunks[] = {"optional chunks", "chunks", "own chunks"};
    const char* const buffers[] = {"unbuffered", "joins", "cuts"};
    QStringList row = {method.name, chunks[int(method.copyChunks)],
                       buffers[int(method.libraryBuffer)]};
    const QPair<MethodTrait, const char*> traits[] = {{IsRead, "read"},
                                                      {CopiesOnly, "copies only"},
                                                      {CanPreallocate, "preallocates"},
                                                      {BufferIsOfChunk, "buffers chunks"}};
    for (const auto& [trait, word] : traits) {
        if (method.has(trait))
            row += word;
    }
    for (const SystemBuffer& buffer : method.systemBuffers) {
        if (buffer.text != nullptr)
            row += QStringLiteral("%1=%2").arg(buffer.mode).arg(buffer.text);
    }
    return row.join(", ");
}

/// All that a method and a type allow, in one line.
QString textOf(const TaskRules& rules)
{
    QStringList words;
    const auto add = [&words](bool holds, const char* word) {
        if (holds)
            words += word;
    };
    add(rules.hasOneSystemBuffer, "one buffer");
    add(rules.systemBufferNeedsChunks, "buffer needs chunks");
    add(rules.chunkSizeIsNeeded, "chunks needed");
    add(rules.allowsNoChunks, "no chunks");
    add(rules.startsWithoutChunks, "starts without");
    add(rules.allowsPreallocation, "preallocation");
    add(rules.allowsFlush, "flush");
    return QString::number(rules.maxSystemBuffer) + ": " + words.join(", ");
}

} // namespace

/// Promises that every method of the table keeps, whichever methods it holds.
class TestMethods : public QObject
{
    Q_OBJECT

private slots:
    void table()
    {
        const char* const table =
            "Posix, chunks, unbuffered, read, preallocates, -1=default, 1=Linux only - use "
            "POSIX_FADV_SEQUENTIAL flag\n"
            "System, own chunks, unbuffered, read, copies only, -1=default\n"
            "Stream, optional chunks, joins, read, buffers chunks, -1=default, 0=disable buffer, "
            "1=use same size as chunk size\n"
            "AnsiC, chunks, cuts, read, buffers chunks, -1=default, -1=default, 0=disable buffer, "
            "1=use same size as chunk size\n"
            "WinApi, chunks, unbuffered, preallocates, -1=default, 0=FILE_FLAG_WRITE_THROUGH, "
            "1=FILE_FLAG_SEQUENTIAL_SCAN, 2= FILE_FLAG_WRITE_THROUGH + FILE_FLAG_SEQUENTIAL_SCAN";
        const QStringList expected = QString(table).split('\n');
        for (int number = 0; number < methodCount; ++number)
            QCOMPARE(rowOf(ioMethods[number]), expected.value(number));
    }

    void rules_data()
    {
        QTest::addColumn<int>("method");
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("rules");
        const auto row = [](int method, int type, const char* rules) {
            QTest::addRow("%d %s", method, testTypeNames[type]) << method << type << QString(rules);
        };
        row(0, 0, "1: chunks needed, preallocation, flush");
        row(0, 1, "1: no chunks, preallocation, flush");
        row(0, 2, "1: no chunks");
        for (const int type : {0, 1, 2})
            row(1, type, "-1: one buffer, chunks needed, no chunks, starts without, flush");
        row(2, 0, "1: buffer needs chunks, no chunks, flush");
        row(2, 1, "1: buffer needs chunks, no chunks, flush");
        row(2, 2, "1: buffer needs chunks, no chunks");
        row(3, 0, "1: buffer needs chunks, chunks needed, flush");
        row(3, 1, "1: buffer needs chunks, no chunks, flush");
        row(3, 2, "1: buffer needs chunks, no chunks");
        row(4, 0, "2: chunks needed, preallocation, flush");
        row(4, 1, "2: no chunks, preallocation, flush");
        row(4, 2, "2: no chunks");
        for (const int unknown : {-1, 5}) {
            row(unknown, 1, "2147483647: no chunks, flush");
            row(unknown, 2, "2147483647: no chunks");
        }
    }

    void rules()
    {
        QFETCH(int, method);
        QFETCH(int, type);
        QTEST(textOf(rulesFor(static_cast<IoMethod>(method), static_cast<TestType>(type))),
              "rules");
    }

    void onlyWinApiIsWrittenAndNotRead()
    {
        for (const char* name : {"Posix", "System", "Stream", "AnsiC", "winapi", "WinApi2", ""})
            QVERIFY2(!isWrittenOnly(name), name);
        QVERIFY(isWrittenOnly("WinApi"));
    }

    void lineAndTableHaveTheSameName()
    {
        for (int number = 0; number < methodCount; ++number) {
            const auto name = QString::fromLatin1(ioMethods[number].name);
            TestTask task = plainTask(number);
            QCOMPARE(taskCells(task, 0).value(1), name);
            _kvString<1000> line;
            const QString text = kvToQString(writeTaskLine(line, task));
            QCOMPARE(text.section(';', 0, 0), name.leftJustified(6));
            TestTask read;
            QCOMPARE(readTaskLine(read, line, _kvString8_allSize<500>("/c/a.dpc")),
                     ioMethods[number].has(IsRead));
            if (ioMethods[number].has(IsRead))
                QCOMPARE(int(read.method), number);
        }
    }

    void numberThatIsNotAMethodHasNoRow()
    {
        for (const int number : {-2147483647, -1, methodCount, 2147483647}) {
            QVERIFY(methodInfo(static_cast<IoMethod>(number)) == nullptr);
            QCOMPARE(methodName(static_cast<IoMethod>(number)), "");
        }
        for (int number = 0; number < methodCount; ++number)
            QVERIFY(methodInfo(static_cast<IoMethod>(number)) == &ioMethods[number]);
    }

    void firstSystemBufferIsTheDefault()
    {
        for (const MethodInfo& method : ioMethods)
            QCOMPARE(method.systemBuffers[0].mode, defaultSysBufferMode);
    }

    void normalisingKeepsEverySystemBufferThatTheFormOffers()
    {
        for (int number = 0; number < methodCount; ++number) {
            for (const SystemBuffer& buffer : ioMethods[number].systemBuffers) {
                if (buffer.text == nullptr)
                    continue;
                TestTask task = plainTask(number);
                task.io.sysBufferMode = buffer.mode;
                task.normalise();
                QCOMPARE(task.io.sysBufferMode, buffer.mode);
                task.io.sysBufferMode = rulesFor(task.method, TestType::Copy).maxSystemBuffer + 1;
                task.normalise();
                QVERIFY(task.io.sysBufferMode >= buffer.mode);
            }
        }
    }

    void rulesSayWhatNormalisingDoes_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<int>("type");
        for (int number = -1; number <= methodCount; ++number) {
            for (int type = 0; type < testTypeCount; ++type)
                QTest::addRow("%d %s", number, testTypeNames[type]) << number << type;
        }
    }

    void rulesSayWhatNormalisingDoes()
    {
        QFETCH(int, number);
        QFETCH(int, type);
        const TaskRules rules =
            rulesFor(static_cast<IoMethod>(number), static_cast<TestType>(type));
        TestTask task = plainTask(number);
        if (type == int(TestType::Write))
            task.sourcePath.clear();
        if (type == int(TestType::Read))
            task.destPath.clear();
        QCOMPARE(int(task.testType()), type);
        task.io.flush = task.io.preallocate = true;
        task.normalise();
        QCOMPARE(task.io.flush, rules.allowsFlush);
        QCOMPARE(task.io.preallocate, rules.allowsPreallocation);
        task.setChunkSize(0);
        task.normalise();
        QCOMPARE(task.io.chunkSize != 0, rules.chunkSizeIsNeeded);
        // Where the form can't leave chunks out, no record can.
        QVERIFY(rules.allowsNoChunks || rules.chunkSizeIsNeeded);
    }

private:
    static TestTask plainTask(int method)
    {
        TestTask task;
        task.setDefaults();
        task.method = static_cast<IoMethod>(method);
        return task;
    }
};

QTEST_APPLESS_MAIN(TestMethods)
#include "tst_methods.moc"
