#include "model/methods.h"
#include "model/taskcells.h"
#include "model/tasklinereader.h"
#include "model/tasklinewriter.h"
#include "shared/kvtext.h"

#include <QtTest>

/// Promises that every method of the table keeps, whichever methods it holds.
class TestMethods : public QObject
{
    Q_OBJECT

private slots:
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
        for (const int number : {-2147483647, -1, methodCount, 2147483647})
            QVERIFY(methodInfo(static_cast<IoMethod>(number)) == nullptr);
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
