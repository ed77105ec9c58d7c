#include "dpc/resave.h"

#include "check/nameexpander.h"
#include "check/text.h"
#include "configset/infotext.h"
#include "configset/seriesloader.h"
#include "configset/seriesrenderer.h"
#include "model/limits.h"
#include "shared/kvfile.h"
#include "shared/kvtext.h"

#include <QFileInfo>
#include <QSet>

#include <fmt/format.h>

namespace {

/// Where the editor puts the files after the first.
FollowUpFiles followUpFiles(const SeriesName& name)
{
    const QFileInfo folder(name.folder + waitFolder().chopped(1));
    const bool isUsable = !folder.exists() || folder.isDir();
    return isUsable ? FollowUpFiles::InWaitFolder : FollowUpFiles::InSeriesFolder;
}

/// The reason why a save can't write a file; empty if it can.
std::string obstacleTo(const QString& path)
{
    const QFileInfo file(path);
    const QFileInfo folder(file.path());
    if (file.exists() && !file.isFile())
        return "what is there is not a file";
    return folder.exists() && !folder.isDir() ? "the folder is a file" : "";
}

ResavedFile written(const ConfigFile& file)
{
    const QString path = kvToQString(kvToString8<maxFileName>(file.path));
    return {path, kvToQString(kvToString8<maxConfigFile>(file.content)).toLatin1(),
            file.content.size() > maxConfigFile, file.content.size(), obstacleTo(path)};
}

} // namespace

Resave resave(const SeriesFacts& facts)
{
    if (facts.limitReached)
        return {{}, fmt::format("the series has more than {}", counted(maxSeriesEntries, "line"))};
    InfoText info;
    TaskList tasks;
    loadSeries(facts.name, tasks, silentListener(info));
    // The editor does not save an empty list.
    if (tasks.isEmpty())
        return {};
    prepareTasks(tasks);
    const SeriesName name =
        seriesNameForSaving(seriesFile(facts.name.folder, facts.name.baseName, 0));
    const RenderedSeries series =
        renderSeries(tasks, info.text(), name, followUpFiles(name), thisMachine());
    Resave result;
    QSet<QString> paths;
    for (const ConfigFile& file : series.files) {
        result.files.push_back(written(file));
        if (result.files.back().obstacle.empty())
            paths.insert(result.files.back().path);
    }
    // The files of the series are there before their _init file is made.
    const auto exists = [&](const QString& resolved) {
        return paths.contains(resolved) || kvFileExists(kvToString16<maxPath>(resolved));
    };
    result.files.push_back(written(renderInitFile(series.filesToCreate, name, exists)));
    // It is not rendered any further than it is written.
    result.files.back().fullSize = 0;
    return result;
}

QString shownPath(const SeriesFacts& facts, const QString& path)
{
    const QString& folder = facts.name.folder;
    return path.startsWith(folder) ? facts.shownFolder + path.mid(folder.size()) : path;
}
