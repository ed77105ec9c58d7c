#pragma once

#include <QColor>
#include <QHash>
#include <QSet>
#include <QString>

// Colours and fonts of the form. No widget but these has a palette or a font of its own.

struct Look
{
    QColor windowText;
    QColor window;
    QColor disabledWindowText;
    QColor disabledWindow;
};

inline QHash<QString, Look> expectedLooks()
{
    const Look infoBox = {{2, 2, 2}, {220, 250, 255}, {106, 104, 100}, {195, 195, 195}};
    const Look headingBar = {{255, 255, 255}, {49, 49, 49}, {120, 120, 120}, {49, 49, 49}};
    const Look noticeBox = {{2, 2, 2}, {255, 228, 144}, {2, 2, 2}, {255, 228, 144}};
    return {
        {"label_224", infoBox},   {"label_213", infoBox},   {"label_218", infoBox},
        {"label_216", infoBox},   {"label_220", infoBox},   {"label_214", infoBox},
        {"label_223", infoBox},   {"label_219", infoBox},   {"label_FileSizeNotice", infoBox},
        {"label_12", headingBar}, {"label_13", headingBar}, {"label_222", noticeBox},
    };
}

inline QSet<QString> boldWidgets()
{
    return {"label_12", "label_13", "label_14", "radioNextConfig", "radioNewTest", "groupBox_6"};
}
