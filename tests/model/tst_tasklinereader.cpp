#include "model/tasklinereader.h"
#include "shared/kvtext.h"

#include <QTest>

#include <limits>

namespace {

const QStringList goodFields = {"Stream", "NOflush", "NOprealloc", "50", "1024", "-1", "102400",
                                "1",      "0",       "/s",         "/d", "/l",   "/c", "true"};

struct Reading
{
    TestTask task;
    bool accepted = false;
    TaskLineProblem problem;
};

Reading readLine(const QString& line, const char* configPath = "/cfg/a.dpc")
{
    Reading reading;
    reading.accepted = readTaskLine(reading.task, kvToString16<1000>(line),
                                    _kvString8_allSize<500>(configPath), &reading.problem);
    return reading;
}

/// The good line with one field (from 1) replaced.
Reading readWith(int field, const QString& text, const char* method = "Posix")
{
    QStringList fields = goodFields;
    fields[0] = method;
    fields[field - 1] = text;
    return readLine(fields.join(';') + ';');
}

} // namespace

class TestTaskLineReader : public QObject
{
    Q_OBJECT

private slots:
    void writeTaskFromItsLine()
    {
        const QString line = "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
                             "/t/x.dat;  ;  ;  true;";
        const auto [task, accepted, problem] = readLine(line);
        QVERIFY(accepted);
        QCOMPARE(problem.field, 0);
        QVERIFY(problem.column == 0 && problem.length == 0);
        QCOMPARE(task.method, IoMethod::Stream);
        QCOMPARE(task.testType(), TestType::Write);
        QVERIFY(task.sourcePath.isEmpty());
        QVERIFY(task.destPath.isEqual("/t/x.dat"));
        QCOMPARE(task.io.chunkSize, 1048576);
        QCOMPARE(task.io.ioBufferSize, 1048576);
        QCOMPARE(task.io.chunkWait, 50);
        QCOMPARE(int(task.io.ioChunkWait), 50);
        QCOMPARE(task.io.sysBufferMode, -1);
        QCOMPARE(task.io.fileSize, 104857600);
        QVERIFY(task.writeDone && !task.waitForNextConfig);
        QVERIFY(task.configPath.isEqual("/cfg/a.dpc"));
        QCOMPARE(kvToQString(task.lineText), line);
        // Empty log and .csv fields come back as the folder of the config file.
        QVERIFY(task.logPath.isEqual("/cfg/") && task.csvPath.isEqual("/cfg/"));
    }

    void methods_data()
    {
        QTest::addColumn<QString>("token");
        QTest::addColumn<int>("method"); // -1: rejected
        QTest::newRow("Posix") << "Posix" << 0;
        QTest::newRow("System") << "System" << 1;
        QTest::newRow("Stream") << "Stream" << 2;
        QTest::newRow("AnsiC") << "AnsiC" << 3;
        QTest::newRow("padded") << " \t Posix  " << 0;
        QTest::newRow("WinApi") << "WinApi" << -1;
        QTest::newRow("empty") << "" << -1;
        QTest::newRow("other case") << "posix" << -1;
        QTest::newRow("longer") << "Posix2" << -1;
        QTest::newRow("comment") << "# Posix" << -1;
    }

    void methods()
    {
        QFETCH(QString, token);
        QFETCH(int, method);
        const Reading reading = readWith(1, token);
        QCOMPARE(reading.accepted, method >= 0);
        QCOMPARE(reading.problem.field, method >= 0 ? 0 : 1);
        if (method >= 0)
            QCOMPARE(int(reading.task.method), method);
    }

    void flagsHaveThreeSpellings()
    {
        for (const char* token : {"true", "1", " 1 "}) {
            QVERIFY(readWith(2, token).task.io.flush);
            QVERIFY(readWith(3, token).task.io.preallocate);
        }
        QVERIFY(readWith(2, "flush  ").task.io.flush);
        QVERIFY(readWith(3, "prealloc  ").task.io.preallocate);
        for (const char* token : {"", "0", "false", "True", "FLUSH", "NOflush", "prealloc", "2"})
            QVERIFY2(readWith(2, token).accepted && !readWith(2, token).task.io.flush, token);
        for (const char* token : {"", "0", "NOprealloc", "flush", "Prealloc", "11"})
            QVERIFY(readWith(3, token).accepted && !readWith(3, token).task.io.preallocate);
    }

