#include "check/filekeys.h"
#include "check/nameexpander.h"
#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/savelosses.h"
#include "check/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

// The chain of markers that leads through the files of a series.

namespace {

/// The config file of one number: whether it exists, and whether it names the next one.
struct Link
{
    bool exists = false;
    bool hasMarker = false;
};

/// One more than a load reads: the file after the last one may be there as well.
using Chain = std::array<Link, seriesFileCount + 1>;

/// True if a line does not load that holds no field of a task: a marker may be meant.
bool hasMistypedMarker(const SeriesFacts& facts, const FileFact& file)
{
    return std::any_of(facts.lines.begin() + file.firstEntry, facts.lines.begin() + file.endEntry,
                       [](const LineFact& line) {
                           return line.kind == LineFact::Kind::Rejected && !line.text.contains(';');
                       });
}

Chain chainOf(const SeriesFacts& facts)
{
    Chain chain;
    for (const FileFact& file : facts.files) {
        if (!file.isRead() &&
            !file.path.endsWith(seriesFile(QString(), facts.name.baseName, seriesFileCount)))
            continue;
        Link& link = chain[size_t(file.number)];
        link.exists = true;
        // A file that can't be read may have one.
        link.hasMarker =
            link.hasMarker || file.markers > 0 || !file.readable || hasMistypedMarker(facts, file);
    }
    return chain;
}

QString fileNameOf(const QString& path)
{
    const int separator = std::max(path.lastIndexOf('/'), path.lastIndexOf('\\'));
    return path.mid(separator + 1);
}

constexpr Rule markerFolder = {
    "marker-folder",
    Severity::Warning,
    "series",
    "The marker names the next file in another folder: the series was moved after it was saved. A "
    "note for the first folder of Windows or of a file server, which this system can't look up.",
    "load and save the series in its new folder",
    series({"mytest.dpc",
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"
            "/old/mytest1.dpc\n"},
           {"mytest1.dpc", plainTask}),
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", plainTask})};

QString folderIn(const QString& path)
{
    return path.left(path.size() - fileNameOf(path).size());
}

/// One spelling for the folder of a series that a marker of another system names, without "_wait".
QByteArray foreignFolder(const QString& path)
{
    QByteArray folder = foldedPath(folderIn(path).toLatin1());
    while (folder.endsWith('/'))
        folder.chop(1);
    const QByteArray wait = '/' + waitFolder().chopped(1).toLatin1();
    return folder.endsWith(wait) ? folder.chopped(wait.size()) : folder;
}

/// In the folder or in its "_wait", by whatever name; not by a path of another system.
bool isInSeries(const SeriesFacts& facts, const Environment& environment, const QString& path)
{
    const QString folder = folderIn(path);
    const QString canonical = environment.look(folder).canonical;
    for (const QString& own : {facts.runFolder, facts.runFolder + waitFolder(), facts.name.folder,
                               facts.name.folder + waitFolder()}) {
        if (folder == own || (!canonical.isEmpty() && canonical == environment.look(own).canonical))
            return true;
    }
    return false;
}

constexpr Rule markerTarget = {
    "marker-target",
    Severity::Error,
    "series",
    "The marker names another file than the next one of the series.",
    "name the next file of the series",
    series({"mytest.dpc",
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"
            "[cfgPath]/mytest3.dpc\n"},
           {"mytest1.dpc", plainTask}),
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", plainTask})};

constexpr Rule lastMarker = {
    "last-marker",
    Severity::Error,
    "series",
    "The last file ends with a marker: machines wait for a file that does not exist.",
    "remove the marker, or add the file that it names",
    series({"mytest.dpc", plainTaskAndMarker}),
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", plainTask})};

/// Checks one marker after the other.
class TargetRule
{
public:
    TargetRule(const SeriesFacts& facts, const CheckOptions& options, Findings& findings)
        : m_facts(facts)
        , m_environment(options.environment)
        , m_findings(findings)
        , m_chain(chainOf(facts))
        , m_names(facts, thisMachine())
    {}

    /// The files in the folder of a path of another system are unknown here, but a save names the
    /// same folder in all markers.
    void noteFolder(const LineFact& marker)
    {
        const QString target = m_names.resolve(marker, marker.text);
        if (!isForeignPath(target.toLatin1()))
            m_isFolderNamed = m_isFolderNamed || isInSeries(m_facts, m_environment, target);
        else if (m_foreignFolder.isEmpty())
            m_foreignFolder = foreignFolder(target);
    }

    void check(const LineFact& marker)
    {
        // One that is cut has its own finding, and so has a folder that can't be read.
        if (marker.text.size() > maxPath || m_facts.closedWaitFolder() != nullptr)
            return;
        const int number = m_facts.fileOf(marker).number;
        const QString target = m_names.resolve(marker, marker.text);
        const QString next = seriesFile(QString(), m_facts.name.baseName, number + 1);
        const bool isElsewhere = isInOtherFolder(target);
        if (!m_chain[size_t(number) + 1].exists && !(isElsewhere && m_environment.exists(target)))
            add(lastMarker, marker,
                fmt::format("the marker names {}, but the series has no file {}: machines wait for "
                            "ever",
                            quoted(target), printable(next)));
        else if (fileNameOf(target) != next)
            add(markerTarget, marker,
                {fmt::format("the marker names {}, but the next file is {}: machines wait for "
                             "another file",
                             quoted(target), printable(next)),
                 fmt::format("name {}", quoted("[cfgPath]/" + next))});
        else if (isElsewhere)
            add(markerFolder, marker,
                {fmt::format("the marker names the next file in another folder, {}: machines wait "
                             "for the file there",
                             quoted(target)),
                 adviceToMove()});
        else if (isForeignPath(target.toLatin1()))
            sayForeign(marker, target);
    }

private:
    bool isInOtherFolder(const QString& target) const
    {
        return isForeignPath(target.toLatin1())
                   ? m_isFolderNamed || foreignFolder(target) != m_foreignFolder
                   : !isInSeries(m_facts, m_environment, target);
    }

    /// Whether it is the folder of the series, only its user can tell.
    void sayForeign(const LineFact& marker, const QString& target)
    {
        if (m_isForeignSaid)
            return;
        m_isForeignSaid = true;
        add(markerFolder, marker,
            Message(fmt::format("the marker names the next file as {}, in a folder that this "
                                "system can't look up: machines wait for the file there",
                                quoted(target)),
                    "if the series was moved, " + adviceToMove())
                .as(Severity::Note));
    }

    void add(const Rule& rule, const LineFact& marker, Message message)
    {
        m_findings.add(rule, marker, marker.column + 1, std::move(message));
    }

    std::string adviceToMove() const
    {
        const std::string loss = lossOfSave(m_facts);
        return loss.empty() ? "load and save the series in its new folder"
                            : "correct the folder in the marker by hand: a save would not keep the "
                              "series (" +
                                  loss + ")";
    }

    const SeriesFacts& m_facts;
    const Environment& m_environment;
    Findings& m_findings;
    Chain m_chain;
    NameExpander m_names;
    bool m_isFolderNamed = false; ///< by a marker, in a way that this system can look up
    QByteArray m_foreignFolder;   ///< of the first marker that this system can't look up
    bool m_isForeignSaid = false;
};

constexpr Rule afterMarker = {
    "after-marker",
    Severity::Warning,
    "series",
    "Lines follow a marker in the same file; a marker ends its file.",
    "move the lines into the next file",
    series({"mytest.dpc",
            "[cfgPath]/mytest1.dpc\n"
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"},
           {"mytest1.dpc", plainTask}),
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", plainTask})};

/// The first one, which ends the file; null if it has none.
const LineFact* markerOf(const SeriesFacts& facts, const FileFact& file)
{
    if (!file.isRead() || file.isCopy)
        return nullptr;
    const auto begin = facts.lines.begin() + file.firstEntry;
    const auto end = facts.lines.begin() + file.endEntry;
    const auto marker = std::find_if(begin, end, isMarker);
    return marker != end ? &*marker : nullptr;
}

void checkAfterMarker(const SeriesFacts& facts, const FileFact& file, const LineFact* marker,
                      Findings& findings)
{
    const LineFact* const end = facts.lines.data() + file.endEntry;
    const LineFact* const after = std::find_if(
        marker + 1, end, [](const LineFact& line) { return line.kind != LineFact::Kind::Comment; });
    if (after != end)
        findings.add(
            afterMarker, *after, after->column + 1,
            fmt::format("the marker in line {} ends the file: what follows belongs to the next one",
                        marker->line));
}

constexpr Rule leftover = {
    "leftover",
    Severity::Warning,
    "series",
    "No marker leads to the file: it is left over from a longer series, and is loaded again.",
    "remove the file, or add the marker",
    series({"mytest.dpc", plainTask}, {"mytest1.dpc", plainTask}),
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", plainTask})};

/// Follows the markers from the first file; a gap has its own finding, and is passed over.
void checkLeftovers(const SeriesFacts& facts, const Chain& chain, Findings& findings)
{
    std::array<bool, seriesFileCount> reached{};
    for (size_t n = 0; n < reached.size(); ++n)
        reached[n] = n == 0 || !chain[n - 1].exists || (reached[n - 1] && chain[n - 1].hasMarker);
    for (size_t i = 0; i < facts.files.size(); ++i) {
        const FileFact& file = facts.files[i];
        if (file.isRead() && file.readable && !file.isCopy && !reached[size_t(file.number)])
            findings.add(
                leftover, int(i), 1, 1,
                fmt::format(
                    "no marker in {} leads here, as if the file were left over from a "
                    "longer series: a run ends before it, but a load has its tasks",
                    printable(seriesFile(QString(), facts.name.baseName, file.number - 1))));
    }
}

constexpr Rule noDoneFiles = {
    "no-done-files",
    Severity::Note,
    "machines",
    "Several machines run several config files, and a file leaves no done files, which tell that "
    "all "
    "machines have executed it.",
    "write true in the last field of a task",
    onMachines("pc01,pc02",
               series({"mytest.dpc",
                       "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
                       "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  "
                       "false;\n"
                       "[cfgPath]/mytest1.dpc\n"},
                      {"mytest1.dpc", plainTask})),
    onMachines("pc01,pc02",
               series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", plainTask}))};

/// Whoever starts the next file has to know that all machines are done with this one.
void checkDoneFiles(const SeriesFacts& facts, const FileFact& file, Findings& findings)
{
    const auto begin = facts.lines.begin() + file.firstEntry;
    const auto end = facts.lines.begin() + file.endEntry;
    const bool leavesDoneFiles = std::any_of(
        begin, end, [](const LineFact& line) { return isTask(line) && line.used.writeDone; });
    const auto task = std::find_if(begin, end, isTask);
    if (file.markers > 0 && task != end && !leavesDoneFiles)
        findings.add(noDoneFiles, *task, task->column + 1,
                     "no task of the file leaves done files, so nothing tells when all machines "
                     "have executed it and the next file can start");
}

} // namespace

void checkMarkers(const SeriesFacts& facts, const CheckOptions& options, Findings& findings)
{
    TargetRule targets(facts, options, findings);
    for (const FileFact& file : facts.files) {
        if (const LineFact* marker = markerOf(facts, file))
            targets.noteFolder(*marker);
    }
    for (const FileFact& file : facts.files) {
        if (const LineFact* marker = markerOf(facts, file)) {
            targets.check(*marker);
            checkAfterMarker(facts, file, marker, findings);
        }
        if (file.isRead() && !file.isCopy && options.hosts.size() > 1)
            checkDoneFiles(facts, file, findings);
    }
    checkLeftovers(facts, chainOf(facts), findings);
}

RuleList markerRules()
{
    return {&markerTarget, &markerFolder, &lastMarker, &afterMarker, &leftover, &noDoneFiles};
}
