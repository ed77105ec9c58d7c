#include "dpc/resave.h"

#include "check/nameexpander.h"
#include "configset/infotext.h"
#include "configset/seriesloader.h"
#include "configset/seriesrenderer.h"
#include "model/limits.h"
#include "shared/kvfile.h"
#include "shared/kvtext.h"

#include <QFileInfo>
#include <QSet>

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

std::vector<ResavedFile> resave(const SeriesFacts& facts)
{
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
    std::vector<ResavedFile> files;
    QSet<QString> paths;
    for (const ConfigFile& file : series.files) {
        files.push_back(written(file));
        if (files.back().obstacle.empty())
            paths.insert(files.back().path);
    }
    // The files of the series are there before their _init file is made.
    const auto exists = [&](const QString& resolved) {
        return paths.contains(resolved) || kvFileExists(kvToString16<maxPath>(resolved));
    };
    files.push_back(written(renderInitFile(series.filesToCreate, name, exists)));
    // It is not rendered any further than it is written.
    files.back().fullSize = 0;
    return files;
}
