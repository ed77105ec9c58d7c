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

/// Loads a series with the editor's loader, and renders it in memory as the editor saves it under
/// the same name. Nothing is written. The "_init" file comes last; an empty list of tasks makes
/// none.
std::vector<ResavedFile> resave(const SeriesFacts& facts);
