#include "check/seriesfinder.h"

#include "check/environment.h"
#include "check/foldernames.h"
#include "check/seriesfacts.h"
#include "check/text.h"

#include <QDir>
#include <QFileInfo>

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>

namespace {

const QString extension = QString::fromLatin1(configFileExtension);

QString absolute(const QString& path)
{
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

QString withSeparator(const QString& folder)
{
    return folder.endsWith('/') ? folder : folder + '/';
}

SeriesSearch problem(std::string text)
{
    return {{}, {}, std::move(text)};
}

/// False for a file that a load of its own series does not look for, and that is no further one.
bool belongsTo(const SeriesName& name, const QString& file)
{
    return candidateFiles(name).contains(name.folder + file) || isBeyondSeries(file, name.baseName);
}

bool anyExists(const SeriesName& name)
{
    const QStringList files = candidateFiles(name);
    return std::any_of(files.cbegin(), files.cend(),
                       [](const QString& file) { return QFileInfo::exists(file); });
}

/// Why a folder can't be listed; empty if it can, or if there is none.
std::string whyUnreadable(const QString& path)
{
    const PathStatus status = realEnvironment().look(path);
    const bool isClosed = status.isFolder() && !QFileInfo(path).isReadable();
    return isClosed ? fmt::format("{} can't be read: you have no right to read it", quoted(path))
                    : std::string();
}

SeriesSearch searchFolder(const QString& path)
{
    const QString shown = withSeparator(path);
    const QString folder = withSeparator(absolute(path));
    SeriesSearch search;
    std::set<QString> names;
    for (const QString& place : {QString(), waitFolder()}) {
        for (const FolderEntry& entry : configFilesIn(folder + place)) {
            const QString& file = entry.name;
            const SeriesName name = seriesNameForLoading(folder + file);
            if (belongsTo(name, file))
                names.insert(name.baseName);
            else
                search.notLoaded += shown + place + file;
        }
    }
    for (const QString& name : names)
        search.series.push_back({{folder, name}, shown});
    search.series = withoutDuplicates(search.series);
    if (!search.series.empty() || !search.notLoaded.isEmpty())
        return search;
    const std::string why = whyUnreadable(path);
    search.problem = why.empty() ? whyUnreadable(shown + waitFolder().chopped(1)) : why;
    if (search.problem.empty())
        search.problem = fmt::format("there are no config files in {}", quoted(path));
    return search;
}

SeriesSearch searchFile(const QString& path)
{
    const QString file = absolute(path);
    const PathStatus status = realEnvironment().look(file);
    const bool exists = status.exists();
    if (status.isHidden)
        return problem(fmt::format("{} can't be read: {}", quoted(path), status.whyUnreadable));
    if (!file.endsWith(extension))
        return problem(exists ? fmt::format("{} is not a config file: its name does not end in {}",
                                            quoted(path), configFileExtension)
                              : fmt::format("there is no file or folder {}", quoted(path)));
    const SeriesName name = seriesNameForLoading(file);
    if (exists && !belongsTo(name, file.mid(file.lastIndexOf('/') + 1)))
        return problem(fmt::format("the editor would not load {}: by its name it looks for {}",
                                   quoted(path), quoted(name.baseName + extension)));
    if (!exists && !anyExists(name))
        return problem(
            fmt::format("there is no file {}, and no file of a series of that name", quoted(path)));
    return {{{name, path.left(path.lastIndexOf('/') + 1)}}, {}, {}};
}

} // namespace

SeriesSearch findSeries(const QString& path)
{
    if (path.isEmpty() || path.contains(QChar(0)))
        return problem("a path is empty");
    return QFileInfo(path).isDir() ? searchFolder(path) : searchFile(path);
}

SeriesSearch findOneSeries(const QString& path)
{
    SeriesSearch search = findSeries(path);
    if (search.series.empty() && search.problem.empty())
        return problem(fmt::format("there is no series in {}", quoted(path)));
    if (search.series.size() <= 1)
        return search;
    return problem(fmt::format("there are {} series in {}: name a file of the one that is meant",
                               search.series.size(), quoted(path)));
}

std::vector<FoundSeries> withoutDuplicates(const std::vector<FoundSeries>& series)
{
    const QString initEnd = QString::fromLatin1(initFileSuffix);
    std::set<std::pair<QString, QString>> left;
    for (const FoundSeries& found : series)
        left.insert({found.name.folder, found.name.baseName});
    std::vector<FoundSeries> result;
    const std::set<std::pair<QString, QString>> all = left;
    for (const FoundSeries& found : series) {
        const auto& [folder, name] = found.name;
        const bool isInit =
            name.endsWith(initEnd) && all.count({folder, name.chopped(initEnd.size())}) > 0;
        if (!isInit && left.erase({folder, name}) > 0)
            result.push_back(found);
    }
    return result;
}