    void doneIsTrueInOneSpellingOnly()
    {
        QVERIFY(readWith(14, "true").task.writeDone);
        QVERIFY(readWith(14, " true ").task.writeDone);
        for (const char* token : {"1", "false", "True", "", "true true"})
            QVERIFY(readWith(14, token).accepted && !readWith(14, token).task.writeDone);
    }

    void numberTokens_data()
    {
        QTest::addColumn<QString>("token");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<int>("number");
        QTest::newRow("zero") << "0" << true << 0;
        QTest::newRow("leading zeros") << "007" << true << 7;
        QTest::newRow("padded") << "   42\t" << true << 42;
        QTest::newRow("negative") << "-3" << true << -3;
        QTest::newRow("empty") << "" << true << 0;
        QTest::newRow("lone minus") << "-" << true << 0;
        QTest::newRow("letter behind") << "5x" << false << 0;
        QTest::newRow("plus") << "+5" << false << 0;
        QTest::newRow("minus inside") << "5-" << false << 0;
        QTest::newRow("two minus") << "--5" << false << 0;
        QTest::newRow("blank inside") << "1 2" << false << 0;
        QTest::newRow("point") << "1.0" << false << 0;
        QTest::newRow("hexadecimal") << "0x10" << false << 0;
        QTest::newRow("superscript") << QString(QChar(0xB2)) << false << 0;
        QTest::newRow("wraps in 32 bits") << "4294967297" << true << 1;
        QTest::newRow("smallest") << "-2147483648" << true << std::numeric_limits<int>::min();
        // Beyond 64 bits the number stops at the largest, whose low 32 bits are all set.
        QTest::newRow("beyond 64 bits") << "99999999999999999999" << true << -1;
        QTest::newRow("249 digits") << QString(248, '0') + "7" << true << 7;
        QTest::newRow("250 digits") << QString(249, '0') + "7" << true << 0;
        QTest::newRow("251 characters") << QString(250, '0') + "x" << false << 0;
    }

    void numberTokens()
    {
        QFETCH(QString, token);
        QFETCH(bool, accepted);
        QFETCH(int, number);
        const Reading wait = readWith(4, token);
        QCOMPARE(wait.accepted, accepted);
        QCOMPARE(wait.task.io.chunkWait, number);
        QCOMPARE(int(wait.task.io.ioChunkWait), int(static_cast<std::uint16_t>(number)));
        const Reading chunk = readWith(5, token, "Stream");
        QCOMPARE(chunk.accepted, accepted);
        QCOMPARE(chunk.task.io.chunkSize, bytesFromKib(number));
        QCOMPARE(chunk.task.io.ioBufferSize, bytesFromKib(number));
        QCOMPARE(readWith(6, token).accepted, accepted);
        QCOMPARE(readWith(7, token).accepted, accepted);
        const Reading iterations = readWith(8, token);
        QCOMPARE(iterations.accepted, accepted);
        QCOMPARE(iterations.task.iterations, number);
        const Reading cache = readWith(9, token);
        QCOMPARE(cache.accepted, accepted);
        QCOMPARE(cache.task.io.cacheMode, number);
        if (!accepted) {
            for (int field = 4; field <= 9; ++field)
                QCOMPARE(readWith(field, token).problem.field, field);
        }
    }

    void rejectedNumberLeavesZeroAndEndsTheReading()
    {
        TestTask task;
        task.setChunkWait(9);
        task.iterations = 77;
        const auto line = kvToString16<1000>("Posix;flush;prealloc;5x;1024;-1;1;3;0;/s;/d;;;true;");
        QVERIFY(!readTaskLine(task, line, path("/cfg/a.dpc")));
        QCOMPARE(task.io.chunkWait, 0);
        QCOMPARE(int(task.io.ioChunkWait), 0);
        QCOMPARE(task.iterations, 77);
        QVERIFY(task.io.flush);
    }

