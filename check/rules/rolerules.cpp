#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/rules/usetexts.h"
#include "check/text.h"

#include <QSet>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>

// Which file has two roles that do not go together.

namespace {

constexpr Rule resultsOverData = {
    "results-over-data",
    Severity::Error,
    "paths",
    "A log or .csv file is also the source or destination of a task: one destroys the other.",
    "name another file",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [cfgPath]/out.dat;  "
            "[cfgPath]/out.dat;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

constexpr Rule logIsCsv = {
    "log-is-csv",
    Severity::Warning,
    "paths",
    "The .csv file of a task is the log file of one: results and messages mix, and a spreadsheet "
    "can't read them.",
    "name another .csv file",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].txt;  true;\n"),
    oneFile(plainTask)};

constexpr Rule overwritesSeries = {
    "overwrites-series",
    Severity::Error,
    "paths",
    "A task writes over a config file of the series, over its _init file, or over the file "
    "dpc.rules of its folder.",
    "name another file",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [cfgPath]/mytest.dpc;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

constexpr Rule doneName = {
    "done-name",
    Severity::Warning,
    "paths",
    "A task writes a file that is named like the ones by which machines tell that they are done "
    "with "
    "a config file: it looks as if they were.",
    "name another file",
    oneFile(
        "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [cfgPath]/done_[host];  "
        "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

/// Begins the name of the file that tells that a machine is done; its name follows.
constexpr const char* donePrefix = "done_";

/// The roles of one file: how many uses each has, and the first.
struct Roles
{
    std::array<int, taskPathCount> count{};
    std::array<int, taskPathCount> first = {-1, -1, -1, -1};
};

class RoleRules
{
public:
    RoleRules(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
        : m_facts(facts)
        , m_uses(uses)
        , m_findings(findings)
    {}

    void check()
    {
        for (const FileUse& use : m_uses.uses())
            ++m_counts[size_t(use.name)][use.role];
        for (const MachineName& machine : m_uses.machines())
            m_doneNames.insert(donePrefix + machine.inPath);
        for (const UsedFile& file : m_uses.files())
            checkFile(file);
        for (const InitUse& made : m_uses.init())
            checkMade(made);
    }

private:
    void checkFile(const UsedFile& file)
    {
        if (file.isNoFile())
            return;
        const Roles roles = rolesOf(file);
        if (file.isOwn && !m_facts.isInit)
            sayOwn(file, roles);
        sayDone(file, roles);
        const std::optional<TaskPath> results = either(roles, LogPath, CsvPath);
        const std::optional<TaskPath> data = either(roles, DestPath, SourcePath);
        if (results && data)
            say(resultsOverData, roles, *results, *data, "one destroys the other");
        else if (roles.first[LogPath] >= 0 && roles.first[CsvPath] >= 0)
            say(logIsCsv, roles, CsvPath, LogPath, "results and messages mix");
    }

    Roles rolesOf(const UsedFile& file) const
    {
        Roles roles;
        for (const FileWay& way : file.ways) {
            for (const TaskPath role : {SourcePath, DestPath, LogPath, CsvPath}) {
                const int first = m_uses.names()[size_t(way.name)].firstUse[role];
                if (first < 0)
                    continue;
                roles.count[role] += m_counts[size_t(way.name)][role];
                int& known = roles.first[role];
                known = known < 0 ? first : std::min(known, first);
            }
        }
        return roles;
    }

    static std::optional<TaskPath> either(const Roles& roles, TaskPath one, TaskPath other)
    {
        if (roles.first[one] >= 0)
            return one;
        return roles.first[other] >= 0 ? std::optional<TaskPath>(other) : std::nullopt;
    }

    const FileUse& firstUse(const Roles& roles, TaskPath role) const
    {
        return m_uses.uses()[size_t(roles.first[role])];
    }

    /// At the role that fewer uses give the file, or the later one: there the mistake is.
    void say(const Rule& rule, const Roles& roles, TaskPath one, TaskPath other,
             const char* consequence)
    {
        const bool isOther = roles.count[other] != roles.count[one]
                                 ? roles.count[other] < roles.count[one]
                                 : firstUse(roles, other).line > firstUse(roles, one).line;
        const FileUse& wrong = firstUse(roles, isOther ? other : one);
        const FileUse& right = firstUse(roles, isOther ? one : other);
        const bool isDated = m_uses.nameOf(wrong).byDate;
        const int place = wrong.line * taskPathCount + wrong.role;
        // One finding for all iterations; with [date] a later task has another file.
        if (m_said.contains(place) || (isDated && wrong.line != right.line))
            return;
        m_said.insert(place);
        add(rule, wrong,
            fmt::format("{} is also {}: {}", quoted(m_uses.nameOf(wrong).text),
                        roleOf(m_facts, right), consequence));
    }

    void sayOwn(const UsedFile& file, const Roles& roles)
    {
        for (const TaskPath role : {DestPath, LogPath, CsvPath}) {
            if (roles.first[role] < 0)
                continue;
            const FileUse& use = firstUse(roles, role);
            const int place = use.line * taskPathCount + use.role;
            if (m_saidOwn.contains(place))
                continue;
            m_saidOwn.insert(place);
            add(overwritesSeries, use,
                fmt::format("{} is {}, which the task overwrites",
                            quoted(QString::fromUtf8(file.path.key)), kindOfOwn(file)));
        }
    }

    static const char* kindOfOwn(const UsedFile& file)
    {
        return file.path.key.endsWith(configFileExtension)
                   ? "a file of the series itself"
                   : "the file that turns rules off, with the reasons";
    }

    /// The "_init" file is a part of the series, and may destroy another one.
    void checkMade(const InitUse& made)
    {
        const UsedFile& file = m_uses.files()[size_t(made.file)];
        if (made.entry.isActive && file.isOwn)
            m_findings.add(overwritesSeries, made.entry.file, made.entry.line, 1,
                           {fmt::format("the line makes {} anew, which is {}", quoted(made.name),
                                        kindOfOwn(file)),
                            "remove the line, and correct the name in the task that has it"});
    }

    /// True for the name of a done file on a machine of the series.
    bool isDoneName(const UsedName& name) const
    {
        const auto isSeparator = [](char c) { return c == '/' || c == '\\'; };
        const int length = int(std::find_if(name.text.rbegin(), name.text.rend(), isSeparator) -
                               name.text.rbegin());
        const char* const last = name.text.constData() + name.text.size() - length;
        if (qstrncmp(last, donePrefix, qstrlen(donePrefix)) != 0)
            return false;
        return last == donePrefix + QByteArray(hostVariable) ||
               (m_uses.givenMachines() > 0 && m_doneNames.contains(last));
    }

    void sayDone(const UsedFile& file, const Roles& roles)
    {
        const auto way = std::find_if(file.ways.begin(), file.ways.end(), [&](const FileWay& w) {
            return isDoneName(m_uses.names()[size_t(w.name)]);
        });
        if (way == file.ways.end())
            return;
        for (const TaskPath role : {DestPath, LogPath, CsvPath}) {
            if (roles.first[role] < 0 || m_saidDone.contains(roles.first[role]))
                continue;
            m_saidDone.insert(roles.first[role]);
            add(doneName, firstUse(roles, role),
                fmt::format("{} is named like the file by which a machine tells that it is done "
                            "with a config file",
                            quoted(m_uses.names()[size_t(way->name)].text)));
        }
    }

    void add(const Rule& rule, const FileUse& use, std::string text)
    {
        const LineFact& line = m_facts.lines[size_t(use.line)];
        m_findings.add(rule, line, line.columnOf(use.role), std::move(text));
    }

    const SeriesFacts& m_facts;
    const FileUses& m_uses;
    Findings& m_findings;
    std::vector<std::array<int, taskPathCount>> m_counts{m_uses.names().size()}; ///< of each name
    QSet<QByteArray> m_doneNames; ///< on the machines of the series
    QSet<int> m_said;             ///< by line and role
    QSet<int> m_saidOwn;          ///< by line and role
    QSet<int> m_saidDone;         ///< uses
};

constexpr Rule namesMeet = {
    "names-meet",
    Severity::Warning,
    "paths",
    "Two iterations or tasks have names of their own that come out the same: without anything "
    "between its parts, 1 and 11 is the same as 11 and 1. One overwrites what the other wrote.",
    "put something between the variables, such as [cfgTaskID]_[iter]",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 1024;12;0;  MEMORY;  "
            "[cfgPath]/[cfgTaskID][iter].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  "
            "true;\n",
            12),
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 1024;12;0;  MEMORY;  "
            "[cfgPath]/[cfgTaskID]_[iter].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  "
            "true;\n",
            12)};

bool varies(const QByteArray& path, VariesBy part)
{
    for (int i = 0; i < pathVariableCount; ++i) {
        if (variationOf(static_cast<PathVariable>(i)) == part && holds(path, pathVariables[i]))
            return true;
    }
    return false;
}

/// True for two uses of a file whose names were to tell them apart.
bool areMeantApart(const SeriesFacts& facts, const FileUse& one, const FileUse& other)
{
    if (one.line == other.line && one.iteration == other.iteration)
        return false;
    const LineFact& oneLine = facts.lines[size_t(one.line)];
    const LineFact& otherLine = facts.lines[size_t(other.line)];
    const QByteArray& path = oneLine.path(one.role);
    const QByteArray& otherPath = otherLine.path(other.role);
    if (holds(path, iterVariable) && holds(otherPath, iterVariable) &&
        one.iteration != other.iteration)
        return true;
    return path == otherPath &&
           ((oneLine.taskNumber != otherLine.taskNumber && varies(path, VariesBy::Task)) ||
            (facts.fileOf(oneLine).number != facts.fileOf(otherLine).number &&
             varies(path, VariesBy::ConfigFile)));
}

/// The names that tasks write, with the first task that writes each.
class MeetingNames
{
public:
    MeetingNames(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
        : m_facts(facts)
        , m_uses(uses)
        , m_findings(findings)
    {}

    void check()
    {
        for (const TaskPath role : {DestPath, LogPath, CsvPath})
            checkRole(role);
    }

private:
    void checkRole(TaskPath role)
    {
        std::vector<int> firstOf(m_uses.files().size(), -1);
        int saidLine = -1;
        for (int i = 0; i < int(m_uses.uses().size()); ++i) {
            const FileUse& use = m_uses.uses()[size_t(i)];
            if (use.role != role || m_uses.nameOf(use).byDate)
                continue;
            int& first = firstOf[size_t(m_uses.fileOf(use, 0))];
            if (first < 0)
                first = i;
            const FileUse& before = m_uses.uses()[size_t(first)];
            if (use.line == saidLine || !areMeantApart(m_facts, before, use))
                continue;
            saidLine = use.line;
            say(before, use);
        }
    }

    void say(const FileUse& before, const FileUse& use)
    {
        const LineFact& line = m_facts.lines[size_t(use.line)];
        const std::string who = before.line == use.line
                                    ? fmt::format("iteration {}", before.iteration)
                                    : fmt::format("{} in iteration {}",
                                                  placeOf(m_facts, before.line), before.iteration);
        m_findings.add(namesMeet, line, line.columnOf(use.role),
                       fmt::format("iteration {} writes {}, as {} does: the parts of the names "
                                   "come out the same",
                                   use.iteration, quoted(m_uses.nameOf(use).text), who));
    }

    const SeriesFacts& m_facts;
    const FileUses& m_uses;
    Findings& m_findings;
};

constexpr Rule csvAcrossFiles = {
    "csv-across-files",
    Severity::Note,
    "paths",
    "Tasks of two config files write the same .csv file: [cfgTaskID] begins again in each. Their "
    "results stand one below the other.",
    "put [cfgID] into the name, if each config file is to have results of its own",
    series({"mytest.dpc",
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"
            "[cfgPath]/mytest1.dpc\n"},
           {"mytest1.dpc", plainTask}, plainInit),
    oneFile(plainTask)};

/// Once for each config file. Names that meet although they tell the config file have a finding of
/// their own.
void checkCsvAcrossFiles(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
{
    std::vector<const FileUse*> firstUse(uses.files().size(), nullptr);
    int saidFile = -1;
    for (const FileUse& use : uses.uses()) {
        if (use.role != CsvPath || uses.nameOf(use).byDate)
            continue;
        const FileUse*& first = firstUse[size_t(uses.fileOf(use, 0))];
        first = first == nullptr ? &use : first;
        const LineFact& line = facts.lines[size_t(use.line)];
        const LineFact& before = facts.lines[size_t(first->line)];
        if (facts.fileOf(line).number == facts.fileOf(before).number || line.file == saidFile ||
            areMeantApart(facts, *first, use))
            continue;
        saidFile = line.file;
        findings.add(csvAcrossFiles, line, line.columnOf(CsvPath),
                     fmt::format("the .csv file {} is also that of {}: the results of both config "
                                 "files stand in one",
                                 quoted(line.path(CsvPath)), placeOf(facts, first->line)));
    }
}

} // namespace

void checkRoles(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
{
    RoleRules(facts, uses, findings).check();
    MeetingNames(facts, uses, findings).check();
    checkCsvAcrossFiles(facts, uses, findings);
}

RuleList roleRules()
{
    return {&resultsOverData, &logIsCsv, &overwritesSeries, &doneName, &namesMeet, &csvAcrossFiles};
}
