#pragma once

#include "check/fileuses.h"
#include "check/foldersabove.h"

#include <QByteArray>
#include <QSet>
#include <QString>

#include <vector>

/// The files that the tasks of a series use, and their folders, by full names. Names that differ by
/// machine are compared as patterns.
class UsedPaths
{
public:
    /// Of all tasks. Nothing refers to the arguments afterwards.
    UsedPaths(const SeriesFacts& facts, const FileUses& uses);

    /// True if a task uses the file, or a file below it, or if there is too much to tell. A file
    /// that is only there to make its folder counts if the folder does.
    bool contains(const QString& path);

private:
    void addPath(const QByteArray& path);
    bool matchesPattern(QByteArray path);

    QSet<QByteArray> m_paths; ///< Latin-1
    FoldersAbove m_folders;
    std::vector<QByteArray> m_patterns; ///< Latin-1
    long long m_comparisons = 0;
};
