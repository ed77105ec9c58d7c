#include "cli/checker.h"

#include "cli/seriesfinder.h"
#include "cli/text.h"

#include <QFile>
#include <QFileInfo>

#include <fmt/format.h>

#include <algorithm>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <tuple>

namespace {

bool exists(const QString& path)
{
    return QFileInfo::exists(path);
}

/// Of the nearest folder above that exists.
std::optional<Room> room(const QString& path)
{
    QByteArray place = QFile::encodeName(path);
    struct stat status = {};
    while (::stat(place.constData(), &status) != 0) {
        const int separator = place.lastIndexOf('/');
        if (separator < 0)
            return std::nullopt;
        place.truncate(separator == 0 && place.size() > 1 ? 1 : separator);
    }
    struct statvfs system = {};
    if (::statvfs(place.constData(), &system) != 0)
        return std::nullopt;
    const auto free = static_cast<quint64>(system.f_bavail) * system.f_frsize;
    return Room{status.st_dev, static_cast<qint64>(free)};
}

/// What no config file can be opened by.
bool hasForeignLetters(const SeriesName& name)
{
    const QString path = name.folder + name.baseName;
    return std::any_of(path.cbegin(), path.cend(), [](QChar c) { return c.unicode() > 0xFF; });
}

bool isPartOf(const SeriesFacts& facts, const QString& file)
{
    return std::any_of(facts.files.begin(), facts.files.end(), [&](const FileFact& fact) {
        return QFileInfo(fact.path) == QFileInfo(file);
    });
}

/// Why a series that was named by a file can't be checked; empty where it can.
std::string problemWith(const SeriesFacts& facts, const QString& chosen)
{
    if (QFileInfo(chosen).isDir() || !QFileInfo::exists(chosen))
        return {};
    if (!isPartOf(facts, chosen))
        return fmt::format("the editor would not load {}: by its name it looks for {}",
                           quoted(chosen), quoted(facts.name.baseName + ".dpc"));
    const QFileInfo file(chosen);
    if (!file.isFile() || !file.isReadable())
        return fmt::format("{} can't be read", quoted(chosen));
    return {};
}

} // namespace

World realWorld()
{
    return {exists, room};
}

void Findings::add(Rule rule, int file, int line, int column, std::string text)
{
    // A companion is not made in the form, and has no logs on purpose.
    const bool isOfForm = rule == Rule::BeyondForm || rule == Rule::EmptyLog;
    if (m_options.rulesOff.count(rule) > 0 || (m_facts.isInit && isOfForm))
        return;
    const FileFact& fact = m_facts.files[size_t(file)];
    m_findings.push_back({rule, file, fact.shown, line, column, std::move(text)});
}

std::vector<Finding> Findings::takeSorted()
{
    const auto place = [](const Finding& f) { return std::tie(f.file, f.line, f.column, f.rule); };
    std::stable_sort(m_findings.begin(), m_findings.end(),
                     [&](const Finding& a, const Finding& b) { return place(a) < place(b); });
    return std::move(m_findings);
}

std::vector<Finding> checkSeries(const SeriesFacts& facts, const CheckOptions& options)
{
    Findings findings(facts, options);
    // Gone since it was looked for.
    if (facts.files.empty())
        return {};
    if (hasForeignLetters(facts.name)) {
        findings.add(
            Rule::FolderLetters, 0, 1, 1,
            "the folder or the name has letters outside Latin-1: the editor can't open the file");
        return findings.takeSorted();
    }
    checkLines(facts, findings);
    checkPaths(facts, options, findings);
    checkFiles(facts, findings);
    checkMarkers(facts, findings);
    checkInit(facts, findings);
    checkMachines(facts, options, findings);
    return findings.takeSorted();
}

CheckResult checkPath(const QString& path, const CheckOptions& options)
{
    const SeriesSearch search = findSeries(path);
    CheckResult result{{}, int(search.series.size()), search.problem};
    for (const FoundSeries& found : search.series) {
        const SeriesFacts facts = readSeries(found.name, found.shownFolder, options.lineLimit);
        const std::string problem = problemWith(facts, path);
        if (!problem.empty())
            return {{}, 0, problem};
        std::vector<Finding> findings = checkSeries(facts, options);
        result.findings.insert(result.findings.end(), std::make_move_iterator(findings.begin()),
                               std::make_move_iterator(findings.end()));
    }
    return result;
}
