#include "check/usedpaths.h"

#include "configset/filestocreate.h"
#include "shared/kvpath.h"

#include <algorithm>

namespace {

QString folderOf(const QString& path)
{
    return kvGetDirName(path, '/');
}

/// Matches the path with any values, and every folder above it.
QRegularExpression patternOf(const QString& path)
{
    QString pattern;
    int depth = 0;
    for (const QString& part : path.split('/')) {
        QString escaped = QRegularExpression::escape(part);
        for (const char* variable : {"\\[host\\]", "\\[date\\]", "\\[temp\\]"})
            escaped.replace(variable, ".*");
        pattern += depth == 0 ? escaped : "(?:/" + escaped;
        ++depth;
    }
    for (int i = 1; i < depth; ++i)
        pattern += ")?";
    return QRegularExpression("^" + pattern + "/?$");
}

} // namespace

UsedPaths::UsedPaths(const SeriesFacts& facts, const FileUses& uses)
{
    const QString start = facts.runFolder;
    for (const UsedName& name : uses.names()) {
        QString path = QString::fromLatin1(name.text);
        path.replace(QStringLiteral("[cfgPath]/"), start).replace("[cfgPath]", start);
        if (name.byHost || name.byDate || name.byTemp)
            m_patterns.push_back(patternOf(path));
        else
            addPath(path);
    }
    for (const UsedFile& file : uses.files()) {
        if (file.path.kind == PathStatus::Kind::DeadLink)
            addPath(QString::fromUtf8(file.path.key));
    }
}

bool UsedPaths::contains(const QString& path) const
{
    const QString used = path.endsWith(QLatin1String(dummyFileName)) ? folderOf(path) : path;
    return m_paths.contains(used) || m_folders.contains(used) ||
           std::any_of(m_patterns.begin(), m_patterns.end(),
                       [&](const QRegularExpression& p) { return p.match(used).hasMatch(); });
}

void UsedPaths::addPath(const QString& path)
{
    m_paths.insert(path);
    for (QString folder = folderOf(path); !folder.isEmpty() && !m_folders.contains(folder);
         folder = folderOf(folder.chopped(1)))
        m_folders.insert(folder);
}
