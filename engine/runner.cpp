#include "engine/runner.h"

#include "check/text.h"
#include "engine/asking.h"
#include "engine/fioprogress.h"
#include "engine/jobfile.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <fmt/format.h>
#include <sys/stat.h>

namespace {

/// Nobody reads a longer list of reasons; results.json tells of every job.
constexpr size_t maxReasons = 20;
constexpr int versionTimeoutMs = 60000;

qint64 now()
{
    return QDateTime::currentMSecsSinceEpoch();
}

const char* stopText(StopReason reason)
{
    switch (reason) {
    case StopReason::Interrupt:
        return "interrupted by SIGINT";
    case StopReason::Terminate:
        return "interrupted by SIGTERM or SIGHUP";
    case StopReason::Timeout:
        return "interrupted by the timeout";
    case StopReason::None:
        break;
    }
    return "";
}

/// Bytes that fio reads and writes for a job.
qint64 movedBytes(const PlanJob& job)
{
    return job.kind == JobKind::Copy ? 2 * job.bytes : job.bytes;
}

/// Reports how far a stage of one call is.
class StageProgress
{
public:
    StageProgress(const Plan& plan, size_t stage)
        : m_isLocal(plan.isLocal())
    {
        m_progress.stage = stage;
        std::vector<qint64> waits(plan.machines.size(), 0);
        const JobRange range = jobsOf(plan, stage);
        for (size_t i = range.begin; i < range.end; ++i) {
            const PlanJob& job = plan.jobs[i];
            m_progress.plannedBytes += job.bytes;
            m_movedPlanned += movedBytes(job);
            waits[size_t(job.machine)] += job.chunks() * job.waitMs;
        }
        for (const PlanJobFile& file : plan.stages[stage].files)
            m_progress.leastMs = std::max(m_progress.leastMs, waits[size_t(file.machine)] +
                                                                  fioIdleMs(file, plan.isLocal()));
        m_time.start();
    }

