#include "check/usedpaths.h"

#include "configset/filestocreate.h"
#include "shared/kvpath.h"

#include <algorithm>

namespace {

/// In a pattern: any text. No path holds it.
constexpr char anyText = '\0';

/// Many lines for files that nobody uses, beside many names with variables, would take forever.
constexpr long long maxComparisons = 10'000'000;

QString folderOf(const QString& path)
{
    return kvGetDirName(path, '/');
}

/// With any values in the place of the variables of a machine.
QByteArray patternOf(QByteArray name)
{
    for (const char* variable : {hostVariable, dateVariable, tempVariable})
        name.replace(variable, QByteArray(1, anyText));
    return name;
}

/// True if the pattern ends here, or a folder in it does.
bool isEndOfName(const QByteArray& pattern, int place)
{
    return place == pattern.size() || pattern[place] == '/';
}

/// True if the pattern stands for the path, or for a file below it.
bool matches(const QByteArray& pattern, const QByteArray& path)
{
    int inPattern = 0;
    int inPath = 0;
    int behindAny = -1; // of the last place for any text, which takes more if the rest differs
    int endOfAny = 0;
    while (true) {
        if (inPattern < pattern.size() && pattern[inPattern] == anyText) {
            behindAny = ++inPattern;
            endOfAny = inPath;
            if (isEndOfName(pattern, inPattern))
                return true;
        } else if (inPath == path.size()) {
            return isEndOfName(pattern, inPattern);
        } else if (inPattern < pattern.size() && pattern[inPattern] == path[inPath]) {
            ++inPattern;
            ++inPath;
        } else if (behindAny >= 0) {
            inPattern = behindAny;
            inPath = ++endOfAny;
        } else {
            return false;
        }
    }
}

} // namespace

UsedPaths::UsedPaths(const SeriesFacts& facts, const FileUses& uses)
{
    const QByteArray start = facts.runFolder.toLatin1();
    for (const UsedName& name : uses.names()) {
        QByteArray path = name.text;
        replaceConfigPath(path, start);
        if (name.byHost || name.byDate || name.byTemp)
            m_patterns.push_back(patternOf(path));
        else
            addPath(path);
    }
    for (const UsedFile& file : uses.files()) {
        if (file.path.kind == PathStatus::Kind::DeadLink)
            addPath(QString::fromUtf8(file.path.key).toLatin1());
    }
}

bool UsedPaths::contains(const QString& path)
{
    const QString used = path.endsWith(QLatin1String(dummyFileName)) ? folderOf(path) : path;
    return m_paths.contains(used.toLatin1()) || m_folders.contains(used) ||
           matchesPattern(used.toLatin1());
}

void UsedPaths::addPath(const QByteArray& path)
{
    m_paths.insert(path);
    m_folders.add(QString::fromLatin1(path));
}

bool UsedPaths::matchesPattern(QByteArray path)
{
    if (path.endsWith('/'))
        path.chop(1);
    m_comparisons += static_cast<long long>(m_patterns.size());
    return m_comparisons > maxComparisons ||
           std::any_of(m_patterns.begin(), m_patterns.end(),
                       [&](const QByteArray& pattern) { return matches(pattern, path); });
}
