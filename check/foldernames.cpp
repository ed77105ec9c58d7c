#include "check/foldernames.h"

#include "configset/seriesname.h"

#include <QFile>

#include <algorithm>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>

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

mode_t modeOf(const QByteArray& path)
{
    struct stat info = {};
    return ::stat(path.constData(), &info) == 0 ? info.st_mode : 0;
}

struct CloseFolder
{
    void operator()(DIR* folder) const { ::closedir(folder); }
};

} // namespace

// Not by QDir, which leaves out names that are not UTF-8.
std::vector<FolderEntry> configFilesIn(const QString& folder)
{
    std::vector<FolderEntry> entries;
    const QByteArray path = QFile::encodeName(folder);
    const std::unique_ptr<DIR, CloseFolder> stream(::opendir(path.constData()));
    if (stream == nullptr)
        return entries;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): one thread
    while (const dirent* const entry = ::readdir(stream.get())) {
        const QString name = QFile::decodeName(entry->d_name);
        if (name.startsWith('.') || !name.endsWith(extension, Qt::CaseInsensitive))
            continue;
        const mode_t mode = entry->d_type == DT_REG ? S_IFREG : modeOf(path + '/' + entry->d_name);
        if (!S_ISDIR(mode))
            entries.push_back({name, S_ISREG(mode)});
    }
    std::sort(entries.begin(), entries.end(),
              [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
    return entries;
}

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
    for (const FolderEntry& entry : configFilesIn(folder)) {
        const QString& name = entry.name;
        if (!entry.isRegular)
            continue;
        const QString baseName = name.left(name.size() - extension.size());
        const QString key = withoutDigits(baseName);
        if (key.size() < baseName.size())
            index[key] += name;
    }
    return index;
}