    void problemTellsWhere()
    {
        const TaskLineProblem number = readLine("Posix;flush;prealloc;  5x ;").problem;
        QCOMPARE(number.field, 4);
        QCOMPARE(number.column, 23);
        QCOMPARE(number.length, 2);
        const TaskLineProblem method = readLine("  Foo;").problem;
        QCOMPARE(method.field, 1);
        QCOMPARE(method.column, 2);
        QCOMPARE(method.length, 3);
        QCOMPARE(readLine("").problem.field, 1);
    }

    void problemIsOptional()
    {
        TestTask task;
        QVERIFY(!readTaskLine(task, kvToString16<1000>("Posx;"), path("/cfg/a.dpc")));
        QVERIFY(!readTaskLine(task, kvToString16<1000>("Posix;;;x;"), path("/cfg/a.dpc")));
    }

    void systemBufferIsLimitedToFiveAndThenPerMethod()
    {
        QCOMPARE(readWith(6, "9", "Posix").task.io.sysBufferMode, 1);
        QCOMPARE(readWith(6, "9", "Stream").task.io.sysBufferMode, 1);
        QCOMPARE(readWith(6, "9", "System").task.io.sysBufferMode, -1);
        QCOMPARE(readWith(6, "-9", "Posix").task.io.sysBufferMode, -9);
    }

    void sizesOverflowIn32Bits_data()
    {
        QTest::addColumn<QString>("kib");
        QTest::addColumn<int>("bytes");
        QTest::newRow("2000000") << "2000000" << 1073741824;
        QTest::newRow("1048576") << "1048576" << 1073741824;
        QTest::newRow("1048575") << "1048575" << 1073740800;
        QTest::newRow("2097151") << "2097151" << 1073741824;
        QTest::newRow("2097152") << "2097152" << std::numeric_limits<int>::min();
        QTest::newRow("4194303") << "4194303" << -1024;
        QTest::newRow("4194304") << "4194304" << 0;
        QTest::newRow("negative") << "-1" << -1024;
    }

    void sizesOverflowIn32Bits()
    {
        QFETCH(QString, kib);
        QFETCH(int, bytes);
        QCOMPARE(readWith(7, kib).task.io.fileSize, bytes);
    }

    void markersAreKnownByTheirEnding()
    {
        const Reading marker = readLine("[cfgPath]/next.dpc", "/cfg/a1.dpc");
        QVERIFY(marker.accepted && marker.task.waitForNextConfig);
        QVERIFY(marker.task.sourcePath.isEqual("/cfg/next.dpc"));
        QVERIFY(marker.task.configPath.isEqual("/cfg/a1.dpc"));
        QVERIFY(marker.task.lineText.isEqual("[cfgPath]/next.dpc"));
        // Nothing else is touched.
        QCOMPARE(marker.task.io.chunkSize, 0);
        QVERIFY(marker.task.destPath.isEmpty() && marker.task.sourcePathAsRead.isEmpty());

        QVERIFY(readLine("/x/[cfgName][cfgline][iter].dpc", "/cfg/a1.dpc")
                    .task.sourcePath.isEqual("/x/a00.dpc"));
        QVERIFY(readLine(".dpc").task.waitForNextConfig);
        QVERIFY(!readLine("/x/next.DPC").accepted);
        QVERIFY(!readLine("/x/next.dpc ").accepted);
        // A task whose last field lacks its ";" and ends so counts as a marker too.
        QVERIFY(readLine("Posix;a.dpc").task.waitForNextConfig);
    }

    void markerOfEveryByteComesBack()
    {
        for (int code = 1; code < 256; ++code) {
            const QString line = "/x/" + QString(QChar(code)) + "y.dpc";
            const QString expected = code == '/' ? "/x/y.dpc" : line;
            QCOMPARE(kvToQString(readLine(line).task.sourcePath), expected);
        }
    }

