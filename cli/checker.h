#pragma once

#include "cli/finding.h"
#include "cli/seriesfacts.h"

#include <QStringList>

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// Room on a file system.
struct Room
{
    quint64 fileSystem = 0; ///< tells file systems apart
    qint64 free = 0;        ///< bytes
};

/// What a check asks of the machine beyond the config files. It never writes.
struct World
{
    std::function<bool(const QString& path)> exists;
    /// Of the file system that a path would lie on; nothing where that can't be told.
    std::function<std::optional<Room>(const QString& path)> room;
};

/// This machine.
World realWorld();

struct CheckOptions
{
    QStringList hosts; ///< the machines that run the series; none: this one alone
    std::set<Rule> rulesOff;
    World world = realWorld();
    int lineLimit = mostLines; ///< of each series
};

/// Collects what the rules say.
class Findings
{
public:
    Findings(const SeriesFacts& facts, const CheckOptions& options)
        : m_facts(facts)
        , m_options(options)
    {}

    /// At a column of a line, both from 1.
    void add(Rule rule, int file, int line, int column, std::string text);
    void add(Rule rule, const LineFact& line, int column, std::string text)
    {
        add(rule, line.file, line.line, column, std::move(text));
    }

    /// In the order of files and lines.
    std::vector<Finding> takeSorted();

private:
    const SeriesFacts& m_facts;
    const CheckOptions& m_options;
    std::vector<Finding> m_findings;
};

// The rules, by subject.
void checkLines(const SeriesFacts& facts, Findings& findings);
void checkPaths(const SeriesFacts& facts, const CheckOptions& options, Findings& findings);
void checkSources(const SeriesFacts& facts, const CheckOptions& options, Findings& findings);
void checkFiles(const SeriesFacts& facts, Findings& findings);
void checkMarkers(const SeriesFacts& facts, Findings& findings);
void checkInit(const SeriesFacts& facts, Findings& findings);
void checkMachines(const SeriesFacts& facts, const CheckOptions& options, Findings& findings);

/// All findings of a series that was read.
std::vector<Finding> checkSeries(const SeriesFacts& facts, const CheckOptions& options);

struct CheckResult
{
    std::vector<Finding> findings;
    int seriesCount = 0;
    std::string problem; ///< one sentence why there was nothing to check, or empty
};

/// All findings of all series that a path leads to. Any file and any folder will do: what is no
/// series, or can't be read, is a finding or the problem.
CheckResult checkPath(const QString& path, const CheckOptions& options);
