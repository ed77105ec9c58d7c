#pragma once

#include "configset/seriesname.h"
#include "model/tasklist.h"

/// Writes the files of a series and its _init file. Each file appears whole or not at all, and
/// failures are silent. A folder whose name has characters outside Latin-1 gets nothing, for its
/// 8-bit name is that of another folder. Content is cut at `maxConfigFile` characters, file names
/// at `maxFileName`. If "_wait" can't be made, the files after the first go into the folder itself.
/// Prepares the tasks: see prepareTasks().
void saveSeries(TaskList& tasks, const QString& infoText, const SeriesName& name);
