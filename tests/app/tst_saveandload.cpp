#include "tests/app/editor.h"
#include "tests/app/messages.h"
#include "tests/support/files.h"
#include "tests/support/tasks.h"

#include <QDir>
#include <QTemporaryDir>

// A person's work in the real window: from an empty form to files and back.

namespace {

const QString savedText =
    "Config files have been saved.\n\n\nThere is an additional ..._init.dpc config file. This "
    "config \ncreates all (not existing) source files and folders for output files.\nPlease "
    "execute 'twDiskProbe ..._init.dpc' to create the files";

QString messageIn(const QDialog& dialog)
{
    const QLabel* label = messageLabel(dialog);
    return label != nullptr ? label->text() : QString();
}

} // namespace

class TestSaveAndLoad : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder.reset(new QTemporaryDir);
        QVERIFY(m_folder->isValid());
        m_root = m_folder->path() + '/';
    }

    void saveConfirmsWithACountdown()
    {
        Editor editor;
        editor.addWriteTask("/t/a");
        QString caption;
        QString message;
        QString button;
        DialogAnswers answers;
        answers.answerNext([&](QDialog& dialog) {
            caption = dialog.windowTitle();
            chooseFile(m_root + "mytest.dpc")(dialog);
        });
        answers.answerNext([&](QDialog& dialog) {
            message = messageIn(dialog);
            button = dialog.findChild<QPushButton*>()->text();
            pressKey(dialog, Qt::Key_O);
        });
        editor.click("buttonSave");
        QCOMPARE(caption, "Destination File...");
        QCOMPARE(message, savedText + '\n');
        QVERIFY2(button == "Ok  (30)" || button == "Ok  (29)", qPrintable(button));
    }

    void composedSeriesIsOnTheDiskByteForByte()
    {
        Editor editor;
        editor.typeInfo("a\nb");
        editor.addWriteTask("/t/a");
        editor.addWriteTask("/t/b");
        editor.addMarker();
        editor.addWriteTask("/t/c");
        editor.addMarker();
        editor.addWriteTask("/t/d");
        editor.save(m_root + "mytest.dpc");
        QCOMPARE(test::entriesOf(m_root),
                 (QStringList{"_wait", "_wait/mytest.dpc", "_wait/mytest1.dpc", "_wait/mytest2.dpc",
                              "mytest_init.dpc"}));
        const QString line = "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
                             "/t/%1;  [cfgPath]/[cfgName]/[host].txt;  "
                             "[cfgPath]/[cfgName]-[cfgTaskID]_results.csv;  true;\n";
        const QString wait = m_root + "_wait/";
        QCOMPARE(content("_wait/mytest.dpc"),
                 "# a\n# b\n\n" + line.arg("a") + line.arg("b") + wait + "mytest1.dpc\n");
        QCOMPARE(content("_wait/mytest1.dpc"), line.arg("c") + wait + "mytest2.dpc\n");
        QCOMPARE(content("_wait/mytest2.dpc"), line.arg("d"));
        // Without a config name yet, the folders of log and .csv file are the same.
        QCOMPARE(content("mytest_init.dpc"),
                 "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  "
                 "[cfgPath]/dummyFile;  ;  ;  true;\n");
    }

    void savedNameWithADigitGetsAnUnderscore()
    {
        Editor editor;
        editor.addMarker();
        editor.save(m_root + "bench7.dpc");
        QCOMPARE(test::entriesOf(m_root), (QStringList{"_wait", "_wait/bench7_.dpc",
                                                       "_wait/bench7_1.dpc", "bench7__init.dpc"}));
    }

    void cancelledSaveWritesNothing()
    {
        Editor editor;
        editor.addWriteTask("/t/a");
        DialogAnswers answers;
        answers.answerNext(cancelDialog());
        editor.click("buttonSave");
        QCOMPARE(test::entriesOf(m_root), QStringList());
    }

    void freshWindowShowsTheSameSeries()
    {
        Editor editor;
        editor.typeInfo("what\nfor");
        editor.choose("comboMethod", 0);
        editor.choose("comboTestType", 0);
        editor.check("checkFlush");
        editor.check("checkPreallocate");
        editor.choose("comboSystemBuffer", 1);
        editor.choose("comboCacheMode", 4);
        editor.enter("spinFileSize", 2048);
        editor.enter("spinIterations", 3);
        editor.enter("spinChunkSize", 64);
        editor.enter("spinChunkWait", 10);
        editor.check("checkWriteDone", false);
        editor.click("buttonCreateNew");
        editor.addMarker();
        editor.addWriteTask("/t/b");
        editor.save(m_root + "mytest.dpc");

        Editor fresh;
        fresh.load(m_root + "_wait/mytest.dpc");
        QCOMPARE(fresh.rows(), editor.rows());
        QCOMPARE(fresh.infoText(), "what\nfor");
        for (const int row : {0, 2}) {
            editor.selectRow(row);
            fresh.selectRow(row);
            QCOMPARE(lineOf(fresh.window.taskFromForm()), lineOf(editor.window.taskFromForm()));
        }
        fresh.selectRow(0);
        QCOMPARE(fresh.index("comboSystemBuffer"), 1);
        QCOMPARE(fresh.index("comboCacheMode"), 4);
    }

    void loadedSeriesSavedAgainIsTheSame()
    {
        composeThree("mytest.dpc");
        Editor editor;
        editor.load(m_root + "_wait/mytest.dpc");
        // Chosen inside "_wait", that folder is the series' own from now on.
        const QTemporaryDir other;
        editor.save(other.path() + "/mytest.dpc");
        for (const char* name : {"_wait/mytest.dpc", "_wait/mytest1.dpc", "_wait/mytest2.dpc"}) {
            const QByteArray again = test::contentOf(other.path() + '/' + name);
            QCOMPARE(QString::fromLatin1(again).replace(other.path(), m_folder->path()),
                     content(name));
        }
    }

    void editedSeriesReplacesTheOld()
    {
        composeThree("mytest.dpc");
        Editor editor;
        editor.load(m_root + "_wait/mytest.dpc");
        editor.selectRow(2);
        editor.type("editDest", "/t/edited");
        editor.click("buttonCreateOverwrite");
        editor.selectRow(4);
        editor.click("buttonMoveUp");
        editor.selectRow(0);
        editor.click("buttonDelete");
        const QStringList edited = editor.column(9);
        QCOMPARE(edited, (QStringList{"next file", "/t/edited", "/t/c", "next file"}));
        editor.save(m_root + "mytest.dpc");

        // The series now has three files, of which the last is empty.
        Editor fresh;
        fresh.load(m_root + "_wait/mytest.dpc");
        QCOMPARE(fresh.column(9), edited);
        QCOMPARE(content("_wait/mytest2.dpc"), QString());
    }

    void loadingAndSavingMendsTheNamesOfTheInitFile()
    {
        Editor editor;
        editor.click("buttonCreateNew");
        editor.save(m_root + "mytest.dpc");
        QVERIFY(content("mytest_init.dpc").contains("[cfgPath]/testfile_-0.dat;"));
        editor.load(m_root + "_wait/mytest.dpc");
        editor.save(m_root + "mytest.dpc");
        QVERIFY(content("mytest_init.dpc").contains("[cfgPath]/testfile_mytest-0.dat;"));
    }

    void loadAsksBeforeTheListIsLost()
    {
        composeThree("mytest.dpc");
        Editor editor;
        editor.addWriteTask("/kept");
        QString question;
        {
            DialogAnswers answers;
            answers.answerNext([&](QDialog& dialog) {
                question = messageIn(dialog);
                clickButton("Abort, do not load file")(dialog);
            });
            editor.click("buttonLoad");
        }
        QCOMPARE(question, "Opening a new file will clear the current task list\n");
        QCOMPARE(editor.column(9), QStringList{"/kept"});
        editor.click("buttonCreateNew");
        QCOMPARE(editor.table()->rowCount(), 2);
    }

    void cancelledFileDialogLeavesTheTableButNotTheList()
    {
        Editor editor;
        editor.addWriteTask("/a");
        editor.addWriteTask("/b");
        DialogAnswers answers;
        answers.answerNext([](QDialog& dialog) { pressKey(dialog, Qt::Key_Return); });
        answers.answerNext(cancelDialog());
        editor.click("buttonLoad");
        QCOMPARE(editor.column(9), (QStringList{"/a", "/b"}));
        // The rows on show are nobody's: nothing can be done with them.
        editor.selectRow(1);
        editor.click("buttonDelete");
        QCOMPARE(editor.table()->rowCount(), 2);
        editor.addWriteTask("/c");
        QCOMPARE(editor.column(9), QStringList{"/c"});
    }

    void emptyListLoadsWithoutAQuestion()
    {
        composeThree("mytest.dpc");
        Editor editor;
        QString caption;
        DialogAnswers answers;
        answers.answerNext([&](QDialog& dialog) {
            caption = dialog.windowTitle();
            chooseFile(m_root + "_wait/mytest1.dpc")(dialog);
        });
        editor.click("buttonLoad");
        QCOMPARE(caption, "Please select one of the .dpc files...");
        QCOMPARE(editor.table()->rowCount(), 5);
    }

    void eachBadLineIsWarnedOfOnce()
    {
        test::put(m_root + "a.dpc", "f\xFCr <b>nichts</b>\n" + lineTo("/t/a").toLatin1() +
                                        "  Posix;;;x;\n" + lineTo("/t/b").toLatin1());
        Editor editor;
        QStringList messages;
        QStringList buttons;
        DialogAnswers answers;
        answers.answerNext(chooseFile(m_root + "a.dpc"));
        for (int i = 0; i < 2; ++i) {
            answers.answerNext([&](QDialog& dialog) {
                messages += messageIn(dialog);
                buttons += dialog.findChild<QPushButton*>()->text();
                pressKey(dialog, Qt::Key_Return);
            });
        }
        editor.click("buttonLoad");
        const QString from = "\n from file " + m_root + "a.dpc\n";
        QCOMPARE(messages,
                 (QStringList{QString::fromUtf8("Unable to load line\nfür <b>nichts</b>") + from,
                              "Unable to load line\nPosix;;;x;" + from}));
        QVERIFY2(buttons[0] == "Ok  (45)" || buttons[0] == "Ok  (44)", qPrintable(buttons[0]));
        QCOMPARE(editor.column(9), (QStringList{"/t/a", "/t/b"}));
    }

    void seriesWrittenByHandOnWindows()
    {
        test::put(m_root + "hand.dpc", "# first\r\n#second\r\n\r\n"
                                       "Posix;flush;prealloc;10;64;1;1024;3;2;MEMORY;C:\\t\\a.dat;"
                                       "log.txt;r.csv;true\r\n" +
                                           (m_root + "hand1.dpc").toLatin1() + "\r\n");
        test::put(m_root + "hand1.dpc", "Stream;0;0;0;0;-1;5120;1;0;MEMORY;out/b.dat;;;false;\r\n");
        Editor editor;
        editor.load(m_root + "hand.dpc");
        QCOMPARE(editor.infoText(), "first\nsecond");
        QCOMPARE(editor.row(0), (QStringList{"0", "Posix", "Write", "1024", "3", "64", "10", "1",
                                             "", "C:\\t\\a.dat", m_root + "log.txt"}));
        QCOMPARE(editor.row(1)[1], "next file");
        QCOMPARE(editor.row(2), (QStringList{"1", "Stream", "Write", "5120", "1", "0", "0", "-1",
                                             "", m_root + "out/b.dat", m_root}));
    }

    void seriesFullOfUmlauts()
    {
        const QString folder = m_root + QString::fromUtf8("Prüfung/");
        QVERIFY(QDir().mkdir(folder));
        Editor editor;
        editor.typeInfo(QString::fromUtf8("für Größen"));
        editor.addWriteTask(QString::fromUtf8("/t/ä"));
        editor.addMarker();
        editor.addWriteTask(QString::fromUtf8("/t/ß"));
        editor.save(folder + QString::fromUtf8("größe.dpc"));
        Editor fresh;
        fresh.load(folder + QString::fromUtf8("_wait/größe.dpc"));
        QCOMPARE(fresh.rows(), editor.rows());
        QCOMPARE(fresh.column(9)[0], QString::fromUtf8("/t/ä"));
        QCOMPARE(fresh.infoText(), QString::fromUtf8("für Größen"));
    }

    void namesWithDotsLoadBack()
    {
        for (const char* name : {"v1.2", "nas.lan"}) {
            composeThree(QString(name) + ".dpc");
            Editor editor;
            const QString saved = QString(name).endsWith('2') ? "v1.2_" : name;
            editor.load(m_root + "_wait/" + saved + ".dpc");
            QCOMPARE(editor.column(9),
                     (QStringList{"/t/a", "next file", "/t/b", "next file", "/t/c"}));
        }
    }

    void twentyFilesLoadAndTheTwentyFirstStaysUnread()
    {
        for (int n = 0; n <= 20; ++n)
            test::put(m_root + "many" + (n > 0 ? QString::number(n) : QString()) + ".dpc",
                      lineTo(("/" + QByteArray::number(n)).constData()).toLatin1());
        Editor editor;
        editor.load(m_root + "many20.dpc");
        QStringList expected;
        for (int n = 0; n < 20; ++n)
            expected += "/" + QString::number(n);
        QCOMPARE(editor.column(9), expected);
    }

    void infoTextThatIsThereStays()
    {
        composeThree("mytest.dpc");
        Editor editor;
        editor.typeInfo("my own");
        editor.load(m_root + "_wait/mytest.dpc");
        QCOMPARE(editor.infoText(), "my own");
    }

private:
    QString content(const QString& name) const
    {
        return QString::fromLatin1(test::contentOf(m_root + name));
    }

    /// A series of three files with one task each.
    void composeThree(const QString& name) const
    {
        Editor editor;
        editor.typeInfo("three files");
        editor.addWriteTask("/t/a");
        editor.addMarker();
        editor.addWriteTask("/t/b");
        editor.addMarker();
        editor.addWriteTask("/t/c");
        editor.save(m_root + name);
    }

    QScopedPointer<QTemporaryDir> m_folder;
    QString m_root;
};

QTEST_MAIN(TestSaveAndLoad)
#include "tst_saveandload.moc"
