#include "cli/seriesfinder.h"

#include "cli/text.h"

#include <QDir>
#include <QFileInfo>

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace {

const QString extension = QStringLiteral(".dpc");
const QString initEnd = QStringLiteral("_init");

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
    return {{}, std::move(text)};
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
    std::set<QString> names;
    for (const QString& place : {folder, folder + waitFolder()}) {
        for (const QString& file :
             QDir(place).entryList({'*' + extension}, QDir::Files | QDir::System))
            names.insert(seriesNameForLoading(folder + file).baseName);
    }
    SeriesSearch search;
    for (const QString& name : names) {
        const bool isCompanion =
            name.endsWith(initEnd) && names.count(name.chopped(initEnd.size())) > 0;
        if (!isCompanion)
            search.series.push_back({{folder, name}, shown});
    }
    if (search.series.empty())
        search.problem = fmt::format("there are no config files in {}", quoted(path));
    return search;
}

SeriesSearch searchFile(const QString& path)
{
    const QString file = absolute(path);
    const bool exists = QFileInfo::exists(file);
    if (!file.endsWith(extension))
        return problem(exists ? fmt::format("{} is no config file: its name does not end in .dpc",
                                            quoted(path))
                              : fmt::format("there is no file or folder {}", quoted(path)));
    const SeriesName name = seriesNameForLoading(file);
    if (!exists && !anyExists(name))
        return problem(
            fmt::format("there is no file {}, and no file of a series of that name", quoted(path)));
    return {{{name, path.left(path.lastIndexOf('/') + 1)}}, {}};
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
    if (search.series.size() <= 1)
        return search;
    return problem(fmt::format("there are {} series in {}: name a file of the one that is meant",
                               search.series.size(), quoted(path)));
}
