#include "model/testtask.h"
#include "shared/kvtext.h"

#include <QTest>

#include <limits>
#include <new>
#include <type_traits>

using Path = _kvString8_allSize<500>;

Q_DECLARE_METATYPE(IoMethod)
Q_DECLARE_METATYPE(TestType)

namespace {

struct Settings
{
    int sysBufferMode;
    int chunkSize;
    bool preallocate;
    bool flush;
    int chunkWait;
};

TestTask taskOf(TestType type, IoMethod method, const Settings& settings)
{
    TestTask task;
    task.method = method;
    if (type != TestType::Write)
        task.sourcePath = Path("/s");
    if (type != TestType::Read)
        task.destPath = Path("/d");
    task.io.sysBufferMode = settings.sysBufferMode;
    task.setChunkSize(settings.chunkSize);
    task.io.preallocate = settings.preallocate;
    task.io.flush = settings.flush;
    task.setChunkWait(settings.chunkWait);
    return task;
}

constexpr int oneMiB = 1048576;
const IoMethod methods[] = {IoMethod::Posix, IoMethod::System, IoMethod::Stream,
                            IoMethod::AnsiC, IoMethod::WinApi, static_cast<IoMethod>(7)};
const TestType types[] = {TestType::Copy, TestType::Write, TestType::Read};

} // namespace

class TestTestTask : public QObject
{
    Q_OBJECT

private slots:
    void constructionLeavesNoChanceValues()
    {
        // Whatever lay in memory before, two fresh records agree in every field.
        alignas(TestTask) static unsigned char memory[sizeof(TestTask)];
        std::fill(std::begin(memory), std::end(memory), static_cast<unsigned char>(0xAA));
        const auto* task = new (memory) TestTask;
        QCOMPARE(task->method, IoMethod::Posix);
        QCOMPARE(task->io.cacheMode, 0);
        QCOMPARE(task->io.fileSize, 0);
        QCOMPARE(task->io.unused, std::int64_t(0));
        QCOMPARE(task->io.sysBufferMode, -1);
        QCOMPARE(task->io.chunkSize, 0);
        QCOMPARE(task->io.ioBufferSize, copyFile_chunksize());
        QCOMPARE(task->iterations, 0);
        QCOMPARE(task->configId, 0);
        QVERIFY(!task->writeDone && !task->waitForNextConfig);
        for (const Path* path : {&task->sourcePath, &task->destPath, &task->logPath, &task->csvPath,
                                 &task->configPath, &task->logPathAsRead, &task->csvPathAsRead,
                                 &task->sourcePathAsRead, &task->destPathAsRead})
            QVERIFY(path->isEmpty() && path->text[0] == 0);
        for (const ResultSlot& slot : task->results)
            QVERIFY(slot.name.isEmpty() && slot.values[0] == 0 && slot.values[1] == 0);
        for (const unsigned char byte : task->reserved)
            QCOMPARE(int(byte), 0);
        QVERIFY(task->lineText.isEmpty() && task->lineText.text[0] == 0);
    }

    void membersStandInTheirOrder()
    {
        const TestTask task;
        const void* members[] = {&task.method,
                                 &task.io,
                                 &task.iterations,
                                 &task.sourcePath,
                                 &task.destPath,
                                 &task.logPath,
                                 &task.csvPath,
                                 &task.writeDone,
                                 &task.configPath,
                                 &task.configId,
                                 &task.waitForNextConfig,
                                 &task.logPathAsRead,
                                 &task.csvPathAsRead,
                                 &task.sourcePathAsRead,
                                 &task.destPathAsRead,
                                 &task.results,
                                 &task.reserved,
                                 &task.lineText};
        QVERIFY(std::is_sorted(std::begin(members), std::end(members)));
    }

    void modesHaveTypesOfTheirOwn()
    {
        QVERIFY((std::is_same_v<decltype(_fileGLobal::sysBufferMode), SysBufferMode>));
        QVERIFY((std::is_same_v<decltype(_fileGLobal::cacheMode), CacheMode>));
        QVERIFY((std::is_signed_v<SysBufferMode> && sizeof(SysBufferMode) == 4));
        QVERIFY((std::is_signed_v<CacheMode> && sizeof(CacheMode) == 4));
    }

