#include "dpc/report/reporttext.h"

#include "check/text.h"
#include "dpc/json.h"
#include "dpc/listing.h"

#include <QJsonArray>
#include <QJsonObject>

#include <fmt/format.h>

namespace {

QString linesOf(const QStringList& texts)
{
    return texts.isEmpty() ? QString() : texts.join('\n') + '\n';
}

QStringList safeInfo(const RecordedRun& run)
{
    QStringList lines;
    for (const QString& line : run.info) {
        if (!line.isEmpty())
            lines += QString::fromStdString(printable(line));
    }
    return lines;
}

template <class Value>
QJsonValue valueOf(const std::optional<Value>& value)
{
    return value ? QJsonValue(double(*value)) : QJsonValue();
}

QJsonValue spreadAsJson(const std::optional<Spread>& spread)
{
    if (!spread)
        return {};
    return QJsonObject{{"min", spread->min}, {"median", spread->median}, {"max", spread->max}};
}

QJsonObject taskAsJson(const TaskSummary& task)
{
    return {{"configFile", task.first.configFile},
            {"stage", task.first.stage},
            {"line", task.first.line},
            {"kind", task.first.kind},
            {"machine", task.first.machine},
            {"iterations", task.iterations},
            {"good", task.good},
            {"bytes", valueOf(task.bytes)},
            {"seconds", valueOf(task.seconds)},
            {"bytesPerSecond", spreadAsJson(task.rate)},
            {"ioBytesPerSecond", spreadAsJson(task.ioRate)},
            {"p50Ns", valueOf(task.p50Ns)},
            {"p99Ns", valueOf(task.p99Ns)},
            {"maxNs", valueOf(task.maxNs)},
            {"short", task.isShort}};
}

QJsonObject stageAsJson(const StageSummary& stage)
{
    return {{"configFile", stage.configFile},
            {"state", stage.state},
            {"jobs", stage.jobs},
            {"good", stage.good},
            {"bytes", valueOf(stage.bytes)},
            {"seconds", valueOf(stage.seconds)},
            {"bytesPerSecond", valueOf(stage.rate)},
            {"startSkewMs", valueOf(stage.skewMs)}};
}

QJsonObject runAsJson(const ReportedRun& run)
{
    QJsonArray stages;
    for (const StageSummary& stage : run.summary.stages)
        stages.append(stageAsJson(stage));
    QJsonArray tasks;
    for (const TaskSummary& task : run.summary.tasks)
        tasks.append(taskAsJson(task));
    const RecordedRun& record = run.record;
    return {{"folder", record.folder},
            {"state", record.state},
            {"reasons", QJsonArray::fromStringList(record.reasons)},
            {"series", record.series},
            {"info", QJsonArray::fromStringList(record.info)},
            {"startedMs", valueOf(record.startedMs)},
            {"endedMs", valueOf(record.endedMs)},
            {"fioVersion", record.fioVersion},
            {"machines", QJsonArray::fromStringList(record.machines)},
            {"losses", record.losses},
            {"stages", stages},
            {"tasks", tasks}};
}

QJsonArray comparisonAsJson(const std::vector<TaskComparison>& comparison)
{
    QJsonArray list;
    for (const TaskComparison& pair : comparison) {
        list.append(
            QJsonObject{{"base", taskAsJson(pair.base)},
                        {"other", pair.other ? QJsonValue(taskAsJson(*pair.other)) : QJsonValue()},
                        {"ratio", valueOf(pair.ratio)},
                        {"beyondSpread", pair.isBeyondSpread}});
    }
    return list;
}

} // namespace

std::string reportAsText(const std::vector<ReportedRun>& runs, int width)
{
    std::string text;
    for (const ReportedRun& run : runs) {
        text += text.empty() ? "" : "\n";
        text += utf8(stateSentence(run.record)) + '\n' + utf8(headline(run.record)) + '\n';
        text += utf8(linesOf(safeInfo(run.record)));
        text += '\n' + tableAsText(taskTable(run), width, lessImportantColumns());
        text += '\n' + tableAsText(stageTable(run), width, {"good jobs", "jobs", "bytes"});
        text += '\n' + utf8(linesOf(lossLines(run.record)));
    }
    for (size_t i = 1; i < runs.size(); ++i) {
        const auto comparison = compare(runs.front().summary, runs[i].summary);
        text += fmt::format("\n{} against {}, the base:\n", printable(runs[i].record.folder),
                            printable(runs.front().record.folder));
        text += tableAsText(comparisonTable(comparison), width);
    }
    QStringList sentences;
    for (const ReportedRun& run : runs)
        sentences += remarks(run.summary);
    sentences.removeDuplicates();
    return text + '\n' + utf8(linesOf(sentences));
}

std::string reportAsMarkdown(const std::vector<ReportedRun>& runs)
{
    std::string text;
    for (const ReportedRun& run : runs) {
        text += fmt::format("{}## {}\n\n{}\n\n", text.empty() ? "" : "\n",
                            utf8(escapedMarkdown(stateSentence(run.record))),
                            utf8(escapedMarkdown(headline(run.record))));
        for (const QString& line : safeInfo(run.record))
            text += utf8(escapedMarkdown(line)) + "\n\n";
        text += tableAsMarkdown(taskTable(run)) + '\n' + tableAsMarkdown(stageTable(run));
        const QStringList losses = lossLines(run.record);
        text += losses.isEmpty() ? "" : "\n";
        for (const QString& loss : losses)
            text += "- " + utf8(escapedMarkdown(loss)) + '\n';
        text += '\n';
        for (const QString& remark : remarks(run.summary))
            text += utf8(remark) + '\n';
    }
    for (size_t i = 1; i < runs.size(); ++i) {
        text += fmt::format("\n## {} against {}\n\n", utf8(escapedMarkdown(runs[i].record.folder)),
                            utf8(escapedMarkdown(runs.front().record.folder)));
        text += tableAsMarkdown(comparisonTable(compare(runs.front().summary, runs[i].summary)));
    }
    return text;
}

std::string reportAsCsv(const std::vector<ReportedRun>& runs)
{
    const Table table = jobTable(runs);
    std::string text = csvLine(table.headers);
    for (const QStringList& row : table.rows)
        text += csvLine(row);
    return text;
}

QJsonObject reportAsJson(const std::vector<ReportedRun>& runs)
{
    QJsonArray list;
    for (const ReportedRun& run : runs)
        list.append(runAsJson(run));
    QJsonArray comparisons;
    for (size_t i = 1; i < runs.size(); ++i)
        comparisons.append(comparisonAsJson(compare(runs.front().summary, runs[i].summary)));
    QJsonObject all = jsonOutput({});
    all.insert("runs", list);
    all.insert("comparisons", comparisons);
    return all;
}
