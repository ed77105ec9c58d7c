#pragma once

#include <QDialog>
#include <QLabel>

/// The label that holds a message, not its icon and not the hint below it.
inline QLabel* messageLabel(const QDialog& dialog)
{
    for (QLabel* label : dialog.findChildren<QLabel*>()) {
        if (!label->text().isEmpty() && !label->text().contains("CTRL-C"))
            return label;
    }
    return nullptr;
}
