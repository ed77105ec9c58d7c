#include "app/pathfield.h"
#include "tests/app/editor.h"

#include <QClipboard>
#include <QMimeData>

// Every way in which a person enters a text into a path field.

namespace {

const QVector<const char*>& pathFields()
{
    static const QVector<const char*> names{"editSource", "editDest", "editLog", "editExcel"};
    return names;
}

/// Drops data on the middle of a field, as the drag of another program does.
void drop(QLineEdit& edit, const QMimeData& data, Qt::DropActions actions = Qt::CopyAction)
{
    const QPoint place = edit.rect().center();
    QDragEnterEvent enter(place, actions, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&edit, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent event(place, actions, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&edit, &event);
    QVERIFY(event.isAccepted());
    if (data.hasUrls())
        QCOMPARE(event.dropAction(), Qt::CopyAction);
}

void dropFiles(QLineEdit& edit, const QList<QUrl>& urls)
{
    QMimeData data;
    data.setUrls(urls);
    drop(edit, data, Qt::MoveAction | Qt::CopyAction);
}

void paste(QLineEdit& edit, const QString& text)
{
    QGuiApplication::clipboard()->setText(text);
    QTest::keyClick(&edit, Qt::Key_V, Qt::ControlModifier);
}

} // namespace

class TestPathField : public QObject
{
    Q_OBJECT

private slots:
    void controlCharactersGoAtTheEndsAndAreBlanksInside_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("cleaned");
        QTest::newRow("line end behind") << "/mnt/src.dat\n"
                                         << "/mnt/src.dat";
        QTest::newRow("both ends") << "\r\n\t/mnt/a\x7F\n"
                                   << "/mnt/a";
        QTest::newRow("inside") << "/mnt/a\n/mnt/b"
                                << "/mnt/a /mnt/b";
        QTest::newRow("each one") << "a\x01\x1F\x7F"
                                     "b"
                                  << "a   b";
        QTest::newRow("zero") << QString("a") + QChar(0) + "b"
                              << "a b";
        QTest::newRow("nothing else") << "\n\r\x7F"
                                      << "";
        QTest::newRow("blanks stay") << " a \n"
                                     << " a ";
        QTest::newRow("C1 stays") << QString("a") + QChar(0x85) + QChar(0x80)
                                  << QString("a") + QChar(0x85) + QChar(0x80);
        QTest::newRow("letters") << QString::fromUtf8("/für/€") << QString::fromUtf8("/für/€");
    }

    void controlCharactersGoAtTheEndsAndAreBlanksInside()
    {
        QFETCH(const QString, text);
        QTEST(withoutControlCharacters(text), "cleaned");
        Editor editor;
        for (const char* name : pathFields()) {
            auto* edit = editor.find<QLineEdit>(name);
            edit->setEnabled(true);
            const auto start = [edit] {
                edit->setText("<>");
                edit->setCursorPosition(1);
            };
            QFETCH(const QString, cleaned);
            const QString expected = '<' + cleaned + '>';
            start();
            paste(*edit, text);
            QCOMPARE(edit->text(), expected);
            QCOMPARE(edit->cursorPosition(), 1 + cleaned.size());
            start();
            edit->paste(); // as the menu does
            QCOMPARE(edit->text(), expected);
            start();
            QInputMethodEvent input;
            input.setCommitString(text);
            QCoreApplication::sendEvent(edit, &input);
            QCOMPARE(edit->text(), expected);
            // Keys with a text of several characters, as some input methods send them.
            start();
            QTest::sendKeyEvent(QTest::Click, edit, Qt::Key_unknown, 'x' + text, Qt::NoModifier);
            QCOMPARE(edit->text(), "<" + withoutControlCharacters('x' + text) + ">");
            edit->setText("");
            QMimeData data;
            data.setText(text);
            drop(*edit, data);
            QCOMPARE(edit->text(), cleaned);
        }
    }

    void pasteReplacesTheSelection()
    {
        const Editor editor;
        auto* edit = editor.find<QLineEdit>("editDest");
        edit->setText("/old");
        edit->selectAll();
        paste(*edit, "/old\n");
        QCOMPARE(edit->text(), "/old");
        edit->selectAll();
        paste(*edit, "\n/new\n");
        QCOMPARE(edit->text(), "/new");
    }

