#pragma once

#include "check/remarks.h"
#include "check/seriesfacts.h"
#include "check/seriesfinder.h"
#include "dpc/command.h"

#include <optional>

/// Reads the one series that a path leads to. If there is none, or more than one, returns nothing
/// and adds the problem. Lines that no load takes are remarked as not checked: they are not part of
/// a listing or a comparison, but nobody should miss them.
std::optional<SeriesFacts> readOneSeries(const QString& path, Remarks& remarks);

/// The same for a series that is found already; `path` is what the user calls it.
std::optional<SeriesFacts> readOneSeries(const FoundSeries& found, const QString& path,
                                         Remarks& remarks);

/// Prints problems and what was not checked on the error stream. Returns true if there are
/// problems.
bool printRemarks(const Remarks& remarks, const Output& output);

/// Both in one: what is remarked goes to the error stream at once.
std::optional<SeriesFacts> readOneSeries(const QString& path, const Output& output);
