#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/rules/usetexts.h"
#include "check/text.h"

#include <QSet>

#include <fmt/format.h>

#include <algorithm>

// Faults that appear only if several machines run the series.

namespace {

constexpr Rule sharedOutput = {
    "shared-output",
    Severity::Error,
    "machines",
    "Several machines write the same destination.",
    "put [host] into the name, with something between it and other variables",
    onMachines(
        "pc01,pc02",
        oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [cfgPath]/out.dat; "
                " [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")),
    onMachines("pc01,pc02", oneFile(plainTask))};

constexpr Rule sharedResults = {
    "shared-results",
    Severity::Warning,
    "machines",
    "Several machines write the same log or .csv file.",
    "put [host] into the name",
    onMachines(
        "pc01,pc02",
        oneFile(
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/results.csv;  true;\n")),
    onMachines("pc01,pc02", oneFile(plainTask))};

constexpr Rule maybeShared = {
    "maybe-shared",
    Severity::Note,
    "machines",
    "Several machines write to the same path; they share the file if the folder is a share.",
    "put [host] into the name, if the folder is a share",
    onMachines("pc01,pc02",
               oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
                       "/mnt/nas/out.dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")),
    onMachines(
        "pc01,pc02",
        oneFile(
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "/mnt/nas/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"))};

/// The machines that write a file.
struct Writers
{
    std::vector<int> some;
    bool areAll = false;

    bool areSeveral() const { return areAll || some.size() > 1; }
};

/// Files that more than one machine writes.
class SharedFileRule
{
public:
    SharedFileRule(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
        : m_facts(facts)
        , m_uses(uses)
        , m_findings(findings)
        , m_isChecked(uses.files().size(), false)
    {}

    /// Once for each file, and once for all iterations.
    void check(int line, TaskPath role)
    {
        bool isSaid = false;
        for (int i = 0; i < m_uses.useCount(line, role); ++i) {
            const FileUse& use = m_uses.use(line, role, i);
            const int machines = m_uses.nameOf(use).byHost ? int(m_uses.machines().size()) : 1;
            for (int machine = 0; machine < machines; ++machine) {
                const int file = m_uses.fileOf(use, machine);
                if (m_isChecked[size_t(file)])
                    continue;
                m_isChecked[size_t(file)] = true;
                const Writers writers = writersOf(m_uses.files()[size_t(file)]);
                if (writers.areSeveral() && !isSaid)
                    say(use, m_uses.files()[size_t(file)], writers);
                isSaid = isSaid || writers.areSeveral();
            }
        }
    }

private:
    /// Not one entry for each machine: there may be very many.
    Writers writersOf(const UsedFile& file) const
    {
        Writers writers;
        for (const FileWay& way : file.ways) {
            const auto& first = m_uses.names()[size_t(way.name)].firstUse;
            if (file.isLocal || file.isNoFile() ||
                (first[DestPath] < 0 && first[LogPath] < 0 && first[CsvPath] < 0))
                continue;
            if (way.machine == allMachines)
                writers.areAll = true;
            else
                writers.some.push_back(way.machine);
        }
        std::sort(writers.some.begin(), writers.some.end());
        writers.some.erase(std::unique(writers.some.begin(), writers.some.end()),
                           writers.some.end());
        return writers;
    }

    std::string listed(const Writers& writers) const
    {
        if (!writers.areAll)
            return listedMachines(m_uses, writers.some, int(writers.some.size()));
        std::vector<int> first;
        for (int machine = 0; machine < std::min(3, int(m_uses.machines().size())); ++machine)
            first.push_back(machine);
        return listedMachines(m_uses, first, m_uses.givenMachines());
    }

    void say(const FileUse& use, const UsedFile& file, const Writers& writers)
    {
        const LineFact& line = m_facts.lines[size_t(use.line)];
        const QByteArray path = line.path(use.role);
        const Rule& rule = !file.isShared         ? maybeShared
                           : use.role == DestPath ? sharedOutput
                                                  : sharedResults;
        std::string text = fmt::format("{} all write {}", listed(writers), quoted(path));
        if (!file.isShared)
            text += ", which is one file if its folder is a share";
        Message message = text;
        if (holds(path, hostVariable))
            message = {text + ", because the names come out the same",
                       "give the machines different names, or put something between the variables"};
        m_findings.add(rule, line, line.columnOf(use.role), std::move(message));
    }

    const SeriesFacts& m_facts;
    const FileUses& m_uses;
    Findings& m_findings;
    std::vector<bool> m_isChecked;
};

} // namespace

void checkMachines(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
{
    // An "_init" file runs on one machine.
    if (uses.machines().size() < 2 || facts.isInit)
        return;
    SharedFileRule shared(facts, uses, findings);
    for (int line = 0; line < int(facts.lines.size()); ++line) {
        for (const TaskPath role : {DestPath, LogPath, CsvPath})
            shared.check(line, role);
    }
}

RuleList machineRules()
{
    return {&sharedOutput, &sharedResults, &maybeShared};
}
