#include "check/foreignpaths.h"

#include "check/filekeys.h"

#include <algorithm>

namespace {

bool isRooted(const QByteArray& path, char separator)
{
    return path.startsWith(separator) && !isSharePath(path);
}

bool hasRootOfWindows(const LineFact& line)
{
    return isTask(line) &&
           (isRooted(line.path(SourcePath), '\\') || isRooted(line.path(DestPath), '\\') ||
            isRooted(line.path(LogPath), '\\') || isRooted(line.path(CsvPath), '\\'));
}

} // namespace

ForeignPaths::ForeignPaths(const SeriesFacts& facts)
    : m_hasRootOfWindows(std::any_of(facts.lines.begin(), facts.lines.end(), hasRootOfWindows))
{}

bool ForeignPaths::contains(const QByteArray& name) const
{
    return isForeignPath(name) || (m_hasRootOfWindows && isRooted(name, '/'));
}

QByteArray ForeignPaths::spelled(const QByteArray& name, QByteArray path) const
{
    if (m_hasRootOfWindows && isRooted(name, '/'))
        path[0] = '\\';
    return path;
}
