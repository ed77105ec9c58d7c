#pragma once

#include "check/seriesfacts.h"

#include <QByteArray>

/// Tells which paths of a series this system can't look up: those of file servers and of Windows.
/// If a path begins as only Windows spells the root of a drive, "\x", the series is for Windows,
/// and "/x" is the same file there.
class ForeignPaths
{
public:
    /// Of the tasks of a series.
    explicit ForeignPaths(const SeriesFacts& facts);

    /// True for a path of a task, or a name with the variables of the task replaced, that this
    /// system can't look up.
    bool contains(const QByteArray& name) const;

    /// The full path of a name, spelled so that its beginning tells the system.
    QByteArray spelled(const QByteArray& name, QByteArray path) const;

private:
    bool m_hasRootOfWindows;
};