    void memoryIsClearedInSourceAndDestinationOnly()
    {
        QVERIFY(readWith(10, "MEMORY").task.sourcePath.isEmpty());
        QVERIFY(readWith(11, " MEMORY ").task.destPath.isEmpty());
        QVERIFY(readWith(10, "").task.sourcePath.isEmpty());
        QVERIFY(readWith(10, "memory").task.sourcePath.isEqual("/cfg/memory"));
        QVERIFY(readWith(12, "MEMORY").task.logPath.isEqual("/cfg/MEMORY"));
        QVERIFY(readWith(13, "MEMORY").task.csvPath.isEqual("/cfg/MEMORY"));
    }

    void relativePathsGetTheFolderOfTheConfigFile()
    {
        QVERIFY(readWith(11, "out/x.dat").task.destPath.isEqual("/cfg/out/x.dat"));
        QVERIFY(readWith(10, "../x").task.sourcePath.isEqual("/cfg/../x"));
        QVERIFY(readWith(12, "[host].txt").task.logPath.isEqual("/cfg/[host].txt"));
        for (const char* rooted : {"/x", "\\x", "C:\\x", "[cfgPath]/x", "[temp]/x"}) {
            for (int field = 10; field <= 13; ++field) {
                const TestTask task = readWith(field, rooted).task;
                const _kvString8_allSize<500>* paths[] = {&task.sourcePath, &task.destPath,
                                                          &task.logPath, &task.csvPath};
                QVERIFY(paths[field - 10]->isEqual(rooted));
            }
        }
        QVERIFY(readLine("Posix;;;;;;;;;a;b;c;d;", "a.dpc").task.sourcePath.isEqual("a"));
    }

    void pathsAreKeptAsTheyWereRead()
    {
        const TestTask task = readWith(10, "s").task;
        QVERIFY(task.sourcePathAsRead.isEqual("/cfg/s"));
        QVERIFY(task.destPathAsRead.isEqual("/d"));
        QVERIFY(task.logPathAsRead.isEqual("/l"));
        QVERIFY(task.csvPathAsRead.isEqual("/c"));
    }

    void pathsAreCutAt500Characters()
    {
        QCOMPARE(kvToQString(readWith(11, '/' + QString(600, 'x')).task.destPath),
                 '/' + QString(499, 'x'));
        QCOMPARE(kvToQString(readWith(11, QString(500, 'x')).task.destPath),
                 "/cfg/" + QString(495, 'x'));
    }

    void pathBytesComeBackFromBothForms()
    {
        for (int code = 1; code < 256; ++code) {
            const char byte = static_cast<char>(code);
            if (byte == ';' || kvdetail::isWhiteSpace(static_cast<unsigned char>(byte)))
                continue;
            // As a file gives it, without sign, and as the writer makes it, with sign.
            _kvString<1000> line("Posix;;;;;;;;;/s;/");
            line.addSignExtended(&byte, 1);
            line.add(";/");
            line.add(&byte, 1);
            line.add(";;;");
            TestTask task;
            QVERIFY(readTaskLine(task, line, path("/cfg/a.dpc")));
            QCOMPARE(task.destPath.text[1], byte);
            QCOMPARE(task.logPath.text[1], byte);
        }
    }

    void missingFieldsAreEmpty()
    {
        QString line;
        for (int count = 1; count <= 14; ++count) {
            line += goodFields[count - 1];
            const Reading reading = readLine(line);
            QVERIFY2(reading.accepted, qPrintable(line));
            QCOMPARE(reading.task.iterations, count >= 8 ? 1 : 0);
            QCOMPARE(reading.task.sourcePath.hasData(), count >= 10);
            QCOMPARE(reading.task.writeDone, count >= 14);
            line += ';';
            QCOMPARE(readLine(line).accepted, true);
        }
        QVERIFY(readLine(line + "more;fields").accepted);
    }

    void windowsLineEndsDoNotDisturb()
    {
        // The loader trims lines; what the reader is given here still has its CR.
        const Reading reading = readLine(goodFields.join(';') + "\r");
        QVERIFY(reading.accepted && reading.task.writeDone);
    }

