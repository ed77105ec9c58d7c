#include "dpc/oneseries.h"

#include "check/seriesfinder.h"
#include "check/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <ostream>

namespace {

bool anythingReadable(const SeriesFacts& facts)
{
    return std::any_of(facts.files.begin(), facts.files.end(),
                       [](const FileFact& file) { return file.isRead && file.readable; });
}

} // namespace

std::optional<SeriesFacts> readOneSeries(const QString& path, const Output& output)
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
        fail(output, fmt::format("the series has more than {}", counted(maxSeriesEntries, "line")));
        return std::nullopt;
    }
    return facts;
}

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
