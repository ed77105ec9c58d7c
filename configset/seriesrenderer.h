#pragma once

#include "configset/filestocreate.h"
#include "configset/seriesname.h"
#include "model/tasklist.h"

#include <QVector>

#include <functional>

/// A config file in memory, uncut unless said otherwise. Characters are those of Latin-1.
struct ConfigFile
{
    QString path;
    QString content;
};

/// A series in memory, and what must exist before it can run.
struct RenderedSeries
{
    QVector<ConfigFile> files;
    FileToCreateList filesToCreate;
};

/// Where the files after the first are to lie.
enum class FollowUpFiles
{
    InWaitFolder,
    InSeriesFolder
};

/// Prepares tasks for a save: gives each the `configId` of the file that it belongs to, and
/// normalises it. Markers stay as they are.
void prepareTasks(TaskList& tasks);

/// Renders the files of a series, whose tasks are prepared: one for each stretch of tasks that a
/// marker ends, the info text as comments at the head of the first. The first file lies in "_wait"
/// in any case. Files to create are listed as far as an _init file can hold them.
RenderedSeries renderSeries(const TaskList& tasks, const QString& infoText, const SeriesName& name,
                            FollowUpFiles place, const MachineValues& machine = {});

/// Renders the _init file: a line for each file to create, a comment if `exists` says that the file
/// is there. It ends with the line that passes `maxConfigFile` characters.
ConfigFile renderInitFile(const FileToCreateList& list, const SeriesName& name,
                          const std::function<bool(const QString& resolved)>& exists);
