#include "dialogs/kvmessagebox.h"

#include "dialogs/messagetext.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpacerItem>
#include <QStyle>
#include <QThread>
#include <QVBoxLayout>

namespace {

// The number of Qt::AlignCenter, but a stretch factor: text and hint share spare height equally.
constexpr int labelStretch = 132;

bool showAndWait(kvMessageIcon icon, QWidget* parent, const QString& text,
                 const QString& button1Text, std::int32_t countdown, const QString& button2Text,
                 bool* cancelled, bool monospace)
{
    const QCoreApplication* application = QCoreApplication::instance();
    if (application == nullptr || QThread::currentThread() != application->thread())
        return false;

    const bool modal = true;
    const kvMessageBox box(parent, icon, text, button1Text, countdown, button2Text, cancelled,
                           modal, !monospace, monospace);
    return box.result() == QDialog::Accepted;
}

QPixmap iconPicture(kvMessageIcon icon, const QWidget& widget)
{
    QStyle::StandardPixmap picture{};
    switch (icon) {
    case kvMessageIcon::Warning:
        picture = QStyle::SP_MessageBoxWarning;
        break;
    case kvMessageIcon::Critical:
        picture = QStyle::SP_MessageBoxCritical;
        break;
    default:
        return {};
    }
    const QStyle* style = widget.style();
    const int size = style->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, &widget);
    return style->standardIcon(picture, nullptr, &widget).pixmap(size, size);
}

QFont monospaceFont()
{
    QFont font;
    const QStringList installed = QFontDatabase().families();
    for (const auto& family : {QStringLiteral("Ubuntu Mono"), QStringLiteral("Monospace"),
                               QStringLiteral("DejaVu Sans Mono")}) {
        if (installed.contains(family)) {
            font.setFamily(family);
            break;
        }
    }
    // Overrules the choice above, on purpose: the face does not depend on what else is installed.
    font.setFamily(QStringLiteral("Courier"));
    return font;
}

} // namespace

bool kvMessageInformation(QWidget* parent, const QString& text, const QString& button1Text,
                          std::int32_t countdown, const QString& button2Text, bool* cancelled,
                          bool monospace)
{
    return showAndWait(kvMessageIcon::Information, parent, text, button1Text, countdown,
                       button2Text, cancelled, monospace);
}

bool kvMessageWarning(QWidget* parent, const QString& text, const QString& button1Text,
                      std::int32_t countdown, const QString& button2Text, bool* cancelled,
                      bool monospace)
{
    return showAndWait(kvMessageIcon::Warning, parent, text, button1Text, countdown, button2Text,
                       cancelled, monospace);
}

bool kvMessageQuestion(QWidget* parent, const QString& text, const QString& button1Text,
                       std::int32_t countdown, const QString& button2Text, bool* cancelled,
                       bool monospace)
{
    return showAndWait(kvMessageIcon::Question, parent, text, button1Text, countdown, button2Text,
                       cancelled, monospace);
}

kvMessageBox::kvMessageBox(QWidget* parent, kvMessageIcon icon, const QString& text,
                           const QString& firstButtonText, std::int32_t countdownSeconds,
                           const QString& secondButtonText, bool* cancelFlag, const bool& modal,
                           bool centred, bool monospace)
    : QDialog(parent, Qt::MSWindowsFixedSizeDialogHint)
    , button1Text(firstButtonText)
    , cancelled(cancelFlag)
    , countdown(countdownSeconds)
{
    setMinimumSize(256, 128);
    setMaximumSize(1700, 1000);

    auto* mainLayout = new QHBoxLayout(this);
    if (icon != kvMessageIcon::Information && icon != kvMessageIcon::Question)
        addIcon(icon, *mainLayout);

    auto* column = new QVBoxLayout;
    column->setSpacing(7);
    column->setContentsMargins(0, 0, 0, 0);
    addText(text, centred, monospace, *column);
    addAnswerButtons(secondButtonText, *column);
    if (cancelled != nullptr)
        addCancelButton(*column);
    addHint(*column);
    mainLayout->addLayout(column);
    mainLayout->setSpacing(10);
    mainLayout->setContentsMargins(10, 20, 25, 0);

    startCountdown();
    addActions(secondButtonText);
    setModal(modal);
    if (modal)
        QDialog::exec();
}

kvMessageBox::~kvMessageBox() = default;

void kvMessageBox::copyToClipBoard()
{
    QApplication::clipboard()->setText(textLabel->text());
}

void kvMessageBox::Button1Pressed()
{
    if (cancelled != nullptr)
        *cancelled = false;
    accept();
}

