#include "check/seriesfinder.h"

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

SeriesSearch searchFolder(const QString& path)
{
    const QString shown = withSeparator(path);
    const QString folder = withSeparator(absolute(path));
    SeriesSearch search;
    std::set<QString> names;
    for (const QString& place : {QString(), waitFolder()}) {
        // In capitals as well: such a file was meant to be one.
        for (const QString& file :
             QDir(folder + place).entryList({'*' + extension}, QDir::Files | QDir::System)) {
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
        search.problem = fmt::format("there are no config files in {}", quoted(path));
    return search;
}

SeriesSearch searchFile(const QString& path)
{
    const QString file = absolute(path);
    const bool exists = QFileInfo::exists(file);
    if (!file.endsWith(extension))
        return problem(exists ? fmt::format("{} is no config file: its name does not end in {}",
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
