#pragma once

#include "check/seriesfacts.h"

#include <QByteArray>

#include <string>
#include <vector>

/// A file that a save writes.
struct ResavedFile
{
    QString path;
    QByteArray content; ///< Latin-1, cut as the editor cuts it
    bool isCut = false;
    qint64 fullSize = 0;  ///< bytes of the content before it was cut; 0 if that is not known
    std::string obstacle; ///< half a sentence if the file can't be written
};

/// A load and a save of a series in the editor, in memory.
struct Resave
{
    std::vector<ResavedFile> files; ///< the "_init" file last; none if the list of tasks is empty
    std::string problem;            ///< one sentence if it can't be told
};

/// Loads a series with the editor's loader, and renders it as the editor saves it under the same
/// name. Nothing is written.
Resave resave(const SeriesFacts& facts);

/// The path of a file of the series as the user spells its folder.
QString shownPath(const SeriesFacts& facts, const QString& path);
