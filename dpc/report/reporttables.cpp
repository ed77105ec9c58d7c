#include "dpc/report/reporttables.h"

#include "check/text.h"
#include "check/units.h"

#include <QDateTime>
#include <QJsonObject>

#include <algorithm>

namespace {

QString safe(const QString& text)
{
    return QString::fromStdString(printable(text));
}

QString number(double value, int digits)
{
    return QString::number(value, 'f', digits);
}

template <class Value>
QString optionalNumber(const std::optional<Value>& value, double unit, int digits)
{
    return value ? number(double(*value) / unit, digits) : QString();
}

QString whole(const std::optional<qint64>& value)
{
    return value ? QString::number(*value) : QString();
}

QString rate(const std::optional<Spread>& spread, double Spread::*which)
{
    return spread ? number((*spread).*which / bytesPerMib, 1) : QString();
}

QString moment(qint64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(ms).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QStringList jobCells(const ReportedRun& run, const RecordedJob& job)
{
    const auto rounded = [](const std::optional<double>& value) {
        return optionalNumber(value, 1, 0);
    };
    return {safe(run.record.folder),
            QString::number(job.stage),
            safe(job.configFile),
            QString::number(job.line),
            job.kind,
            safe(job.machine),
            QString::number(job.iteration),
            safe(job.source),
            safe(job.destination),
            QString::number(job.plannedBytes),
            whole(job.doneBytes),
            job.isGood ? QStringLiteral("yes") : QStringLiteral("no"),
            safe(job.reason),
            whole(job.startMs),
            whole(job.endMs),
            whole(job.runtimeMs),
            rounded(job.rate),
            rounded(job.ioRate),
            whole(job.p50Ns),
            whole(job.p99Ns),
            whole(job.maxNs)};
}

} // namespace

QString taskName(const RecordedJob& job)
{
    return safe(job.configFile.section('/', -1)) + ':' + QString::number(job.line) + ' ' + job.kind;
}

Table taskTable(const ReportedRun& run)
{
    Table table;
    table.headers =
        QStringList{"task",    "machine", "iterations", "bytes",  "seconds", "MiB/s", "I/O MiB/s",
                    "I/O min", "I/O max", "p50 ms",     "p99 ms", "max ms",  "state"};
    table.isNumber = {false, false, true, true, true, true, true,
                      true,  true,  true, true, true, false};
    for (const TaskSummary& task : run.summary.tasks) {
        const bool isGood = task.good == task.iterations;
        const QString state = !isGood ? QString("%1 of %2 good").arg(task.good).arg(task.iterations)
                              : task.isShort ? QStringLiteral("short")
                                             : QString();
        table.rows.push_back(
            {taskName(task.first), safe(task.first.machine), QString::number(task.iterations),
             whole(task.bytes), optionalNumber(task.seconds, 1, 3),
             rate(task.rate, &Spread::median), rate(task.ioRate, &Spread::median),
             rate(task.ioRate, &Spread::min), rate(task.ioRate, &Spread::max),
             optionalNumber(task.p50Ns, nsPerMs, 3), optionalNumber(task.p99Ns, nsPerMs, 3),
             optionalNumber(task.maxNs, nsPerMs, 3), state});
    }
    return table;
}

QStringList lessImportantColumns()
{
    return {"iterations", "I/O max", "I/O min", "max ms", "p50 ms", "bytes", "p99 ms", "seconds"};
}

Table stageTable(const ReportedRun& run)
{
    Table table;
    table.headers = QStringList{"stage", "state",   "good jobs", "jobs",
                                "bytes", "seconds", "MiB/s",     "start skew ms"};
    table.isNumber = {false, false, true, true, true, true, true, true};
    int index = 0;
    for (const StageSummary& stage : run.summary.stages) {
        table.rows.push_back(
            {QString::number(index++) + ' ' + safe(stage.configFile.section('/', -1)), stage.state,
             QString::number(stage.good), QString::number(stage.jobs), whole(stage.bytes),
             optionalNumber(stage.seconds, 1, 3), optionalNumber(stage.rate, bytesPerMib, 1),
             whole(stage.skewMs)});
    }
    return table;
}

Table comparisonTable(const std::vector<TaskComparison>& comparison)
{
    Table table;
    table.headers =
        QStringList{"task", "machine", "base I/O MiB/s", "I/O MiB/s", "ratio", "beyond the spread"};
    table.isNumber = {false, false, true, true, true, false};
    for (const TaskComparison& pair : comparison) {
        const QString beyond = !pair.ratio           ? QString()
                               : pair.isBeyondSpread ? QStringLiteral("yes")
                                                     : QStringLiteral("no");
        table.rows.push_back({taskName(pair.base.first), safe(pair.base.first.machine),
                              rate(pair.base.ioRate, &Spread::median),
                              pair.other ? rate(pair.other->ioRate, &Spread::median) : QString(),
                              optionalNumber(pair.ratio, 1, 2), beyond});
    }
    return table;
}

Table jobTable(const std::vector<ReportedRun>& runs)
{
    Table table;
    table.headers = QStringList{"run",
                                "stage",
                                "config file",
                                "line",
                                "kind",
                                "machine",
                                "iteration",
                                "source",
                                "destination",
                                "planned (bytes)",
                                "done (bytes)",
                                "good",
                                "reason",
                                "start (ms since 1970)",
                                "end (ms since 1970)",
                                "runtime (ms)",
                                "rate with waits (bytes/s)",
                                "rate of the I/O alone (bytes/s)",
                                "p50 (ns)",
                                "p99 (ns)",
                                "max (ns)"};
    for (const ReportedRun& run : runs) {
        for (const RecordedJob& job : run.record.jobs)
            table.rows.push_back(jobCells(run, job));
    }
    table.isNumber.assign(size_t(table.headers.size()), false);
    return table;
}

QString stateSentence(const RecordedRun& run)
{
    QString text = safe(run.folder) + ": " + safe(run.state);
    if (!run.reasons.isEmpty())
        text += " (" + safe(run.reasons.join(QStringLiteral("; "))) + ')';
    return text;
}

QString headline(const RecordedRun& run)
{
    QStringList parts;
    if (!run.series.isEmpty())
        parts += safe(run.series);
    if (run.startedMs)
        parts += moment(*run.startedMs);
    parts += QString::fromStdString(counted(run.machines.size(), "machine"));
    parts +=
        run.fioVersion.isEmpty() ? QStringLiteral("unknown version of fio") : safe(run.fioVersion);
    return parts.join(QStringLiteral(", "));
}

QStringList remarks(const RunSummary& summary)
{
    QStringList texts;
    const bool hasShort = std::any_of(summary.tasks.begin(), summary.tasks.end(),
                                      [](const TaskSummary& task) { return task.isShort; });
    if (hasShort)
        texts += "short: an iteration took less than a second, so its rate says little.";
    texts +=
        "MiB/s counts the waits between chunks, I/O MiB/s the reads, writes and flushes alone.";
    texts += "Files of up to 1 GiB usually come from memory when they are read back.";
    return texts;
}

QStringList lossLines(const RecordedRun& run)
{
    QStringList texts;
    for (const QJsonValue value : run.losses) {
        const QJsonObject loss = value.toObject();
        texts += safe(QString("%1:%2: %3: %4 [%5]")
                          .arg(loss["file"].toString())
                          .arg(loss["line"].toInt())
                          .arg(loss["severity"].toString(), loss["text"].toString(),
                               loss["rule"].toString()));
    }
    return texts;
}
