#include "dpc/oneseries.h"

#include "check/text.h"
#include "model/limits.h"

#include <fmt/format.h>

#include <algorithm>
#include <ostream>

namespace {

bool anythingReadable(const SeriesFacts& facts)
{
    return std::any_of(facts.files.begin(), facts.files.end(),
                       [](const FileFact& file) { return file.isRead() && file.readable; });
}

void addLost(const char* what, const char* noun, long long count, const SeriesFacts& facts,
             Remarks& remarks)
{
    if (count > 0)
        remarks.notChecked.push_back(
            {what, count,
             fmt::format("{} of {} can't be read and {} left out; dpc check tells why",
                         counted(count, noun), printable(facts.name.baseName),
                         count == 1 ? "is" : "are")});
}

void addLosses(const SeriesFacts& facts, Remarks& remarks)
{
    addLost("unreadable-files", "file",
            std::count_if(facts.files.begin(), facts.files.end(),
                          [](const FileFact& file) { return file.isRead() && !file.readable; }),
            facts, remarks);
    addLost(
        "rejected-lines", "line",
        std::count_if(facts.lines.begin(), facts.lines.end(),
                      [](const LineFact& line) { return line.kind == LineFact::Kind::Rejected; }),
        facts, remarks);
}

} // namespace

std::optional<SeriesFacts> readOneSeries(const QString& path, Remarks& remarks)
{
    const SeriesSearch search = findOneSeries(path);
    if (!search.problem.empty()) {
        remarks.problems.push_back(search.problem);
        return std::nullopt;
    }
    return readOneSeries(search.series.front(), path, remarks);
}

std::optional<SeriesFacts> readOneSeries(const FoundSeries& found, const QString& path,
                                         Remarks& remarks)
{
    SeriesFacts facts = readSeries(found.name, found.shownFolder);
    if (!anythingReadable(facts))
        remarks.problems.push_back(
            fmt::format("no file of the series of {} can be read", quoted(path)));
    else if (facts.limitReached)
        remarks.problems.push_back(
            fmt::format("the series has more than {}", counted(maxSeriesEntries, "line")));
    if (!remarks.problems.empty())
        return std::nullopt;
    addLosses(facts, remarks);
    return facts;
}

bool printRemarks(const Remarks& remarks, const Output& output)
{
    for (const std::string& problem : remarks.problems)
        fail(output, problem);
    for (const NotChecked& lost : remarks.notChecked)
        output.err << "dpc: " << lost.text << '\n';
    return !remarks.problems.empty();
}

std::optional<SeriesFacts> readOneSeries(const QString& path, const Output& output)
{
    Remarks remarks;
    std::optional<SeriesFacts> facts = readOneSeries(path, remarks);
    printRemarks(remarks, output);
    return facts;
}
