#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/text.h"
#include "check/units.h"

#include <QHash>

#include <fmt/format.h>

#include <algorithm>
#include <map>

// Whether the files of a series fit on the disk.

namespace {

constexpr Rule diskSpace = {
    "disk-space",
    Severity::Warning,
    "machines",
    "A file system has less space than the series needs, as far as this machine can tell.",
    "use smaller files or fewer machines, or make space",
    onMachines("pc01,pc02", withSpace(150, oneFile(plainTask))),
    onMachines("pc01,pc02", withSpace(200, oneFile(plainTask)))};

/// The space that the series takes of one file system.
struct Demand
{
    double bytes = 0;
    qint64 free = 0;
    QString place;
    int firstLine = -1;
};

class SpaceRule
{
public:
    SpaceRule(const SeriesFacts& facts, const FileUses& uses, const Environment& environment)
        : m_facts(facts)
        , m_uses(uses)
        , m_environment(environment)
        , m_need(uses.files().size(), 0)
        , m_line(uses.files().size(), -1)
    {}

    void add(const FileUse& use)
    {
        if (use.role != SourcePath && use.role != DestPath)
            return;
        const UsedName& name = m_uses.nameOf(use);
        // Files below "[temp]" lie on each machine itself.
        const int machines = name.byHost && !name.byTemp ? int(m_uses.machines().size()) : 1;
        for (int machine = 0; machine < machines; ++machine)
            addFile(use, m_uses.fileOf(use, machine), machine);
    }

    void report(Findings& findings)
    {
        for (size_t i = 0; i < m_need.size(); ++i)
            addDemand(m_uses.files()[i], m_need[i], m_line[i]);
        for (const auto& [fileSystem, demand] : m_demands) {
            if (demand.bytes > static_cast<double>(demand.free))
                findings.add(diskSpace, m_facts.lines[size_t(demand.firstLine)], 1, text(demand));
        }
    }

private:
    void addFile(const FileUse& use, int place, int machine)
    {
        const UsedFile& file = m_uses.files()[size_t(place)];
        // A source is made once, by the machine that runs the "_init" file.
        if (use.role == SourcePath && (file.exists() || (machine > 0 && file.init < 0)))
            return;
        qint64& need = m_need[size_t(place)];
        need = std::max(need, sizeOf(use, machine));
        m_line[size_t(place)] = m_line[size_t(place)] < 0 ? use.line : m_line[size_t(place)];
    }

    /// A copy is as large as its source, if that exists.
    qint64 sizeOf(const FileUse& use, int machine) const
    {
        if (use.role == DestPath && m_uses.useCount(use.line, SourcePath) > 0) {
            const FileUse& source = m_uses.use(use.line, SourcePath, use.iteration);
            const UsedFile& copied = m_uses.file(source, machine);
            if (copied.isFile())
                return copied.path.size;
        }
        return m_facts.lines[size_t(use.line)].used.fileSize;
    }

    /// A file that exists is overwritten in place.
    void addDemand(const UsedFile& file, qint64 need, int line)
    {
        const qint64 more = need - (file.isFile() ? file.path.size : 0);
        // Only a path below "[temp]" is of this machine although it is not seen.
        if (line < 0 || more <= 0 || file.isNoFile() || (!file.path.isSeen && !file.isLocal))
            return;
        QByteArray folder = m_uses.folders()[size_t(file.path.folder)].shownPath;
        if (!folder.endsWith('/'))
            folder += '/';
        const std::optional<DiskSpace> space = spaceFor(folder);
        if (!space)
            return;
        Demand& demand = m_demands[space->fileSystem];
        demand.bytes += static_cast<double>(more);
        demand.free = space->free;
        if (demand.firstLine < 0 || line < demand.firstLine) {
            demand.firstLine = line;
            demand.place = QString::fromLatin1(folder);
        }
    }

    std::optional<DiskSpace> spaceFor(const QByteArray& folder)
    {
        const auto known = m_spaces.constFind(folder);
        if (known != m_spaces.cend())
            return *known;
        return *m_spaces.insert(folder, m_environment.space(QString::fromLatin1(folder)));
    }

    std::string text(const Demand& demand) const
    {
        return fmt::format(
            "the series needs {:.0f} MiB on the file system of {}, which has {:.0f} MiB free "
            "(counting {}, files that exist as overwritten in place, and [temp] of this machine "
            "only)",
            demand.bytes / bytesPerMib, quoted(demand.place), double(demand.free) / bytesPerMib,
            counted(std::max(m_uses.givenMachines(), 1), "machine"));
    }

    const SeriesFacts& m_facts;
    const FileUses& m_uses;
    const Environment& m_environment;
    std::vector<qint64> m_need; ///< bytes of each file
    std::vector<int> m_line;    ///< the first line that needs it
    QHash<QByteArray, std::optional<DiskSpace>> m_spaces;
    std::map<quint64, Demand> m_demands;
};

} // namespace

void checkSpace(const SeriesFacts& facts, const FileUses& uses, const Environment& environment,
                Findings& findings)
{
    SpaceRule space(facts, uses, environment);
    for (const FileUse& use : uses.uses())
        space.add(use);
    space.report(findings);
}

RuleList spaceRules()
{
    return {&diskSpace};
}
