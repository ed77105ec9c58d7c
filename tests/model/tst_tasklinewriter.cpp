#include "model/tasklinewriter.h"
#include "shared/kvtext.h"

#include <QTest>

using Path = _kvString8_allSize<500>;

namespace {

QString written(TestTask task)
{
    _kvString<1000> line("what was there before");
    return kvToQString(writeTaskLine(line, task));
}

TestTask defaultTask()
{
    TestTask task;
    task.setDefaults();
    return task;
}

/// The fields of a line as they stand between the semicolons.
QStringList fieldsOf(const TestTask& task)
{
    return written(task).split(';');
}

} // namespace

class TestTaskLineWriter : public QObject
{
    Q_OBJECT

private slots:
    void defaultTaskByteForByte()
    {
        QCOMPARE(written(defaultTask()),
                 QStringLiteral("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  "
                                "[cfgPath]/testfile_[cfgName]-[cfgTaskID].dat;  "
                                "[temp]/[cfgName]/testfile_[cfgName]-[cfgTaskID].dat;  "
                                "[cfgPath]/[cfgName]/[host].txt;  "
                                "[cfgPath]/[cfgName]-[cfgTaskID]_results.csv;  true;"));
    }

    void posixWriteTaskByteForByte()
    {
        TestTask task;
        task.method = IoMethod::Posix;
        task.io.flush = task.io.preallocate = true;
        task.setChunkSize(65536);
        task.setChunkWait(10);
        task.io.sysBufferMode = 1;
        task.io.fileSize = 1048576;
        task.iterations = 3;
        task.io.cacheMode = 2;
        task.destPath = Path("/data/t.dat");
        task.csvPath = Path("r.csv");
        QCOMPARE(written(task),
                 QStringLiteral("Posix ;flush  ;prealloc  ; 10;   64;  1; 1024;3;2;  MEMORY;  "
                                "/data/t.dat;  ;  r.csv;  false;"));
    }

    void fileCreationTaskByteForByte()
    {
        TestTask task;
        task.setFileCreation(Path("/x/a.dat"), 5242880);
        QCOMPARE(written(task),
                 QStringLiteral("Stream;NOflush;NOprealloc;  0;    0; -1; 5120;1;0;  MEMORY;  "
                                "/x/a.dat;  ;  ;  true;"));
    }

    void methodsArePaddedToOneWidth()
    {
        const QString starts[] = {"Posix ;", "System;", "Stream;", "AnsiC ;", "WinApi;"};
        for (int method = 0; method < 5; ++method) {
            TestTask task = defaultTask();
            task.method = static_cast<IoMethod>(method);
            QVERIFY(written(task).startsWith(starts[method] + "NOflush;NOprealloc; "));
        }
    }

    void unknownMethodGivesAnEmptyField()
    {
        for (const int method : {-1, 5, 7}) {
            TestTask task = defaultTask();
            task.method = static_cast<IoMethod>(method);
            QVERIFY(written(task).startsWith(";NOflush;"));
        }
    }

    void systemBufferTakesTwoCharacters()
    {
        TestTask task = defaultTask();
        task.io.sysBufferMode = 0;
        QVERIFY(written(task).contains("; 1024;  0; 102400;"));
        task.io.sysBufferMode = -1;
        QVERIFY(written(task).contains("; 1024; -1; 102400;"));
    }

    void sizesAreWholeKiBRoundedTowardsZero()
    {
        TestTask task = defaultTask();
        task.setChunkSize(1536);
        task.io.fileSize = 1023;
        QCOMPARE(fieldsOf(task)[4], QStringLiteral("    1"));
        QCOMPARE(fieldsOf(task)[6], QStringLiteral(" 0"));
        task.io.fileSize = -2047;
        QCOMPARE(fieldsOf(task)[6], QStringLiteral(" -1"));
    }

    void numbersArePaddedButNeverCut()
    {
        TestTask task = defaultTask();
        const QStringList waits = {" 0", " 7", "50", "500", "-3", "2147483647"};
        for (const QString& wait : waits) {
            task.setChunkWait(wait.toInt());
            QCOMPARE(fieldsOf(task)[3], QChar(' ') + wait);
        }
        task.setChunkSize(2147483647);
        QCOMPARE(fieldsOf(task)[4], QStringLiteral("2097151"));
        task.iterations = -5;
        task.io.cacheMode = 9;
        QCOMPARE(fieldsOf(task)[7], QStringLiteral("-5"));
        QCOMPARE(fieldsOf(task)[8], QStringLiteral("9"));
    }

