#pragma once

#include "check/finding.h"
#include "check/seriesfacts.h"
#include "engine/plan.h"

#include <functional>
#include <optional>

/// What a plan asks of this machine. It never writes.
struct PlanEnvironment
{
    /// Size of a regular file, links followed; nothing if it is not there, or something else.
    std::function<std::optional<qint64>(const QString& path)> fileSize;
    /// True for a device, a FIFO, a socket or a folder.
    std::function<bool(const QString& path)> isSpecial;
};

/// This machine.
PlanEnvironment realPlanEnvironment();

/// What the user asks of a plan.
struct PlanOptions
{
    std::vector<PlanMachine> machines; ///< none: this one, without a server
    QString date;                      ///< what "[date]" stands for; empty: now
    bool startAtMinute = false;        ///< each stage begins at the next full minute of the clock
    /// True for a file of an earlier run that may be written again.
    std::function<bool(const QString& machine, const QString& path)> mayOverwrite;
    PlanEnvironment environment = realPlanEnvironment();
};

/// What came of planning.
struct PlanResult
{
    Plan plan;
    std::vector<Finding> losses; ///< what fio can't do as the task says, in the order of lines
    std::vector<std::string> problems; ///< one sentence each for what no line is to blame for
    std::vector<std::string> misuse;   ///< the same for options that are missing or contradict
};

/// The jobs of a series, which must have been read. Nothing is written and nothing runs.
PlanResult planSeries(const SeriesFacts& facts, const PlanOptions& options);
