#pragma once

#include "engine/runrecord.h"

#include <QJsonObject>

/// Bandwidth over time, for the picture of it.
struct TimeLine
{
    /// The rates of a machine.
    struct Series
    {
        QString label;
        std::vector<double> values; ///< MiB/s in each step
    };
    /// A moment, from the start of the run.
    struct Mark
    {
        QString label;
        double second = 0;
    };

    double step = 0;            ///< seconds
    std::vector<Series> series; ///< one for each machine, or one for all if they are many
    std::vector<Mark> stages;   ///< the begin of each stage but the first

    /// True if nothing was measured over time.
    bool isEmpty() const { return series.empty(); }
};

/// From the bandwidth logs of a run, in at most 600 steps; empty if there are none.
TimeLine timeLineOf(const RecordedRun& run);
