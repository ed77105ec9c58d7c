#include "model/taskcells.h"
#include "tests/app/editor.h"
#include "tests/support/tasks.h"

#include <QSignalSpy>

class TestTaskTable : public QObject
{
    Q_OBJECT

private slots:
    void emptyListKnowsOnlyTheCreateButton()
    {
        Editor editor;
        editor.click("buttonCreateOverwrite");
        editor.click("buttonMoveUp");
        editor.click("buttonDelete");
        DialogAnswers noneExpected;
        editor.click("buttonSave");
        QCOMPARE(editor.table()->rowCount(), 0);
        editor.click("buttonCreateNew");
        QCOMPARE(editor.table()->rowCount(), 1);
    }

    void taskFillsElevenColumns()
    {
        Editor editor;
        editor.click("buttonCreateNew");
        QCOMPARE(editor.row(0), (QStringList{"0", "Stream", "Copy", "102400", "1", "1024", "50",
                                             "-1", "[cfgPath]/testfile_[cfgName]-[cfgTaskID].dat",
                                             "[temp]/[cfgName]/testfile_[cfgName]-[cfgTaskID].dat",
                                             "[cfgPath]/[cfgName]/[host].txt"}));
        QCOMPARE(editor.table()->currentRow(), -1);
    }

    void titlesAreThoseOfTheListing()
    {
        Editor editor;
        QStringList titles;
        for (const TaskColumn& column : taskColumns())
            titles += column.title;
        QStringList headers;
        for (int column = 0; column < editor.table()->columnCount(); ++column)
            headers += editor.table()->horizontalHeaderItem(column)->text();
        QCOMPARE(headers, titles);
    }

    void markersCloseConfigFiles()
    {
        Editor editor;
        editor.addWriteTask("/a");
        editor.addWriteTask("/b");
        editor.addMarker();
        editor.addWriteTask("/c");
        QCOMPARE(editor.column(0), (QStringList{"0", "0", "0", "1"}));
        QStringList markerRow{"0"};
        for (int i = 0; i < 10; ++i)
            markerRow += "next file";
        QCOMPARE(editor.row(2), markerRow);
    }

    void listThatStartsWithAMarker()
    {
        Editor editor;
        editor.addMarker();
        editor.addWriteTask("/a");
        QCOMPARE(editor.column(0), (QStringList{"0", "1"}));
    }

    void memoryShowsAsAnEmptyPath()
    {
        Editor editor;
        editor.addWriteTask("/d");
        editor.choose("comboTestType", 2);
        editor.type("editSource", "/s");
        editor.click("buttonCreateNew");
        QCOMPARE(editor.row(0).mid(8, 2), (QStringList{"", "/d"}));
        QCOMPARE(editor.row(0)[2], "Write");
        QCOMPARE(editor.row(1).mid(8, 2), (QStringList{"/s", ""}));
        QCOMPARE(editor.row(1)[2], "Read");
    }

    void methodsShowUnderType()
    {
        Editor editor;
        for (int method = 0; method < 5; ++method) {
            editor.choose("comboMethod", method);
            editor.click("buttonCreateNew");
        }
        QCOMPARE(editor.column(1), (QStringList{"Posix", "System", "Stream", "AnsiC", "WinApi"}));
    }

    void unknownMethodHasNoText()
    {
        Editor editor;
        editor.find<QComboBox>("comboMethod")->setCurrentIndex(-1);
        editor.click("buttonCreateNew");
        QCOMPARE(editor.table()->item(0, 1)->data(Qt::DisplayRole), QVariant());
        QCOMPARE(editor.row(0)[2], "Copy");
    }

    void withoutChunksTheChunkSizeIsZero()
    {
        Editor editor;
        editor.enter("spinChunkSize", 77);
        editor.check("checkNoChunks");
        editor.click("buttonCreateNew");
        QCOMPARE(editor.row(0)[5], "0");
    }

    void largestFileShowsInKiB()
    {
        Editor editor;
        editor.enter("spinFileSize", 1048576);
        editor.click("buttonCreateNew");
        QCOMPARE(editor.row(0)[3], "1048576");
    }

