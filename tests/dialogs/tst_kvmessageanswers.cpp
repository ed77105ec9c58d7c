#include "dialogs/kvmessagebox.h"

#include "tests/dialogs/messageparts.h"
#include "tests/support/dialoganswer.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QStyle>
#include <QTest>

#include <atomic>
#include <thread>

using Answer = DialogAnswers::Answer;
using ShowAndWait = decltype(&kvMessageInformation);
Q_DECLARE_METATYPE(Answer)
Q_DECLARE_METATYPE(ShowAndWait)

/// How the dialog is answered, and what its caller learns.
class TestKvMessageAnswers : public QObject
{
    Q_OBJECT

private slots:
    void everyEndingHasItsResultAndFlag_data();
    void everyEndingHasItsResultAndFlag();
    void everyEndingHasItsResultWithoutAFlag_data();
    void everyEndingHasItsResultWithoutAFlag();
    void enterAndSpacePressTheFirstButton_data();
    void enterAndSpacePressTheFirstButton();
    void lettersPressTheirButtons_data();
    void lettersPressTheirButtons();
    void equalLettersDoNothing();
    void ctrlCCopiesTheTextAsShown_data();
    void ctrlCCopiesTheTextAsShown();
    void theThreeFunctionsDifferInTheIconOnly_data();
    void theThreeFunctionsDifferInTheIconOnly();
    void monospaceTextIsNotCentred();
    void blocksTheWindowItBelongsTo();
    void staysModalAfterItsLoop();
    void returnsFalseInAnotherThread_data();
    void returnsFalseInAnotherThread();
};

namespace {

void addEndings()
{
    QTest::addColumn<int>("countdown");
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<bool>("result");
    QTest::addColumn<bool>("flag");
    const Answer pressO = [](QDialog& box) { pressKey(box, Qt::Key_O); };
    const Answer pressN = [](QDialog& box) { pressKey(box, Qt::Key_N); };
    const Answer close = [](QDialog& box) { box.close(); };
    const Answer wait = [](QDialog& /*box*/) {};
    QTest::newRow("first button") << -1 << clickButton("Ok") << true << false;
    QTest::newRow("second button") << -1 << clickButton("No") << false << false;
    QTest::newRow("first letter") << -1 << pressO << true << false;
    QTest::newRow("second letter") << -1 << pressN << false << false;
    QTest::newRow("escape") << -1 << cancelDialog() << false << true;
    QTest::newRow("window closed") << -1 << close << false << true;
    QTest::newRow("countdown") << 1 << wait << true << true;
}

void addFunctions()
{
    QTest::addColumn<ShowAndWait>("showAndWait");
    QTest::addColumn<bool>("hasIcon");
    QTest::newRow("information") << &kvMessageInformation << false;
    QTest::newRow("warning") << &kvMessageWarning << true;
    QTest::newRow("question") << &kvMessageQuestion << false;
}

} // namespace

void TestKvMessageAnswers::everyEndingHasItsResultAndFlag_data()
{
    addEndings();
    QTest::newRow("cancel button") << -1 << clickButton("cancel") << false << true;
}

void TestKvMessageAnswers::everyEndingHasItsResultAndFlag()
{
    QFETCH(const int, countdown);
    QFETCH(const Answer, answer);
    for (const bool before : {false, true}) {
        bool cancelled = before;
        DialogAnswers answers;
        answers.answerNext([&](QDialog& box) {
            QVERIFY(cancelled);
            answer(box);
        });
        QTEST(kvMessageQuestion(nullptr, "text", "Ok", countdown, "No", &cancelled, false),
              "result");
        QTEST(cancelled, "flag");
    }
}

void TestKvMessageAnswers::everyEndingHasItsResultWithoutAFlag_data()
{
    addEndings();
}

void TestKvMessageAnswers::everyEndingHasItsResultWithoutAFlag()
{
    QFETCH(const int, countdown);
    QFETCH(const Answer, answer);
    DialogAnswers answers;
    answers.answerNext(answer);
    QTEST(kvMessageQuestion(nullptr, "text", "Ok", countdown, "No", nullptr, false), "result");
}

void TestKvMessageAnswers::enterAndSpacePressTheFirstButton_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("enter") << Qt::Key_Return;
    QTest::newRow("space") << Qt::Key_Space;
}

void TestKvMessageAnswers::enterAndSpacePressTheFirstButton()
{
    QFETCH(const Qt::Key, key);
    DialogAnswers answers;
    answers.answerNext([&](QDialog& box) { pressKey(box, key); });
    QVERIFY(kvMessageQuestion(nullptr, "text", "Ok", -1, "No", nullptr, false));
}

void TestKvMessageAnswers::lettersPressTheirButtons_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<bool>("result");
    QTest::newRow("first") << "Ok"
                           << "Abort, do not load file" << Qt::Key_O << true;
    QTest::newRow("second") << "Ok"
                            << "Abort, do not load file" << Qt::Key_A << false;
    QTest::newRow("after an ampersand") << "&Yes"
                                        << "&No" << Qt::Key_Y << true;
    QTest::newRow("second after one") << "&Yes"
                                      << "&No" << Qt::Key_N << false;
    QTest::newRow("only button") << "Ok"
                                 << "" << Qt::Key_O << true;
    QTest::newRow("blank first button") << ""
                                        << "No" << Qt::Key_N << false;
}

