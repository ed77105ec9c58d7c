#pragma once

#include "check/seriesfacts.h"

#include <QString>

#include <string>
#include <vector>

/// A line that goes or comes.
struct LineChange
{
    int line = 0; ///< from 1, in the file that it is taken from or stands in then
    bool isNew = false;
    QByteArray text;         ///< Latin-1, without its line end
    bool hasLineEnd = false; ///< false for the last line of a file that ends without one
};

/// The change of a file of the series.
struct FileChange
{
    /// In the words of the JSON output.
    enum class Kind
    {
        Created,
        Changed,
        Unchanged, ///< told only if it is cut
        Blocked,   ///< can't be written
        Kept       ///< stays as it is, and is loaded again next time
    };

    Kind kind = Kind::Unchanged;
    QString shownPath;    ///< as the user spells the folder
    std::string obstacle; ///< half a sentence about a file that can't be written
    int lineCount = 0;    ///< of a file that is created
    std::vector<LineChange> lines;
    qint64 bytesNotShown = 0; ///< go as well, and are not among `lines`: the file is too large
    bool isCut = false;
    qint64 fullSize = 0; ///< bytes of a file that is cut, before it is; 0 if that is not known
};

/// Compares what a load and a save of a series would write with the disk: the changes in the order
/// of the save, none if nothing changes. Nothing is written.
std::vector<FileChange> roundTrip(const SeriesFacts& facts);

/// File by file, and line by line with "-" and "+"; empty if nothing changes.
std::string changesAsText(const std::vector<FileChange>& files);
