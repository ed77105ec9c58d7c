#pragma once

#include "model/testtask.h"

#include <QStringList>

#include <iterator>

/// The titles of the columns, as the form spells them: "Type" stands above the method, and "Method"
/// above the test type. Sizes are KiB.
constexpr const char* taskCellTitles[] = {"Config File ID", "Type",       "Method",     "Size",
                                          "Interations",    "Chunk Size", "Chunk Wait", "SysBuffer",
                                          "Source",         "Dest",       "Log"};

constexpr int taskCellCount = int(std::size(taskCellTitles));

/// The texts of one entry, which belongs to the config file with this number. A marker says "next
/// file" in all but the first; the text of an unknown method is null.
QStringList taskCells(const TestTask& task, int configFileNumber);
