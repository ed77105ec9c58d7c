#pragma once

#include "configset/seriesname.h"

#include <QString>
#include <QStringList>

#include <string>
#include <vector>

/// A series that has at least one file.
struct FoundSeries
{
    SeriesName name;     ///< with an absolute folder
    QString shownFolder; ///< the folder as the user spells it
};

/// The result of a search.
struct SeriesSearch
{
    std::vector<FoundSeries> series;
    QStringList notLoaded; ///< config files, as the user spells them, that belong to no series
    std::string problem;   ///< one sentence if nothing was found
};

/// The series that a path leads to: a file to the one that the editor would load for it, a folder
/// to all that have a file in it or in its "_wait". "_init" files belong to their series.
SeriesSearch findSeries(const QString& path);

/// The same if exactly one is wanted.
SeriesSearch findOneSeries(const QString& path);

/// Removes duplicates, and "_init" files of other series in the list. A series that was also opened
/// in its "_wait" is kept as that of the folder above, which holds all its files.
std::vector<FoundSeries> withoutDuplicates(const std::vector<FoundSeries>& series);
