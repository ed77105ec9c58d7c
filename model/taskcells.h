#pragma once

#include "model/testtask.h"

#include <QStringList>

/// The columns of a task list as a person reads it: config file ID, method, test type, size, number
/// of iterations, chunk size, chunk wait, system buffer, source, destination, log. Sizes are KiB.
constexpr int taskCellCount = 11;

/// The texts of one entry, which belongs to the config file with this number. A marker says "next
/// file" in all but the first; a method that is none has a null text.
QStringList taskCells(const TestTask& task, int configFileNumber);