    void defaults()
    {
        TestTask task;
        task.method = IoMethod::Posix;
        task.io.sysBufferMode = 1;
        task.io.preallocate = task.io.flush = true;
        task.io.cacheMode = 2;
        task.iterations = 5;
        task.writeDone = false;
        task.waitForNextConfig = true;
        task.configId = 3;
        task.setDefaults();
        QCOMPARE(task.method, IoMethod::Stream);
        QCOMPARE(task.io.sysBufferMode, -1);
        QCOMPARE(task.io.chunkWait, 50);
        QCOMPARE(int(task.io.ioChunkWait), 50);
        QCOMPARE(task.io.chunkSize, 1048576);
        QCOMPARE(task.io.ioBufferSize, 1048576);
        QVERIFY(!task.io.preallocate && !task.io.flush);
        QCOMPARE(task.io.cacheMode, 0);
        QCOMPARE(task.io.fileSize, 104857600);
        QCOMPARE(task.iterations, 1);
        QVERIFY(task.sourcePath.isEqual("[cfgPath]/testfile_[cfgName]-[cfgTaskID].dat"));
        QVERIFY(task.destPath.isEqual("[temp]/[cfgName]/testfile_[cfgName]-[cfgTaskID].dat"));
        QVERIFY(task.logPath.isEqual("[cfgPath]/[cfgName]/[host].txt"));
        QVERIFY(task.csvPath.isEqual("[cfgPath]/[cfgName]-[cfgTaskID]_results.csv"));
        QVERIFY(task.writeDone && !task.waitForNextConfig);
        QCOMPARE(task.configId, 0);
    }

    void fileCreationTask()
    {
        TestTask task;
        task.setDefaults();
        task.waitForNextConfig = true;
        task.configId = 3;
        task.io.flush = task.io.preallocate = true;
        task.io.sysBufferMode = 1;
        task.io.cacheMode = 4;
        task.iterations = 9;
        task.writeDone = false;
        task.setFileCreation(Path("/x/a.dat"), 5242880);
        QVERIFY(!task.waitForNextConfig && task.writeDone);
        QCOMPARE(task.iterations, 1);
        QCOMPARE(task.configId, 0);
        QVERIFY(task.csvPath.isEmpty() && task.logPath.isEmpty() && task.sourcePath.isEmpty());
        QVERIFY(task.destPath.isEqual("/x/a.dat"));
        QCOMPARE(task.method, IoMethod::Stream);
        QVERIFY(!task.io.preallocate && !task.io.flush);
        QCOMPARE(int(task.io.ioChunkWait), 0);
        QCOMPARE(task.io.ioBufferSize, 0);
        QCOMPARE(task.io.fileSize, 5242880);
        QCOMPARE(task.io.sysBufferMode, -1);
        QCOMPARE(task.io.chunkWait, 0);
        QCOMPARE(task.io.chunkSize, 0);
        QCOMPARE(task.io.cacheMode, 0);
        QCOMPARE(task.testType(), TestType::Write);
    }

    void fileCreationTakesAPathOfItsOwn()
    {
        // Each of these is cleared or set on the way.
        for (Path TestTask::*member :
             {&TestTask::sourcePath, &TestTask::destPath, &TestTask::logPath, &TestTask::csvPath}) {
            TestTask task;
            task.setDefaults();
            task.*member = Path("/x/own.dat");
            task.setFileCreation(task.*member, 1);
            QVERIFY(task.destPath.isEqual("/x/own.dat"));
            QVERIFY(task.sourcePath.isEmpty());
        }
    }

    void createdFilesAreCappedAndNormalisedFurther()
    {
        for (const std::int64_t bytes :
             {std::int64_t(2147483599), std::int64_t(2147483600), std::int64_t(2147483601),
              std::int64_t(3000000000), std::numeric_limits<std::int64_t>::max()}) {
            TestTask task;
            task.setFileCreation(Path("/x"), bytes);
            QCOMPARE(std::int64_t(task.io.fileSize), qMin(bytes, std::int64_t(2147483600)));
            task.normalise();
            QCOMPARE(task.io.fileSize, 1073741824);
        }
    }

