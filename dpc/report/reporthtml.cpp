#include "dpc/report/reporthtml.h"

#include "check/text.h"
#include "check/units.h"
#include "dpc/report/reporttime.h"

#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <fmt/format.h>

// Outside the namespace: the macro declares a function of its own.
static void loadResources()
{
    Q_INIT_RESOURCE(report);
}

namespace {

constexpr int maxMachinesInBars = 8;
constexpr int manyCells = 24; ///< of machine and task: from here on a heat map helps

std::string resource(const char* name)
{
    QFile file(QLatin1String(":/report/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

/// The same figures by task, over the machines.
struct TaskGroup
{
    QString name;
    QHash<QString, double> rates; ///< MiB/s of each machine
    std::vector<double> p50;      ///< ms
    std::vector<double> p99;
    std::vector<double> max;
};

std::vector<TaskGroup> groupsOf(const RunSummary& summary)
{
    std::vector<TaskGroup> groups;
    QHash<QString, size_t> places;
    for (const TaskSummary& task : summary.tasks) {
        const QString name = taskName(task.first);
        const QString key = QString::number(task.first.stage) + '\n' + name;
        if (!places.contains(key)) {
            places.insert(key, groups.size());
            groups.push_back({name, {}, {}, {}, {}});
        }
        TaskGroup& group = groups[places.value(key)];
        if (task.ioRate)
            group.rates.insert(task.first.machine, task.ioRate->median / bytesPerMib);
        if (task.p50Ns)
            group.p50.push_back(*task.p50Ns / nsPerMs);
        if (task.p99Ns)
            group.p99.push_back(*task.p99Ns / nsPerMs);
        if (task.maxNs)
            group.max.push_back(double(*task.maxNs) / nsPerMs);
    }
    return groups;
}

QJsonValue medianOf(const std::vector<double>& values)
{
    const std::optional<Spread> spread = spreadOf(values);
    return spread ? QJsonValue(spread->median) : QJsonValue();
}

QJsonObject dataset(const QString& label, const QJsonArray& values)
{
    return {{"label", label}, {"values", values}};
}

QJsonObject chart(const std::vector<TaskGroup>& groups, const QJsonArray& datasets)
{
    QJsonArray labels;
    for (const TaskGroup& group : groups)
        labels.append(group.name);
    return {{"labels", labels}, {"datasets", datasets}};
}

QJsonObject ratesChart(const std::vector<TaskGroup>& groups, const QStringList& machines)
{
    QJsonArray datasets;
    if (machines.size() <= maxMachinesInBars) {
        for (const QString& machine : machines) {
            QJsonArray values;
            for (const TaskGroup& group : groups) {
                const auto rate = group.rates.constFind(machine);
                values.append(rate == group.rates.cend() ? QJsonValue() : QJsonValue(*rate));
            }
            datasets.append(dataset(QString::fromStdString(printable(machine)), values));
        }
        return chart(groups, datasets);
    }
    QJsonArray least;
    QJsonArray median;
    QJsonArray most;
    for (const TaskGroup& group : groups) {
        const auto rates = group.rates.values();
        const std::optional<Spread> spread = spreadOf({rates.begin(), rates.end()});
        least.append(spread ? QJsonValue(spread->min) : QJsonValue());
        median.append(spread ? QJsonValue(spread->median) : QJsonValue());
        most.append(spread ? QJsonValue(spread->max) : QJsonValue());
    }
    datasets.append(dataset(QStringLiteral("slowest machine"), least));
    datasets.append(dataset(QStringLiteral("median of the machines"), median));
    datasets.append(dataset(QStringLiteral("fastest machine"), most));
    return chart(groups, datasets);
}

QJsonObject latenciesChart(const std::vector<TaskGroup>& groups)
{
    QJsonArray p50;
    QJsonArray p99;
    QJsonArray most;
    for (const TaskGroup& group : groups) {
        p50.append(medianOf(group.p50));
        p99.append(medianOf(group.p99));
        most.append(group.max.empty()
                        ? QJsonValue()
                        : QJsonValue(*std::max_element(group.max.begin(), group.max.end())));
    }
    return chart(groups, {dataset(QStringLiteral("p50"), p50), dataset(QStringLiteral("p99"), p99),
                          dataset(QStringLiteral("max"), most)});
}

QJsonObject timeChart(const TimeLine& line)
{
    QJsonArray series;
    for (const TimeLine::Series& one : line.series) {
        QJsonArray values;
        for (const double value : one.values)
            values.append(std::round(value * 100) / 100);
        series.append(dataset(one.label, values));
    }
    QJsonArray stages;
    for (const TimeLine::Mark& mark : line.stages)
        stages.append(QJsonObject{{"label", mark.label}, {"second", mark.second}});
    return {{"step", line.step}, {"series", series}, {"stages", stages}};
}

QJsonObject comparisonChart(const std::vector<TaskComparison>& comparison)
{
    QJsonArray labels;
    QJsonArray base;
    QJsonArray other;
    const auto rate = [](const TaskSummary& task) {
        return task.ioRate ? QJsonValue(task.ioRate->median / bytesPerMib) : QJsonValue();
    };
    for (const TaskComparison& pair : comparison) {
        labels.append(taskName(pair.base.first) + ' ' +
                      QString::fromStdString(printable(pair.base.first.machine)));
        base.append(rate(pair.base));
        other.append(pair.other ? rate(*pair.other) : QJsonValue());
    }
    return {{"labels", labels},
            {"datasets", QJsonArray{dataset(QStringLiteral("base"), base),
                                    dataset(QStringLiteral("compared"), other)}}};
}

/// The data as a script element holds it: "<" could end the element.
std::string embedded(const QJsonObject& data)
{
    QByteArray json = QJsonDocument(data).toJson(QJsonDocument::Compact);
    return json.replace('<', "\\u003c").replace('&', "\\u0026").toStdString();
}

std::string figure(const char* id, const std::string& title, const char* table, bool isWide = false)
{
    return fmt::format("<figure{}><figcaption>{}</figcaption><div class=\"canvas\"><canvas "
                       "id=\"{}\" role=\"img\" aria-label=\"{}; the same figures are in the "
                       "table {}\"></canvas></div></figure>\n",
                       isWide ? " class=\"wide\"" : "", title, id, title, table);
}

/// Tables wider than the page scroll by themselves.
std::string scrolled(const std::string& table)
{
    return "<div class=\"scroll\" tabindex=\"0\">" + table + "</div>\n";
}

std::string heatMap(const std::vector<TaskGroup>& groups, const QStringList& machines)
{
    double most = 0;
    for (const TaskGroup& group : groups) {
        for (const double rate : group.rates)
            most = std::max(most, rate);
    }
    std::string text = "<table class=\"heat\"><caption>MiB/s of the I/O alone, machine by task; "
                       "the stronger the colour, the faster</caption><thead><tr><td></td>";
    for (const TaskGroup& group : groups)
        text += "<th scope=\"col\">" + escapedHtml(group.name) + "</th>";
    text += "</tr></thead><tbody>\n";
    for (const QString& machine : machines) {
        text += "<tr><th scope=\"row\">" + escapedHtml(QString::fromStdString(printable(machine))) +
                "</th>";
        for (const TaskGroup& group : groups) {
            const auto rate = group.rates.constFind(machine);
            if (rate == group.rates.cend()) {
                text += "<td></td>";
                continue;
            }
            constexpr double strong = 50;
            const double heat = most > 0 ? *rate / most * 100 : 0;
            text += fmt::format("<td class=\"number{}\" style=\"--heat:{:.0f}\">{:.1f}</td>",
                                heat > strong ? " strong" : "", heat, *rate);
        }
        text += "</tr>\n";
    }
    return text + "</tbody></table>\n";
}

std::string timeTable(const TimeLine& line)
{
    Table table;
    table.headers = QStringList{"seconds"};
    table.isNumber = {true};
    for (const TimeLine::Series& series : line.series) {
        table.headers += series.label;
        table.isNumber.push_back(true);
    }
    for (size_t i = 0; i < line.series.front().values.size(); ++i) {
        QStringList row{QString::number(double(i) * line.step, 'f', 1)};
        for (const TimeLine::Series& series : line.series)
            row += QString::number(series.values[i], 'f', 1);
        table.rows.push_back(row);
    }
    return "<details><summary>Bandwidth over time as a table</summary>" +
           scrolled(tableAsHtml(table, "MiB/s")) + "</details>\n";
}

std::string paragraphs(const QStringList& texts, const char* element, const char* kind = "")
{
    std::string result;
    for (const QString& text : texts)
        result += fmt::format("<{0}{1}>{2}</{0}>\n", element, kind, escapedHtml(text));
    return result;
}

std::string header(const ReportedRun& run)
{
    const RecordedRun& record = run.record;
    QStringList info;
    for (const QString& line : record.info)
        info += QString::fromStdString(printable(line));
    info.removeAll(QString());
    const QString name = record.series.section('/', -1);
    return fmt::format("<h1>{}</h1>\n{}<p class=\"state {}\">{}</p>\n<p class=\"faint\">{}</p>\n",
                       escapedHtml(QString::fromStdString(printable(name))), paragraphs(info, "p"),
                       record.isComplete() ? "complete" : "not", escapedHtml(stateSentence(record)),
                       escapedHtml(headline(record)));
}

std::string machinesAndLosses(const RecordedRun& run)
{
    std::string text =
        "<p class=\"faint\">Machines: " +
        escapedHtml(QString::fromStdString(printable(run.machines.join(QStringLiteral(", "))))) +
        "</p>\n";
    const QStringList losses = lossLines(run);
    if (!losses.isEmpty())
        text += "<h2>Lost on the way to fio</h2>\n<ul>\n" + paragraphs(losses, "li") + "</ul>\n";
    return text;
}

/// One run: its pictures if it is the first, and its tables.
std::string runSection(const ReportedRun& run, const std::vector<TaskGroup>& groups,
                       const TimeLine* line)
{
    std::string text = machinesAndLosses(run.record);
    if (line != nullptr) {
        text += "<h2>Pictures</h2>\n<noscript><p>The pictures need scripts; the tables hold the "
                "same figures.</p></noscript>\n<div class=\"pictures\">\n";
        text += figure("rates", "Rate by task and machine", "Tasks");
        text += figure("latencies", "Latency by task: p50, p99, max", "Tasks");
        if (!line->isEmpty())
            text += figure("time", "Bandwidth over time", "Bandwidth over time", true);
        text += "</div>\n";
        if (!line->isEmpty())
            text += timeTable(*line);
        if (int(groups.size()) * run.record.machines.size() >= manyCells)
            text += "<h2>Heat map</h2>\n" + scrolled(heatMap(groups, run.record.machines));
    }
    text += "<h2>Figures</h2>\n" + scrolled(tableAsHtml(taskTable(run), "Tasks")) +
            scrolled(tableAsHtml(stageTable(run), "Stages")) +
            paragraphs(remarks(run.summary), "p", " class=\"faint\"");
    return text;
}

} // namespace

std::string reportAsHtml(const std::vector<ReportedRun>& runs)
{
    loadResources();
    const ReportedRun& base = runs.front();
    const std::vector<TaskGroup> groups = groupsOf(base.summary);
    const TimeLine line = timeLineOf(base.record);
    std::string body = header(base) + runSection(base, groups, &line);
    QJsonArray comparisons;
    for (size_t i = 1; i < runs.size(); ++i) {
        const auto comparison = compare(base.summary, runs[i].summary);
        comparisons.append(comparisonChart(comparison));
        body += "<hr>\n" + header(runs[i]) + runSection(runs[i], groups, nullptr);
        body += "<h2>Against the first run</h2>\n<div class=\"pictures\">\n" +
                figure(fmt::format("comparison{}", i - 1).c_str(), "Rates of both runs",
                       "Comparison", true) +
                "</div>\n" + scrolled(tableAsHtml(comparisonTable(comparison), "Comparison"));
    }
    const QJsonObject data{{"rates", ratesChart(groups, base.record.machines)},
                           {"latencies", latenciesChart(groups)},
                           {"time", timeChart(line)},
                           {"comparisons", comparisons}};
    return fmt::format(
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; script-src "
        "'unsafe-inline'; style-src 'unsafe-inline'\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<title>{}</title>\n<style>\n{}</style>\n</head>\n<body>\n{}"
        "<script type=\"application/json\" id=\"data\">{}</script>\n<script>\n{}</script>\n"
        "<script>\n{}</script>\n</body>\n</html>\n",
        escapedHtml(QString::fromStdString(printable(base.record.series.section('/', -1)))),
        resource("page.css"), body, embedded(data), resource("chart.js"), resource("page.js"));
}
