#pragma once

#include <QString>
#include <QStringList>

namespace slow {

inline bool holdsBracketedWord(const QString& segment)
{
    return segment.contains('[') && segment.section('[', 1).contains(']');
}

/// False if ".." leads out of something unknown, or out of nothing.
inline bool canBeLeft(const QStringList& folders)
{
    return !folders.isEmpty() && folders.last() != ".." && !holdsBracketedWord(folders.last());
}

/// A second path resolution, on lists of whole segments.
inline QString resolvePath(const QString& path)
{
    if (path.isEmpty())
        return path;
    int slashes = 0;
    while (path.mid(slashes, 1) == "/")
        ++slashes;
    // Two name a network share.
    const QString root = slashes == 0 ? "" : slashes == 2 ? "//" : "/";

    QStringList kept;
    for (const QString& segment : path.split('/', Qt::SkipEmptyParts)) {
        const bool goesUp = segment == "..";
        const bool isAtRoot = kept.isEmpty() && !root.isEmpty();
        if (goesUp && canBeLeft(kept))
            kept.removeLast();
        else if (segment != "." && !(goesUp && isAtRoot))
            kept += segment;
    }
    if (kept.isEmpty() && root.isEmpty())
        kept += ".";
    const bool keepsItsEnd = path.endsWith('/') && !kept.isEmpty();
    return root + kept.join('/') + (keepsItsEnd ? "/" : "");
}

} // namespace slow
