#pragma once

#include "engine/losses.h"

/// One config file that runs: the lines up to its marker.
struct StageFile
{
    int file = 0;         ///< index in SeriesFacts::files
    size_t firstLine = 0; ///< index in SeriesFacts::lines
    size_t endLine = 0;   ///< one after the last line that runs: the marker, or the end of the file
    bool hasMarker = false;
};

/// The config files of a series in the order of running: the first, and each to which a marker
/// leads. A file that is left out, or can't be read, is a loss.
std::vector<StageFile> stageFiles(const SeriesFacts& facts, Losses& losses);
