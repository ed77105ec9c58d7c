#include "model/taskcells.h"

#include <QTest>

namespace {

using Path = _kvString8_allSize<500>;

TestTask taskOf(const char* source, const char* dest)
{
    TestTask task;
    task.setDefaults();
    task.sourcePath = Path(source);
    task.destPath = Path(dest);
    return task;
}

} // namespace

class TestTaskCells : public QObject
{
    Q_OBJECT

private slots:
    void everyColumnHasItsValue()
    {
        TestTask task = taskOf("/s\xFC", "/d");
        task.logPath = Path("/l");
        task.iterations = 7;
        task.io.sysBufferMode = -1;
        task.io.fileSize = 5242880 + 1023;
        task.setChunkSize(65536);
        task.setChunkWait(50);
        QCOMPARE(taskCells(task, 3), (QStringList{"3", "Stream", "Copy", "5120", "7", "64", "50",
                                                  "-1", QString::fromUtf8("/sü"), "/d", "/l"}));
    }

    void columns()
    {
        QStringList columns;
        for (const TaskColumn& column : taskColumns())
            columns += QString(column.title) + (column.isNumber ? " #" : "");
        QCOMPARE(columns, (QStringList{"Config File ID #", "Type", "Method", "Size #",
                                       "Interations #", "Chunk Size #", "Chunk Wait #",
                                       "SysBuffer #", "Source", "Dest", "Log"}));
        QVERIFY(taskColumns()[7].path == nullptr);
        QVERIFY(taskColumns()[8].path == &TestTask::sourcePath);
        QVERIFY(taskColumns()[9].path == &TestTask::destPath);
        QVERIFY(taskColumns()[10].path == &TestTask::logPath);
    }

    void methodsAreNamed()
    {
        const QStringList names = {"Posix", "System", "Stream", "AnsiC", "WinApi"};
        TestTask task = taskOf("/s", "/d");
        for (int method = 0; method < names.size(); ++method) {
            task.method = static_cast<IoMethod>(method);
            QCOMPARE(taskCells(task, 0).at(1), names.at(method));
        }
    }

    void aMethodThatIsNoneHasANullText()
    {
        TestTask task = taskOf("/s", "/d");
        for (const int method : {-1, 5}) {
            task.method = static_cast<IoMethod>(method);
            QVERIFY(taskCells(task, 0).at(1).isNull());
        }
    }

    void typesFollowFromThePaths()
    {
        QCOMPARE(taskCells(taskOf("/s", "/d"), 0).at(2), QString("Copy"));
        QCOMPARE(taskCells(taskOf("", "/d"), 0).at(2), QString("Write"));
        QCOMPARE(taskCells(taskOf("/s", ""), 0).at(2), QString("Read"));
        QCOMPARE(taskCells(taskOf("MEMORY", "/d"), 0).at(2), QString("Write"));
        QCOMPARE(taskCells(taskOf("/s", "MEMORY"), 0).at(2), QString("Read"));
    }

    void markersShowTheirFileAndNothingElse()
    {
        TestTask marker = taskOf("/s", "/d");
        marker.waitForNextConfig = true;
        const QStringList cells = taskCells(marker, 12);
        QCOMPARE(cells.size(), int(taskColumns().size()));
        QCOMPARE(cells.first(), QString("12"));
        QCOMPARE(cells.count("next file"), int(taskColumns().size()) - 1);
    }
};

QTEST_APPLESS_MAIN(TestTaskCells)
#include "tst_taskcells.moc"
