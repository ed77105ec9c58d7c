#include "engine/resultfiles.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace {

constexpr int formatVersion = 1;

template <class Number>
QJsonValue valueOf(const std::optional<Number>& number)
{
    return number.has_value() ? QJsonValue(double(*number)) : QJsonValue();
}

QJsonValue rateOf(const std::optional<double>& rate)
{
    return rate.has_value() ? QJsonValue(std::round(*rate)) : QJsonValue();
}

QJsonValue pathOf(const PlanFile& file)
{
    return file.path.isEmpty() ? QJsonValue() : QJsonValue(file.path);
}

QJsonValue textOf(const std::string& text)
{
    return text.empty() ? QJsonValue() : QJsonValue(QString::fromStdString(text));
}

QJsonArray textsOf(const std::vector<std::string>& texts)
{
    QJsonArray array;
    for (const std::string& text : texts)
        array.append(QString::fromStdString(text));
    return array;
}

QJsonValue figuresOf(const std::optional<IoFigures>& figures)
{
    if (!figures.has_value())
        return {};
    QJsonObject object;
    object.insert(QStringLiteral("bytes"), figures->bytes);
    object.insert(QStringLiteral("ios"), figures->ios);
    object.insert(QStringLiteral("ioNs"), std::round(figures->ioNs));
    object.insert(QStringLiteral("p50Ns"), valueOf(figures->p50Ns));
    object.insert(QStringLiteral("p99Ns"), valueOf(figures->p99Ns));
    object.insert(QStringLiteral("maxNs"), valueOf(figures->maxNs));
    return object;
}

/// The direction that the columns of latency are about.
const std::optional<IoFigures>& mainFigures(const PlanJob& job, const JobResult& result)
{
    return job.kind == JobKind::Read ? result.read : result.write;
}

QJsonObject latencyOf(const PlanJob& job, const JobResult& result)
{
    const std::optional<IoFigures>& figures = mainFigures(job, result);
    const IoFigures none;
    const IoFigures& known = figures.has_value() ? *figures : none;
    QJsonObject object;
    object.insert(QStringLiteral("ios"),
                  figures.has_value() ? QJsonValue(known.ios) : QJsonValue());
    object.insert(QStringLiteral("p50Ns"), valueOf(known.p50Ns));
    object.insert(QStringLiteral("p99Ns"), valueOf(known.p99Ns));
    object.insert(QStringLiteral("maxNs"), valueOf(known.maxNs));
    return object;
}

QJsonObject jobOf(const Plan& plan, const PlanJob& job, const JobResult& result)
{
    QJsonArray logs;
    for (const QString& log : result.bandwidthLogs)
        logs.append(log);
    QJsonObject object = latencyOf(job, result);
    const QJsonObject rest{
        {QStringLiteral("stage"), job.stage},
        {QStringLiteral("configFile"), plan.stages[size_t(job.stage)].configFile},
        {QStringLiteral("line"), job.line},
        {QStringLiteral("task"), job.task},
        {QStringLiteral("kind"), QLatin1String(jobKindName(job.kind))},
        {QStringLiteral("machine"), plan.machines[size_t(job.machine)].name},
        {QStringLiteral("iteration"), job.iteration},
        {QStringLiteral("name"), QString::fromLatin1(job.name())},
        {QStringLiteral("source"), pathOf(job.source)},
        {QStringLiteral("destination"), pathOf(job.destination)},
        {QStringLiteral("chunkBytes"), job.chunk},
        {QStringLiteral("plannedBytes"), job.bytes},
        {QStringLiteral("doneBytes"), valueOf(result.doneBytes)},
        {QStringLiteral("good"), result.isGood},
        {QStringLiteral("error"), valueOf(result.error)},
        {QStringLiteral("reason"), textOf(result.reason)},
        {QStringLiteral("startMs"), valueOf(result.startMs)},
        {QStringLiteral("endMs"), valueOf(result.endMs())},
        {QStringLiteral("runtimeMs"), valueOf(result.runtimeMs)},
        {QStringLiteral("bytesPerSecond"), rateOf(result.rate())},
        {QStringLiteral("ioNs"), valueOf(result.ioNs)},
        {QStringLiteral("ioBytesPerSecond"), rateOf(result.ioRate())},
        {QStringLiteral("syncs"), valueOf(result.syncs)},
        {QStringLiteral("syncNs"), valueOf(result.syncNs)},
        {QStringLiteral("read"), figuresOf(result.read)},
        {QStringLiteral("write"), figuresOf(result.write)},
        {QStringLiteral("bandwidthLogs"), logs},
    };
    for (auto entry = rest.begin(); entry != rest.end(); ++entry)
        object.insert(entry.key(), entry.value());
    return object;
}

QJsonObject stageOf(const Plan& plan, size_t index, const StageResult& result)
{
    const PlanStage& stage = plan.stages[index];
    qint64 bytes = 0;
    const JobRange range = jobsOf(plan, index);
    for (size_t i = range.begin; i < range.end; ++i)
        bytes += plan.jobs[i].bytes;
    return {{QStringLiteral("stage"), int(index)},
            {QStringLiteral("configFile"), stage.configFile},
            {QStringLiteral("state"), QLatin1String(stageStateName(result.state))},
            {QStringLiteral("startedMs"), valueOf(result.startedMs)},
            {QStringLiteral("endedMs"), valueOf(result.endedMs)},
            {QStringLiteral("jobs"), int(range.end - range.begin)},
            {QStringLiteral("plannedBytes"), bytes}};
}

