#include "tests/app/editor.h"
#include "tests/app/formrules.h"
#include "tests/support/tasks.h"

#include <QDir>
#include <QTemporaryDir>

using namespace formrules;

class TestFormBehaviour : public QObject
{
    Q_OBJECT

private slots:
    void everyPairIsReachedFromEveryOther()
    {
        Editor editor;
        for (int from = 0; from < 15; ++from) {
            for (int to = 0; to < 15; ++to) {
                for (const bool noChunks : {false, true})
                    reach(editor, from, to, noChunks);
                if (QTest::currentTestFailed())
                    QFAIL(qPrintable(QString("from pair %1 to pair %2").arg(from).arg(to)));
            }
        }
    }

    void noChunksOfStreamKeepsItsStateForEveryType()
    {
        Editor editor;
        editor.choose("comboMethod", Stream);
        for (const bool noChunks : {true, false}) {
            editor.check("checkNoChunks", noChunks);
            for (const int type : {Copy, Write, Read}) {
                editor.choose("comboTestType", type);
                QVERIFY(editor.isEnabled("checkNoChunks"));
                QCOMPARE(editor.isChecked("checkNoChunks"), noChunks);
            }
        }
    }

    void systemCopyChangesTheTypeAndHasNoChunks()
    {
        Editor editor;
        for (const int type : {Write, Read}) {
            editor.choose("comboMethod", Posix);
            editor.choose("comboTestType", type);
            editor.choose("comboMethod", System);
            verify(editor, expectedFor(System, type, true));
            // The check box is enabled, but this method holds it.
            editor.click("checkNoChunks");
            QVERIFY(editor.isChecked("checkNoChunks") && !editor.isEnabled("spinChunkSize"));
        }
    }

    void copyInChunksUnchecksAndWriteGivesTheChoiceBack()
    {
        Editor editor;
        for (const int method : {Posix, AnsiC, WinApi}) {
            editor.choose("comboMethod", method);
            editor.choose("comboTestType", Write);
            editor.check("checkNoChunks");
            editor.choose("comboTestType", Copy);
            QVERIFY(!editor.isChecked("checkNoChunks") && !editor.isEnabled("checkNoChunks"));
            editor.choose("comboTestType", Write);
            QVERIFY(!editor.isChecked("checkNoChunks") && editor.isEnabled("checkNoChunks"));
        }
    }

    void listsAreRebuiltEachTime()
    {
        Editor editor;
        auto* box = editor.find<QComboBox>("comboSystemBuffer");
        for (int i = 0; i < 3; ++i) {
            editor.choose("comboMethod", AnsiC);
            QCOMPARE(buffersIn(box), buffersOf(AnsiC));
            editor.choose("comboSystemBuffer", 3);
            editor.choose("comboMethod", Stream);
            QCOMPARE(buffersIn(box), buffersOf(Stream));
            QCOMPARE(box->currentIndex(), 0);
        }
    }

    void sameMethodAgainLeavesTheList()
    {
        Editor editor;
        editor.choose("comboSystemBuffer", 2);
        editor.find<QComboBox>("comboMethod")->setCurrentIndex(Stream);
        QCOMPARE(editor.index("comboSystemBuffer"), 2);
    }

    void noMethodLeavesTheBufferBoxAsItIs()
    {
        Editor editor;
        auto* method = editor.find<QComboBox>("comboMethod");
        for (const bool wasEnabled : {true, false}) {
            method->setCurrentIndex(wasEnabled ? Posix : System);
            method->setCurrentIndex(-1);
            QCOMPARE(editor.isEnabled("comboSystemBuffer"), wasEnabled);
            QCOMPARE(editor.find<QComboBox>("comboSystemBuffer")->count(), 0);
            QVERIFY(editor.isEnabled("comboTestType") && editor.isEnabled("checkNoChunks"));
            QVERIFY(!editor.isEnabled("checkPreallocate"));
            QCOMPARE(editor.isChecked("checkNoChunks"), !wasEnabled);
        }
    }

    void loadingATaskObeysTheRules()
    {
        // A foreign file may hold a System read with chunks.
        TestTask task;
        task.setDefaults();
        task.method = IoMethod::System;
        task.destPath.clear();
        Editor editor;
        editor.window.loadTaskIntoForm(task);
        verify(editor, expectedFor(System, Read, true));
    }

    void sizeLabelsShowMiB_data()
    {
        QTest::addColumn<int>("kib");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("chunk");
        QTest::newRow("1 KiB") << 1 << ""
                               << "0.001 MiB";
        QTest::newRow("512 KiB") << 512 << ""
                                 << "0.500 MiB";
        QTest::newRow("1 MiB") << 1024 << "1.0 MiB"
                               << "1.000 MiB";
        QTest::newRow("1.5 MiB") << 1536 << "1.5 MiB"
                                 << "1.500 MiB";
        QTest::newRow("largest chunk") << 10240 << "10.0 MiB"
                                       << "10.000 MiB";
        QTest::newRow("50 MiB") << 51200 << "50.0 MiB"
                                << "";
        QTest::newRow("largest file") << 1048576 << "1024.0 MiB"
                                      << "";
    }

