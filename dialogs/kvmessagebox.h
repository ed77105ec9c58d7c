#pragma once

#include <QDialog>
#include <QString>

#include <cstdint>

class QAction;
class QBoxLayout;
class QLabel;
class QPushButton;
class QSpacerItem;

/// The kind of a message. Only Warning and Critical show their picture; a value that is none of
/// these leaves an empty area in its place.
enum class kvMessageIcon : std::int32_t
{
    Information = 1,
    Warning = 2,
    Critical = 3,
    Question = 4
};

/// Shows an information and waits until it is closed.
///
/// @param parent      the window that the dialog belongs to and blocks; may be null
/// @param text        the message; shortened as shortenMessage() says if it has too many lines,
///                    and rich text if Qt takes it for that
/// @param button1Text the first button's text; its first letter presses it, see shortcutKeys()
/// @param countdown   seconds after which the first button counts as pressed; below 1: never
/// @param button2Text the second button's text; empty: no second button
/// @param cancelled   null: no "cancel" button. Else the dialog has one, and the flag is false
///                    after an answer button and true after every other ending, the countdown
///                    among them
/// @param monospace   true: text in a monospace font, to the left; false: centred
/// @return true exactly when the first button, its letter or the countdown closed the dialog.
///         False too, with nothing shown and the flag untouched, if the application object
///         does not exist or belongs to another thread.
bool kvMessageInformation(QWidget* parent, const QString& text, const QString& button1Text,
                          std::int32_t countdown, const QString& button2Text, bool* cancelled,
                          bool monospace);

/// As kvMessageInformation(), with the warning picture.
bool kvMessageWarning(QWidget* parent, const QString& text, const QString& button1Text,
                      std::int32_t countdown, const QString& button2Text, bool* cancelled,
                      bool monospace);

/// As kvMessageInformation(), for a question.
bool kvMessageQuestion(QWidget* parent, const QString& text, const QString& button1Text,
                       std::int32_t countdown, const QString& button2Text, bool* cancelled,
                       bool monospace);

/// The dialog behind the three functions above. GUI thread only. Ends as Accepted through the
/// first button, its letter or the countdown, else as Rejected.
class kvMessageBox : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(kvMessageBox)

public:
    /// @param modal   true: the constructor shows the dialog itself, and returns when it is closed,
    ///                with result() telling how
    /// @param centred true: the text stands in the centre
    /// The other parameters are those of kvMessageInformation().
    kvMessageBox(QWidget* parent, kvMessageIcon icon, const QString& text,
                 const QString& firstButtonText, std::int32_t countdownSeconds,
                 const QString& secondButtonText, bool* cancelFlag, const bool& modal, bool centred,
                 bool monospace);
    ~kvMessageBox() override;

protected:
    /// One second of the countdown has passed. Every timer event counts, whichever timer sends it,
    /// and the timer runs on: nobody sees it any more once the dialog is closed.
    void timerEvent(QTimerEvent* event) override;

public slots:
    /// Puts the text as it is shown on the clipboard: shortened, and with its last line feed.
    void copyToClipBoard();
    /// Accepts, and clears the cancel flag.
    void Button1Pressed();
    /// Rejects, and clears the cancel flag.
    void Button2Pressed();

private:
    void addIcon(kvMessageIcon icon, QBoxLayout& layout);
    void addText(const QString& text, bool centred, bool monospace, QBoxLayout& layout);
    void addAnswerButtons(const QString& secondButtonText, QBoxLayout& layout);
    void addCancelButton(QBoxLayout& layout);
    void addHint(QBoxLayout& layout);
    void startCountdown();
    void showCountdown();
    void addActions(const QString& secondButtonText);

    QPushButton* button1 = nullptr;
    QPushButton* button2 = nullptr;      ///< null: no second text was given
    QPushButton* cancelButton = nullptr; ///< null: no cancel flag was given
    QSpacerItem* spacerLeft = nullptr;
    QSpacerItem* spacerRight = nullptr;
    QString button1Text;         ///< as given, without the countdown
    QLabel* iconLabel = nullptr; ///< null for Information and Question
    QLabel* textLabel = nullptr;
    QLabel* hintLabel = nullptr;
    QAction* copyAction = nullptr;
    QAction* button1Action = nullptr; ///< null: the button has no letter
    QAction* button2Action = nullptr; ///< null: the button has no letter
    bool* cancelled;                  ///< the caller's flag, or null
    std::int32_t countdown;           ///< seconds left
};
