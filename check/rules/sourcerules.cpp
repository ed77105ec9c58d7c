#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/rules/usetexts.h"
#include "check/savelosses.h"
#include "check/text.h"

#include <fmt/format.h>

#include <algorithm>

// Which task reads what another task, the "_init" file or nobody makes.

namespace {

constexpr Rule sameFile = {
    "same-file",
    Severity::Error,
    "paths",
    "Source and destination are the same file, in any iteration, on any machine.",
    "name another destination",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  /data/a.dat;  /data/./a.dat;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  /data/a.dat;  /data/b.dat;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

/// Once for each task: the first iteration and machine that has it.
void checkSameFile(const SeriesFacts& facts, const FileUses& uses, int line, Findings& findings)
{
    const int sources = uses.useCount(line, SourcePath);
    const int dests = uses.useCount(line, DestPath);
    if (sources == 0 || dests == 0)
        return;
    for (int iteration = 0; iteration < std::max(sources, dests); ++iteration) {
        const FileUse& source = uses.use(line, SourcePath, iteration);
        const FileUse& dest = uses.use(line, DestPath, iteration);
        const bool byHost = uses.nameOf(source).byHost || uses.nameOf(dest).byHost;
        for (int machine = 0; machine < (byHost ? int(uses.machines().size()) : 1); ++machine) {
            if (uses.fileOf(source, machine) != uses.fileOf(dest, machine) ||
                uses.file(dest, machine).isDevice())
                continue;
            const LineFact& fact = facts.lines[size_t(line)];
            std::string when = iteration > 0 ? fmt::format(" in iteration {}", iteration) : "";
            if (machine > 0)
                when += " on " + printable(uses.machines()[size_t(machine)].host);
            findings.add(sameFile, fact, fact.columnOf(DestPath),
                         fmt::format("destination and source are the same file {}{}: the task "
                                     "destroys what it reads",
                                     quoted(uses.nameOf(dest).text), when));
            return;
        }
    }
}

constexpr Rule sourceMissing = {
    "source-missing",
    Severity::Error,
    "paths",
    "The source does not exist, and neither the _init file nor an earlier task makes it.",
    "correct the name, or save the series again so that the _init file makes the source",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  /data/src.dat;  MEMORY;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    withExisting("/data/src.dat", 102400,
                 oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  /data/src.dat;  "
                         "MEMORY;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"))};

constexpr Rule sourceDate = {
    "source-date",
    Severity::Error,
    "paths",
    "[date] in a source is another name every second: no file that was made before can match it.",
    "leave [date] out of the source",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  [cfgPath]/src_[date].dat;  "
            "MEMORY;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    series({"mytest.dpc",
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  [cfgPath]/src.dat;  "
            "MEMORY;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"},
           {"mytest_init.dpc", "Stream;NOflush;NOprealloc;  0;    0; -1; 102400;1;0;  MEMORY;  "
                               "[cfgPath]/src.dat;  ;  ;  true;\n"
                               "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  "
                               "[cfgPath]/dummyFile;  ;  ;  true;\n"})};

