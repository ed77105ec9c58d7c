#include "check/seriesfinder.h"

#include "check/environment.h"
#include "check/foldernames.h"
#include "check/seriesfacts.h"
#include "check/text.h"

#include <QDir>
#include <QFileInfo>

#include <fmt/format.h>

#include <algorithm>
#include <map>
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

/// False for a file that a load of its own series does not look for, and that does not continue it.
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

/// Why a path can't be looked at; empty if it can.
std::string obstacleAt(const QString& path)
{
    const PathStatus status = realEnvironment().look(path);
    return status.isFolder() && !status.isReadable ? "you have no right to look into it"
                                                   : std::string();
}

std::string whyEmpty(const QString& shown, const QString& folder)
{
    for (const QString& place : {QString(), waitFolder()}) {
        const std::string obstacle = obstacleAt(folder + place);
        if (!obstacle.empty())
            return fmt::format("{} can't be read: {}",
                               quoted(place.isEmpty() ? shown : withSeparator(shown) + place),
                               obstacle);
    }
    return fmt::format("no config files in {}", quoted(shown));
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
    if (search.series.empty() && search.notLoaded.isEmpty())
        search.problem = whyEmpty(path, folder);
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
                              : fmt::format("{} does not exist", quoted(path)));
    const SeriesName name = seriesNameForLoading(file);
    if (exists && !belongsTo(name, file.mid(file.lastIndexOf('/') + 1)))
        return problem(fmt::format("the editor would not load {}: by its name it looks for {}",
                                   quoted(path), quoted(name.baseName + extension)));
    if (!exists && !anyExists(name))
        return problem(
            fmt::format("{} does not exist, nor does another file of its series", quoted(path)));
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
        return problem(fmt::format("no series in {}", quoted(path)));
    if (search.series.size() <= 1)
        return search;
    return problem(fmt::format("there are {} series in {}: name a file of the one that is meant",
                               search.series.size(), quoted(path)));
}

namespace {

/// The identity of a series: one that was opened in "_wait" equals that of the folder above.
std::pair<QString, QString> identityOf(const SeriesName& name)
{
    const QString folder = name.folder.endsWith('/' + waitFolder())
                               ? name.folder.chopped(waitFolder().size())
                               : name.folder;
    const QString canonical = QFileInfo(folder).canonicalFilePath();
    return {canonical.isEmpty() ? folder : canonical, name.baseName};
}

bool isInWaitFolder(const SeriesName& name)
{
    return name.folder.endsWith('/' + waitFolder());
}

} // namespace

std::vector<FoundSeries> withoutDuplicates(const std::vector<FoundSeries>& series)
{
    const QString initEnd = QString::fromLatin1(initFileSuffix);
    // The folder above reads the files in "_wait" as well, and not the other way round.
    std::map<std::pair<QString, QString>, const FoundSeries*> best;
    for (const FoundSeries& found : series) {
        const FoundSeries*& known = best[identityOf(found.name)];
        if (known == nullptr || (isInWaitFolder(known->name) && !isInWaitFolder(found.name)))
            known = &found;
    }
    std::vector<FoundSeries> result;
    for (const FoundSeries& found : series) {
        const auto [folder, name] = identityOf(found.name);
        const bool isInit =
            name.endsWith(initEnd) && best.count({folder, name.chopped(initEnd.size())}) > 0;
        if (!isInit && best[{folder, name}] == &found)
            result.push_back(found);
    }
    return result;
}
