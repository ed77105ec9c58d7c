#include "configset/seriessaver.h"

#include "configset/seriesrenderer.h"
#include "shared/kvfile.h"
#include "shared/kvtext.h"

#include <algorithm>

namespace {

void write(const ConfigFile& file)
{
    writeToLogFile(kvToString8<maxFileName>(file.path), kvToString8<maxConfigFile>(file.content),
                   true, false);
}

/// The folder is made only for a series that goes on; a single file's folder is the writer's.
FollowUpFiles makeFollowUpFolder(const TaskList& tasks, const SeriesName& name)
{
    const bool goesOn = std::any_of(tasks.cbegin(), tasks.cend(),
                                    [](const TestTask& task) { return task.waitForNextConfig; });
    const bool isUsable = !goesOn || kvCreateFolder(name.folder + waitFolder(), true);
    return isUsable ? FollowUpFiles::InWaitFolder : FollowUpFiles::InSeriesFolder;
}

} // namespace

void saveSeries(TaskList& tasks, const QString& infoText, const SeriesName& name)
{
    prepareTasks(tasks);
    // With "?" for each foreign letter the folder would be another one.
    if (!kvIsLatin1(name.folder))
        return;
    const RenderedSeries series =
        renderSeries(tasks, infoText, name, makeFollowUpFolder(tasks, name));
    for (const ConfigFile& file : series.files)
        write(file);
    write(renderInitFile(series.filesToCreate, name, [](const QString& resolved) {
        return kvFileExists(kvToString16<maxPath>(resolved));
    }));
}
