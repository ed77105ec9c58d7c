#include "check/nameexpander.h"
#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/text.h"

#include <QFileInfo>

#include <fmt/format.h>

#include <algorithm>
#include <array>

// The chain of markers that leads through the files of a series.

namespace {

/// What there is of each number.
struct Link
{
    bool exists = false;
    bool hasMarker = false;
};

/// One more than a load reads: the file after the last one may be there as well.
using Chain = std::array<Link, seriesFileCount + 1>;

Chain chainOf(const SeriesFacts& facts)
{
    Chain chain;
    for (const FileFact& file : facts.files) {
        if (!file.isRead &&
            !file.path.endsWith(seriesFile(QString(), facts.name.baseName, seriesFileCount)))
            continue;
        Link& link = chain[size_t(file.number)];
        link.exists = true;
        link.hasMarker = link.hasMarker || file.markers > 0;
    }
    return chain;
}

QString fileNameOf(const QString& path)
{
    const int separator = std::max(path.lastIndexOf('/'), path.lastIndexOf('\\'));
    return path.mid(separator + 1);
}

constexpr Rule markerFolder = {
    "marker-folder",
    Severity::Warning,
    "series",
    "The marker names the next file in another folder: the series was moved after it was saved.",
    "Load and save the series in its new folder.",
    series({"mytest.dpc",
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"
            "/old/mytest1.dpc\n"},
           {"mytest1.dpc", plainTask}),
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", plainTask})};

/// In the folder or in its "_wait", by whatever name.
bool isInSeries(const SeriesFacts& facts, const QString& path)
{
    const QString folder = path.left(path.size() - fileNameOf(path).size());
    for (const QString& own : {facts.runFolder, facts.runFolder + waitFolder(), facts.name.folder,
                               facts.name.folder + waitFolder()}) {
        if (folder == own || (!folder.isEmpty() && QFileInfo(folder) == QFileInfo(own)))
            return true;
    }
    return false;
}

constexpr Rule markerTarget = {
    "marker-target",
    Severity::Error,
    "series",
    "The marker names another file than the next one of the series.",
    "Name the next file of the series.",
    series({"mytest.dpc",
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"
            "[cfgPath]/mytest3.dpc\n"},
           {"mytest1.dpc", plainTask}),
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", plainTask})};

constexpr Rule lastMarker = {
    "last-marker",
    Severity::Error,
    "series",
    "The last file ends with a marker: machines wait for a file that does not exist.",
    "Remove the marker, or add the file that it names.",
    series({"mytest.dpc", plainTaskAndMarker}),
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", plainTask})};

void checkTarget(const SeriesFacts& facts, const Chain& chain, const LineFact& line,
                 NameExpander& names, Findings& findings)
{
    const int number = facts.fileOf(line).number;
    const QString target = names.resolve(line, line.text);
    const QString next = seriesFile(QString(), facts.name.baseName, number + 1);
    if (!chain[size_t(number) + 1].exists)
        findings.add(
            lastMarker, line, line.column + 1,
            fmt::format("the marker names {}, but there is no file {}: machines wait for ever",
                        quoted(target), printable(next)));
    else if (fileNameOf(target) != next)
        findings.add(markerTarget, line, line.column + 1,
                     fmt::format("the marker names {}, but the next file is {}", quoted(target),
                                 printable(next)));
    else if (!isInSeries(facts, target))
        findings.add(
            markerFolder, line, line.column + 1,
            fmt::format("the marker names the next file in another folder: {}; load and save "
                        "the series again where it is now",
                        quoted(target)));
}

constexpr Rule afterMarker = {
    "after-marker",
    Severity::Warning,
    "series",
    "Lines follow a marker in the same file; a marker ends its file.",
    "Move the lines into the next file.",
    series({"mytest.dpc",
            "[cfgPath]/mytest1.dpc\n"
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"},
           {"mytest1.dpc", plainTask}),
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", plainTask})};

void checkFileMarkers(const SeriesFacts& facts, const Chain& chain, const FileFact& file,
                      NameExpander& names, Findings& findings)
{
    const auto begin = facts.lines.begin() + file.firstEntry;
    const auto end = facts.lines.begin() + file.endEntry;
    const auto marker = std::find_if(begin, end, isMarker);
    if (marker == end)
        return;
    // One that is cut has its own finding.
    if (marker->text.size() <= maxPath)
        checkTarget(facts, chain, *marker, names, findings);
    const auto after = std::find_if(
        marker + 1, end, [](const LineFact& line) { return line.kind != LineFact::Kind::Comment; });
    if (after != end)
        findings.add(
            afterMarker, *after, after->column + 1,
            fmt::format("the marker in line {} ends the file: what follows belongs to the next one",
                        marker->line));
}

constexpr Rule leftover = {
    "leftover",
    Severity::Warning,
    "series",
    "No marker leads to the file: it is left over from a longer series, and is loaded again.",
    "Remove the old files before saving.",
    series({"mytest.dpc", plainTask}, {"mytest1.dpc", plainTask}),
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", plainTask})};

/// Follows the markers from the first file; a gap has its own finding, and is passed over.
void checkLeftovers(const SeriesFacts& facts, const Chain& chain, Findings& findings)
{
    std::array<bool, seriesFileCount> reached{};
    for (size_t n = 0; n < reached.size(); ++n)
        reached[n] = n == 0 || !chain[n - 1].exists || (reached[n - 1] && chain[n - 1].hasMarker);
    for (size_t i = 0; i < facts.files.size(); ++i) {
        const FileFact& file = facts.files[i];
        if (file.isRead && !reached[size_t(file.number)])
            findings.add(
                leftover, int(i), 1, 1,
                fmt::format(
                    "no marker in {} leads here: is the file left over from a longer "
                    "series? The editor loads it again",
                    printable(seriesFile(QString(), facts.name.baseName, file.number - 1))));
    }
}

} // namespace

void checkMarkers(const SeriesFacts& facts, Findings& findings)
{
    const Chain chain = chainOf(facts);
    NameExpander names(facts, thisMachine());
    for (const FileFact& file : facts.files) {
        if (file.isRead)
            checkFileMarkers(facts, chain, file, names, findings);
    }
    checkLeftovers(facts, chain, findings);
}

RuleList markerRules()
{
    return {&markerTarget, &markerFolder, &lastMarker, &afterMarker, &leftover};
}