void TestKvMessageAnswers::lettersPressTheirButtons()
{
    QFETCH(const QString, first);
    QFETCH(const QString, second);
    QFETCH(const Qt::Key, key);
    DialogAnswers answers;
    answers.answerNext([&](QDialog& box) {
        pressKey(box, Qt::Key_X);
        QVERIFY2(box.isVisible(), "any letter closes the dialog");
        pressKey(box, key);
        QVERIFY2(!box.isVisible(), "the letter does nothing");
    });
    QTEST(kvMessageQuestion(nullptr, "text", first, -1, second, nullptr, false), "result");
}

void TestKvMessageAnswers::equalLettersDoNothing()
{
    DialogAnswers answers;
    answers.answerNext([](QDialog& box) {
        pressKey(box, Qt::Key_O);
        QCoreApplication::processEvents();
        QVERIFY(box.isVisible());
        clickButton("Open")(box);
    });
    QVERIFY(!kvMessageQuestion(nullptr, "text", "Ok", -1, "Open", nullptr, false));
}

void TestKvMessageAnswers::ctrlCCopiesTheTextAsShown_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("copied");
    QStringList shortened{"1", "2", "3", "4", "[...SNIP (Message dialog size exceeded) ...]"};
    QString text;
    for (int line = 1; line <= 60; ++line) {
        text += QString::number(line) + (line < 60 ? "\n" : "");
        if (line > 60 - 41)
            shortened << QString::number(line);
    }
    QTest::newRow("whole") << "One line"
                           << "One line\n";
    QTest::newRow("shortened") << text << shortened.join('\n') + "\n ";
}

void TestKvMessageAnswers::ctrlCCopiesTheTextAsShown()
{
    QFETCH(const QString, text);
    QApplication::clipboard()->setText("something else");
    DialogAnswers answers;
    answers.answerNext([](QDialog& box) {
        pressKey(box, Qt::Key_C, Qt::ControlModifier);
        QVERIFY2(box.isVisible(), "copying is not an answer");
        pressKey(box, Qt::Key_Escape);
    });
    QVERIFY(!kvMessageInformation(nullptr, text, "Ok", -1, {}, nullptr, false));
    QTEST(QApplication::clipboard()->text(), "copied");
}

void TestKvMessageAnswers::theThreeFunctionsDifferInTheIconOnly_data()
{
    addFunctions();
}

void TestKvMessageAnswers::theThreeFunctionsDifferInTheIconOnly()
{
    QFETCH(const ShowAndWait, showAndWait);
    DialogAnswers answers;
    answers.answerNext([](QDialog& box) {
        const MessageParts parts(box);
        QTEST(parts.icon != nullptr, "hasIcon");
        if (parts.icon != nullptr) {
            const auto standard = box.style()->standardIcon(QStyle::SP_MessageBoxWarning);
            const auto shown = parts.icon->pixmap(Qt::ReturnByValue);
            QCOMPARE(shown.toImage(), standard.pixmap(shown.size()).toImage());
        }
        QCOMPARE(parts.text->text(), QString("text\n"));
        QVERIFY(parts.text->alignment() == Qt::AlignCenter);
        QCOMPARE(parts.text->font(), QApplication::font());
        QCOMPARE(parts.button1->text(), QString("Ok  (30)"));
        QCOMPARE(parts.button2->text(), QString("No"));
        QVERIFY(parts.cancel == nullptr);
        parts.button1->click();
    });
    QVERIFY(showAndWait(nullptr, "text", "Ok", 30, "No", nullptr, false));
}

void TestKvMessageAnswers::monospaceTextIsNotCentred()
{
    DialogAnswers answers;
    answers.answerNext([](QDialog& box) {
        const QLabel* text = MessageParts(box).text;
        QCOMPARE(text->font().family(), QString("Courier"));
        QCOMPARE(text->alignment() & Qt::AlignHorizontal_Mask, Qt::AlignLeft);
        box.close();
    });
    QVERIFY(!kvMessageWarning(nullptr, "text", "Ok", -1, {}, nullptr, true));
}

void TestKvMessageAnswers::blocksTheWindowItBelongsTo()
{
    QWidget window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    DialogAnswers answers;
    answers.answerNext([&](QDialog& box) {
        QCOMPARE(box.parentWidget(), &window);
        QCOMPARE(box.windowModality(), Qt::ApplicationModal);
        box.close();
    });
    QVERIFY(!kvMessageInformation(&window, "text", "Ok", -1, {}, nullptr, false));
    QVERIFY2(window.findChildren<QDialog*>().isEmpty(), "the dialog outlives its question");
}

void TestKvMessageAnswers::staysModalAfterItsLoop()
{
    DialogAnswers answers;
    answers.answerNext([](QDialog& box) { box.close(); });
    const kvMessageBox box(nullptr, kvMessageIcon::Question, "text", "Ok", -1, {}, nullptr, true,
                           false, false);
    QVERIFY(box.isModal());
}

void TestKvMessageAnswers::returnsFalseInAnotherThread_data()
{
    addFunctions();
}

void TestKvMessageAnswers::returnsFalseInAnotherThread()
{
    QFETCH(const ShowAndWait, showAndWait);
    const DialogAnswers noDialog;
    for (const bool before : {false, true}) {
        bool cancelled = before;
        bool answer = true;
        std::atomic<bool> returned = false;
        std::thread other([&] {
            answer = showAndWait(nullptr, "text", "Ok", 1, "No", &cancelled, false);
            returned = true;
        });
        QTRY_VERIFY(returned);
        other.join();
        QVERIFY(!answer);
        QCOMPARE(cancelled, before);
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
    }
}

QTEST_MAIN(TestKvMessageAnswers)
#include "tst_kvmessageanswers.moc"