void kvMessageBox::Button2Pressed()
{
    if (cancelled != nullptr)
        *cancelled = false;
    reject();
}

void kvMessageBox::timerEvent(QTimerEvent* /*event*/)
{
    --countdown;
    showCountdown();
    // Not Button1Pressed(): nobody answered, and a cancel flag stays true.
    if (countdown <= 0)
        accept();
}

void kvMessageBox::addIcon(kvMessageIcon icon, QBoxLayout& layout)
{
    iconLabel = new QLabel(this);
    iconLabel->setPixmap(iconPicture(icon, *this));
    layout.addWidget(iconLabel, 0, Qt::AlignTop);
}

void kvMessageBox::addText(const QString& text, bool centred, bool monospace, QBoxLayout& layout)
{
    textLabel = new QLabel(this);
    textLabel->setText(shortenMessage(text));
    // The dialog has no title: this is what a screen reader says when it opens.
    setAccessibleName(textLabel->text().trimmed());
    if (centred)
        textLabel->setAlignment(Qt::AlignCenter);
    if (monospace)
        textLabel->setFont(monospaceFont());
    layout.addWidget(textLabel, labelStretch);
}

void kvMessageBox::addAnswerButtons(const QString& secondButtonText, QBoxLayout& layout)
{
    auto* row = new QHBoxLayout;
    row->setSpacing(20);
    row->setContentsMargins(0, 0, 0, 0);

    spacerLeft = new QSpacerItem(5, 5, QSizePolicy::Expanding, QSizePolicy::Minimum);
    row->addItem(spacerLeft);

    button1 = new QPushButton(button1Text, this);
    connect(button1, &QPushButton::clicked, this, &kvMessageBox::Button1Pressed);
    button1->setFocus();
    button1->setMinimumSize(130, 20);
    row->addWidget(button1, 0, Qt::AlignCenter);

    if (!secondButtonText.isEmpty()) {
        button2 = new QPushButton(secondButtonText, this);
        button2->setMinimumSize(130, 20);
        connect(button2, &QPushButton::clicked, this, &kvMessageBox::Button2Pressed);
        row->addWidget(button2, 0, Qt::AlignCenter);
    }

    spacerRight = new QSpacerItem(5, 5, QSizePolicy::Expanding, QSizePolicy::Minimum);
    row->addItem(spacerRight);
    layout.addLayout(row);
}

void kvMessageBox::addCancelButton(QBoxLayout& layout)
{
    // True until an answer button says otherwise, so that every other ending counts as cancelled.
    *cancelled = true;
    cancelButton = new QPushButton(QStringLiteral("cancel"), this);
    cancelButton->setMaximumSize(50, 16);
    connect(cancelButton, &QPushButton::clicked, this, &kvMessageBox::reject);
    layout.addWidget(cancelButton, 0, Qt::AlignCenter);
}

void kvMessageBox::addHint(QBoxLayout& layout)
{
    hintLabel = new QLabel(
        QStringLiteral("<font color=\"#666666\">Copy message text with CTRL-C</font>"), this);
    hintLabel->setAlignment(Qt::AlignCenter);
    layout.addWidget(hintLabel, labelStretch);
}

void kvMessageBox::startCountdown()
{
    if (countdown < 1)
        return;
    startTimer(1000, Qt::CoarseTimer);
    showCountdown();
}

void kvMessageBox::showCountdown()
{
    // The number alone goes through arg(): a button's text may hold a "%1" of its own.
    button1->setText(button1Text + QStringLiteral("  (%1)").arg(countdown));
}

void kvMessageBox::addActions(const QString& secondButtonText)
{
    const ShortcutKeys keys = shortcutKeys(button1Text, secondButtonText);
    if (!keys.first.isEmpty()) {
        button1Action = new QAction(this);
        button1Action->setShortcut(QKeySequence(keys.first));
        connect(button1Action, &QAction::triggered, this, &kvMessageBox::Button1Pressed);
        addAction(button1Action);
    }
    if (!keys.second.isEmpty()) {
        button2Action = new QAction(this);
        button2Action->setShortcut(QKeySequence(keys.second));
        connect(button2Action, &QAction::triggered, this, &kvMessageBox::Button2Pressed);
        addAction(button2Action);
    }
    copyAction = new QAction(this);
    copyAction->setShortcut(QKeySequence(tr("Ctrl+C")));
    connect(copyAction, &QAction::triggered, this, &kvMessageBox::copyToClipBoard);
    addAction(copyAction);
}
