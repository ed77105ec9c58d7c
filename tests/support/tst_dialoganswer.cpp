#include "tests/support/dialoganswer.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>

using namespace std::chrono_literals;

/// The helper of the other tests is itself worth testing: a test that it cannot fail says nothing.
class TestDialogAnswer : public QObject
{
    Q_OBJECT

private slots:
    void answersDialogsInOrder();
    void answersADialogThatAnAnswerOpens();
    void waitsForTheDialogBelowOneThatCloses();
    void failsWhereAPlannedDialogNeverCame();
    void failsAndClosesADialogThatNobodyPlanned();
    void failsAndClosesADialogThatStaysOpen();
    void keepsQuietWhereNothingIsPlannedAndNothingComes();
    void typesANewNameToSave();
    void answersTheQuestionToOverwrite();
    void typesTheNameOfAFileToOpen();
    void cancelsAFileDialog();
};

namespace {

/// Writes failures down instead of letting the test fail.
DialogAnswers::Fail noteIn(QStringList& failures)
{
    return [&failures](const char* reason) { failures << QString::fromLatin1(reason); };
}

} // namespace

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

/// On a busy machine it is time to look again before the code under test goes on.
void TestDialogAnswer::waitsForTheDialogBelowOneThatCloses()
{
    DialogAnswers answers;
    answers.answerNext([](QDialog& dialog) {
        QDialog inner(&dialog);
        inner.exec();
        dialog.done(8);
    });
    answers.answerNext([](QDialog& dialog) { dialog.done(9); });
    QTimer work;
    QObject::connect(&work, &QTimer::timeout, &work, [] { QTest::qSleep(30); });
    work.start(0);
    QDialog outer;
    QCOMPARE(outer.exec(), 8);
}

void TestDialogAnswer::failsWhereAPlannedDialogNeverCame()
{
    QStringList failures;
    {
        DialogAnswers answers(5s, noteIn(failures));
        answers.answerNext(cancelDialog());
    }
    QCOMPARE(failures, QStringList{"a dialog that the test waits for never came"});
}

void TestDialogAnswer::failsAndClosesADialogThatNobodyPlanned()
{
    QStringList failures;
    {
        DialogAnswers answers(5s, noteIn(failures));
        QDialog dialog;
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
        QCOMPARE(answers.answered(), 0);
    }
    QCOMPARE(failures, QStringList{"a dialog came that the test did not expect"});
}

void TestDialogAnswer::failsAndClosesADialogThatStaysOpen()
{
    QStringList failures;
    {
        DialogAnswers answers(200ms, noteIn(failures));
        answers.answerNext([](QDialog& /*dialog*/) {});
        QDialog dialog;
        QCOMPARE(dialog.exec(), int(QDialog::Rejected));
    }
    QCOMPARE(failures, QStringList{"a dialog stayed open after its answer"});
}

void TestDialogAnswer::keepsQuietWhereNothingIsPlannedAndNothingComes()
{
    QStringList failures;
    {
        const DialogAnswers answers(5s, noteIn(failures));
        QTest::qWait(50);
    }
    QCOMPARE(failures, QStringList());
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