    void sizeLabelsShowMiB()
    {
        QFETCH(int, kib);
        QFETCH(QString, file);
        QFETCH(QString, chunk);
        Editor editor;
        if (!file.isEmpty()) {
            editor.enter("spinFileSize", kib);
            QCOMPARE(editor.find<QLabel>("labelFileSizeMB")->text(), file);
        }
        if (!chunk.isEmpty()) {
            editor.enter("spinChunkSize", kib);
            QCOMPARE(editor.find<QLabel>("labelChunkSizeMB")->text(), chunk);
        }
    }

    void oneKiBBesideTheFileSizeIsNoMiB()
    {
        // The spin box never goes so low, the slot does.
        Editor editor;
        QVERIFY(QMetaObject::invokeMethod(&editor.window, "on_spinFileSize_valueChanged",
                                          Q_ARG(int, 1)));
        QCOMPARE(editor.find<QLabel>("labelFileSizeMB")->text(), "0.0 MiB");
    }

    void choosersFillTheirField_data()
    {
        QTest::addColumn<QByteArray>("button");
        QTest::addColumn<QByteArray>("edit");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("chosen");
        QTest::addColumn<QString>("result");
        QTest::newRow("source") << QByteArray("buttonBrowseSource") << QByteArray("editSource")
                                << "Source File..."
                                << "there.dat"
                                << "there.dat";
        QTest::newRow("dest") << QByteArray("buttonBrowseDest") << QByteArray("editDest")
                              << "Destination File..."
                              << "new.dat"
                              << "new.dat";
        QTest::newRow("log") << QByteArray("buttonBrowseLog") << QByteArray("editLog")
                             << "Log File..."
                             << "run.txt"
                             << "run_[host].txt";
        QTest::newRow("log without extension")
            << QByteArray("buttonBrowseLog") << QByteArray("editLog") << "Log File..."
            << "run"
            << "run_[host].txt";
        QTest::newRow("log of each host")
            << QByteArray("buttonBrowseLog") << QByteArray("editLog") << "Log File..."
            << "run-[HOST].log"
            << "run-[HOST].log";
        QTest::newRow("csv") << QByteArray("buttonBrowseExcel") << QByteArray("editExcel")
                             << "Excel File..."
                             << "r.csv"
                             << "r.csv";
    }

    void choosersFillTheirField()
    {
        QFETCH(QByteArray, button);
        QFETCH(QByteArray, edit);
        QFETCH(QString, caption);
        QFETCH(QString, chosen);
        QFETCH(QString, result);
        const QTemporaryDir folder;
        const QString root = folder.path() + '/';
        QFile there(root + "there.dat");
        QVERIFY(there.open(QIODevice::WriteOnly));

        Editor editor;
        editor.type(edit, "");
        QString seenCaption;
        {
            DialogAnswers answers;
            answers.answerNext([&](QDialog& dialog) {
                seenCaption = dialog.windowTitle();
                chooseFile(root + chosen)(dialog);
            });
            editor.click(button);
        }
        QCOMPARE(seenCaption, caption);
        QCOMPARE(editor.text(edit), root + result);

        // The folder is remembered for any other dialog.
        QString seenFolder;
        {
            DialogAnswers answers;
            answers.answerNext([&](QDialog& dialog) {
                seenFolder = dynamic_cast<QFileDialog&>(dialog).directory().path();
                cancelDialog()(dialog);
            });
            editor.click("buttonLoad");
        }
        QCOMPARE(seenFolder, folder.path());
    }

    void cancelledChooserChangesNothing()
    {
        Editor editor;
        struct Chooser
        {
            const char* button;
            const char* edit;
        };
        for (const auto& [button, edit] :
             {Chooser{"buttonBrowseSource", "editSource"}, Chooser{"buttonBrowseDest", "editDest"},
              Chooser{"buttonBrowseLog", "editLog"}, Chooser{"buttonBrowseExcel", "editExcel"}}) {
            const QString before = editor.text(edit);
            DialogAnswers answers;
            answers.answerNext(cancelDialog());
            editor.click(button);
            QCOMPARE(editor.text(edit), before);
        }
    }

    void chooserStartsAtTheFieldsFile()
    {
        const QTemporaryDir folder;
        Editor editor;
        editor.type("editDest", folder.path() + "/a.dat");
        QString seen;
        DialogAnswers answers;
        answers.answerNext([&](QDialog& dialog) {
            seen = dynamic_cast<QFileDialog&>(dialog).directory().path();
            cancelDialog()(dialog);
        });
        editor.click("buttonBrowseDest");
        QCOMPARE(seen, folder.path());
    }

private:
    /// Goes to one pair of method and type, then to another, and looks.
    static void reach(Editor& editor, int from, int to, bool noChunks)
    {
        editor.choose("comboMethod", from / 3);
        editor.choose("comboTestType", from % 3);
        Expected expected = expectedFor(from / 3, from % 3, editor.isChecked("checkNoChunks"));
        verify(editor, expected);
        if (expected.noChunksEnabled) {
            editor.check("checkNoChunks", noChunks);
            expected = expectedFor(from / 3, from % 3, noChunks);
            verify(editor, expected);
        }
        // First the method changes, under the old type, then the type.
        editor.choose("comboMethod", to / 3);
        expected = expectedFor(to / 3, expected.type, expected.noChunks);
        verify(editor, expected);
        editor.choose("comboTestType", to % 3);
        expected = expectedFor(to / 3, to % 3, expected.noChunks);
        verify(editor, expected);
        QCOMPARE(editor.index("comboSystemBuffer"), 0);
    }
};

QTEST_MAIN(TestFormBehaviour)
#include "tst_formbehaviour.moc"
