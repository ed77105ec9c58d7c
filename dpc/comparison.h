#pragma once

#include "check/seriesfacts.h"

#include <string>
#include <vector>

/// A line of a series; 0 if there is none.
struct EntryPlace
{
    QString file; ///< as the user spells the folder
    int line = 0;
};

/// A difference at one place of two series.
struct Difference
{
    /// The part of the series that differs.
    enum class Kind
    {
        InfoText,
        Field,
        OnlyInFirst,
        OnlyInSecond
    };

    Kind kind = Kind::InfoText;
    EntryPlace first;
    EntryPlace second;
    std::string field;  ///< its name
    std::string before; ///< its value in the first series, safe to print
    std::string after;
    std::string entry; ///< the task, or the marker, that one of them lacks
};

/// The differences of two series, by task and field; empty if they are equal. Settings are compared
/// as the editor loads them, paths as they are written, and the names of next files not at all.
std::vector<Difference> differencesOf(const SeriesFacts& first, const SeriesFacts& second);

/// One line for each difference.
std::string differencesAsText(const std::vector<Difference>& differences);