    void recordIsNormalised()
    {
        const TestTask system = readLine("System;flush;prealloc;5;0;1;1;1;0;/s;/d;;;true;").task;
        QCOMPARE(system.io.chunkSize, 1048576);
        QCOMPARE(system.io.sysBufferMode, -1);
        QVERIFY(!system.io.preallocate);
    }

    void rejectedLineLeavesCappedSettings()
    {
        // The fields before the bad one are within the limits already.
        const Reading badIterations = readLine("Posix;flush;prealloc;1;64;9;2000000;x;0;/s;/d;");
        QVERIFY(!badIterations.accepted);
        QCOMPARE(badIterations.problem.field, 8);
        QCOMPARE(badIterations.task.io.fileSize, 1073741824);
        QCOMPARE(badIterations.task.io.sysBufferMode, 5);
        QCOMPARE(badIterations.task.iterations, 0);
        const Reading badSize = readLine("Posix;flush;prealloc;1;64;9;x;1;0;/s;/d;");
        QCOMPARE(badSize.task.io.sysBufferMode, 5);
        QCOMPARE(badSize.task.io.fileSize, 0);
        // Sizes are compared after they overflowed.
        QCOMPARE(readLine("Posix;;;1;64;0;2097152;x;").task.io.fileSize,
                 std::numeric_limits<int>::min());
    }

    void settingsAsTheLineHasThem()
    {
        const auto line =
            kvToString16<1000>("System;flush;prealloc;5;0;9;2000000;1;0;/s;d;;;true;");
        TestTask task;
        QVERIFY(readTaskLineAsIs(task, line, path("/cfg/a.dpc")));
        QCOMPARE(task.io.chunkSize, 0);
        QCOMPARE(task.io.fileSize, 2048000000);
        QCOMPARE(task.io.sysBufferMode, 9);
        QVERIFY(task.io.preallocate);
        QVERIFY(task.destPath.isEqual("/cfg/d"));
        // Normalised, it is what the editor reads.
        task.normalise();
        QCOMPARE(task.io.fileSize, readLine("Posix;;;;;;2000000;").task.io.fileSize);
        TaskLineProblem problem;
        QVERIFY(!readTaskLineAsIs(task, kvToString16<1000>("x"), path("/a.dpc"), &problem));
        QCOMPARE(problem.field, 1);
    }

    void namesOfTheFields()
    {
        const QStringList names = {"text",       "method",     "flush",         "pre-allocate",
                                   "chunk wait", "chunk size", "system buffer", "file size",
                                   "iterations", "cache mode", "source",        "destination",
                                   "log file",   ".csv file",  "done file",     "text"};
        for (int field = 0; field < names.size(); ++field)
            QCOMPARE(fieldName(field), qPrintable(names[field]));
        QCOMPARE(fieldName(-1), "text");
    }

    void placesOfTheFields()
    {
        const auto line = kvToString16<1000>(" Posix ; flush;;4");
        const TaskLineFields split = splitTaskLine(line);
        QCOMPARE(split.count, 4);
        QCOMPARE(split.fields[0].column, 1);
        QCOMPARE(split.fields[0].length, 5);
        QCOMPARE(split.fields[1].column, 9);
        QCOMPARE(split.fields[2].length, 0);
        QCOMPARE(split.fields[3].column, 16);
        QCOMPARE(split.fields[13].length, 0);
        QCOMPARE(split.beyond.length, 0);

        const TaskLineFields more =
            splitTaskLine(kvToString16<1000>("1;2;3;4;5;6;7;8;9;a;b;c;d;e;f;"));
        QCOMPARE(more.count, taskLineFieldCount);
        QCOMPARE(more.fields[13].column, 26);
        QCOMPARE(more.beyond.column, 28);
        QCOMPARE(more.beyond.length, 2);
        QCOMPARE(splitTaskLine(kvToString16<1000>("")).count, 0);
    }

private:
    static _kvString8_allSize<500> path(const char* text) { return _kvString8_allSize<500>(text); }
};

QTEST_APPLESS_MAIN(TestTaskLineReader)
#include "tst_tasklinereader.moc"
