#include "check/nameexpander.h"
#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/text.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"

#include <QHash>
#include <QSet>

#include <fmt/format.h>

#include <algorithm>
#include <map>

// What goes wrong only because several machines run the series.

namespace {

QString computerName(const QString& host)
{
    return kvToQString(computerNameFrom(host.toLatin1().constData()));
}

std::string listed(const QStringList& hosts)
{
    constexpr int mostShown = 3;
    std::string text = printable(QStringList(hosts.mid(0, mostShown)).join(QStringLiteral(", ")));
    if (hosts.size() > mostShown)
        text += fmt::format(" and {} more", hosts.size() - mostShown);
    return text;
}

constexpr Rule sharedOutput = {
    "shared-output",
    Severity::Error,
    "machines",
    "Several machines write the same destination.",
    "Put [host] into the name.",
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
    "Put [host] into the name.",
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
    "Put [host] into the name, if the folder is a share.",
    onMachines("pc01,pc02",
               oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
                       "/mnt/nas/out.dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")),
    onMachines(
        "pc01,pc02",
        oneFile(
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "/mnt/nas/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"))};

/// Two machines that resolve to the same file.
class SharedFileRule
{
public:
    SharedFileRule(const SeriesFacts& facts, const QStringList& hosts, Findings& findings)
        : m_findings(findings)
        , m_names(facts, noMachine())
        , m_hosts(hosts)
    {
        QHash<QString, QStringList> byName;
        for (const QString& host : hosts)
            byName[computerName(host)] += host;
        for (const QString& host : hosts) {
            const QStringList& same = byName[computerName(host)];
            if (same.size() > 1 && m_sameName.isEmpty())
                m_sameName = same;
        }
    }

    void check(const LineFact& line, TaskPath which)
    {
        const QByteArray path = line.path(which);
        if (path.isEmpty())
            return;
        const QString name = m_names.resolve(line, path);
        const QStringList& hosts = name.contains(QLatin1String("[host]")) ? m_sameName : m_hosts;
        if (hosts.size() < 2 || name.startsWith(QLatin1String("[temp]")) || m_said.contains(name))
            return;
        m_said.insert(name);
        const bool shared = path.startsWith("[cfgPath]") || isRelative(path);
        const Rule& rule = !shared ? maybeShared : which == DestPath ? sharedOutput : sharedResults;
        m_findings.add(
            rule, line, line.columnOf(which),
            fmt::format("{} all write {}{}", listed(hosts), quoted(path),
                        shared ? "" : ", which is one file where its folder is a share"));
    }

private:
    static bool isRelative(const QByteArray& path)
    {
        _kvString8_allSize<500> text;
        text.add(path.constData(), path.size());
        return isRelativePath(text);
    }

    Findings& m_findings;
    NameExpander m_names;
    QStringList m_hosts;
    QStringList m_sameName; ///< machines that have the same name in files
    QSet<QString> m_said;
};

constexpr Rule diskSpace = {
    "disk-space",
    Severity::Warning,
    "machines",
    "A file system has less space than the series needs, as far as this machine can tell.",
    "Use smaller files or fewer machines, or make space.",
    onMachines("pc01,pc02", withSpace(150, oneFile(plainTask))),
    onMachines("pc01,pc02", withSpace(200, oneFile(plainTask)))};

/// What the series takes of one file system.
struct Demand
{
    double bytes = 0;
    qint64 free = 0;
    QString place;
    const LineFact* firstLine = nullptr;
};

class SpaceRule
{
public:
    SpaceRule(const SeriesFacts& facts, const CheckOptions& options)
        : m_iterationLimit(facts.iterationLimit)
        , m_options(options)
        , m_anyMachine(facts, noMachine())
        , m_here(facts, thisMachine())
    {}

    void add(const LineFact& line, TaskPath which)
    {
        const QByteArray path = line.path(which);
        if (path.isEmpty() || line.used.fileSize <= 0)
            return;
        const int iterations = std::min(iterationsOf(line, path), m_iterationLimit);
        for (int i = 0; i < iterations; ++i)
            addFile(line, path, i, which);
    }

    void report(Findings& findings) const
    {
        for (const auto& [fileSystem, demand] : m_demands) {
            if (demand.bytes > static_cast<double>(demand.free))
                findings.add(diskSpace, *demand.firstLine, 1, text(demand));
        }
    }

private:
    void addFile(const LineFact& line, const QByteArray& path, int iteration, TaskPath which)
    {
        const QString name = m_anyMachine.resolve(line, path, iteration);
        if (m_counted.contains(name))
            return;
        m_counted.insert(name);
        const QString here = m_here.resolve(line, path, iteration);
        if (m_options.environment.exists(here))
            return;
        const std::optional<DiskSpace> space = spaceFor(here);
        if (!space)
            return;
        Demand& demand = m_demands[space->fileSystem];
        demand.bytes += double(line.used.fileSize) * machinesThatWrite(name, which);
        demand.free = space->free;
        if (demand.firstLine == nullptr) {
            demand.firstLine = &line;
            demand.place = kvGetDirName(here, '/');
        }
    }

    /// A source is made once, what is below "[temp]" lies on each machine itself.
    int machinesThatWrite(const QString& name, TaskPath which) const
    {
        const bool eachItsOwn = which == DestPath && name.contains(QLatin1String("[host]")) &&
                                !name.startsWith(QLatin1String("[temp]"));
        return eachItsOwn ? std::max(m_options.hosts.size(), 1) : 1;
    }

    std::optional<DiskSpace> spaceFor(const QString& path)
    {
        const QString folder = kvGetDirName(path, '/');
        const auto known = m_spaces.constFind(folder);
        if (known != m_spaces.cend())
            return *known;
        return *m_spaces.insert(folder, m_options.environment.space(folder));
    }

    std::string text(const Demand& demand) const
    {
        constexpr double mib = 1024.0 * 1024.0;
        return fmt::format(
            "the series needs {:.0f} MiB on the file system of {}, where {:.0f} MiB are free "
            "(counting "
            "{}, files that exist as overwritten in place, and [temp] of this machine only)",
            demand.bytes / mib, quoted(demand.place), double(demand.free) / mib,
            counted(std::max(m_options.hosts.size(), 1), "machine"));
    }

    int m_iterationLimit;
    const CheckOptions& m_options;
    NameExpander m_anyMachine;
    NameExpander m_here;
    QSet<QString> m_counted;
    QHash<QString, std::optional<DiskSpace>> m_spaces;
    std::map<quint64, Demand> m_demands;
};

} // namespace

void checkMachines(const SeriesFacts& facts, const CheckOptions& options, Findings& findings)
{
    SharedFileRule shared(facts, options.hosts, findings);
    SpaceRule space(facts, options);
    for (const LineFact& line : facts.lines) {
        if (!isTask(line))
            continue;
        for (const TaskPath which : {DestPath, LogPath, CsvPath})
            shared.check(line, which);
        space.add(line, SourcePath);
        space.add(line, DestPath);
    }
    space.report(findings);
}

RuleList machineRules()
{
    return {&sharedOutput, &sharedResults, &maybeShared, &diskSpace};
}
