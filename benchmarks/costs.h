#pragma once

#include <QList>

/// The numbers of tasks by which growth is followed.
inline QList<int> growthSizes(int largest)
{
    QList<int> sizes;
    for (int size = 10; size <= largest; size *= 10)
        sizes += size;
    return sizes;
}

/// One line, one name: writers, readers and the expansion of variables, with their baselines.
void countLines();

/// Whole series: saving, loading, collecting files; with QSaveFile as the baseline of one file.
void countSeries(int largest);

/// The table of the window, with a plain table of the same cells as its baseline.
void countTable(int largest);
