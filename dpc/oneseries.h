#pragma once

#include "check/seriesfacts.h"
#include "dpc/command.h"

#include <optional>

/// Reads the one series that a path leads to. If there is none, or more than one, says so on the
/// error stream and returns nothing.
std::optional<SeriesFacts> readOneSeries(const QString& path, const Output& output);

/// Lines that no load takes are not part of a listing or a comparison, but nobody should miss them:
/// says on the error stream how many there are.
void warnOfLostLines(const SeriesFacts& facts, const Output& output);