constexpr Rule sourceLocal = {
    "source-local",
    Severity::Warning,
    "paths",
    "The source is another file on each machine; the _init file makes only the one of the machine "
    "that saved the series.",
    "name a source below [cfgPath], write it with an earlier task, or make it on each machine",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  [temp]/src.dat;  MEMORY;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [temp]/src.dat;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  [temp]/src.dat;  MEMORY;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

/// Where a source comes from.
enum class Origin
{
    Task,   ///< an earlier task writes it
    Disk,   ///< it exists, or the "_init" file makes it
    Folder, ///< a folder is in its place, and that has a finding of its own
    Unseen, ///< this system can't tell
    Nobody
};

class SourceRules
{
public:
    SourceRules(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
        : m_facts(facts)
        , m_uses(uses)
        , m_findings(findings)
        , m_expander(facts, thisMachine())
    {}

    /// One finding for each task is enough.
    void check(int line)
    {
        std::vector<const FileUse*> missing;
        for (int i = 0; i < m_uses.useCount(line, SourcePath); ++i) {
            const FileUse& source = m_uses.use(line, SourcePath, i);
            if (isOfMachine(source)) {
                if (checkOfMachine(source))
                    return;
            } else if (originOf(source, 0) == Origin::Nobody) {
                missing.push_back(&source);
            }
        }
        if (!missing.empty())
            sayMissing(missing);
    }

private:
    /// True for a name that is another one at each run or on each machine.
    bool isOfMachine(const FileUse& source) const
    {
        const UsedName& name = m_uses.nameOf(source);
        return name.byDate || name.byHost || name.byTemp;
    }

    /// True if something was said.
    bool checkOfMachine(const FileUse& source)
    {
        const UsedName& name = m_uses.nameOf(source);
        if (name.byDate)
            return originOf(source, 0) != Origin::Folder && sayDated(source);
        if (m_uses.givenMachines() == 0) {
            const Origin origin = originOf(source, 0);
            return origin != Origin::Task && origin != Origin::Folder && sayLocal(source, {});
        }
        std::vector<int> lacking;
        for (int machine = 0; machine < int(m_uses.machines().size()); ++machine) {
            const Origin origin = originOf(source, machine);
            if (origin == Origin::Nobody || (origin == Origin::Unseen && name.byTemp))
                lacking.push_back(machine);
        }
        return !lacking.empty() && sayLocal(source, lacking);
    }

    Origin originOf(const FileUse& source, int machine) const
    {
        const UsedFile& file = m_uses.file(source, machine);
        if (file.path.namesFolder || file.path.kind == PathStatus::Kind::Folder)
            return Origin::Folder;
        if (m_uses.isWrittenBefore(file, source))
            return Origin::Task;
        // The "_init" file runs on one machine, and makes nothing in the folders of the others.
        if (m_uses.nameOf(source).byTemp && !m_uses.isThisMachine())
            return Origin::Unseen;
        const bool isMade = file.init >= 0 && m_uses.init()[size_t(file.init)].entry.isActive;
        if (isMade || file.exists())
            return Origin::Disk;
        // Config files come and go, and an "_init" file that can't be read has a finding of its
        // own.
        if (file.isOwn || isInitUnreadable())
            return Origin::Unseen;
        return file.path.isSeen ? Origin::Nobody : Origin::Unseen;
    }

    bool isInitUnreadable() const
    {
        return m_facts.initFile >= 0 && !m_facts.files[size_t(m_facts.initFile)].readable;
    }

    bool sayDated(const FileUse& source)
    {
        const LineFact& line = lineOf(source);
        m_findings.add(sourceDate, line, line.columnOf(SourcePath),
                       fmt::format("[date] gives the source {} another name every second: no "
                                   "existing file can match it",
                                   quoted(line.path(SourcePath))));
        return true;
    }

    bool sayLocal(const FileUse& source, const std::vector<int>& lacking)
    {
        const LineFact& line = lineOf(source);
        const std::string which =
            lacking.empty() ? std::string()
                            : fmt::format(", and not there on {}",
                                          listedMachines(m_uses, lacking, int(lacking.size())));
        m_findings.add(sourceLocal, line, line.columnOf(SourcePath),
                       fmt::format("{} is another file on each machine{}: the _init file makes it "
                                   "on one only",
                                   quoted(line.path(SourcePath)), which));
        return true;
    }

    void sayMissing(const std::vector<const FileUse*>& sources)
    {
        const LineFact& line = lineOf(*sources.front());
        if (m_findings.isFull(sourceMissing, line.file)) {
            m_findings.add(sourceMissing, line, line.columnOf(SourcePath), "");
            return;
        }
        std::vector<std::string> names;
        names.reserve(sources.size());
        for (const FileUse* source : sources)
            names.push_back(printable(QString::fromLatin1(m_uses.nameOf(*source).text)));
        m_findings.add(sourceMissing, line, line.columnOf(SourcePath),
                       messageOnMissing(*sources.front(), sources.size()).about(std::move(names)));
    }

    Message messageOnMissing(const FileUse& source, size_t count)
    {
        const std::string missing =
            fmt::format("the source {} does not exist{}, and ", quoted(m_uses.nameOf(source).text),
                        count > 1 ? fmt::format(", nor {} more", count - 1) : std::string());
        const UsedFile& file = m_uses.file(source, 0);
        if (file.init >= 0)
            return {fmt::format("{}line {} of the _init file is commented out", missing,
                                m_uses.init()[size_t(file.init)].entry.line),
                    advice()};
        const LineFact& line = lineOf(source);
        const QString nameless =
            m_expander.namelessInitName(line, line.path(SourcePath), source.iteration);
        if (const auto made = m_facts.init.constFind(nameless.toLatin1());
            made != m_facts.init.cend())
            return {fmt::format("{}nothing makes it: line {} of the _init file makes {}, because "
                                "the task had no config file yet when it was saved",
                                missing, made->line, quoted(nameless)),
                    advice()};
        for (const FileWay& way : file.ways) {
            const int first = m_uses.names()[size_t(way.name)].firstUse[DestPath];
            if (first >= 0 && m_uses.uses()[size_t(first)].line != source.line)
                return {fmt::format("{}nothing makes it before {} writes it", missing,
                                    placeOf(m_facts, m_uses.uses()[size_t(first)].line)),
                        "change the order of the tasks, or correct the name"};
        }
        const std::string nothing = m_facts.initFile >= 0 || m_facts.isInit
                                        ? "nothing makes it"
                                        : fmt::format("the series has no {}_init.dpc that makes it",
                                                      printable(m_facts.name.baseName));
        return {missing + nothing,
                "correct the name; or, for the _init file to make it, " + advice()};
    }

    /// Found out once, and only if it is asked for.
    const std::string& advice()
    {
        if (m_advice.empty())
            m_advice = adviceToRenewInit(m_facts, m_uses);
        return m_advice;
    }

    const LineFact& lineOf(const FileUse& use) const { return m_facts.lines[size_t(use.line)]; }

    const SeriesFacts& m_facts;
    const FileUses& m_uses;
    Findings& m_findings;
    NameExpander m_expander;
    std::string m_advice;
};

constexpr Rule manyIterations = {
    "many-iterations",
    Severity::Note,
    "paths",
    "The tasks have so many iterations in all that their file names are not checked one by one.",
    "lower the number of iterations, if it is a mistake",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;2000000000;0;  MEMORY;  "
            "[cfgPath]/out_[host]_[iter].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  "
            "true;\n"),
    oneFile(plainTask)};

} // namespace

void checkSources(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
{
    if (facts.iterationLimit == 1)
        findings.add(manyIterations, 0, 1, 1,
                     fmt::format("the tasks stand for {} file names: only those of the first "
                                 "iteration are checked",
                                 facts.nameCount));
    SourceRules sources(facts, uses, findings);
    for (int line = 0; line < int(facts.lines.size()); ++line) {
        checkSameFile(facts, uses, line, findings);
        sources.check(line);
    }
}

RuleList sourceRules()
{
    return {&sameFile, &sourceMissing, &sourceDate, &sourceLocal, &manyIterations};
}
