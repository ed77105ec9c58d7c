#pragma once

#include <QApplication>
#include <QFont>
#include <QPalette>
#include <QStyle>

// The ways in which a desktop may show the window.

inline QPalette lightPalette()
{
    return QApplication::style()->standardPalette();
}

/// As dark desktops have it, made from two colours in the way of Qt's own themes.
inline QPalette darkPalette()
{
    const QColor window(45, 45, 45);
    QPalette palette(window, window);
    palette.setColor(QPalette::Base, QColor(27, 27, 27));
    palette.setColor(QPalette::AlternateBase, QColor(38, 38, 38));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, QColor(239, 240, 241));
        palette.setColor(QPalette::Disabled, role, QColor(150, 150, 150));
    }
    palette.setColor(QPalette::Highlight, QColor(42, 130, 218));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

/// For people who read small letters with difficulty.
inline QFont largerFont(const QFont& font)
{
    QFont larger = font;
    larger.setPointSizeF(font.pointSizeF() * 4 / 3);
    return larger;
}