    RunProgress at(pid_t process)
    {
        m_progress.elapsedMs = m_time.elapsed();
        const std::optional<long long> moved =
            m_isLocal ? bytesMovedBy(process) : std::optional<long long>();
        if (moved.has_value()) {
            const double part = std::min(1.0, double(*moved) / double(m_movedPlanned));
            m_progress.doneBytes = qint64(part * double(m_progress.plannedBytes));
        }
        return m_progress;
    }

private:
    bool m_isLocal;
    RunProgress m_progress;
    qint64 m_movedPlanned = 0;
    QElapsedTimer m_time;
};

std::string jobText(const Plan& plan, const PlanJob& job, const std::string& reason)
{
    return fmt::format("{}:{}: {}, iteration {}: {}",
                       printable(plan.stages[size_t(job.stage)].shownFile), job.line,
                       printable(plan.machines[size_t(job.machine)].name), job.iteration, reason);
}

/// True if the file is there, and empty if that is asked for.
bool isThere(const QString& path, bool isEmpty)
{
    struct stat status
    {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 && S_ISREG(status.st_mode) &&
           (!isEmpty || status.st_size == 0);
}

/// False if the run certainly left the file of a job as it was.
bool mayBeMade(const Plan& plan, const PlanJob& job, const JobResult& result, StageState stageState)
{
    const bool isReported = result.error.has_value();
    if (isReported && (result.hasBegun() || *result.error != 0))
        return true;
    if (!isReported)
        return !plan.isLocal() || isThere(job.made(), false);
    // Its guard said no, and what is there is not of this run. Only a job that was stopped between
    // opening the file and writing it looks the same.
    return stageState == StageState::Interrupted && plan.isLocal() && isThere(job.made(), true);
}

} // namespace

qint64 fioIdleMs(const PlanJobFile& file, bool isLocal)
{
    // Measured: a section idles 0.3 s, a stage 1.7 s through a client and 0.6 s without.
    constexpr qint64 sectionMs = 300;
    constexpr qint64 localMs = 300;
    constexpr qint64 clientMs = 1400;
    return file.sections * sectionMs + (isLocal ? localMs : clientMs);
}

QStringList triedFioVersions()
{
    return {QStringLiteral("fio-3.33"), QStringLiteral("fio-3.39")};
}

QString fioVersion(const QString& program, std::string& problem)
{
    const QTemporaryDir folder;
    const SignalGuard heldSignals;
    FioCall call;
    call.program = program;
    call.arguments = QStringList{QStringLiteral("--version")};
    call.folder = folder.path();
    call.outputFile = folder.filePath(QStringLiteral("out"));
    call.errorFile = folder.filePath(QStringLiteral("err"));
    call.timeoutMs = versionTimeoutMs;
    const FioExit exit = heldSignals.run(call);
    problem = stopText(exit.stopped);
    if (!exit.problem.isEmpty())
        problem = exit.problem.toStdString() + "; it is in the package fio";
    if (!problem.empty())
        return {};
    QFile file(call.outputFile);
    constexpr qint64 maxVersionLength = 100;
    const QByteArray told =
        file.open(QIODevice::ReadOnly) ? file.read(maxVersionLength) : QByteArray();
    QString version = QString::fromLatin1(told).trimmed();
    if (version.isEmpty())
        problem = "it tells no version";
    return version;
}

Runner::Runner(const Plan& plan, RunFolder& folder, const RunOptions& options)
    : m_plan(plan)
    , m_folder(folder)
    , m_options(options)
{
    m_results.plan = &plan;
    m_results.losses = options.losses;
    m_results.stages.resize(plan.stages.size());
    m_results.jobs.resize(plan.jobs.size(), notRun("its stage did not run"));
}

RunResults Runner::run(const QString& fioVersion)
{
    m_results.fioVersion = fioVersion;
    m_results.status.startedMs = now();
    m_folder.writeState(m_results.status);
    const FioMachines machines(m_plan, m_folder, m_signals, m_options.program);
    if (isAsPlanned(machines) && !m_options.dryRun)
        runStages(machines);
    if (!m_options.dryRun)
        finish();
    return std::move(m_results);
}

/// Reaches and asks the machines; false if there is nothing to run.
bool Runner::isAsPlanned(const FioMachines& machines)
{
    std::vector<std::string> reasons = machines.reach(m_options.connectTimeoutMs);
    if (isStopped(m_signals.pending()))
        return false;
    if (reasons.empty()) {
        Answers answers = askMachines(m_plan, machines, m_folder);
        if (isStopped(answers.stopped))
            return false;
        reasons = std::move(answers.reasons);
    }
    if (!reasons.empty())
        refuse(std::move(reasons));
    return m_results.status.state == RunState::Running;
}

void Runner::runStages(const FioMachines& machines)
{
    for (size_t stage = 0; stage < m_plan.stages.size() && mayStart(); ++stage) {
        runStage(machines, stage);
        const bool hasFailed = m_results.stages[stage].state != StageState::Complete;
        if (m_results.status.state != RunState::Running || (hasFailed && !m_options.keepGoing))
            return;
    }
}

/// The machines read their clocks one after the other, and all must see the same minute: waits for
/// the next one if this is nearly over. False if a signal came.
bool Runner::mayStart()
{
    constexpr qint64 msPerMinute = 60000;
    constexpr qint64 lateMs = 40000;
    const qint64 passed = now() % msPerMinute;
    const bool isLate = m_plan.startAtMinute && passed >= lateMs;
    return !isStopped(isLate ? m_signals.sleep(int(msPerMinute - passed)) : m_signals.pending());
}

void Runner::runStage(const FioMachines& machines, size_t stage)
{
    m_results.status.stage = int(stage);
    addToManifest(stage);
    m_folder.writeState(m_results.status);
    // Without the manifest nobody could tell what the run has made.
    if (!m_folder.problem().empty()) {
        m_results.status.reasons.push_back(m_folder.problem());
        m_results.stages[stage].state = StageState::Incomplete;
        return;
    }
    StageProgress progress(m_plan, stage);
    FioMachines::Output output = {
        QStringLiteral("stage-%1").arg(stage), m_options.stageTimeoutMs, {}};
    if (m_options.onProgress)
        output.onTick = [&](pid_t process) { m_options.onProgress(progress.at(process)); };
    std::vector<FioMachines::JobFile> files;
    for (const PlanJobFile& file : m_plan.stages[stage].files)
        files.push_back({file.machine, file.file});
    StageResult& result = m_results.stages[stage];
    result.startedMs = now();
    const FioExit exit = machines.call(files, output);
    result.endedMs = now();
    if (!exit.problem.isEmpty())
        m_results.status.reasons.push_back("fio can't be run: " + printable(exit.problem));
    if (exit.wasKilled)
        m_results.status.reasons.emplace_back(
            "fio did not end when it was asked to, and was killed");
    result.state = isStopped(exit.stopped) ? StageState::Interrupted : StageState::Complete;
    account(machines, stage, output.name);
}

/// Only what every job has done counts: fio's own status says nothing.
void Runner::account(const FioMachines& machines, size_t stage, const QString& output)
{
    const FioOutput reported = machines.read(output);
    const FioLogs logs(m_folder.file(QLatin1String(outputFolderName)),
                       QLatin1String(outputFolderName) + QLatin1Char('/'));
    std::vector<JobResult> jobs = accountStage(m_plan, stage, machines.hosts(), reported, logs);
    const JobRange range = jobsOf(m_plan, stage);
    StageResult& result = m_results.stages[stage];
    size_t bad = 0;
    for (size_t i = range.begin; i < range.end; ++i) {
        JobResult& job = m_results.jobs[i];
        job = std::move(jobs[i - range.begin]);
        if (!job.isGood && bad++ < maxReasons)
            m_results.status.reasons.push_back(jobText(m_plan, m_plan.jobs[i], job.reason));
    }
    if (bad > maxReasons)
        m_results.status.reasons.push_back(
            fmt::format("and {} more jobs, as {} tells", bad - maxReasons, resultsFileName));
    const std::string complaint = bad > 0 ? machines.complaint(output) : std::string();
    if (!complaint.empty())
        m_results.status.reasons.push_back("fio said: " + complaint);
    if (bad > 0 && result.state == StageState::Complete)
        result.state = StageState::Incomplete;
    const auto isUntouched = [&](size_t index) {
        const PlanJob& job = m_plan.jobs[index];
        return size_t(job.stage) == stage &&
               !mayBeMade(m_plan, job, m_results.jobs[index], result.state);
    };
    m_made.erase(std::remove_if(m_made.begin(), m_made.end(), isUntouched), m_made.end());
    writeManifest();
}

/// Before a file is made it stands in the manifest, so that a run that was killed has it as well.
void Runner::addToManifest(size_t stage)
{
    const JobRange range = jobsOf(m_plan, stage);
    for (size_t i = range.begin; i < range.end; ++i) {
        if (!m_plan.jobs[i].made().isEmpty())
            m_made.push_back(i);
    }
    writeManifest();
}

void Runner::writeManifest()
{
    std::vector<MadeFile> files;
    for (const size_t index : m_made) {
        const PlanJob& job = m_plan.jobs[index];
        files.push_back({m_plan.machines[size_t(job.machine)].name, job.made()});
    }
    m_folder.write(QLatin1String(manifestFileName), manifestText(files));
}

void Runner::finish()
{
    RunStatus& status = m_results.status;
    if (status.state == RunState::Running) {
        bool isComplete = true;
        bool isWhole = true;
        for (const StageResult& stage : m_results.stages) {
            isComplete = isComplete && stage.state == StageState::Complete;
            isWhole = isWhole && stage.state != StageState::NotRun;
        }
        status.state =
            isComplete ? RunState::Complete : (isWhole ? RunState::Incomplete : RunState::Failed);
    }
    status.endedMs = now();
    m_folder.write(QLatin1String(resultsFileName), resultsJson(m_results));
    m_folder.write(QLatin1String(tableFileName), resultsCsv(m_results));
    m_folder.writeState(status);
}

bool Runner::isStopped(StopReason reason)
{
    if (reason == StopReason::None)
        return false;
    m_results.status.state = RunState::Interrupted;
    m_results.status.reasons.emplace_back(stopText(reason));
    return true;
}

void Runner::refuse(std::vector<std::string> reasons)
{
    m_results.status.state = RunState::Refused;
    m_results.status.reasons = std::move(reasons);
}
