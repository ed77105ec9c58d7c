#include "tests/app/editor.h"
#include "tests/support/tasks.h"
#include "tests/support/warnings.h"

#include <QHeaderView>
#include <QMetaMethod>

/// Has a slot whose name promises a child that is not there.
class UnboundSlot : public QObject
{
    Q_OBJECT

private slots:
    void on_nothing_clicked() {}
};

class TestWindow : public QObject
{
    Q_OBJECT

private slots:
    void slotsStandInTheOrderOfTheMethodTable()
    {
        const QByteArrayList expected = {
            "on_buttonMoveUp_clicked()",
            "on_buttonDelete_clicked()",
            "on_buttonSave_clicked()",
            "on_buttonLoad_clicked()",
            "on_buttonBrowseSource_clicked()",
            "on_buttonBrowseDest_clicked()",
            "on_buttonBrowseLog_clicked()",
            "on_buttonBrowseExcel_clicked()",
            "on_buttonCreateNew_clicked()",
            "on_buttonCreateOverwrite_clicked()",
            "on_comboTestType_currentIndexChanged(int)",
            "on_comboMethod_currentIndexChanged(int)",
            "on_spinFileSize_valueChanged(int)",
            "on_spinChunkSize_valueChanged(int)",
            "on_checkNoChunks_toggled(bool)",
            "on_tableWidget_currentItemChanged(QTableWidgetItem*,QTableWidgetItem*)"};
        const QMetaObject& meta = twDiskProbe::staticMetaObject;
        QByteArrayList slotsOfWindow;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
            slotsOfWindow += meta.method(i).methodSignature();
        }
        QCOMPARE(slotsOfWindow, expected);
        QCOMPARE(meta.propertyCount(), QMainWindow::staticMetaObject.propertyCount());
    }

    void everySlotBindsAndNothingWarns()
    {
        const WarningCollector warnings;
        {
            Editor editor;
            editor.addWriteTask("/t/a");
            editor.selectRow(0);
        }
        QCOMPARE(warnings.messages(), QStringList());
    }

    void collectorSeesASlotThatDoesNotBind()
    {
        WarningCollector warnings;
        QTest::ignoreMessage(QtWarningMsg, "QMetaObject::connectSlotsByName: No matching signal "
                                           "for on_nothing_clicked()");
        UnboundSlot object;
        QMetaObject::connectSlotsByName(&object);
        QCOMPARE(warnings.messages().size(), 1);
    }

    void opensWithTheDefaultsOfANewTask()
    {
        const Editor editor;
        QVERIFY(editor.isChecked("radioNewTest"));
        QCOMPARE(editor.index("comboMethod"), 2);
        QCOMPARE(editor.index("comboTestType"), 0);
        QCOMPARE(editor.text("editSource"), "[cfgPath]/testfile_[cfgName]-[cfgTaskID].dat");
        QCOMPARE(editor.text("editDest"), "[temp]/[cfgName]/testfile_[cfgName]-[cfgTaskID].dat");
        QCOMPARE(editor.text("editLog"), "[cfgPath]/[cfgName]/[host].txt");
        QCOMPARE(editor.text("editExcel"), "[cfgPath]/[cfgName]-[cfgTaskID]_results.csv");
        QCOMPARE(editor.value("spinFileSize"), 102400);
        QCOMPARE(editor.value("spinIterations"), 1);
        QCOMPARE(editor.value("spinChunkSize"), 1024);
        QCOMPARE(editor.value("spinChunkWait"), 50);
        QVERIFY(!editor.isChecked("checkNoChunks") && !editor.isChecked("checkFlush"));
        QVERIFY(!editor.isChecked("checkPreallocate") && editor.isChecked("checkWriteDone"));
        QCOMPARE(editor.find<QComboBox>("comboSystemBuffer")->currentData().toInt(), -1);
        QCOMPARE(editor.index("comboCacheMode"), 0);
        QCOMPARE(editor.table()->rowCount(), 0);
        // As compact as the font allows.
        const QHeaderView* rows = editor.table()->verticalHeader();
        QCOMPARE(rows->defaultSectionSize(), qMax(20, rows->minimumSectionSize()));
        QCOMPARE(editor.window.windowTitle(), "twDiskProbe UI");
    }

    void formGivesBackTheTaskItShows()
    {
        twDiskProbe window;
        for (const IoMethod method :
             {IoMethod::Posix, IoMethod::Stream, IoMethod::AnsiC, IoMethod::WinApi}) {
            for (const TestType type : {TestType::Copy, TestType::Write, TestType::Read}) {
                TestTask task = sample(method, type);
                window.loadTaskIntoForm(task);
                QCOMPARE(lineOf(window.taskFromForm()), lineOf(task));
            }
        }
    }

    void markerOnlyChecksItsButton()
    {
        twDiskProbe window;
        const TestTask shown = sample(IoMethod::Posix, TestType::Write);
        window.loadTaskIntoForm(shown);
        TestTask next = marker();
        next.sourcePath = path("/x/next.dpc");
        window.loadTaskIntoForm(next);
        QVERIFY(window.taskFromForm().waitForNextConfig);
        window.findChild<QRadioButton*>("radioNewTest")->setChecked(true);
        QCOMPARE(lineOf(window.taskFromForm()), lineOf(shown));
    }

    void markerFromTheFormHoldsNothingElse()
    {
        Editor editor;
        editor.check("radioNextConfig");
        const TestTask task = editor.window.taskFromForm();
        QVERIFY(task.waitForNextConfig && task.sourcePath.isEmpty() && !task.writeDone);
        QCOMPARE(task.iterations, 0);
    }

    void taskWithoutChunksShowsTheSpinBoxAtItsMinimum()
    {
        twDiskProbe window;
        TestTask task = sample(IoMethod::Stream, TestType::Write);
        task.setChunkSize(0);
        window.loadTaskIntoForm(task);
        QVERIFY(window.findChild<QCheckBox*>("checkNoChunks")->isChecked());
        QCOMPARE(window.findChild<QSpinBox*>("spinChunkSize")->value(), 1);
    }

    void memoryDecidesTheTestType_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("dest");
        QTest::addColumn<int>("type");
        QTest::newRow("copy") << "/s"
                              << "/d" << 0;
        QTest::newRow("write from MEMORY") << "MEMORY"
                                           << "/d" << 1;
        QTest::newRow("write from nothing") << ""
                                            << "/d" << 1;
        QTest::newRow("read to nothing") << "MEMORY"
                                         << "" << 2;
        QTest::newRow("read to MEMORY") << "/s"
                                        << "MEMORY" << 2;
    }

    void memoryDecidesTheTestType()
    {
        QFETCH(QString, source);
        QFETCH(QString, dest);
        twDiskProbe window;
        TestTask task = sample(IoMethod::Posix, TestType::Copy);
        task.sourcePath = kvToString8<500>(source);
        task.destPath = kvToString8<500>(dest);
        window.loadTaskIntoForm(task);
        QTEST(window.findChild<QComboBox*>("comboTestType")->currentIndex(), "type");
        QCOMPARE(window.findChild<QLineEdit*>("editSource")->text(), source);
        QCOMPARE(window.findChild<QLineEdit*>("editDest")->text(), dest);
    }

    void unknownSystemBufferLeavesTheChoice()
    {
        twDiskProbe window;
        auto* box = window.findChild<QComboBox*>("comboSystemBuffer");
        TestTask task = sample(IoMethod::WinApi, TestType::Write);
        task.io.sysBufferMode = 2;
        window.loadTaskIntoForm(task);
        QCOMPARE(box->currentIndex(), 3);
        task.io.sysBufferMode = 5;
        window.loadTaskIntoForm(task);
        QCOMPARE(box->currentIndex(), 3);
        task.method = IoMethod::AnsiC;
        task.io.sysBufferMode = -1;
        window.loadTaskIntoForm(task);
        QCOMPARE(box->currentIndex(), 0);
    }

    void valuesOfForeignFilesAreClampedByTheForm()
    {
        twDiskProbe window;
        TestTask task = sample(IoMethod::Stream, TestType::Copy);
        task.iterations = -5;
        task.io.fileSize = -2147483647 - 1;
        task.setChunkSize(-1024);
        task.setChunkWait(99999);
        task.io.cacheMode = 9;
        task.method = static_cast<IoMethod>(7);
        window.loadTaskIntoForm(task);
        QCOMPARE(window.findChild<QSpinBox*>("spinIterations")->value(), 1);
        QCOMPARE(window.findChild<QSpinBox*>("spinFileSize")->value(), 1024);
        QCOMPARE(window.findChild<QSpinBox*>("spinChunkSize")->value(), 1);
        QVERIFY(!window.findChild<QCheckBox*>("checkNoChunks")->isChecked());
        QCOMPARE(window.findChild<QSpinBox*>("spinChunkWait")->value(), 500);
        QCOMPARE(window.findChild<QComboBox*>("comboCacheMode")->currentIndex(), -1);
        QCOMPARE(window.findChild<QComboBox*>("comboMethod")->currentIndex(), -1);
        QCOMPARE(window.findChild<QComboBox*>("comboSystemBuffer")->count(), 0);
        // An empty list of choices counts as 0.
        QCOMPARE(window.taskFromForm().io.sysBufferMode, 0);
        QCOMPARE(int(window.taskFromForm().method), -1);
    }

    void longTextsAreCutAndLettersBecomeLatin1()
    {
        Editor editor;
        editor.type("editLog", '/' + QString(600, 'l'));
        editor.type("editExcel", QString::fromUtf8("/für/€"));
        const TestTask task = editor.window.taskFromForm();
        QCOMPARE(kvToQString(task.logPath), '/' + QString(499, 'l'));
        QCOMPARE(kvToQString(task.csvPath), QString::fromUtf8("/für/?"));
    }

    void largestSizesOfTheForm()
    {
        Editor editor;
        editor.enter("spinFileSize", 1048576);
        editor.enter("spinChunkSize", 10240);
        const TestTask task = editor.window.taskFromForm();
        QCOMPARE(task.io.fileSize, 1073741824);
        QCOMPARE(task.io.chunkSize, 10485760);
        QCOMPARE(task.io.ioBufferSize, 10485760);
    }

    void windowThatIsNotShownHasItsInitialSize()
    {
        const twDiskProbe window;
        QCOMPARE(window.size(), QSize(1200, 880));
    }

private:
    static TestTask sample(IoMethod method, TestType type)
    {
        TestTask task;
        task.setDefaults();
        task.method = method;
        task.sourcePath = path(type == TestType::Write ? "" : "/s\xFC");
        task.destPath = path(type == TestType::Read ? "" : "/d");
        task.logPath = path("/l.txt");
        task.csvPath = path("");
        task.io.sysBufferMode = 1;
        task.io.flush = task.io.preallocate = true;
        task.io.cacheMode = 3;
        task.io.fileSize = bytesFromKib(2048);
        task.setChunkSize(bytesFromKib(64));
        task.setChunkWait(7);
        task.iterations = 9;
        task.writeDone = false;
        return task;
    }
};

QTEST_MAIN(TestWindow)
#include "tst_window.moc"
