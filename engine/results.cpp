#include "engine/results.h"

#include "check/units.h"
#include "engine/jobfile.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <cstring>
#include <fmt/format.h>

namespace {

/// The last line of a log is shorter than this; a log of a long run is not read whole.
constexpr qint64 maxLogTail = 4096;

bool reads(JobKind kind)
{
    return kind == JobKind::Read || kind == JobKind::Copy;
}

bool writes(JobKind kind)
{
    return kind != JobKind::Read;
}

void add(std::optional<IoFigures>& sum, const IoFigures& part)
{
    if (!sum.has_value()) {
        sum = part;
        return;
    }
    // The first section has all chunks but the last one, so its percentiles stand for the job.
    sum->bytes += part.bytes;
    sum->ios += part.ios;
    sum->ioNs += part.ioNs;
    if (part.maxNs.has_value())
        sum->maxNs = std::max(sum->maxNs.value_or(*part.maxNs), *part.maxNs);
}

std::string reasonOf(const PlanJob& job, const JobResult& result)
{
    if (*result.error != 0)
        return fmt::format("error {}: {}", *result.error, std::strerror(*result.error));
    if (!result.hasBegun())
        return "did not begin: its file was not as planned, or fio ended before";
    const qint64 done = *result.doneBytes;
    if (reads(job.kind) && result.read->bytes != job.bytes)
        return fmt::format("read {} of {} bytes", result.read->bytes, job.bytes);
    if (done != job.bytes)
        return fmt::format("wrote {} of {} bytes", done, job.bytes);
    return {};
}

void addSection(const PlanJob& job, const SectionReport& report, JobResult& result)
{
    if (reads(job.kind))
        add(result.read, report.read);
    if (writes(job.kind))
        add(result.write, report.write);
    if (result.error.value_or(0) == 0)
        result.error = report.error;
    result.runtimeMs = result.runtimeMs.value_or(0) + report.runtimeMs;
    if (report.syncs > 0) {
        result.syncs = result.syncs.value_or(0) + report.syncs;
        result.syncNs = result.syncNs.value_or(0) + qint64(report.syncNs);
    }
}

void addLogs(const PlanJob& job, const FioHost& host, const FioLogs& logs, JobResult& result)
{
    for (const PlanSection& section : job.sections) {
        for (const QString& file : logs.bandwidth(logNameOf(job, section), host.name))
            result.bandwidthLogs.push_back(file);
    }
    if (result.startMs.has_value())
        return;
    const std::optional<qint64> last =
        logs.lastMoment(logNameOf(job, job.sections.back()), host.name);
    // A wait follows the last chunk as well, unless a flush is the last that happens.
    if (!last.has_value())
        return;
    const qint64 end = *last + (job.flush ? 0 : job.waitMs);
    if (end >= *result.runtimeMs)
        result.startMs = end - *result.runtimeMs;
}

JobResult resultOf(const PlanJob& job, const SectionIndex& reports, const FioHost& host,
                   const FioLogs& logs)
{
    JobResult result;
    for (const PlanSection& section : job.sections) {
        const std::vector<const SectionReport*> found = reports.of(job.machine, section.name);
        if (found.size() != 1)
            return notRun(found.empty() ? "fio did not report it" : "fio reported it twice");
        addSection(job, *found.front(), result);
        if (&section == &job.sections.front())
            result.startMs = found.front()->startMs;
    }
    result.doneBytes = writes(job.kind) ? result.write->bytes : result.read->bytes;
    const double latencies = (result.read.has_value() ? result.read->ioNs : 0) +
                             (result.write.has_value() ? result.write->ioNs : 0);
    result.ioNs = qint64(latencies) + result.syncNs.value_or(0);
    result.reason = reasonOf(job, result);
    result.isGood = result.reason.empty();
    if (result.hasBegun())
        addLogs(job, host, logs, result);
    else
        result.runtimeMs = result.ioNs = result.startMs = std::nullopt;
    return result;
}

} // namespace

bool JobResult::hasBegun() const
{
    const auto moved = [](const std::optional<IoFigures>& figures) {
        return figures.has_value() && figures->ios > 0;
    };
    return moved(read) || moved(write);
}

