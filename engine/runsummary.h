#pragma once

#include "engine/runrecord.h"

#include <optional>
#include <vector>

// The figures of a run, summed up as people compare them. Nothing here is made up for a value that
// is not known.

/// Of the values of several iterations.
struct Spread
{
    double min;
    double median;
    double max;
    int count; ///< of values, at least 1
};

/// Nothing for no values.
std::optional<Spread> spreadOf(std::vector<double> values);

/// One task on one machine, over its iterations.
struct TaskSummary
{
    RecordedJob first; ///< of its iterations
    int iterations = 0;
    int good = 0;                  ///< iterations that did their bytes
    std::optional<qint64> bytes;   ///< of all iterations that reported any
    std::optional<double> seconds; ///< waits included
    std::optional<Spread> rate;    ///< bytes per second, waits included
    std::optional<Spread> ioRate;  ///< bytes per second of the I/O alone
    std::optional<double> p50Ns;   ///< median of the iterations
    std::optional<double> p99Ns;   ///< median of the iterations
    std::optional<qint64> maxNs;   ///< largest of the iterations
    bool isShort = false;          ///< an iteration took less than a second: its rate says little
};

/// One stage over all machines.
struct StageSummary
{
    QString configFile;
    QString state;
    int jobs = 0;
    int good = 0;
    std::optional<qint64> bytes;
    std::optional<double> seconds; ///< from the first start of a job to the last end
    std::optional<double> rate;    ///< bytes per second in that time
    std::optional<qint64> skewMs;  ///< between the first jobs of the machines
};

/// All of a run.
struct RunSummary
{
    std::vector<StageSummary> stages;
    std::vector<TaskSummary> tasks; ///< in the order of the plan
};

/// Sums up a run.
RunSummary summaryOf(const RecordedRun& run);

/// One task and machine in two runs of one series.
struct TaskComparison
{
    TaskSummary base;
    std::optional<TaskSummary> other; ///< nothing if the other run lacks it
    std::optional<double> ratio;      ///< other by base, of the median rate of the I/O alone
    bool isBeyondSpread =
        false; ///< the medians differ by more than the iterations of either run do

    /// True if the other run is slower by more than this part of the base, and by more than the
    /// spread.
    bool isSlower(double part) const;
};

/// The tasks of `base`, each with that of `other` that has the same file name, line, kind and
/// machine in the same stage.
std::vector<TaskComparison> compare(const RunSummary& base, const RunSummary& other);
