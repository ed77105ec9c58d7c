#include "tests/app/editor.h"
#include "tests/support/files.h"
#include "tests/support/tasks.h"

#include <QTemporaryDir>

// The files that the dialogs of the window offer, where they start, and how long they wait.

namespace {

/// Notes the text of a message's first button at the moment at which the message appears: no second
/// of its countdown can have passed.
class FirstButtonTexts final : public QObject
{
public:
    FirstButtonTexts() { qApp->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        const auto* dialog = qobject_cast<QDialog*>(watched);
        const bool isMessage = dialog != nullptr && qobject_cast<QFileDialog*>(watched) == nullptr;
        if (event->type() == QEvent::Show && isMessage)
            m_texts += dialog->findChild<QPushButton*>()->text();
        return QObject::eventFilter(watched, event);
    }

    const QStringList& texts() const { return m_texts; }

private:
    QStringList m_texts;
};

void agree(QDialog& dialog)
{
    pressKey(dialog, Qt::Key_Return);
}

} // namespace

class TestFileDialogs : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder.reset(new QTemporaryDir);
        QVERIFY(m_folder->isValid());
        m_root = m_folder->path() + '/';
    }

    void eachOffersItsFiles_data()
    {
        QTest::addColumn<QByteArray>("button");
        QTest::addColumn<bool>("saves");
        QTest::addColumn<QString>("filter");
        const auto row = [](const char* button, bool saves, const char* filter) {
            QTest::newRow(button) << QByteArray(button) << saves << QString(filter);
        };
        row("buttonSave", true, "Text Files (*.dpc)");
        row("buttonLoad", false, "Text Files (*.dpc)");
        row("buttonBrowseSource", false, "All Files (*)");
        row("buttonBrowseDest", true, "All Files (*)");
        row("buttonBrowseLog", true, "Text Files (*.txt)");
        row("buttonBrowseExcel", true, "Csv Files (*.csv)");
    }

    void eachOffersItsFiles()
    {
        QFETCH(QByteArray, button);
        QFETCH(bool, saves);
        QFETCH(QString, filter);
        Editor editor;
        if (button == "buttonSave")
            editor.addWriteTask("/t/a");
        editor.choose("comboTestType", 0);
        DialogAnswers answers;
        answers.answerNext([&](QDialog& dialog) {
            const auto& files = dynamic_cast<QFileDialog&>(dialog);
            QCOMPARE(files.nameFilters(), QStringList{filter});
            QCOMPARE(files.acceptMode(), saves ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
            QCOMPARE(files.fileMode(), saves ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
            cancelDialog()(dialog);
        });
        editor.click(button);
    }

    void theyStartInTheFolderOfTheSavedSeries()
    {
        Editor editor;
        editor.addWriteTask("/t/a");
        editor.save(m_root + "mytest.dpc");
        compareStart(editor, m_folder->path());
    }

    void theyStartInTheFolderOfTheLoadedSeries()
    {
        test::put(m_root + "mytest.dpc", lineTo("/t/a").toLatin1());
        Editor editor;
        editor.load(m_root + "mytest.dpc");
        compareStart(editor, m_folder->path());
    }

    void theyStartInTheFolderOfWaitingFilesIfOneWasLoaded()
    {
        Editor saved;
        saved.addMarker();
        saved.addWriteTask("/t/a");
        saved.save(m_root + "mytest.dpc");
        Editor editor;
        editor.load(m_root + "_wait/mytest.dpc");
        compareStart(editor, m_root + "_wait");
    }

    void theyStartInTheFolderOfTheChosenFile()
    {
        Editor editor;
        editor.type("editDest", "");
        {
            DialogAnswers answers;
            answers.answerNext(chooseFile(m_root + "a.dat"));
            editor.click("buttonBrowseDest");
        }
        editor.addWriteTask("/t/a");
        compareStart(editor, m_folder->path());
    }

    void aDialogThatIsCancelledLeavesTheFolder()
    {
        Editor editor;
        editor.addWriteTask("/t/a");
        editor.save(m_root + "mytest.dpc");
        for (const char* button : {"buttonSave", "buttonBrowseDest"}) {
            DialogAnswers answers;
            answers.answerNext(cancelDialog());
            editor.click(button);
        }
        {
            DialogAnswers answers;
            answers.answerNext(agree);
            answers.answerNext(cancelDialog());
            editor.click("buttonLoad");
        }
        editor.addWriteTask("/t/a");
        compareStart(editor, m_folder->path());
    }

    void messagesWaitForTheirTime()
    {
        test::put(m_root + "bad.dpc", "Posx;\n");
        const FirstButtonTexts opened;
        Editor editor;
        editor.addWriteTask("/t/a");
        editor.save(m_root + "mytest.dpc");
        QCOMPARE(opened.texts(), QStringList{"Ok  (30)"});
        DialogAnswers answers;
        answers.answerNext(agree);
        answers.answerNext(chooseFile(m_root + "bad.dpc"));
        answers.answerNext(agree);
        editor.click("buttonLoad");
        // The question waits for ever.
        QCOMPARE(opened.texts(), (QStringList{"Ok  (30)", "Ok", "Ok  (45)"}));
    }

private:
    /// The folder of the dialog that a button opens.
    static QString startOf(Editor& editor, const char* button)
    {
        QString folder;
        DialogAnswers answers;
        answers.answerNext([&](QDialog& dialog) {
            folder = dynamic_cast<QFileDialog&>(dialog).directory().path();
            cancelDialog()(dialog);
        });
        editor.click(button);
        return folder;
    }

    /// Of every dialog, in a window that has tasks. Without the window's own memory each would
    /// start where any window chose a file last.
    static void compareStart(Editor& editor, const QString& folder)
    {
        visitAnotherFolder();
        editor.check("radioNewTest");
        editor.choose("comboTestType", 0);
        for (const char* edit : {"editSource", "editDest", "editLog", "editExcel"})
            editor.type(edit, "");
        for (const char* button : {"buttonBrowseSource", "buttonBrowseDest", "buttonBrowseLog",
                                   "buttonBrowseExcel", "buttonSave"})
            QCOMPARE(startOf(editor, button), folder);
        while (editor.table()->rowCount() > 0) {
            editor.selectRow(0);
            editor.click("buttonDelete");
        }
        QCOMPARE(startOf(editor, "buttonLoad"), folder);
    }

    static void visitAnotherFolder()
    {
        const QTemporaryDir other;
        Editor editor;
        editor.type("editDest", "");
        DialogAnswers answers;
        answers.answerNext(chooseFile(other.filePath("a.dat")));
        editor.click("buttonBrowseDest");
    }

    QScopedPointer<QTemporaryDir> m_folder;
    QString m_root;
};

QTEST_MAIN(TestFileDialogs)
#include "tst_filedialogs.moc"