    void undoLeadsBackToTheTextBeforeThePaste()
    {
        const Editor editor;
        auto* edit = editor.find<QLineEdit>("editDest");
        edit->setText("/old");
        paste(*edit, "/a\n/b");
        QCOMPARE(edit->text(), "/old/a /b");
        edit->undo();
        QCOMPARE(edit->text(), "/old");
        edit->redo();
        QCOMPARE(edit->text(), "/old/a /b");
        QTest::keyClicks(edit, "c");
        QCOMPARE(edit->text(), "/old/a /bc");
    }

    // A text that was loaded may hold anything; only the file decides about that.
    void whatWasThereStays()
    {
        const Editor editor;
        auto* edit = editor.find<QLineEdit>("editDest");
        edit->setText("/a\nb\t");
        QCOMPARE(edit->text(), "/a\nb\t");
        edit->setCursorPosition(2);
        paste(*edit, "x\n");
        QCOMPARE(edit->text(), "/ax\nb\t");
        QTest::keyClick(edit, Qt::Key_End);
        QTest::keyClicks(edit, "y");
        QCOMPARE(edit->text(), "/ax\nb\ty");
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Delete);
        QCOMPARE(edit->text(), "");
        edit->undo();
        QCOMPARE(edit->text(), "/ax\nb\ty");
    }

    void otherTextFieldsAreNoPaths()
    {
        const Editor editor;
        auto* edit = editor.find<QPlainTextEdit>("textInfo");
        QGuiApplication::clipboard()->setText("two\nlines\n");
        edit->paste();
        QCOMPARE(edit->toPlainText(), "two\nlines\n");
    }

    void fileThatIsDroppedReplacesTheText()
    {
        const Editor editor;
        for (const char* name : {"editSource", "editDest", "editExcel"}) {
            auto* edit = editor.find<QLineEdit>(name);
            edit->setText("/old text");
            dropFiles(*edit, {QUrl::fromLocalFile(QString::fromUtf8("/mnt/nas/für mich.dat")),
                              QUrl::fromLocalFile("/mnt/nas/second.dat")});
            QCOMPARE(edit->text(), QString::fromUtf8("/mnt/nas/für mich.dat"));
            edit->undo();
            QCOMPARE(edit->text(), "/old text");
            dropFiles(*edit, {QUrl::fromLocalFile("/mnt/a\nb")});
            QCOMPARE(edit->text(), "/mnt/a b");
        }
    }

    void logFileThatIsDroppedGetsTheHost()
    {
        const Editor editor;
        auto* edit = editor.find<QLineEdit>("editLog");
        dropFiles(*edit, {QUrl::fromLocalFile("/mnt/nas/run.txt")});
        QCOMPARE(edit->text(), "/mnt/nas/run_[host].txt");
        dropFiles(*edit, {QUrl::fromLocalFile("/mnt/nas/[HOST]-run.log")});
        QCOMPARE(edit->text(), "/mnt/nas/[HOST]-run.log");
    }

    void addressThatIsNoLocalFileIsText()
    {
        const Editor editor;
        auto* edit = editor.find<QLineEdit>("editDest");
        edit->setText("");
        QMimeData data;
        data.setUrls({QUrl("http://a.example/x")});
        data.setText("http://a.example/x\r\n");
        drop(*edit, data);
        QCOMPARE(edit->text(), "http://a.example/x");
    }

    void droppedFileLeavesTheFolderOfTheDialogs()
    {
        Editor editor;
        dropFiles(*editor.find<QLineEdit>("editDest"), {QUrl::fromLocalFile("/usr/share/x")});
        editor.find<QLineEdit>("editSource")->clear();
        DialogAnswers answers;
        QString shown;
        answers.answerNext([&shown](QDialog& dialog) {
            shown = qobject_cast<QFileDialog*>(&dialog)->directory().path();
            pressKey(dialog, Qt::Key_Escape);
        });
        editor.click("buttonBrowseSource");
        QCOMPARE(shown, QDir::currentPath());
    }
};

QTEST_MAIN(TestPathField)
#include "tst_pathfield.moc"
