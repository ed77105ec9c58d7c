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

/// Prepares the tasks of a series for a save: gives each the number of its file as its `configId`,
/// and normalises it. Markers stay as they are.
void prepareTasks(TaskList& tasks);

/// Renders the config files of a series, task by task. The first file lies in "_wait" in any case.
class ConfigFilesRenderer
{
public:
    /// Begins the first file with the info text as comments.
    ConfigFilesRenderer(const QString& infoText, const SeriesName& name, FollowUpFiles place);

    /// Adds a task, which is prepared, or a marker: it ends a file and begins the next.
    void add(const TestTask& task);

    /// The files so far. Tasks go to the last.
    const QVector<ConfigFile>& files() const { return m_files; }

private:
    SeriesName m_name;
    QString m_followUpFolder;
    QVector<ConfigFile> m_files;
};

/// Renders the files of a series, whose tasks are prepared: one for each stretch of tasks that a
/// marker ends, the info text as comments at the head of the first. The first file lies in "_wait"
/// in any case. Files to create are listed as far as an _init file can hold them.
RenderedSeries renderSeries(const TaskList& tasks, const QString& infoText, const SeriesName& name,
                            FollowUpFiles place, const MachineValues& machine = {});

/// Renders the _init file: a line for each file to create, a comment if `exists` says that the file
/// is there. It ends with the line that passes `maxConfigFile` characters.
ConfigFile renderInitFile(const FileToCreateList& list, const SeriesName& name,
                          const std::function<bool(const QString& resolved)>& exists);