    void overwriteReplacesTheWholeEntry()
    {
        Editor editor;
        editor.addWriteTask("/a");
        editor.addWriteTask("/b");
        editor.selectRow(0);
        editor.type("editDest", "/new");
        editor.click("buttonCreateOverwrite");
        QCOMPARE(editor.column(9), (QStringList{"/new", "/b"}));
        QCOMPARE(editor.table()->currentRow(), 0);
        editor.check("radioNextConfig");
        editor.click("buttonCreateOverwrite");
        QCOMPARE(editor.column(9), (QStringList{"next file", "/b"}));
    }

    void moveUpLeavesTheCurrentRow()
    {
        Editor editor;
        for (const char* dest : {"/a", "/b", "/c"})
            editor.addWriteTask(dest);
        editor.selectRow(2);
        editor.click("buttonMoveUp");
        QCOMPARE(editor.column(9), (QStringList{"/a", "/c", "/b"}));
        QCOMPARE(editor.table()->currentRow(), 2);
        // Again moves the task that stands there now.
        editor.click("buttonMoveUp");
        QCOMPARE(editor.column(9), (QStringList{"/a", "/b", "/c"}));
        editor.selectRow(0);
        editor.click("buttonMoveUp");
        QCOMPARE(editor.column(9), (QStringList{"/a", "/b", "/c"}));
    }

    void deleteKeepsTheRowNumber()
    {
        Editor editor;
        for (const char* dest : {"/a", "/b", "/c"})
            editor.addWriteTask(dest);
        editor.selectRow(1);
        editor.click("buttonDelete");
        QCOMPARE(editor.column(9), (QStringList{"/a", "/c"}));
        QCOMPARE(editor.table()->currentRow(), 1);
        editor.click("buttonDelete");
        QCOMPARE(editor.column(9), QStringList{"/a"});
        editor.selectRow(0);
        editor.click("buttonDelete");
        QCOMPARE(editor.table()->rowCount(), 0);
    }

    void editsDoNotReloadTheForm()
    {
        Editor editor;
        editor.addWriteTask("/a");
        editor.addWriteTask("/b");
        editor.selectRow(1);
        editor.type("editLog", "/typed");
        editor.click("buttonMoveUp");
        QCOMPARE(editor.text("editLog"), "/typed");
        QCOMPARE(editor.text("editDest"), "/b");
    }

    void selectedRowShowsInTheForm()
    {
        Editor editor;
        editor.addWriteTask("/a");
        editor.addMarker();
        editor.addWriteTask("/b");
        editor.selectRow(0);
        QCOMPARE(editor.text("editDest"), "/a");
        QCOMPARE(editor.index("comboTestType"), 1);
        editor.selectRow(1);
        QVERIFY(editor.isChecked("radioNextConfig"));
        QCOMPARE(editor.text("editDest"), "/a");
        editor.selectRow(2);
        QVERIFY(editor.isChecked("radioNewTest"));
        QCOMPARE(editor.text("editDest"), "/b");
    }

    void disabledFieldsCountLikeAnyOther()
    {
        Editor editor;
        editor.enter("spinChunkWait", 77);
        editor.check("checkNoChunks");
        QVERIFY(!editor.isEnabled("spinChunkWait"));
        QCOMPARE(editor.window.taskFromForm().io.chunkWait, 77);
        editor.check("radioNextConfig");
        QVERIFY(!editor.isEnabled("groupBox"));
        QVERIFY(editor.isEnabled("buttonCreateNew") && editor.isEnabled("buttonCreateOverwrite"));
    }

    void columnsFitTheirContents()
    {
        Editor editor;
        editor.addWriteTask("/a");
        const int narrow = editor.table()->columnWidth(9);
        editor.addWriteTask('/' + QString(200, 'w'));
        QVERIFY(editor.table()->columnWidth(9) > narrow);
    }

    void tableCantBeEditedInPlace()
    {
        Editor editor;
        editor.addWriteTask("/a");
        editor.selectRow(0);
        QTest::keyClick(editor.table(), Qt::Key_F2);
        QTest::keyClicks(editor.table(), "x");
        QCOMPARE(editor.row(0)[9], "/a");
        QCOMPARE(editor.table()->selectedItems().size(), 11);
    }
};

QTEST_MAIN(TestTaskTable)
#include "tst_tasktable.moc"
