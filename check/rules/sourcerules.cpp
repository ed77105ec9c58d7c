#include "check/nameexpander.h"
#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/text.h"

#include <QHash>

#include <fmt/format.h>

// Which task reads what another task, the "_init" file or nobody makes.

namespace {

constexpr Rule sameFile = {
    "same-file",
    Severity::Error,
    "paths",
    "Source and destination are the same file.",
    "Name another destination.",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  /data/a.dat;  /data/./a.dat;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  /data/a.dat;  /data/b.dat;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

constexpr Rule sourceMissing = {
    "source-missing",
    Severity::Error,
    "paths",
    "The source does not exist, and neither the _init file nor an earlier task makes it.",
    "Correct the name, or save the series again so that the _init file makes the source.",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  /data/src.dat;  MEMORY;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    withExisting("/data/src.dat", 102400,
                 oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  /data/src.dat;  "
                         "MEMORY;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"))};

constexpr Rule sourceDate = {
    "source-date",
    Severity::Error,
    "paths",
    "[date] in a source is another name at every run: no existing file can match it.",
    "Leave [date] out of the source.",
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
    "Name a source below [cfgPath], or write it with an earlier task.",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  [temp]/src.dat;  MEMORY;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [temp]/src.dat;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  [temp]/src.dat;  MEMORY;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

constexpr Rule overwritesSource = {
    "overwrites-source",
    Severity::Warning,
    "paths",
    "The destination overwrites a source that a later task reads and that is there already.",
    "Name another destination.",
    withExisting("/data/a.dat", 102400,
                 oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
                         "/data/a.dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"
                         "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  /data/a.dat;  "
                         "MEMORY;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")),
    withExisting("/data/a.dat", 102400,
                 oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
                         "/data/b.dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"
                         "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  /data/a.dat;  "
                         "MEMORY;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"))};

class SourceRule
{
public:
    SourceRule(const SeriesFacts& facts, const CheckOptions& options, Findings& findings)
        : m_facts(facts)
        , m_options(options)
        , m_findings(findings)
        , m_anyMachine(facts, noMachine())
        , m_here(facts, thisMachine())
    {}

    void check(const LineFact& line)
    {
        const QByteArray source = line.path(SourcePath);
        const QByteArray dest = line.path(DestPath);
        const int sources = std::min(iterationsOf(line, source), m_facts.iterationLimit);
        for (int i = 0; i < sources && !source.isEmpty(); ++i) {
            if (!checkSource(line, source, i))
                break;
        }
        const int dests = std::min(iterationsOf(line, dest), m_facts.iterationLimit);
        for (int i = 0; i < dests && !dest.isEmpty(); ++i)
            noteDest(line, source, dest, i);
    }

private:
    /// False where it found something: one finding per task is enough.
    bool checkSource(const LineFact& line, const QByteArray& source, int iteration)
    {
        const QString name = m_anyMachine.resolve(line, source, iteration);
        const auto writer = m_writers.constFind(name);
        if (writer != m_writers.cend())
            return !overwrites(*writer.value(), line, source, iteration);
        if (name.contains(QLatin1String("[date]"))) {
            m_findings.add(
                sourceDate, line, line.columnOf(SourcePath),
                "[date] gives the source another name at every run: nothing made it before");
            return false;
        }
        if (dependsOnMachine(name)) {
            m_findings.add(
                sourceLocal, line, line.columnOf(SourcePath),
                fmt::format("{} is another file on each machine: the _init file makes it on "
                            "one only",
                            quoted(source)));
            return false;
        }
        return isThere(line, source, iteration) || !sayMissing(line, source, iteration);
    }

    /// By the "_init" file, or on the disk.
    bool isThere(const LineFact& line, const QByteArray& source, int iteration)
    {
        const auto made =
            m_facts.init.constFind(m_here.initName(line, source, iteration).toLatin1());
        return (made != m_facts.init.cend() && made->isActive) ||
               m_options.environment.exists(m_here.resolve(line, source, iteration));
    }

    bool sayMissing(const LineFact& line, const QByteArray& source, int iteration)
    {
        const QString name = m_here.initName(line, source, iteration);
        m_findings.add(sourceMissing, line, line.columnOf(SourcePath),
                       fmt::format("the source {} does not exist, and nothing makes it{}",
                                   quoted(name), hint(line, source, iteration)));
        return true;
    }

    std::string hint(const LineFact& line, const QByteArray& source, int iteration)
    {
        const auto made =
            m_facts.init.constFind(m_here.initName(line, source, iteration).toLatin1());
        if (made != m_facts.init.cend())
            return fmt::format(
                "; line {} of the _init file is commented out: save the series again", made->line);
        const QString nameless = m_here.namelessInitName(line, source, iteration);
        if (m_facts.init.contains(nameless.toLatin1()))
            return fmt::format("; the _init file makes {}: load and save the series once more",
                               quoted(nameless));
        return {};
    }

    bool overwrites(const LineFact& writer, const LineFact& reader, const QByteArray& source,
                    int iteration)
    {
        if (!isThere(reader, source, iteration))
            return false;
        m_findings.add(overwritesSource, writer, writer.columnOf(DestPath),
                       fmt::format("the destination overwrites the source of {}:{}",
                                   printable(m_facts.fileOf(reader).shown), reader.line));
        return true;
    }

    void noteDest(const LineFact& line, const QByteArray& source, const QByteArray& dest,
                  int iteration)
    {
        const QString name = m_anyMachine.resolve(line, dest, iteration);
        if (iteration == 0 && !source.isEmpty() && name == m_anyMachine.resolve(line, source, 0))
            m_findings.add(
                sameFile, line, line.columnOf(DestPath),
                fmt::format("destination and source are the same file {}", quoted(name)));
        if (!m_writers.contains(name))
            m_writers.insert(name, &line);
    }

    const SeriesFacts& m_facts;
    const CheckOptions& m_options;
    Findings& m_findings;
    NameExpander m_anyMachine;
    NameExpander m_here;
    QHash<QString, const LineFact*> m_writers; ///< the first task that writes a file
};

constexpr Rule manyIterations = {
    "many-iterations",
    Severity::Warning,
    "paths",
    "The tasks have so many iterations in all that their file names are not checked one by one.",
    "Use fewer iterations, or check the names of the later iterations yourself.",
    oneFile(
        "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;2000000000;0;  MEMORY;  "
        "[cfgPath]/out_[host]_[iter].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(
        "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;100;0;  MEMORY;  "
        "[cfgPath]/out_[host]_[iter].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

void checkIterations(const SeriesFacts& facts, Findings& findings)
{
    if (facts.iterationLimit == 1)
        findings.add(
            manyIterations, 0, 1, 1,
            fmt::format("the tasks stand for {} file names: only those of the first iteration "
                        "are checked",
                        facts.nameCount));
}

} // namespace

void checkSources(const SeriesFacts& facts, const CheckOptions& options, Findings& findings)
{
    SourceRule rule(facts, options, findings);
    checkIterations(facts, findings);
    for (const LineFact& line : facts.lines) {
        if (isTask(line))
            rule.check(line);
    }
}

RuleList sourceRules()
{
    return {&sameFile,    &sourceMissing,    &sourceDate,
            &sourceLocal, &overwritesSource, &manyIterations};
}
