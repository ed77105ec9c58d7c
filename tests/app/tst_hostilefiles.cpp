#include "configset/infotext.h"
#include "tests/app/editor.h"
#include "tests/app/messages.h"
#include "tests/support/files.h"

#include <QDir>
#include <QScreen>
#include <QTcpServer>
#include <QTemporaryDir>

// Files come from anywhere. Their content is shown as text and does nothing.

class TestHostileFiles : public QObject
{
    Q_OBJECT

private slots:
    void linesAreShownAsText_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("shown");
        const auto row = [](const char* name, const QByteArray& line) {
            QTest::newRow(name) << line << QString::fromLatin1(line);
        };
        row("image", "<img src=\"%1\">");
        row("bold", "<b>bold</b>");
        row("entity", "&lt;b&gt;");
        row("document", "<!DOCTYPE html><html><body>x</body></html>");
        row("xml", "<?xml version=\"1.0\"?><b>x</b>");
        row("link", "<a href=\"file:///etc/passwd\">x</a>");
        row("format string", "%1 %s %n %99999d");
        row("control characters", "a\x01\x02\x1b[31mb\x7f\x80\x9f");
        row("right-to-left override", "a\xe2\x80\xae"
                                      "fdp.b");
        row("tabs inside", "a\tb");
        row("mnemonic", "&Ok");
        row("shell", "$(touch /tmp/x); `touch /tmp/x`");
        QTest::newRow("zero byte") << QByteArray("<b>a\0<b>b", 9) << "<b>a";
        QTest::newRow("a megabyte") << QByteArray(1024 * 1024, 'x') << QString(1000, 'x');
    }

    void linesAreShownAsText()
    {
        QFETCH(QByteArray, line);
        QFETCH(QString, shown);
        const QString file = m_folder.path() + "/bad.dpc";
        test::put(file, line); // without a line end

        Editor editor;
        bool seen = false;
        {
            DialogAnswers answers;
            answers.answerNext(chooseFile(file));
            answers.answerNext([&](QDialog& dialog) {
                checkMessage(dialog, "Unable to load line\n" + shown + "\n from file " + file);
                seen = true;
                pressKey(dialog, Qt::Key_Return);
            });
            editor.click("buttonLoad");
        }
        QVERIFY(seen);
    }

    void namesAreShownAsText_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("markup") << "<b><img src=x>&lt;";
        QTest::newRow("format string") << "%1 %s %n";
        QTest::newRow("control characters") << "a\x01\x1b[31mb\x7f";
    }

    void namesAreShownAsText()
    {
        QFETCH(QString, name);
        const QString folder = m_folder.path() + '/' + name;
        QVERIFY(QDir().mkdir(folder));
        const QString file = folder + '/' + name + ".dpc";
        test::put(file, "bad\n");
        Editor editor;
        DialogAnswers answers;
        answers.answerNext(chooseFile(file));
        answers.answerNext([&](QDialog& dialog) {
            checkMessage(dialog, "Unable to load line\nbad\n from file " + file);
            pressKey(dialog, Qt::Key_Return);
        });
        editor.click("buttonLoad");
        QCOMPARE(answers.answered(), 2);
    }

    void noImageIsFetched()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        const QString file = m_folder.path() + "/net.dpc";
        test::put(file, QString("<img src=\"http://127.0.0.1:%1/x.png\">\n")
                            .arg(server.serverPort())
                            .toLatin1());
        Editor editor;
        DialogAnswers answers;
        answers.answerNext(chooseFile(file));
        answers.answerNext([&](QDialog& dialog) {
            QVERIFY(!server.waitForNewConnection(200));
            pressKey(dialog, Qt::Key_Return);
        });
        editor.click("buttonLoad");
    }

    void thousandsOfLineEndsAskNothing()
    {
        const QString file = m_folder.path() + "/blank.dpc";
        test::put(file, QByteArray(100000, '\n') + QByteArray(1000, '\r') + '\n');
        Editor editor;
        DialogAnswers answers;
        answers.answerNext(chooseFile(file));
        editor.click("buttonLoad");
        QCOMPARE(editor.table()->rowCount(), 0);
    }

    void commentsBecomePlainInfoText()
    {
        const QString file = m_folder.path() + "/info.dpc";
        test::put(file, "# <b>a</b>\n# &lt;%1\n");
        Editor editor;
        editor.load(file);
        QCOMPARE(editor.infoText(), "<b>a</b>\n&lt;%1");
    }

    void infoTextWithoutAWindowIsThatOfTheWindow()
    {
        const QString file = m_folder.path() + "/same.dpc";
        test::put(file, "#\n#   \n# first\xA0"
                        "line \n#\n# a\rb\xFC\n# \t.\x1B\x85\n#\n#\n");
        Editor editor;
        editor.load(file);
        InfoText info;
        TaskList tasks;
        loadSeries(seriesNameForLoading(file), tasks, silentListener(info));
        QVERIFY(info.text().startsWith("first line"));
        QCOMPARE(info.text(), editor.infoText());
    }

    void pathsBecomePlainCells()
    {
        const QString file = m_folder.path() + "/cells.dpc";
        test::put(file, "Posix;;;;;;;1;0;<img src=x>;/<b>d</b>;/l;/c;true;\n");
        Editor editor;
        editor.load(file);
        QCOMPARE(editor.row(0)[9], "/<b>d</b>");
        QCOMPARE(editor.row(0)[8], m_folder.path() + "/<img src=x>");
    }

private:
    /// The label shows just this, as a plain label would, and all of the dialog can be reached.
    static void checkMessage(QDialog& dialog, const QString& text)
    {
        QLabel* label = messageLabel(dialog);
        QVERIFY(label != nullptr);
        QCOMPARE(label->text(), text + '\n');
        QVERIFY(!Qt::mightBeRichText(label->text()));
        QLabel plain(label->text());
        plain.setTextFormat(Qt::PlainText);
        QCOMPARE(label->sizeHint(), plain.sizeHint());

        const QRect screen = dialog.screen()->availableGeometry();
        QVERIFY2(dialog.width() <= screen.width() && dialog.height() <= screen.height(),
                 qPrintable(QString("%1 x %2").arg(dialog.width()).arg(dialog.height())));
        const auto* button = dialog.findChild<QPushButton*>();
        const QRect place(button->mapTo(&dialog, QPoint(0, 0)), button->size());
        QVERIFY(dialog.rect().contains(place));
    }

    QTemporaryDir m_folder;
};

QTEST_MAIN(TestHostileFiles)
#include "tst_hostilefiles.moc"
