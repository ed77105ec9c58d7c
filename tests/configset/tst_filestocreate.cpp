#include "configset/filestocreate.h"
#include "tests/configset/filetexts.h"
#include "tests/support/tasks.h"

#include <QTest>

namespace {

/// The files that one task in a file of its own needs.
QVector<FileToCreate> filesOf(const TestTask& task)
{
    FileToCreateList list;
    collectFilesOfTask(list, task, 0);
    return list.files();
}

} // namespace

/// The files that a task needs.
class TestFilesToCreate : public QObject
{
    Q_OBJECT

private slots:
    void namesCanBeThoseOfAnotherMachine()
    {
        TestTask task;
        task.sourcePath = path("[cfgPath]/[host]/a");
        task.logPath = path("/l/[host]/log");
        task.iterations = 1;
        MachineValues machine;
        machine.computerName = computerNameFrom("pc07.lan");
        FileToCreateList list;
        collectFilesOfTask(list, task, 0, machine);
        QCOMPARE(textsOf(list), (QStringList{"[cfgPath]/pc07/a", "/l/pc07/dummyFile"}));
    }

    void eachIterationHasItsFile()
    {
        TestTask task;
        task.sourcePath = path("[cfgPath]/src_[iter].bin");
        task.io.fileSize = 5242880;
        task.iterations = 3;
        const QVector<FileToCreate> files = filesOf(task);
        QCOMPARE(files.size(), 3);
        QCOMPARE(files[2].text, QStringLiteral("[cfgPath]/src_2.bin"));
        QCOMPARE(files[2].size, qint64(5242880));
        QVERIFY(!files[2].isDummy);

        task.sourcePath = path("[cfgPath]/src.bin");
        QCOMPARE(filesOf(task).size(), 1);
        task.iterations = 0;
        QCOMPARE(filesOf(task).size(), 0);
        task.iterations = -5;
        QCOMPARE(filesOf(task).size(), 0);
    }

    void whateverANameHoldsItsFilesAreThoseOfAllIterations()
    {
        TestTask task;
        task.configPath = path("/c/my.dpc");
        task.iterations = 12;
        MachineValues machine;
        machine.computerName = _kvString<500>("[it"); // completes a variable that comes later
        machine.date = QStringLiteral("er]");
        for (const char* name :
             {"/s/a", "/s/[iter]", "[temp]/[cfgName]", "[cfgPath]/[iter", "/s/[Iter]",
              "[[iter]]/[cfgTaskID]", "/s/[host]er]/a", "/s/[it[date]", "[host][date]"}) {
            task.sourcePath = path(name);
            QStringList expected;
            for (int iteration = 0; iteration < task.iterations; ++iteration) {
                _kvString<500> text(name);
                expected +=
                    kvToQString(replaceFileVariables(task, text, 0, iteration, true, machine));
            }
            expected.removeDuplicates();
            FileToCreateList list;
            collectFilesOfTask(list, task, 0, machine);
            QCOMPARE(textsOf(list), expected);
        }
    }

