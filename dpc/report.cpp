#include "dpc/commands.h"
#include "dpc/json.h"
#include "dpc/report/reporthtml.h"
#include "dpc/report/reporttext.h"

#include "check/text.h"
#include "engine/writeall.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QSaveFile>

#include <fmt/format.h>

#include <ostream>

namespace {

constexpr const char* formats[] = {"text", "csv", "json", "html", "markdown"};
constexpr Option format{"--format", "FORMAT", ValueKind::Choice, "how to show the runs", formats};
constexpr Option outputFile{"-o,--output", "FILE", ValueKind::File,
                            "write the report into a file, replacing it as a whole"};
constexpr Option failIfSlower{
    "--fail-if-slower", "PERCENT", ValueKind::Text,
    "end with status 1 if a task of a later run is slower than in the first by more than that, "
    "and by more than the spread of the iterations"};

constexpr const Option* options[] = {&format, &outputFile, &failIfSlower};
constexpr Operand operands[] = {{"RUN", ValueKind::Folder, true}};

constexpr const char* description =
    R"(Shows the results of runs that dpc run made: per task and machine the bytes, the seconds, the rate with waits and the rate of the I/O alone, and latencies; per stage the total rate and how far apart the machines began. A run that did not complete is reported as such, first. A figure that nobody measured is empty, and never 0.

With several runs, each is compared with the first one, task by task: the ratio of the rates of the I/O alone, and whether the difference is more than the iterations of either run differ among themselves.

The HTML page is complete in itself: it opens without a network, and can be sent by mail and printed. Nothing is written into the folder of a run.)";

constexpr const char* examples[] = {
    "dpc report RUN",
    "dpc report --format=html --output report.html RUN",
    "dpc report --fail-if-slower 10% BEFORE AFTER",
};

std::vector<ReportedRun> readRuns(const QStringList& folders, const Output& output)
{
    std::vector<ReportedRun> runs;
    for (const QString& folder : folders) {
        std::string problem;
        std::optional<RecordedRun> record = readRun(folder, problem);
        if (!record) {
            fail(output, problem);
            return {};
        }
        RunSummary summary = summaryOf(*record);
        runs.push_back({std::move(*record), std::move(summary)});
    }
    return runs;
}

/// As a part of 1; nothing if the option was not given.
std::optional<double> slownessOf(const Arguments& arguments)
{
    if (!arguments.has(failIfSlower))
        return std::nullopt;
    QString text = decoded(arguments.value(failIfSlower));
    if (text.endsWith('%'))
        text.chop(1);
    bool isNumber = false;
    const double percent = text.toDouble(&isNumber);
    if (!isNumber || percent < 0 || percent >= 100)
        throw UsageError(failIfSlower, quoted(decoded(arguments.value(failIfSlower))) +
                                           " is not a percentage from 0 to below 100");
    if (arguments.operands().size() < 2)
        throw UsageError(failIfSlower, "a second run is missing");
    return percent / 100;
}

std::string render(const std::string& name, const std::vector<ReportedRun>& runs, int width)
{
    if (name == "csv")
        return reportAsCsv(runs);
    if (name == "json")
        return jsonText(reportAsJson(runs));
    if (name == "html")
        return reportAsHtml(runs);
    return name == "markdown" ? reportAsMarkdown(runs) : reportAsText(runs, width);
}

/// The folder of a run stays as it was when the run ended.
bool isInside(const QString& file, const QStringList& folders)
{
    const QString place = QFileInfo(QFileInfo(file).absolutePath()).canonicalFilePath() + '/';
    return std::any_of(folders.begin(), folders.end(), [&](const QString& folder) {
        return place.startsWith(QFileInfo(folder).canonicalFilePath() + '/');
    });
}

int write(const std::string& text, const Arguments& arguments, const Output& output)
{
    if (!arguments.has(outputFile)) {
        output.out << text;
        return exitClean;
    }
    const QString path = decoded(arguments.value(outputFile));
    if (isInside(path, arguments.operands()))
        throw UsageError(outputFile, "nothing is written into the folder of a run");
    QSaveFile file(path);
    const bool isWritten = file.open(QIODevice::WriteOnly) &&
                           writeAll(file, QByteArray::fromStdString(text)) && file.commit();
    if (isWritten)
        return exitClean;
    return fail(output, fmt::format("{} can't be written: {}", quoted(path),
                                    file.errorString().toStdString()));
}

/// Says which tasks are slower, or why that can't be told.
bool isSlower(const std::vector<ReportedRun>& runs, double part, const Output& output)
{
    bool result = false;
    const auto say = [&](const std::string& text) {
        output.err << text << '\n';
        result = true;
    };
    for (const ReportedRun& run : runs) {
        if (!run.record.isComplete())
            say(utf8(stateSentence(run.record)));
    }
    for (size_t i = 1; i < runs.size(); ++i) {
        for (const TaskComparison& pair : compare(runs.front().summary, runs[i].summary)) {
            const std::string name = fmt::format("{} on {}", utf8(taskName(pair.base.first)),
                                                 printable(pair.base.first.machine));
            if (!pair.other)
                say(fmt::format("{}: {} lacks it", name, printable(runs[i].record.folder)));
            else if (pair.isSlower(part))
                say(fmt::format("{}: {:.2f} times the rate of the first run", name, *pair.ratio));
        }
    }
    return result;
}

int run(const Arguments& arguments, const Output& output)
{
    const std::optional<double> slowness = slownessOf(arguments);
    const std::vector<ReportedRun> runs = readRuns(arguments.operands(), output);
    if (runs.empty())
        return exitUsage;
    const int width = arguments.has(outputFile) ? 0 : output.width;
    const int status = write(render(arguments.value(format), runs, width), arguments, output);
    if (status != exitClean)
        return status;
    return slowness && isSlower(runs, *slowness, output) ? exitFindings : exitClean;
}

} // namespace

const Command reportCommand{
    "report",
    "show the results of runs",
    options,
    operands,
    description,
    "shown (with --fail-if-slower: and nothing is slower)",
    "with --fail-if-slower: a task is slower, or a run is not complete",
    examples,
    run,
};
