#include "tests/app/editor.h"
#include "tests/app/messages.h"
#include "tests/support/files.h"
#include "tests/support/tasks.h"
#include "tests/ui/cuttexts.h"

#include <QTemporaryDir>

#include <cstdlib>

// Much of everything, odd surroundings, and people in a hurry.

class TestStress : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder.reset(new QTemporaryDir);
        m_root = m_folder->path() + '/';
    }

    void tenThousandTasks()
    {
        const QByteArray line = lineOf(taskWithOutputs()).toLatin1();
        test::put(m_root + "many.dpc", line.repeated(10000));
        Editor editor;
        editor.load(m_root + "many.dpc");
        QCOMPARE(editor.table()->rowCount(), 10000);

        editor.addWriteTask("/t/last");
        QCOMPARE(editor.row(10000)[9], "/t/last");
        editor.selectRow(10000);
        editor.click("buttonMoveUp");
        QCOMPARE(editor.row(9999)[9], "/t/last");
        editor.selectRow(0);
        editor.click("buttonDelete");
        QCOMPARE(editor.table()->rowCount(), 10000);
        editor.selectRow(9998);
        QCOMPARE(editor.text("editDest"), "/t/last");

        editor.save(m_root + "saved.dpc");
        const QByteArray saved = test::contentOf(m_root + "_wait/saved.dpc");
        QCOMPARE(saved, ("# \n\n" + line.repeated(100)).left(maxConfigFile));
    }

    void tenThousandTasksInAHundredFiles()
    {
        Editor editor;
        const QByteArray lines = lineOf(taskWithOutputs()).toLatin1().repeated(10);
        QByteArray content;
        for (int i = 0; i < 100; ++i)
            content += lines + m_root.toLatin1() + "next.dpc\n";
        test::put(m_root + "many.dpc", content);
        editor.load(m_root + "many.dpc");
        QCOMPARE(editor.table()->rowCount(), 1100);
        editor.save(m_root + "saved.dpc");
        QCOMPARE(test::entriesOf(m_root + "_wait").size(), 101);
        QCOMPARE(test::contentOf(m_root + "_wait/saved57.dpc"),
                 lines + m_root.toLatin1() + "_wait/saved58.dpc\n");
    }

    void infoTextOfAMebibyte()
    {
        const QString info = QString(1023, 'i').append('\n').repeated(1024);
        Editor editor;
        editor.typeInfo(info);
        editor.addWriteTask("/t/a");
        editor.save(m_root + "info.dpc");
        const QByteArray header = "# " + info.toLatin1().replace("\n", "\n# ") + "\n\n";
        QCOMPARE(test::contentOf(m_root + "_wait/info.dpc"), header.left(maxConfigFile));
        Editor fresh;
        fresh.load(m_root + "_wait/info.dpc");
        QCOMPARE(fresh.table()->rowCount(), 0);
        QVERIFY(fresh.infoText().startsWith(QString(999 - 1, 'i') + '\n'));
    }

    void impatientClicksDuringASave()
    {
        Editor editor;
        editor.addWriteTask("/t/a");
        auto* button = editor.find<QPushButton>("buttonSave");
        // On a small screen a person would scroll to it.
        if (QScrollBar* down = scrollBar(editor.window, Qt::Vertical))
            down->setValue(down->maximum());
        const auto clickThroughTheSystem = [&] {
            // As the window system delivers it, which a modal dialog blocks.
            QWindow* window = editor.window.windowHandle();
            QTest::mouseClick(window, Qt::LeftButton, {},
                              button->mapTo(&editor.window, button->rect().center()));
        };
        DialogAnswers answers;
        answers.answerNext([&](QDialog& dialog) {
            for (int i = 0; i < 3; ++i)
                clickThroughTheSystem();
            chooseFile(m_root + "a.dpc")(dialog);
        });
        answers.answerNext([&](QDialog& dialog) {
            for (int i = 0; i < 3; ++i)
                clickThroughTheSystem();
            pressKey(dialog, Qt::Key_Return);
        });
        clickThroughTheSystem();
        QCoreApplication::processEvents();
        QCOMPARE(answers.answered(), 2);
        QCOMPARE(test::contentOf(m_root + "_wait/a.dpc").count('\n'), 3);
    }

    void numbersStayPlainInEveryLocale_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::newRow("decimal comma") << QLocale(QLocale::German, QLocale::Germany);
        QTest::newRow("Turkish") << QLocale(QLocale::Turkish, QLocale::Turkey);
        QTest::newRow("Arabic digits") << QLocale(QLocale::Arabic, QLocale::Egypt);
    }

    void numbersStayPlainInEveryLocale()
    {
        QFETCH(QLocale, locale);
        const QByteArray plain = composedFile("plain");
        QLocale::setDefault(locale);
        const QByteArray local = composedFile("local");
        {
            Editor editor;
            editor.load(m_root + "_wait/local.dpc");
            QCOMPARE(editor.row(0)[3], "102400");
            editor.selectRow(0);
            QCOMPARE(editor.find<QLabel>("labelChunkSizeMB")->text(), "1.000 MiB");
        }
        QLocale::setDefault(QLocale::c());
        QCOMPARE(local, plain);
    }

    void oddEnvironments_data()
    {
        QTest::addColumn<QByteArray>("variable");
        QTest::addColumn<QByteArray>("value");
        QTest::newRow("no HOME") << QByteArray("HOME") << QByteArray();
        QTest::newRow("no TMPDIR") << QByteArray("TMPDIR") << QByteArray();
        QTest::newRow("TMPDIR that is not there")
            << QByteArray("TMPDIR") << QByteArray("/not/there");
    }

    void oddEnvironments()
    {
        QFETCH(QByteArray, variable);
        QFETCH(QByteArray, value);
        const bool wasSet = qEnvironmentVariableIsSet(variable);
        const QByteArray before = qgetenv(variable);
        value.isNull() ? qunsetenv(variable) : qputenv(variable, value);
        {
            Editor editor;
            editor.click("buttonCreateNew");
            editor.save(m_root + "odd.dpc");
            Editor fresh;
            fresh.load(m_root + "_wait/odd.dpc");
            QCOMPARE(fresh.rows(), editor.rows());
        }
        wasSet ? qputenv(variable, before) : qunsetenv(variable);
    }

    void windowClosesWhileADialogIsOpen()
    {
        Editor editor;
        editor.addWriteTask("/t/a");
        DialogAnswers answers;
        answers.answerNext([&](QDialog& dialog) {
            editor.window.close();
            pressKey(dialog, Qt::Key_Escape);
        });
        editor.click("buttonLoad");
        QVERIFY(!editor.window.isVisible());
        QCOMPARE(editor.table()->rowCount(), 1);
    }

    void programEndsWhileADialogIsOpen()
    {
        Editor editor;
        editor.addWriteTask("/t/a");
        DialogAnswers answers;
        answers.answerNext([](QDialog& /*dialog*/) { QApplication::closeAllWindows(); });
        QTimer start;
        start.setSingleShot(true);
        connect(&start, &QTimer::timeout, [&] { editor.click("buttonLoad"); });
        start.start();
        QCOMPARE(QApplication::exec(), 0);
        QCOMPARE(answers.answered(), 1);
    }

private:
    /// A task that a load and a save leave as it is: all its paths are rooted.
    static TestTask taskWithOutputs()
    {
        TestTask task = taskTo("/t/a");
        task.logPath = path("/t/l");
        task.csvPath = path("/t/c");
        return task;
    }

    QByteArray composedFile(const QString& name)
    {
        Editor editor;
        editor.addWriteTask("/t/I\xC4\xB0i");
        editor.save(m_root + name + ".dpc");
        return test::contentOf(m_root + "_wait/" + name + ".dpc");
    }

    QScopedPointer<QTemporaryDir> m_folder;
    QString m_root;
};

QTEST_MAIN(TestStress)
#include "tst_stress.moc"
