#pragma once

#include "check/fileuses.h"

#include <QRegularExpression>
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

    /// True if a task uses the file, or a file below it. A file that is only there to make its
    /// folder counts if the folder does.
    bool contains(const QString& path) const;

private:
    void addPath(const QString& path);

    QSet<QString> m_paths;
    QSet<QString> m_folders;
    std::vector<QRegularExpression> m_patterns;
};
