#include "check/checker.h"

#include "check/findings.h"
#include "check/rules/families.h"
#include "check/rulesfile.h"
#include "check/seriesfinder.h"
#include "check/text.h"

#include <QFileInfo>

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>

namespace {

/// Why a path that leads to a series can't be used; empty if it can.
std::string problemWith(const QString& chosen)
{
    const PathStatus status = realEnvironment().look(chosen);
    const bool isBad = status.exists() && !status.isFolder() && !status.whyUnreadable.empty();
    return isBad ? fmt::format("{} can't be read: {}", quoted(chosen), status.whyUnreadable)
                 : std::string();
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

bool hasCopies(const SeriesFacts& facts)
{
    return std::any_of(facts.files.begin(), facts.files.end(),
                       [](const FileFact& file) { return file.isCopy; });
}

template <typename T>
void append(std::vector<T>& all, std::vector<T> more)
{
    all.insert(all.end(), std::make_move_iterator(more.begin()),
               std::make_move_iterator(more.end()));
}

/// The rules that are turned off in each folder. Its file is read once.
class FolderRules
{
public:
    FolderRules(const CheckOptions& options, std::vector<std::string>& problems)
        : m_options(options)
        , m_problems(problems)
    {}

    const std::set<const Rule*>& rulesOff(const SeriesFacts& facts)
    {
        if (!m_folders.contains(facts.runFolder)) {
            const QString path = facts.runFolder + rulesFileName;
            RulesFile file = readRulesFile(path, shownPath(facts, path));
            append(m_problems, file.problems);
            file.rulesOff.insert(m_options.rulesOff.begin(), m_options.rulesOff.end());
            m_folders.insert(facts.runFolder, file.rulesOff);
        }
        return *m_folders.find(facts.runFolder);
    }

private:
    const CheckOptions& m_options;
    std::vector<std::string>& m_problems;
    QHash<QString, std::set<const Rule*>> m_folders;
};

} // namespace

std::vector<Finding> checkSeries(const SeriesFacts& facts, const CheckOptions& options)
{
    // Gone since it was looked for.
    if (facts.files.empty())
        return {};
    Findings findings(facts, options.rulesOff);
    if (checkFolderLetters(facts, findings))
        return findings.takeSorted();
    checkFiles(facts, findings);
    checkMarkers(facts, options, findings);
    std::optional<SeriesFacts> reduced;
    if (hasCopies(facts))
        reduced = withoutCopies(facts);
    const SeriesFacts& once = reduced ? *reduced : facts;
    const FileUses uses(once, options.hosts, options.environment);
    checkLines(once, findings);
    checkSameTasks(once, uses, findings);
    checkNumbers(once, findings);
    checkPaths(once, options, findings);
    checkVariables(once, options, findings);
    checkKinds(once, uses, findings);
    checkFolders(once, uses, findings);
    checkSources(once, uses, findings);
    checkSizes(once, uses, findings);
    checkOverwrites(once, uses, findings);
    checkRoles(once, uses, findings);
    checkInit(once, uses, options.environment, findings);
    checkMachines(once, uses, findings);
    checkSpace(once, uses, options.environment, findings);
    return findings.takeSorted();
}

CheckResult checkAll(const QStringList& paths, const CheckOptions& options)
{
    CheckResult result;
    SeriesSearch all;
    for (const QString& path : paths)
        addSearch(all, path, result);
    FolderRules rules(options, result.problems);
    FolderNames names;
    ExtentCounter extent;
    for (const FoundSeries& found : withoutDuplicates(all.series)) {
        const SeriesFacts facts = readSeries(found.name, found.shownFolder, options.limits, &names);
        CheckOptions own = options;
        own.rulesOff = rules.rulesOff(facts);
        append(result.findings, checkSeries(facts, own));
        extent.add(facts, own.rulesOff);
    }
    result.extent = extent.extent(options);
    append(result.findings, checkNotLoaded(all.notLoaded, options));
    return result;
}
