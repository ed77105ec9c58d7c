#pragma once

#include "check/fileuses.h"

#include <string>
#include <vector>

// How messages name lines, machines and files.

/// "file:line" of a line of the series.
std::string placeOf(const SeriesFacts& facts, int line);

/// The first three of `count` machines as the user names them, and how many more there are.
std::string listedMachines(const FileUses& uses, const std::vector<int>& machines, int count);

/// "the log file of file:line".
std::string roleOf(const SeriesFacts& facts, const FileUse& use);