    void iterationsThatChangeNothingAreSkipped_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("config");
        const QString longName(90, 'c');
        QTest::newRow("cancelled") << "[iter]/../x"
                                   << "a";
        QTest::newRow("in brackets") << "[[iter]]/../x"
                                     << "a";
        QTest::newRow("twice") << "/[iter]/../[iter]"
                               << "a";
        // Later text may push the number out, or the end of it.
        QTest::newRow("pushed out")
            << "[cfgName]/[cfgName]/[cfgName]/[cfgName]/[cfgName]/[cfgName]/[iter]" << longName;
        for (int length = 124; length < 130; ++length)
            QTest::addRow("%d before", length)
                << QString(length, 'n') + "[cfgName][cfgName][cfgName][cfgName]/[iter]/e"
                << longName.left(90);
        QTest::newRow("cut by the host") << QString(480, 'n') + "[host][iter]"
                                         << "a";
        QTest::newRow("completed by the date") << "/s/[it[date]/../x"
                                               << "a";
    }

    void iterationsThatChangeNothingAreSkipped()
    {
        QFETCH(QString, name);
        QFETCH(QString, config);
        TestTask task;
        task.configPath = kvToString8<500>("/c/" + config + ".dpc");
        task.iterations = 2345;
        MachineValues machine;
        machine.computerName = _kvString<500>("a-name-of-18-chars");
        machine.date = QStringLiteral("er]");
        QStringList expected;
        for (int iteration = 0; iteration < task.iterations; ++iteration) {
            auto text = kvToString16<500>(name);
            expected += kvToQString(replaceFileVariables(task, text, 0, iteration, true, machine));
        }
        expected.removeDuplicates();
        FileToCreateList list;
        collectFilesToCreate(list, name, 1, task, 0, machine);
        QCOMPARE(textsOf(list), expected);
    }

    void aListIsFullAtItsVeryLimit()
    {
        const FileToCreate file{"/a/b", "/a/b", 1024};
        const int size = creatingLine(file).size();
        for (const int most : {1, size - 1, size, size + 1}) {
            FileToCreateList list(most);
            QVERIFY(!list.isFull());
            list.append(file);
            QCOMPARE(list.isFull(), most <= size);
        }
        QVERIFY(FileToCreateList(0).isFull());
    }

    void sourceDestinationLogAndCsvComeInThisOrder()
    {
        TestTask task;
        task.iterations = 1;
        task.io.fileSize = 7;
        task.sourcePath = path("s.bin");
        task.destPath = path("[cfgPath]/out/d.bin");
        task.logPath = path("/log/l.txt");
        task.csvPath = path("c.csv");
        const QVector<FileToCreate> files = filesOf(task);
        QCOMPARE(files.size(), 4);
        QCOMPARE(files[0].text, QStringLiteral("s.bin"));
        QCOMPARE(files[1].text, QStringLiteral("[cfgPath]/out/dummyFile"));
        QCOMPARE(files[2].text, QStringLiteral("/log/dummyFile"));
        QCOMPARE(files[3].text, QStringLiteral("dummyFile"));
        for (int i = 1; i < 4; ++i) {
            QVERIFY(files[i].isDummy);
            QCOMPARE(files[i].size, qint64(1));
        }
    }

    void onlyDestinationsBelowTheConfigPathGetAFolder()
    {
        for (const char* dest :
             {"/out/d", "out/d", "[temp]/d", "[CFGPATH]/d", "x[cfgPath]/d", ""}) {
            TestTask task = taskTo(dest);
            QVERIFY2(filesOf(task).isEmpty(), dest);
        }
        QCOMPARE(filesOf(taskTo("[cfgPath]/d")).size(), 1);
        QCOMPARE(filesOf(taskTo("[cfgPath]d")).value(0).text, QStringLiteral("dummyFile"));
    }

    void memoryIsAFileNameHere()
    {
        TestTask task = taskTo("");
        task.sourcePath = path("MEMORY");
        QCOMPARE(filesOf(task).value(0).text, QStringLiteral("MEMORY"));
    }

    void resolvedNamesFollowTheConfigPathOfTheTask()
    {
        TestTask task = taskTo("");
        task.sourcePath = path("[cfgPath]/../[cfgName].bin");
        task.configPath = path("/cfg/set/mytest3.dpc");
        QCOMPARE(filesOf(task).value(0).text, QStringLiteral("[cfgPath]/../mytest.bin"));
        QCOMPARE(filesOf(task).value(0).resolved, QStringLiteral("/cfg/mytest.bin"));
    }

    void dummyNamesAreRecognisedBySuffix()
    {
        FileToCreateList list;
        const TestTask task = taskTo("");
        for (const char* name : {"/a/dummyFile", "/a/xdummyFile", "/a/dummyfile", "/a/dummyFile2"})
            collectFilesToCreate(list, name, 1, task, 0);
        QList<bool> dummies;
        for (const FileToCreate& file : list.files())
            dummies += file.isDummy;
        QCOMPARE(dummies, (QList<bool>{true, true, false, false}));
    }
};

QTEST_APPLESS_MAIN(TestFilesToCreate)
#include "tst_filestocreate.moc"
