#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QCoreApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QPointer>
#include <QQueue>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <functional>
#include <utility>

/// Presses @p key in @p window, as the system would deliver it: focus, shortcuts and default
/// buttons then do their part.
inline void pressKey(const QWidget& window, Qt::Key key, Qt::KeyboardModifiers modifiers = {})
{
    QTest::keyClick(window.windowHandle(), key, modifiers);
}

/// Answers the modal dialogs that the code under test opens, from outside, as a person would.
///
/// Plan the answers, in the order in which their dialogs will come, then call that code:
///
///     DialogAnswers answers;
///     answers.answerNext([](QDialog& dialog) { pressKey(dialog, Qt::Key_Escape); });
///     window.openSomething();
///
/// The test fails, and never hangs, when a dialog comes that no answer was planned for, when one
/// is not ready for an answer or does not close after it within the patience, and when a planned
/// answer was not asked for until the end of the object's life. Without any plan it thus says that
/// no dialog may come. A dialog that is on top again after another one closed asks once more.
class DialogAnswers
{
public:
    using Answer = std::function<void(QDialog&)>;
    using Fail = std::function<void(const char* reason)>;

    /// @param patience how long a dialog may take to be ready, and to close once it is answered
    /// @param fail     what to do about a failure; by default the running test fails
    explicit DialogAnswers(std::chrono::milliseconds patience = std::chrono::minutes(1),
                           Fail fail = failTest)
        : patience_(patience)
        , fail_(std::move(fail))
    {
        // A dialog of the desktop's own could not be reached from here.
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        QObject::connect(&poll_, &QTimer::timeout, &poll_, [this] { look(); });
        poll_.start(std::chrono::milliseconds(10));
    }

    ~DialogAnswers()
    {
        if (!planned_.isEmpty())
            fail_("a dialog that the test waits for never came");
    }

    Q_DISABLE_COPY_MOVE(DialogAnswers)

    /// Plans the answer to the next dialog that has none yet.
    void answerNext(Answer answer) { planned_.enqueue(std::move(answer)); }

    /// How many dialogs were answered so far.
    int answered() const { return answered_; }

private:
    static void failTest(const char* reason) { QTest::qFail(reason, __FILE__, __LINE__); }

    // One turn: the topmost dialog is either new, or waiting to be ready, or already answered.
    void look()
    {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog == nullptr)
            return;
        if (dialog != current_) {
            current_ = dialog;
            isAnswered_ = false;
            waiting_.start();
            // It may only be on top until the code that opened the last one goes on.
            return;
        }
        if (planned_.isEmpty() && !isAnswered_)
            giveUp("a dialog came that the test did not expect");
        else if (waiting_.hasExpired(patience_.count()))
            giveUp(isAnswered_ ? "a dialog stayed open after its answer"
                               : "a dialog was never ready to be answered");
        else if (!isAnswered_ && isReady(*dialog))
            answer();
    }

    // Without a window manager no window becomes active unless it asks for it.
    static bool isReady(QDialog& dialog)
    {
        if (dialog.windowHandle() == nullptr || !dialog.windowHandle()->isExposed())
            return false;
        if (dialog.isActiveWindow())
            return true;
        dialog.activateWindow();
        return false;
    }

    // Later, from the dialog's own event loop: the answer may itself open another dialog, and this
    // object's timer has to go on looking then.
    void answer()
    {
        isAnswered_ = true;
        ++answered_;
        waiting_.start();
        QTimer::singleShot(0, current_.data(),
                           [dialog = current_, answer = planned_.dequeue()] { answer(*dialog); });
    }

    void giveUp(const char* reason)
    {
        fail_(reason);
        // Whatever the dialog made of it is marked as answered, so that one failure stays one.
        isAnswered_ = true;
        waiting_.start();
        current_->done(QDialog::Rejected);
    }

    std::chrono::milliseconds patience_;
    Fail fail_;
    QQueue<Answer> planned_;
    int answered_ = 0;
    QPointer<QDialog> current_;
    bool isAnswered_ = false;
    QElapsedTimer waiting_;
    QTimer poll_;
};

/// An answer that types @p name into a file dialog, as whole path or relative to the folder that
/// it shows, and presses Enter. @p beforeEnter may look at the dialog in between.
inline DialogAnswers::Answer chooseFile(const QString& name,
                                        const DialogAnswers::Answer& beforeEnter = {})
{
    return [name, beforeEnter](QDialog& dialog) {
        QVERIFY2(qobject_cast<QFileDialog*>(&dialog) != nullptr, "not a file dialog");
        auto* edit = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        QVERIFY(edit != nullptr);
        edit->selectAll();
        // As an input method does it: keyClicks() has no keys for letters like umlauts.
        QTest::sendKeyEvent(QTest::Click, edit, Qt::Key_unknown, name, Qt::NoModifier);
        QCOMPARE(edit->text(), name);
        if (beforeEnter)
            beforeEnter(dialog);
        QTest::keyClick(edit, Qt::Key_Return);
    };
}

/// An answer that clicks the button with exactly this text, "&" included.
inline DialogAnswers::Answer clickButton(const QString& text)
{
    return [text](QDialog& dialog) {
        const auto buttons = dialog.findChildren<QAbstractButton*>();
        const auto button = std::find_if(buttons.begin(), buttons.end(),
                                         [&](auto* each) { return each->text() == text; });
        QVERIFY2(button != buttons.end(), qPrintable("the dialog has no button " + text));
        QTest::mouseClick(static_cast<QWidget*>(*button), Qt::LeftButton);
    };
}

/// An answer that leaves the dialog with Escape.
inline DialogAnswers::Answer cancelDialog()
{
    return [](QDialog& dialog) { pressKey(dialog, Qt::Key_Escape); };
}
