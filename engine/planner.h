#pragma once

#include "check/environment.h"
#include "check/finding.h"
#include "check/seriesfacts.h"
#include "engine/plan.h"

#include <functional>
#include <optional>

/// The settings of a plan that the user chooses.
struct PlanOptions
{
    std::vector<PlanMachine> machines; ///< none: this one, without a server
    QString localTempFolder;           ///< "[temp]" of this machine; empty: its own
    QString date;                      ///< what "[date]" stands for; empty: now
    /// Each machine waits for the next full minute of its clock before each stage. Whoever runs the
    /// stage must not start it late in a minute, because the machines read their clocks one after
    /// the other.
    bool startAtMinute = false;
    std::optional<int> onlyStage; ///< of all stages, the only one that is planned; from 0
    /// True for a file of an earlier run that may be written again.
    std::function<bool(const QString& machine, const QString& path)> mayOverwrite;
    Environment environment = realEnvironment(); ///< this machine
};

/// The result of planning.
struct PlanResult
{
    Plan plan;
    std::vector<Finding> losses; ///< what fio can't do as the task says, in the order of lines
    std::vector<std::string> problems; ///< one sentence each for what no line is to blame for
    std::vector<std::string> misuse;   ///< the same for options that are missing or contradict
};

/// The jobs of a series, which must have been read. Nothing is written and nothing runs.
PlanResult planSeries(const SeriesFacts& facts, const PlanOptions& options);
