#pragma once

#include <QString>

/// The text that a message dialog shows for @p text.
///
/// Only line feeds count; long lines are neither cut nor wrapped. With fewer than 46 line feeds
/// the whole text, closed by one more line feed. With 46 or more always 47 lines: the first 4, one
/// that says that something was left out, the last 41, and one that holds a single blank.
QString shortenMessage(const QString& text);

/// The letters that press the two answer buttons. Empty: that button has none.
struct ShortcutKeys
{
    QString first;
    QString second;
};

/// Derives the letters from the buttons' texts, an empty text standing for no button: the first
/// character, an "&" in front passed over, in lower case. Equal letters could not tell the buttons
/// apart, so that neither button gets one then.
ShortcutKeys shortcutKeys(const QString& firstButtonText, const QString& secondButtonText);
