#include "check/foldernames.h"

#include "configset/seriesname.h"

#include <QDir>

namespace {

const QString extension = QLatin1String(configFileExtension);

/// The name of a series may end in digits itself, so all of them go.
QString withoutDigits(const QString& baseName)
{
    int end = baseName.size();
    while (end > 0 && baseName[end - 1] >= '0' && baseName[end - 1] <= '9')
        --end;
    return baseName.left(end);
}

} // namespace

QStringList FolderNames::beyondSeries(const QString& folder, const QString& baseName)
{
    if (!m_folders.contains(folder))
        m_folders.insert(folder, indexOf(folder));
    QStringList result;
    for (const QString& name : m_folders[folder].value(withoutDigits(baseName))) {
        if (isBeyondSeries(name, baseName))
            result += name;
    }
    return result;
}

FolderNames::Index FolderNames::indexOf(const QString& folder)
{
    Index index;
    const QStringList names = QDir(folder).entryList({"*" + extension}, QDir::Files, QDir::Name);
    for (const QString& name : names) {
        const QString baseName = name.left(name.size() - extension.size());
        const QString key = withoutDigits(baseName);
        if (key.size() < baseName.size())
            index[key] += name;
    }
    return index;
}
