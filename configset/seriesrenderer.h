#pragma once

#include "configset/filestocreate.h"
#include "configset/seriesname.h"
#include "model/tasklist.h"

#include <QVector>

#include <functional>

/// A config file in memory, uncut. Characters are those of Latin-1.
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

/// Renders the files of a series: one for each stretch of tasks that a marker ends, the info text
/// as comments at the head of the first. Sets the `configId` of each task and normalises it. The
/// first file lies in "_wait"; the others lie in `followUpFolder`, "_wait/" or empty, below the
/// folder of the series.
RenderedSeries renderSeries(TaskList& tasks, const QString& infoText, const SeriesName& name,
                            const QString& followUpFolder, const MachineValues& machine = {});

/// Renders the companion file: a line for each file to create, a comment where `exists` says that
/// the file is there.
ConfigFile renderInitFile(const FileToCreateList& list, const SeriesName& name,
                          const std::function<bool(const QString& resolved)>& exists);
