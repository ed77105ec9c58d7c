#include "tests/support/dialoganswer.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QtTest>

using namespace std::chrono_literals;

/// The helper of the other tests is itself worth testing: a test that it cannot fail says nothing.
class TestDialogAnswer : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void answersDialogsInOrder();
    void answersADialogThatAnAnswerOpens();
    void failsWhereAPlannedDialogNeverCame();
    void failsAndClosesADialogThatNobodyPlanned();
    void failsAndClosesADialogThatStaysOpen();
    void keepsQuietWhereNothingIsPlannedAndNothingComes();
    void typesANewNameToSave();
    void answersTheQuestionToOverwrite();
    void typesTheNameOfAFileToOpen();
    void cancelsAFileDialog();

private:
    DialogAnswers::Fail note()
    {
        return [this](const char* reason) { failures_ << QString::fromLatin1(reason); };
    }

    QStringList failures_;
};

void TestDialogAnswer::init()
{
    failures_.clear();
}

void TestDialogAnswer::answersDialogsInOrder()
{
    DialogAnswers answers;
    answers.answerNext([](QDialog& dialog) { dialog.done(7); });
    answers.answerNext(cancelDialog());
    QDialog first;
    QCOMPARE(first.exec(), 7);
    QDialog second;
    second.setResult(QDialog::Accepted);
    QCOMPARE(second.exec(), int(QDialog::Rejected));
    QCOMPARE(answers.answered(), 2);
}

void TestDialogAnswer::answersADialogThatAnAnswerOpens()
{
    DialogAnswers answers;
    int innerResult = 0;
    answers.answerNext([&](QDialog& dialog) {
        QDialog inner(&dialog);
        innerResult = inner.exec();
        dialog.done(8);
    });
    answers.answerNext([](QDialog& dialog) { dialog.done(9); });
    QDialog outer;
    QCOMPARE(outer.exec(), 8);
    QCOMPARE(innerResult, 9);
}

void TestDialogAnswer::failsWhereAPlannedDialogNeverCame()
{
    {
        DialogAnswers answers(5s, note());
        answers.answerNext(cancelDialog());
    }
    QCOMPARE(failures_, QStringList{"a dialog that the test waits for never came"});
}

void TestDialogAnswer::failsAndClosesADialogThatNobodyPlanned()
{
    {
        DialogAnswers answers(5s, note());
        QDialog dialog;
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
        QCOMPARE(answers.answered(), 0);
    }
    QCOMPARE(failures_, QStringList{"a dialog came that the test did not expect"});
}

void TestDialogAnswer::failsAndClosesADialogThatStaysOpen()
{
    {
        DialogAnswers answers(200ms, note());
        answers.answerNext([](QDialog& /*dialog*/) {});
        QDialog dialog;
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
    }
    QCOMPARE(failures_, QStringList{"a dialog stayed open after its answer"});
}

void TestDialogAnswer::keepsQuietWhereNothingIsPlannedAndNothingComes()
{
    {
        const DialogAnswers answers(5s, note());
        QTest::qWait(50);
    }
    QCOMPARE(failures_, QStringList());
}

void TestDialogAnswer::typesANewNameToSave()
{
    const QTemporaryDir folder;
    const QString typed = folder.filePath(QStringLiteral("pr\u00fcfung 1.dpc"));
    DialogAnswers answers;
    answers.answerNext(chooseFile(typed));
    QCOMPARE(QFileDialog::getSaveFileName(nullptr, "Save", folder.path()), typed);
}

void TestDialogAnswer::answersTheQuestionToOverwrite()
{
    const QTemporaryDir folder;
    const QString existing = folder.filePath("series.dpc");
    QFile file(existing);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();

    DialogAnswers answers;
    answers.answerNext(chooseFile(existing));
    answers.answerNext([](QDialog& dialog) {
        const auto* question = qobject_cast<QMessageBox*>(&dialog);
        QVERIFY(question != nullptr);
        clickButton(question->button(QMessageBox::Yes)->text())(dialog);
    });
    QCOMPARE(QFileDialog::getSaveFileName(nullptr, "Save", folder.path()), existing);
}

void TestDialogAnswer::typesTheNameOfAFileToOpen()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("series.dpc"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();

    DialogAnswers answers;
    answers.answerNext(chooseFile("series.dpc"));
    QCOMPARE(QFileDialog::getOpenFileName(nullptr, "Open", folder.path()), file.fileName());
}

void TestDialogAnswer::cancelsAFileDialog()
{
    DialogAnswers answers;
    answers.answerNext(cancelDialog());
    QCOMPARE(QFileDialog::getSaveFileName(nullptr, "Save", QDir::tempPath()), QString());
}

QTEST_MAIN(TestDialogAnswer)
#include "tst_dialoganswer.moc"
