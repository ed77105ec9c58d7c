#include "engine/runrecord.h"

#include "check/text.h"
#include "engine/jsonnumbers.h"
#include "engine/planfile.h"
#include "engine/runfolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <fmt/format.h>

namespace {

constexpr int knownVersion = 1;
constexpr qint64 maxFileBytes = 256LL << 20;

/// Nothing unless the file is regular: a pipe of that name would block.
std::optional<QByteArray> contentOf(const QString& folder, const char* name)
{
    const QString path = folder + '/' + QLatin1String(name);
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.read(maxFileBytes);
}

QStringList textsOf(const QJsonValue& list)
{
    QStringList texts;
    for (const QJsonValue value : list.toArray())
        texts += value.toString();
    return texts;
}

RecordedJob jobOf(const QJsonObject& object)
{
    RecordedJob job;
    job.stage = object["stage"].toInt();
    job.configFile = object["configFile"].toString();
    job.line = object["line"].toInt();
    job.task = object["task"].toInt();
    job.kind = object["kind"].toString();
    job.machine = object["machine"].toString();
    job.iteration = object["iteration"].toInt();
    job.name = object["name"].toString();
    job.source = object["source"].toString();
    job.destination = object["destination"].toString();
    job.plannedBytes = wholeNumberOf(object["plannedBytes"]).value_or(0);
    job.isGood = object["good"].toBool();
    job.reason = object["reason"].toString();
    job.doneBytes = wholeNumberOf(object["doneBytes"]);
    job.startMs = wholeNumberOf(object["startMs"]);
    job.endMs = wholeNumberOf(object["endMs"]);
    job.runtimeMs = wholeNumberOf(object["runtimeMs"]);
    job.rate = numberOf(object["bytesPerSecond"]);
    job.ioRate = numberOf(object["ioBytesPerSecond"]);
    job.p50Ns = wholeNumberOf(object["p50Ns"]);
    job.p99Ns = wholeNumberOf(object["p99Ns"]);
    job.maxNs = wholeNumberOf(object["maxNs"]);
    job.bandwidthLogs = textsOf(object["bandwidthLogs"]);
    return job;
}

RecordedRun runOf(const QJsonObject& object)
{
    RecordedRun run;
    run.state = object["state"].toString();
    run.reasons = textsOf(object["reasons"]);
    run.series = object["series"].toString();
    run.info = textsOf(object["info"]);
    run.startedMs = wholeNumberOf(object["startedMs"]);
    run.endedMs = wholeNumberOf(object["endedMs"]);
    run.fioVersion = object["fioVersion"].toString();
    run.dpcVersion = object["dpcVersion"].toString();
    for (const QJsonValue machine : object["machines"].toArray())
        run.machines += machine.toObject()["name"].toString();
    run.losses = object["losses"].toArray();
    for (const QJsonValue value : object["stages"].toArray()) {
        const QJsonObject stage = value.toObject();
        run.stages.push_back({stage["configFile"].toString(), stage["state"].toString()});
    }
    for (const QJsonValue job : object["jobs"].toArray())
        run.jobs.push_back(jobOf(job.toObject()));
    return run;
}

RecordedJob plannedJob(const Plan& plan, const PlanJob& planned)
{
    RecordedJob job;
    job.stage = planned.stage;
    job.configFile = plan.stages[size_t(planned.stage)].configFile;
    job.line = planned.line;
    job.task = planned.task;
    job.kind = QLatin1String(jobKindName(planned.kind));
    job.machine = plan.machines[size_t(planned.machine)].name;
    job.iteration = planned.iteration;
    job.name = QString::fromLatin1(planned.name());
    job.source = planned.source.path;
    job.destination = planned.destination.path;
    job.plannedBytes = planned.bytes;
    return job;
}

/// Of a run without results: it was refused or killed, or goes on.
RecordedRun runOf(const QJsonObject& state, const QString& folder, const PlanFileContent* planned)
{
    RecordedRun run;
    run.startedMs = wholeNumberOf(state["startedMs"]);
    run.state = state["state"].toString();
    if (run.state == QLatin1String(runStateName(RunState::Refused))) {
        run.reasons = textsOf(state["reasons"]);
    } else {
        run.state = RunFolder::isLocked(folder) ? "running" : "killed";
        const QJsonValue stage = state["stage"];
        run.reasons += stage.isDouble()
                           ? QString("%1 in stage %2").arg(run.state).arg(stage.toInt())
                           : QString("%1 before its first stage").arg(run.state);
    }
    if (planned == nullptr)
        return run;
    const Plan& plan = planned->plan;
    run.series = plan.series;
    run.losses = planned->losses;
    for (const std::string& line : plan.info)
        run.info += QString::fromStdString(line);
    for (const PlanMachine& machine : plan.machines)
        run.machines += machine.name;
    for (const PlanStage& planStage : plan.stages)
        run.stages.push_back({planStage.configFile, QString()});
    for (const PlanJob& job : plan.jobs)
        run.jobs.push_back(plannedJob(plan, job));
    return run;
}

std::optional<RecordedRun> unendedRun(const QString& folder, std::string& problem)
{
    const QJsonObject state =
        QJsonDocument::fromJson(contentOf(folder, stateFileName).value_or("")).object();
    if (state["version"].toInt() != knownVersion) {
        problem = fmt::format("{} does not hold a run", quoted(folder));
        return std::nullopt;
    }
    std::string unused;
    const std::optional<PlanFileContent> plan =
        planFromJson(contentOf(folder, planFileName).value_or(""), unused);
    return runOf(state, folder, plan ? &*plan : nullptr);
}

std::optional<RecordedRun> endedRun(const QByteArray& results, const QString& folder,
                                    std::string& problem)
{
    const QJsonObject object = QJsonDocument::fromJson(results).object();
    if (object["version"].toInt() != knownVersion) {
        problem = fmt::format(object.isEmpty() ? "{} holds results that can't be read"
                                               : "{} holds results of another version of dpc",
                              quoted(folder));
        return std::nullopt;
    }
    RecordedRun run = runOf(object);
    const auto isOfNoStage = [&](const RecordedJob& job) {
        return job.stage < 0 || size_t(job.stage) >= run.stages.size();
    };
    if (std::any_of(run.jobs.begin(), run.jobs.end(), isOfNoStage)) {
        problem = fmt::format("{} holds results that were changed", quoted(folder));
        return std::nullopt;
    }
    return run;
}

} // namespace

std::optional<RecordedRun> readRun(const QString& folder, std::string& problem)
{
    const std::optional<QByteArray> results = contentOf(folder, resultsFileName);
    std::optional<RecordedRun> run =
        results ? endedRun(*results, folder, problem) : unendedRun(folder, problem);
    if (run)
        run->folder = QDir::cleanPath(folder);
    return run;
}
