#include "dpc/commands.h"

#include "check/seriesfinder.h"
#include "check/text.h"
#include "dpc/comparison.h"
#include "dpc/printer.h"
#include "dpc/roundtrip.h"

#include <QFileInfo>

#include <fmt/format.h>

#include <algorithm>
#include <ostream>

namespace {

bool anythingReadable(const SeriesFacts& facts)
{
    return std::any_of(facts.files.begin(), facts.files.end(),
                       [](const FileFact& file) { return file.isRead && file.readable; });
}

/// Lines that no load takes are no part of a listing or a comparison, but nobody should miss them.
void warnOfLostLines(const SeriesFacts& facts, const Output& output)
{
    const auto lost =
        std::count_if(facts.lines.begin(), facts.lines.end(),
                      [](const LineFact& line) { return line.kind == LineFact::Kind::Rejected; });
    if (lost > 0)
        output.err << fmt::format(
            "dpc: {} of {} can't be read and {} left out; dpc check tells why\n",
            counted(lost, "line"), printable(facts.name.baseName), lost == 1 ? "is" : "are");
}

/// Reads the one series that a path leads to; says why where there is none.
std::optional<SeriesFacts> readOne(const QString& path, const Output& output)
{
    const SeriesSearch search = findOneSeries(path);
    if (!search.problem.empty()) {
        fail(output, search.problem);
        return std::nullopt;
    }
    const FoundSeries& found = search.series.front();
    SeriesFacts facts = readSeries(found.name, found.shownFolder);
    if (!anythingReadable(facts)) {
        fail(output, fmt::format("no file of the series of {} can be read", quoted(path)));
        return std::nullopt;
    }
    if (facts.limitReached) {
        fail(output, fmt::format("the series has more than {}", counted(mostLines, "line")));
        return std::nullopt;
    }
    return facts;
}

bool isFailure(const std::vector<Finding>& findings, bool warningsAreErrors)
{
    return countOf(findings, Severity::Error) > 0 ||
           (warningsAreErrors && countOf(findings, Severity::Warning) > 0);
}

void printFindings(const CheckCommand& command, const std::vector<Finding>& findings,
                   const Output& output)
{
    if (command.quiet)
        return;
    if (command.json) {
        output.out << findingsAsJson(findings);
        return;
    }
    output.out << findingsAsText(findings, output.colour);
    if (!findings.empty())
        output.err << summaryOf(findings) << '\n';
}

} // namespace

int fail(const Output& output, const std::string& sentence)
{
    output.err << "dpc: " << sentence << '\n';
    return exitUsage;
}

int runCheck(const CheckCommand& command, const Output& output)
{
    const CheckResult result = checkAll(command.paths, command.options);
    for (const std::string& problem : result.problems)
        fail(output, problem);
    printFindings(command, result.findings, output);
    if (!result.problems.empty())
        return exitUsage;
    return isFailure(result.findings, command.warningsAreErrors) ? exitFindings : exitClean;
}

int runShow(const ShowCommand& command, const Output& output)
{
    const auto facts = readOne(command.path, output);
    if (!facts)
        return exitUsage;
    output.out << listSeries(*facts, command.format, command.expansion);
    warnOfLostLines(*facts, output);
    return exitClean;
}

int runDiff(const QString& first, const QString& second, const Output& output)
{
    const auto firstFacts = readOne(first, output);
    const auto secondFacts = firstFacts ? readOne(second, output) : std::nullopt;
    if (!secondFacts)
        return exitUsage;
    const std::string differences = differencesOf(*firstFacts, *secondFacts);
    output.out << differences;
    warnOfLostLines(*firstFacts, output);
    warnOfLostLines(*secondFacts, output);
    return differences.empty() ? exitClean : exitFindings;
}

int runRoundTrip(const QString& path, const Output& output)
{
    const auto facts = readOne(path, output);
    if (!facts)
        return exitUsage;
    const RoundTrip result = roundTrip(*facts);
    if (!result.problem.empty())
        return fail(output, result.problem);
    output.out << result.changes;
    return result.changes.empty() ? exitClean : exitFindings;
}
