#pragma once

#include "check/finding.h"
#include "check/seriesfacts.h"

#include <QStringList>

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// DiskSpace on a file system.
struct DiskSpace
{
    quint64 fileSystem = 0; ///< tells file systems apart
    qint64 free = 0;        ///< bytes
};

/// What a check asks of the machine beyond the config files. It never writes.
struct Environment
{
    std::function<bool(const QString& path)> exists;
    /// Of the file system that a path would lie on; nothing where that can't be told.
    std::function<std::optional<DiskSpace>(const QString& path)> room;
};

/// This machine.
Environment realEnvironment();

/// What the user asks of a check.
struct CheckOptions
{
    QStringList hosts; ///< the machines that run the series; none: this one alone
    std::set<Rule> rulesOff;
    Environment environment = realEnvironment();
    ReadLimits limits;
};

/// Collects what the rules say.
class Findings
{
public:
    /// Of one series; both must outlive it.
    Findings(const SeriesFacts& facts, const CheckOptions& options)
        : m_facts(facts)
        , m_options(options)
    {}

    /// At a column of a line, both from 1.
    void add(Rule rule, int file, int line, int column, std::string text);
    /// At a column of a line that holds something.
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

/// The rules about a line as text, its fields and their values.
void checkLines(const SeriesFacts& facts, Findings& findings);
/// The rules about a path by itself: its variables, its form, its folder.
void checkPaths(const SeriesFacts& facts, const CheckOptions& options, Findings& findings);
/// The rules about who makes what a task reads.
void checkSources(const SeriesFacts& facts, const CheckOptions& options, Findings& findings);
/// The rules about which files there are, and which are read.
void checkFiles(const SeriesFacts& facts, Findings& findings);
/// The rules about the markers that lead from file to file.
void checkMarkers(const SeriesFacts& facts, Findings& findings);
/// The rules about the "_init" file.
void checkInit(const SeriesFacts& facts, Findings& findings);
/// The rules about what goes wrong only because several machines run the series.
void checkMachines(const SeriesFacts& facts, const CheckOptions& options, Findings& findings);

/// All findings of a series that was read.
std::vector<Finding> checkSeries(const SeriesFacts& facts, const CheckOptions& options);

/// What came of a check.
struct CheckResult
{
    std::vector<Finding> findings;
    std::vector<std::string> problems; ///< one sentence for each path where nothing can be checked
};

/// All findings of all series that the paths lead to, each series once: "*.dpc" names the files of
/// one, and its companion, many times. Any file and any folder will do: what is no series, or can't
/// be read, is a finding or a problem.
CheckResult checkAll(const QStringList& paths, const CheckOptions& options);
