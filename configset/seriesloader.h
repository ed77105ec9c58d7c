#pragma once

#include "configset/seriesname.h"
#include "model/tasklist.h"

#include <functional>

/// How a load asks and tells what is not in the task list.
struct LoadListener
{
    std::function<bool()> infoIsEmpty;                 ///< asked before each file
    std::function<void(const QString& text)> infoLine; ///< one line for the info text
    std::function<void(const QString& line, const QString& file)> lineRejected;
};

/// Appends the tasks of a file to the list. The path is brought into the system's notation in
/// place. Comments become info lines if the info text was empty before the file; blank lines are
/// skipped. A file that is missing or can't be opened yields nothing and no message. At most
/// `maxSeriesEntries` entries, rejected ones included, and `maxSeriesComments` info lines are
/// taken; what follows is not read.
void loadConfigFile(QString& file, TaskList& tasks, const LoadListener& listener);

/// Appends the tasks of all files of a series in their order, with the same limits for all of them
/// together. Nothing else of the list changes.
void loadSeries(const SeriesName& name, TaskList& tasks, const LoadListener& listener);
