#pragma once

#include "engine/fiomachines.h"
#include "engine/resultfiles.h"

// The running of a plan: machines are reached, asked, and given their jobs stage by stage. fio does
// all I/O on the files of the series; this only looks at what it says.

/// The present work of a run.
struct RunProgress
{
    size_t stage = 0;
    qint64 elapsedMs = 0;            ///< since the stage began
    qint64 leastMs = 0;              ///< what its waits and fio's idling take at least
    qint64 plannedBytes = 0;         ///< of the stage
    std::optional<qint64> doneBytes; ///< of the stage; unknown with servers
};

/// The settings of a run that the user chooses.
struct RunOptions
{
    QString program = QStringLiteral("fio");
    bool dryRun = false;    ///< ends before the first stage
    bool keepGoing = false; ///< a stage that failed does not end the run
    int stageTimeoutMs = 0; ///< 0: as long as it takes
    int connectTimeoutMs = 10000;
    QJsonArray losses;                                           ///< findings, for the results
    std::function<void(const RunProgress& progress)> onProgress; ///< may be empty
};

/// The time that fio idles for one job file, in ms.
qint64 fioIdleMs(const PlanJobFile& file, bool isLocal);

/// Versions of fio that runs were tried with, as fio spells them.
QStringList triedFioVersions();

/// The version of a program, as fio spells it; empty, and the reason, if it can't be run or tells
/// none.
QString fioVersion(const QString& program, std::string& problem);

/// Runs a plan that was exported into the folder of the run, and leaves its state, its manifest and
/// its results there. SIGINT, SIGTERM and SIGHUP end it in order.
class Runner
{
public:
    /// All must outlive it.
    Runner(const Plan& plan, RunFolder& folder, const RunOptions& options);

    /// To be called once. `fioVersion` is for the results.
    RunResults run(const QString& fioVersion);

private:
    bool isAsPlanned(const FioMachines& machines);
    void runStages(const FioMachines& machines);
    bool mayStart();
    void runStage(const FioMachines& machines, size_t stage);
    void account(const FioMachines& machines, size_t stage, const QString& output);
    void addToManifest(size_t stage);
    void writeManifest();
    void finish();

    bool isStopped(StopReason reason);
    void refuse(std::vector<std::string> reasons);

    const Plan& m_plan;
    RunFolder& m_folder;
    const RunOptions& m_options;
    SignalGuard m_signals;
    std::vector<size_t> m_made; ///< jobs whose files the manifest names
    RunResults m_results;
};
