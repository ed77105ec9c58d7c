#include "dpc/runtext.h"

#include "check/text.h"
#include "check/units.h"
#include "dpc/table.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <fmt/format.h>
#include <numeric>

namespace {

std::string mib(qint64 bytes)
{
    return fmt::format("{:.1f} MiB", double(bytes) / bytesPerMib);
}

std::string seconds(qint64 ms)
{
    return fmt::format("{:.1f} s", double(ms) / msPerSecond);
}

long long countOf(size_t items)
{
    return static_cast<long long>(items);
}

std::string rateText(const std::optional<double>& rate)
{
    return rate.has_value() ? fmt::format("{:.1f}", *rate / bytesPerMib) : std::string("-");
}

QStringList rowOf(const Plan& plan, const PlanJob& job, const JobResult& result)
{
    QStringList cells;
    for (const std::string& cell :
         {std::to_string(job.line), std::string(jobKindName(job.kind)),
          std::to_string(job.iteration), printable(plan.machines[size_t(job.machine)].name),
          result.doneBytes.has_value() ? std::to_string(*result.doneBytes) : "-",
          result.runtimeMs.has_value()
              ? fmt::format("{:.3f}", double(*result.runtimeMs) / msPerSecond)
              : "-",
          rateText(result.rate()), rateText(result.ioRate()),
          result.isGood ? std::string() : result.reason})
        cells += QString::fromStdString(cell);
    return cells;
}

/// Files that the run has written to, each once.
struct Leavings
{
    long long files = 0;
    qint64 bytes = 0;
};

Leavings leavingsOf(const RunResults& results)
{
    const Plan& plan = *results.plan;
    QHash<QString, qint64> sizes;
    for (size_t i = 0; i < plan.jobs.size(); ++i) {
        const PlanJob& job = plan.jobs[i];
        const JobResult& result = results.jobs[i];
        if (job.made().isEmpty() || !result.hasBegun())
            continue;
        // fio writes over a file in place: a shorter write leaves the end of a longer one.
        qint64& size = sizes[QString::number(job.machine) + ':' + job.made()];
        size = std::max(size, *result.doneBytes);
    }
    return {sizes.size(), std::accumulate(sizes.begin(), sizes.end(), qint64(0))};
}

/// Folders that job files made on machines behind servers, for the logs of calls.
std::string logFoldersText(const RunResults& results)
{
    std::string text;
    const Plan& plan = *results.plan;
    for (size_t stage = 0; stage < plan.stages.size(); ++stage) {
        if (results.stages[stage].state == StageState::NotRun)
            continue;
        for (const PlanJobFile& file : plan.stages[stage].files) {
            if (!file.logFolder.isEmpty())
                text += fmt::format("{}: the folder {} with logs of calls stays behind\n",
                                    printable(plan.machines[size_t(file.machine)].name),
                                    quoted(file.logFolder));
        }
    }
    return text;
}

/// If it goes on as fast as until now.
qint64 msLeft(const RunProgress& progress)
{
    const double perByte = double(progress.elapsedMs) / double(*progress.doneBytes);
    return qint64(perByte * double(progress.plannedBytes - *progress.doneBytes));
}

} // namespace

std::string forecastText(const Plan& plan)
{
    qint64 written = 0;
    qint64 readBytes = 0;
    qint64 idleMs = 0;
    QSet<QString> files;
    for (const PlanJob& job : plan.jobs) {
        written += job.kind == JobKind::Read ? 0 : job.bytes;
        readBytes += job.kind == JobKind::Read || job.kind == JobKind::Copy ? job.bytes : 0;
        if (!job.made().isEmpty())
            files.insert(QString::number(job.machine) + ':' + job.made());
    }
    for (const PlanStage& stage : plan.stages) {
        qint64 longest = 0;
        for (const PlanJobFile& file : stage.files)
            longest = std::max(longest, fioIdleMs(file, plan.isLocal()));
        idleMs += longest;
    }
    return fmt::format("{} on {}, {}: writes {} ({}), reads {}; fio itself idles about {}\n",
                       counted(countOf(plan.stages.size()), "stage"),
                       counted(countOf(plan.machines.size()), "machine"),
                       counted(countOf(plan.jobs.size()), "job"), counted(files.size(), "file"),
                       mib(written), mib(readBytes), seconds(idleMs));
}

std::string resultsText(const RunResults& results)
{
    const Plan& plan = *results.plan;
    std::string text;
    for (size_t stage = 0; stage < plan.stages.size(); ++stage) {
        if (results.stages[stage].state == StageState::NotRun)
            continue;
        text += fmt::format("{}stage {}: {}\n", text.empty() ? "" : "\n", stage,
                            printable(plan.stages[stage].configFile));
        Table table{{"line", "task", "iteration", "machine", "bytes", "seconds", "MiB/s",
                     "MiB/s of the I/O", ""},
                    {true, false, true, false, true, true, true, true, false},
                    {}};
        const JobRange range = jobsOf(plan, stage);
        for (size_t i = range.begin; i < range.end; ++i)
            table.rows.push_back(rowOf(plan, plan.jobs[i], results.jobs[i]));
        text += tableAsText(table);
    }
    return text;
}

std::string outcomeText(const RunResults& results, const QString& folder)
{
    std::string text;
    for (const std::string& reason : results.status.reasons)
        text += reason + '\n';
    const RunStatus& status = results.status;
    if (status.state == RunState::Refused)
        return text + "refused: nothing was run\n";
    const auto good = std::count_if(results.jobs.begin(), results.jobs.end(),
                                    [](const JobResult& job) { return job.isGood; });
    text += fmt::format("{}: {} of {} jobs did their bytes", runStateName(status.state), good,
                        results.jobs.size());
    if (status.endedMs.has_value())
        text += fmt::format(", in {}", seconds(*status.endedMs - status.startedMs));
    const Leavings leavings = leavingsOf(results);
    text +=
        fmt::format("\n{} with {} bytes ({}) {} behind", counted(leavings.files, "file"),
                    leavings.bytes, mib(leavings.bytes), leavings.files == 1 ? "stays" : "stay");
    const bool hasManifest = status.stage.has_value();
    text += hasManifest ? fmt::format("; {} lists them\n", printable(folder + manifestFileName))
                        : std::string("\n");
    return text + logFoldersText(results);
}

std::string progressText(const Plan& plan, const RunProgress& progress, int width)
{
    std::string text = fmt::format("stage {} ({} in all): ", progress.stage, plan.stages.size());
    const std::string passed = seconds(progress.elapsedMs);
    if (!progress.doneBytes.has_value())
        text += fmt::format("{}, {} of at least {}, {} planned",
                            counted(countOf(plan.stages[progress.stage].files.size()), "machine"),
                            passed, seconds(progress.leastMs), mib(progress.plannedBytes));
    else if (*progress.doneBytes == 0)
        text += fmt::format("0.0 of {}, {}", mib(progress.plannedBytes), passed);
    else
        text += fmt::format("{:.1f} of {}, {}, about {} left",
                            double(*progress.doneBytes) / bytesPerMib, mib(progress.plannedBytes),
                            passed, seconds(msLeft(progress)));
    return QString::fromStdString(text).left(width).toStdString();
}
