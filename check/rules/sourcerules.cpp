#include "check/taskfields.h"
#include "check/text.h"

#include <QHash>

#include <fmt/format.h>

// Which task reads what another task, the "_init" file or nobody makes.

namespace {

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
                Rule::SourceDate, line, line.columnOf(SourcePath),
                "[date] gives the source another name at every run: nothing made it before");
            return false;
        }
        if (dependsOnMachine(name)) {
            m_findings.add(
                Rule::SourceLocal, line, line.columnOf(SourcePath),
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
        m_findings.add(Rule::SourceMissing, line, line.columnOf(SourcePath),
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
        m_findings.add(Rule::OverwritesSource, writer, writer.columnOf(DestPath),
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
                Rule::SameFile, line, line.columnOf(DestPath),
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

} // namespace

void checkSources(const SeriesFacts& facts, const CheckOptions& options, Findings& findings)
{
    SourceRule rule(facts, options, findings);
    if (facts.iterationLimit == 1)
        findings.add(
            Rule::ManyIterations, 0, 1, 1,
            fmt::format("the tasks stand for {} file names: only those of the first iteration "
                        "are checked",
                        facts.nameCount));
    for (const LineFact& line : facts.lines) {
        if (isTask(line))
            rule.check(line);
    }
}
