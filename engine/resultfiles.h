#pragma once

#include "engine/runfolder.h"

/// All that is told of a run once it has ended.
struct RunResults
{
    const Plan* plan = nullptr;
    RunStatus status;
    QString fioVersion;              ///< empty: unknown
    QJsonArray losses;               ///< findings, as `dpc check --format=json` writes them
    std::vector<StageResult> stages; ///< of all stages of the plan
    std::vector<JobResult> jobs;     ///< of all jobs of the plan, in its order
};

/// The content of `results.json`: version 1, described in docs/results.md.
QByteArray resultsJson(const RunResults& results);

/// The content of `results.csv`: a row for each job, in UTF-8.
QByteArray resultsCsv(const RunResults& results);