QJsonArray machinesOf(const Plan& plan)
{
    QJsonArray machines;
    for (const PlanMachine& machine : plan.machines) {
        const QJsonValue address = machine.address.isEmpty()
                                       ? QJsonValue()
                                       : QJsonValue(QString::fromLocal8Bit(machine.address));
        machines.append(QJsonObject{{QStringLiteral("name"), machine.name},
                                    {QStringLiteral("address"), address}});
    }
    return machines;
}

/// A column of the table: its heading, and its field of a job.
struct Column
{
    const char* heading;
    const char* field;
};

constexpr Column columns[] = {
    {"stage", "stage"},
    {"config file", "configFile"},
    {"line", "line"},
    {"task", "task"},
    {"kind", "kind"},
    {"machine", "machine"},
    {"iteration", "iteration"},
    {"fio job", "name"},
    {"source", "source"},
    {"destination", "destination"},
    {"chunk (bytes)", "chunkBytes"},
    {"planned (bytes)", "plannedBytes"},
    {"done (bytes)", "doneBytes"},
    {"good", "good"},
    {"error", "error"},
    {"reason", "reason"},
    {"start (ms since 1970)", "startMs"},
    {"end (ms since 1970)", "endMs"},
    {"runtime (ms)", "runtimeMs"},
    {"rate with waits (bytes/s)", "bytesPerSecond"},
    {"I/O time (ns)", "ioNs"},
    {"rate of the I/O alone (bytes/s)", "ioBytesPerSecond"},
    {"I/Os", "ios"},
    {"p50 (ns)", "p50Ns"},
    {"p99 (ns)", "p99Ns"},
    {"max (ns)", "maxNs"},
    {"syncs", "syncs"},
    {"sync time (ns)", "syncNs"},
};

/// A text as a cell that no spreadsheet takes for a formula.
QByteArray quoted(QString text)
{
    if (!text.isEmpty() && QStringLiteral("=+-@\t\r").contains(text.front()))
        text.prepend(QLatin1Char('\''));
    const bool needsQuotes = text.contains(QLatin1Char(',')) || text.contains(QLatin1Char('"')) ||
                             text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r'));
    if (needsQuotes)
        text = QLatin1Char('"') + text.replace(QLatin1Char('"'), QLatin1String("\"\"")) +
               QLatin1Char('"');
    return text.toUtf8();
}

QByteArray cellOf(const QJsonValue& value)
{
    if (value.isNull())
        return {};
    if (value.isBool())
        return value.toBool() ? "yes" : "no";
    if (value.isDouble())
        return QByteArray::number(qint64(value.toDouble()));
    return quoted(value.toString());
}

} // namespace

QByteArray resultsJson(const RunResults& results)
{
    const Plan& plan = *results.plan;
    QJsonArray stages;
    for (size_t i = 0; i < plan.stages.size(); ++i)
        stages.append(stageOf(plan, i, results.stages[i]));
    QJsonArray jobs;
    for (size_t i = 0; i < plan.jobs.size(); ++i)
        jobs.append(jobOf(plan, plan.jobs[i], results.jobs[i]));
    const QJsonObject object{
        {QStringLiteral("version"), formatVersion},
        {QStringLiteral("state"), QLatin1String(runStateName(results.status.state))},
        {QStringLiteral("reasons"), textsOf(results.status.reasons)},
        {QStringLiteral("series"), plan.series},
        {QStringLiteral("info"), textsOf(plan.info)},
        {QStringLiteral("date"), plan.date},
        {QStringLiteral("startedMs"), results.status.startedMs},
        {QStringLiteral("endedMs"), valueOf(results.status.endedMs)},
        {QStringLiteral("fioVersion"),
         results.fioVersion.isEmpty() ? QJsonValue() : QJsonValue(results.fioVersion)},
        {QStringLiteral("dpcVersion"), QStringLiteral(TWDP_VERSION)},
        {QStringLiteral("machines"), machinesOf(plan)},
        {QStringLiteral("losses"), results.losses},
        {QStringLiteral("stages"), stages},
        {QStringLiteral("jobs"), jobs},
    };
    return QJsonDocument(object).toJson();
}

QByteArray resultsCsv(const RunResults& results)
{
    QByteArray text;
    for (const Column& column : columns)
        text += QByteArray(text.isEmpty() ? "" : ",") + column.heading;
    text += "\r\n";
    const Plan& plan = *results.plan;
    for (size_t i = 0; i < plan.jobs.size(); ++i) {
        const QJsonObject job = jobOf(plan, plan.jobs[i], results.jobs[i]);
        for (const Column& column : columns) {
            text += &column == &columns[0] ? "" : ",";
            text += cellOf(job.value(QLatin1String(column.field)));
        }
        text += "\r\n";
    }
    return text;
}
