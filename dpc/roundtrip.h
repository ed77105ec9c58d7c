#pragma once

#include "check/seriesfacts.h"

#include <string>

/// What came of a comparison.
struct RoundTrip
{
    std::string changes; ///< what a load and a save would change, file by file; empty for nothing
    std::string problem; ///< one sentence why it can't be told, or empty
};

/// Loads a series with the editor's loader, renders it in memory as the editor saves it under the
/// same name, and compares with the disk. Nothing is written.
RoundTrip roundTrip(const SeriesFacts& facts);
