#pragma once

#include "model/testtask.h"

#include <QStringList>

#include <vector>

/// A column of the table of tasks.
struct TaskColumn
{
    const char* title = nullptr; ///< as the form spells it
    bool isNumber = false;       ///< stands on the right in a listing
    /// The text of a task of the config file with this number; null for an unknown method.
    QString (*cell)(const TestTask& task, int configFileNumber) = nullptr;
    /// The path that the column shows; null if it does not show a path.
    const _kvString8_allSize<maxPath> TestTask::*path = nullptr;
};

/// The columns in the order of the form. "Type" stands above the method, and "Method" above the
/// test type. Sizes are KiB.
const std::vector<TaskColumn>& taskColumns();

/// The texts of one entry, which belongs to the config file with this number. A marker says "next
/// file" in all but the first; the text of an unknown method is null.
QStringList taskCells(const TestTask& task, int configFileNumber);
