#pragma once

#include "configset/seriesloader.h"

#include <QString>

/// The info text of a series without a window: lines become the text as the editor's text field has
/// it. Empty lines before the first text vanish, and no-break spaces come back as blanks.
class InfoText
{
public:
    /// Adds a comment line of a config file as a new paragraph.
    void addLine(QString line);

    /// Lines, with "\n" between them.
    const QString& text() const { return m_text; }

private:
    QString m_text;
};

/// A listener that fills an info text, which must outlive it, and passes over rejected lines.
LoadListener silentListener(InfoText& info);