std::optional<qint64> JobResult::endMs() const
{
    if (!startMs.has_value() || !runtimeMs.has_value())
        return std::nullopt;
    return *startMs + *runtimeMs;
}

std::optional<double> JobResult::rate() const
{
    if (!doneBytes.has_value() || runtimeMs.value_or(0) == 0)
        return std::nullopt;
    return double(*doneBytes) * msPerSecond / double(*runtimeMs);
}

std::optional<double> JobResult::ioRate() const
{
    constexpr double nsPerSecond = 1e9;
    if (!doneBytes.has_value() || ioNs.value_or(0) == 0)
        return std::nullopt;
    return double(*doneBytes) * nsPerSecond / double(*ioNs);
}

const char* stageStateName(StageState state)
{
    switch (state) {
    case StageState::NotRun:
        return "notRun";
    case StageState::Complete:
        return "complete";
    case StageState::Incomplete:
        return "incomplete";
    case StageState::Interrupted:
        break;
    }
    return "interrupted";
}

FioLogs::FioLogs(const QString& folder, const QString& prefix)
    : m_folder(folder)
    , m_prefix(prefix)
{
    // NAME_KIND.NUMBER.log, and with servers the host behind it.
    static const QRegularExpression form(
        QStringLiteral("^([a-z0-9-]+)_(bw|lat)\\.[0-9]+\\.log(?:\\.(.+))?$"));
    const QStringList names = QDir(folder).entryList(QDir::Files, QDir::Name);
    for (const QString& name : names) {
        const QRegularExpressionMatch match = form.match(name);
        if (match.hasMatch())
            m_files.insert(keyOf(match.captured(1).toLatin1(), match.captured(2).toLatin1(),
                                 match.captured(3)),
                           name);
    }
}

FioLogs::Key FioLogs::keyOf(const QByteArray& begin, const QByteArray& kind, const QString& host)
{
    return begin + '\n' + kind + '\n' + host.toUtf8();
}

std::vector<QString> FioLogs::bandwidth(const QByteArray& begin, const QString& host) const
{
    const QString name = m_files.value(keyOf(begin, "bw", host));
    if (name.isEmpty())
        return {};
    return {m_prefix + name};
}

std::optional<qint64> FioLogs::lastMoment(const QByteArray& begin, const QString& host) const
{
    const QString name = m_files.value(keyOf(begin, "lat", host));
    QFile file(m_folder + QLatin1Char('/') + name);
    if (name.isEmpty() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    file.seek(std::max<qint64>(0, file.size() - maxLogTail));
    const QList<QByteArray> lines = file.readAll().trimmed().split('\n');
    bool isNumber = false;
    const qint64 moment = lines.last().split(',').first().toLongLong(&isNumber);
    return isNumber ? std::optional<qint64>(moment) : std::nullopt;
}

JobRange jobsOf(const Plan& plan, size_t stage)
{
    const auto isBefore = [](const PlanJob& job, size_t wanted) {
        return size_t(job.stage) < wanted;
    };
    const auto first = std::lower_bound(plan.jobs.begin(), plan.jobs.end(), stage, isBefore);
    const auto last = std::lower_bound(first, plan.jobs.end(), stage + 1, isBefore);
    return {size_t(first - plan.jobs.begin()), size_t(last - plan.jobs.begin())};
}

JobResult notRun(std::string reason)
{
    JobResult result;
    result.reason = std::move(reason);
    return result;
}

std::vector<JobResult> accountStage(const Plan& plan, size_t stage,
                                    const std::vector<FioHost>& hosts, const FioOutput& output,
                                    const FioLogs& logs)
{
    const SectionIndex reports(output, hosts);
    const JobRange range = jobsOf(plan, stage);
    std::vector<JobResult> results;
    results.reserve(range.end - range.begin);
    for (size_t i = range.begin; i < range.end; ++i) {
        const PlanJob& job = plan.jobs[i];
        results.push_back(resultOf(job, reports, hosts[size_t(job.machine)], logs));
    }
    return results;
}
