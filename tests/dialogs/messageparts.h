#ifndef TESTS_DIALOGS_MESSAGEPARTS_H
#define TESTS_DIALOGS_MESSAGEPARTS_H

#include "dialogs/kvmessagebox.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

#include <memory>

/// The arguments of a message dialog; a test names only those that it is about.
struct MessageSettings
{
    QWidget* parent = nullptr;
    kvMessageIcon icon = kvMessageIcon::Information;
    QString text = QStringLiteral("text");
    QString first = QStringLiteral("Ok");
    std::int32_t countdown = -1;
    QString second;
    bool* cancelled = nullptr;
    bool centred = true;
    bool monospace = false;
};

/// Builds the dialog without showing it.
inline std::unique_ptr<kvMessageBox> makeMessage(const MessageSettings& settings)
{
    return std::make_unique<kvMessageBox>(
        settings.parent, settings.icon, settings.text, settings.first, settings.countdown,
        settings.second, settings.cancelled, false, settings.centred, settings.monospace);
}

/// A message dialog's parts, found by their places in its layouts; null for a missing part.
struct MessageParts
{
    explicit MessageParts(const QDialog& box)
        : main(qobject_cast<QHBoxLayout*>(box.layout()))
        , column(qobject_cast<QVBoxLayout*>(main->itemAt(main->count() - 1)->layout()))
        , row(qobject_cast<QHBoxLayout*>(column->itemAt(1)->layout()))
        , icon(qobject_cast<QLabel*>(main->itemAt(0)->widget()))
        , text(qobject_cast<QLabel*>(column->itemAt(0)->widget()))
        , button1(qobject_cast<QPushButton*>(row->itemAt(1)->widget()))
        , button2(qobject_cast<QPushButton*>(row->itemAt(2)->widget()))
        , cancel(qobject_cast<QPushButton*>(column->itemAt(2)->widget()))
        , hint(qobject_cast<QLabel*>(column->itemAt(column->count() - 1)->widget()))
    {}

    QHBoxLayout* main;
    QVBoxLayout* column;
    QHBoxLayout* row;
    QLabel* icon;
    QLabel* text;
    QPushButton* button1;
    QPushButton* button2;
    QPushButton* cancel;
    QLabel* hint;
};

#endif
