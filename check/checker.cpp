#include "check/checker.h"

#include "check/seriesfinder.h"
#include "check/text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

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
std::optional<DiskSpace> room(const QString& path)
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
    return DiskSpace{status.st_dev, static_cast<qint64>(free)};
}

/// What no config file can be opened by.
bool hasForeignLetters(const SeriesName& name)
{
    const QString path = name.folder + name.baseName;
    return std::any_of(path.cbegin(), path.cend(), [](QChar c) { return c.unicode() > 0xFF; });
}

/// Why a path that leads to a series is no good; empty where it is.
std::string problemWith(const QString& chosen)
{
    const QFileInfo file(chosen);
    const bool isBad = file.exists() && !file.isDir() && !(file.isFile() && file.isReadable());
    return isBad ? fmt::format("{} can't be read", quoted(chosen)) : std::string();
}

/// Adds what a path leads to.
void addSearch(SeriesSearch& all, const QString& path, CheckResult& result)
{
    const SeriesSearch search = findSeries(path);
    const std::string problem = search.problem.empty() ? problemWith(path) : search.problem;
    if (!problem.empty()) {
        result.problems.push_back(problem);
        return;
    }
    all.series.insert(all.series.end(), search.series.begin(), search.series.end());
    all.notLoaded += search.notLoaded;
}

std::string whyNotLoaded(const QString& file)
{
    if (!file.endsWith(QLatin1String(".dpc")))
        return "the editor does not load this file: its name does not end in .dpc, in small "
               "letters";
    return fmt::format("the editor does not load this file: by its name it looks for {}",
                       quoted(seriesNameForLoading(file).baseName + ".dpc"));
}

} // namespace

Environment realEnvironment()
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

CheckResult checkAll(const QStringList& paths, const CheckOptions& options)
{
    CheckResult result;
    SeriesSearch all;
    for (const QString& path : paths)
        addSearch(all, path, result);
    for (const FoundSeries& found : withoutDuplicates(all.series)) {
        const SeriesFacts facts = readSeries(found.name, found.shownFolder, options.limits);
        std::vector<Finding> findings = checkSeries(facts, options);
        result.findings.insert(result.findings.end(), std::make_move_iterator(findings.begin()),
                               std::make_move_iterator(findings.end()));
    }
    QSet<QString> said;
    for (const QString& file : all.notLoaded) {
        const QString path = QDir::cleanPath(QFileInfo(file).absoluteFilePath());
        const bool isNew = !said.contains(path);
        said.insert(path);
        if (isNew && options.rulesOff.count(Rule::NotLoaded) == 0)
            result.findings.push_back({Rule::NotLoaded, 0, file, 1, 1, whyNotLoaded(file)});
    }
    return result;
}