    void memoryTests_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("dest");
        QTest::addColumn<TestType>("type");
        QTest::newRow("files") << "/s"
                               << "/d" << TestType::Copy;
        QTest::newRow("no source") << ""
                                   << "/d" << TestType::Write;
        QTest::newRow("MEMORY source") << "MEMORY"
                                       << "/d" << TestType::Write;
        QTest::newRow("no dest") << "/s"
                                 << "" << TestType::Read;
        QTest::newRow("MEMORY dest") << "/s"
                                     << "MEMORY" << TestType::Read;
        QTest::newRow("MEMORY to nothing") << "MEMORY"
                                           << "" << TestType::Read;
        QTest::newRow("nothing to MEMORY") << ""
                                           << "MEMORY" << TestType::Read;
        QTest::newRow("nothing") << ""
                                 << "" << TestType::Read;
        QTest::newRow("other case") << "memory"
                                    << "MEMORY1" << TestType::Copy;
    }

    void memoryTests()
    {
        QFETCH(QString, source);
        QFETCH(QString, dest);
        QFETCH(TestType, type);
        TestTask task;
        task.sourcePath = kvToString8<500>(source);
        task.destPath = kvToString8<500>(dest);
        QCOMPARE(task.testType(), type);
        QCOMPARE(task.usesMemory(), type != TestType::Copy);
        QCOMPARE(task.readsIntoMemory(), type == TestType::Read);
    }

    void textOf600CharactersIsCutTo500()
    {
        QCOMPARE(int(kvToString8<500>(QString(600, 'x')).length), 500);
    }

    void sizesShiftIn32BitsAndRoundTowardsZero()
    {
        QCOMPARE(bytesFromKib(1048576), 1073741824);
        QCOMPARE(bytesFromKib(2097152), std::numeric_limits<std::int32_t>::min());
        QCOMPARE(bytesFromKib(4194304), 0);
        QCOMPARE(bytesFromKib(-1), -1024);
        QCOMPARE(kibFromBytes(1023), 0);
        QCOMPARE(kibFromBytes(1536), 1);
        QCOMPARE(kibFromBytes(-1023), 0);
        QCOMPARE(kibFromBytes(-1025), -1);
    }

    void fileSizeIsLimitedToOneGiB()
    {
        for (const int size : {std::numeric_limits<int>::min(), -1, 0, 1073741823, 1073741824,
                               1073741825, 2048000000, std::numeric_limits<int>::max()}) {
            for (const IoMethod method : methods) {
                TestTask task = taskOf(TestType::Write, method, {-1, oneMiB, false, false, 0});
                task.io.fileSize = size;
                task.normalise();
                QCOMPARE(task.io.fileSize, qMin(size, 1073741824));
            }
        }
    }

    void systemBufferIsLimitedPerMethod_data()
    {
        QTest::addColumn<IoMethod>("method");
        QTest::addColumn<int>("chunkSize");
        QTest::addColumn<QList<int>>("expected"); // for -2, -1, 0, 1, 2, 3, 5
        QTest::newRow("Posix") << IoMethod::Posix << oneMiB << QList<int>{-2, -1, 0, 1, 1, 1, 1};
        QTest::newRow("Posix, no chunks")
            << IoMethod::Posix << 0 << QList<int>{-2, -1, 0, 1, 1, 1, 1};
        QTest::newRow("WinApi") << IoMethod::WinApi << oneMiB << QList<int>{-2, -1, 0, 1, 2, 2, 2};
        QTest::newRow("Stream") << IoMethod::Stream << oneMiB << QList<int>{-2, -1, 0, 1, 1, 1, 1};
        QTest::newRow("Stream, no chunks")
            << IoMethod::Stream << 0 << QList<int>{-2, -1, -1, -1, -1, -1, -1};
        QTest::newRow("Stream, negative chunks")
            << IoMethod::Stream << -1024 << QList<int>{-2, -1, -1, -1, -1, -1, -1};
        QTest::newRow("AnsiC") << IoMethod::AnsiC << 1 << QList<int>{-2, -1, 0, 1, 1, 1, 1};
        QTest::newRow("AnsiC, no chunks")
            << IoMethod::AnsiC << 0 << QList<int>{-2, -1, -1, -1, -1, -1, -1};
        QTest::newRow("System") << IoMethod::System << oneMiB
                                << QList<int>{-1, -1, -1, -1, -1, -1, -1};
        QTest::newRow("unknown") << static_cast<IoMethod>(7) << oneMiB
                                 << QList<int>{-2, -1, 0, 1, 2, 3, 5};
    }

    void systemBufferIsLimitedPerMethod()
    {
        QFETCH(IoMethod, method);
        QFETCH(int, chunkSize);
        QFETCH(QList<int>, expected);
        const int given[] = {-2, -1, 0, 1, 2, 3, 5};
        for (const TestType type : types) {
            for (int i = 0; i < expected.size(); ++i) {
                TestTask task = taskOf(type, method, {given[i], chunkSize, false, false, 0});
                task.normalise();
                QCOMPARE(task.io.sysBufferMode, expected[i]);
            }
        }
    }

    void copiesWithoutChunksGetOneMiBWhereTheMethodNeedsIt()
    {
        for (const IoMethod method : methods) {
            for (const TestType type : types) {
                const bool inChunks = method == IoMethod::System ||
                                      (type == TestType::Copy &&
                                       (method == IoMethod::Posix || method == IoMethod::AnsiC ||
                                        method == IoMethod::WinApi));
                TestTask task = taskOf(type, method, {-1, 0, false, false, 7});
                task.normalise();
                QCOMPARE(task.io.chunkSize, inChunks ? oneMiB : 0);
                QCOMPARE(task.io.ioBufferSize, task.io.chunkSize);
                QCOMPARE(task.io.chunkWait, inChunks ? 7 : 0);
                QCOMPARE(int(task.io.ioChunkWait), inChunks ? 7 : 0);

                for (const int chunkSize : {-1024, 1, 65536}) {
                    TestTask chunked = taskOf(type, method, {-1, chunkSize, false, false, 7});
                    chunked.normalise();
                    QCOMPARE(chunked.io.chunkSize, chunkSize);
                    QCOMPARE(chunked.io.chunkWait, 7);
                }
            }
        }
    }

    void onlyPosixAndWinApiWritersPreallocate()
    {
        for (const IoMethod method : methods) {
            for (const TestType type : types) {
                TestTask task = taskOf(type, method, {-1, oneMiB, true, false, 0});
                task.normalise();
                QCOMPARE(task.io.preallocate,
                         (method == IoMethod::Posix || method == IoMethod::WinApi) &&
                             type != TestType::Read);
            }
        }
    }

    void readersDoNotFlushExceptSystem()
    {
        for (const IoMethod method : methods) {
            for (const TestType type : types) {
                TestTask task = taskOf(type, method, {-1, oneMiB, false, true, 0});
                task.normalise();
                QCOMPARE(task.io.flush, type != TestType::Read || method == IoMethod::System);
                TestTask unset = taskOf(type, method, {-1, oneMiB, false, false, 0});
                unset.normalise();
                QVERIFY(!unset.io.flush && !unset.io.preallocate);
            }
        }
    }

    void withoutChunksThereIsNothingToFlushOrWaitFor()
    {
        TestTask stream = taskOf(TestType::Copy, IoMethod::Stream, {1, 0, true, true, 50});
        stream.normalise();
        QCOMPARE(stream.io.chunkSize, 0);
        QCOMPARE(stream.io.sysBufferMode, -1);
        QVERIFY(!stream.io.flush);
        QCOMPARE(stream.io.chunkWait, 0);
        QCOMPARE(int(stream.io.ioChunkWait), 0);

        TestTask system = taskOf(TestType::Read, IoMethod::System, {1, 0, true, true, 50});
        system.normalise();
        QVERIFY(system.io.flush && !system.io.preallocate);
        QCOMPARE(system.io.sysBufferMode, -1);
        QCOMPARE(system.io.chunkWait, 50);
    }

    void kindFollowsFromEmptinessAlone()
    {
        // "MEMORY" typed into a path is a file name here, so this stays a copy.
        TestTask task = taskOf(TestType::Copy, IoMethod::Posix, {-1, 0, true, true, 5});
        task.destPath = Path("MEMORY");
        task.normalise();
        QVERIFY(task.io.preallocate && task.io.flush);
        QCOMPARE(task.io.chunkSize, oneMiB);

        // Without a source it is a write, whatever the destination.
        TestTask empty = taskOf(TestType::Write, IoMethod::Posix, {-1, 0, true, true, 5});
        empty.destPath.clear();
        empty.normalise();
        QVERIFY(empty.io.preallocate);
    }

    void normalisingTwiceChangesNothingMore()
    {
        for (const IoMethod method : methods) {
            for (const TestType type : types) {
                for (const int chunkSize : {-1024, 0, 65536}) {
                    TestTask once = taskOf(type, method, {5, chunkSize, true, true, 9});
                    once.normalise();
                    TestTask twice = once;
                    twice.normalise();
                    QCOMPARE(twice.io.sysBufferMode, once.io.sysBufferMode);
                    QCOMPARE(twice.io.chunkSize, once.io.chunkSize);
                    QCOMPARE(twice.io.preallocate, once.io.preallocate);
                    QCOMPARE(twice.io.flush, once.io.flush);
                    QCOMPARE(twice.io.chunkWait, once.io.chunkWait);
                }
            }
        }
    }

    void bothCopiesOfASettingAreWritten()
    {
        TestTask task;
        task.setChunkWait(70000);
        QCOMPARE(task.io.chunkWait, 70000);
        QCOMPARE(int(task.io.ioChunkWait), 70000 - 65536);
        task.setChunkSize(4096);
        QCOMPARE(task.io.chunkSize, 4096);
        QCOMPARE(task.io.ioBufferSize, 4096);
    }
};

QTEST_APPLESS_MAIN(TestTestTask)
#include "tst_testtask.moc"
