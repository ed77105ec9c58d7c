#pragma once

#include "check/seriesfacts.h"

/// The costs of a series on one machine. Counts stop at the largest number instead of wrapping
/// round.
struct Totals
{
    int files = 0; ///< config files
    int tasks = 0;
    qint64 bytesWritten = 0;
    qint64 bytesRead = 0;
    qint64 leastWait = 0; ///< ms: chunks x chunk wait x iterations
};

/// Adds up the tasks of a series.
Totals totalsOf(const SeriesFacts& facts);

/// For people: sizes in bytes and in the unit that fits, the wait in seconds.
std::string totalsAsText(const Totals& totals);