    void memoryStandsForEmptySourceAndDestinationOnly()
    {
        TestTask task = defaultTask();
        for (Path* path : {&task.sourcePath, &task.destPath, &task.logPath, &task.csvPath})
            path->clear();
        QCOMPARE(fieldsOf(task).mid(9),
                 (QStringList{"  MEMORY", "  MEMORY", "  ", "  ", "  true", ""}));
    }

    void writingNormalisesTheRecordItself()
    {
        TestTask task = defaultTask();
        task.method = IoMethod::System;
        task.setChunkSize(0);
        _kvString<1000> line;
        QCOMPARE(&writeTaskLine(line, task), &line);
        QVERIFY(kvToQString(line).contains("; 1024; -1;"));
        QCOMPARE(task.io.chunkSize, 1048576);
        QCOMPARE(task.io.ioBufferSize, 1048576);
    }

    void everyPathByteReachesTheFileUnchanged()
    {
        for (int code = 1; code < 256; ++code) {
            TestTask task = defaultTask();
            task.destPath = Path();
            task.destPath.addChar('/');
            task.destPath.addChar(static_cast<char>(code));
            _kvString<1000> line;
            writeTaskLine(line, task);
            const int position = kvToQString(line).indexOf(".dat;  ") + 8;
            QCOMPARE(int(line.text[position]), code < 128 ? code : 0xFF00 + code);
            QCOMPARE(kvToQString(line).toLatin1().at(position), static_cast<char>(code));
        }
    }

    void pathEndsAtItsFirstZeroByte()
    {
        TestTask task = defaultTask();
        task.logPath = Path();
        task.logPath.add("/a\0b", 4);
        QVERIFY(written(task).contains(";  /a;  ["));
    }

    void overlongLinesAreCutAt1000Characters()
    {
        TestTask task = defaultTask();
        const QString path(300, 'p');
        for (Path* field : {&task.sourcePath, &task.destPath, &task.logPath, &task.csvPath})
            *field = kvToString8<500>(path);
        _kvString<1000> line;
        writeTaskLine(line, task);
        QCOMPARE(int(line.length), 1000);
        QCOMPARE(int(line.text[1000]), 0);
        const QString whole = "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  " +
                              (path + ";  ").repeated(4) + "true;";
        QCOMPARE(kvToQString(line), whole.left(1000));
    }

    void everyPieceAtItsLongestHasRoomBeforeTheCut()
    {
        constexpr auto smallest = std::numeric_limits<std::int32_t>::min();
        TestTask task;
        task.method = IoMethod::Posix;
        task.io.chunkWait = task.io.chunkSize = task.io.fileSize = smallest;
        task.io.sysBufferMode = task.io.cacheMode = task.iterations = smallest;
        for (auto* path : {&task.sourcePath, &task.destPath, &task.logPath, &task.csvPath})
            *path = kvToString8<500>(QString(500, 'p'));
        const QByteArray settings("Posix ;NOflush;NOprealloc; -2147483648;-2097152; -2147483648; "
                                  "-2097152;-2147483648;-2147483648;  ");
        _kvString<1000> line;
        writeTaskLine(line, task);
        QCOMPARE(kvToQString(line).toLatin1(),
                 (settings + QByteArray(500, 'p') + ";  " + QByteArray(500, 'p')).left(1000));
    }

    void cutsOfAnyLengthAreTerminated()
    {
        // Growing the last path by one character moves every later one across the limit.
        for (int length = 0; length <= 500; ++length) {
            TestTask task = defaultTask();
            task.sourcePath = Path(QByteArray(450, 's').constData());
            task.logPath = Path(QByteArray(length, 'l').constData());
            TestTask unlimited = task;
            unlimited.logPath.clear();
            QString expected = written(unlimited);
            expected.insert(expected.lastIndexOf(";  ["), QString(length, 'l'));
            _kvString<1000> line;
            writeTaskLine(line, task);
            QCOMPARE(kvToQString(line), expected.left(1000));
            QCOMPARE(int(line.text[line.length]), 0);
        }
    }
};

QTEST_APPLESS_MAIN(TestTaskLineWriter)
#include "tst_tasklinewriter.moc"
