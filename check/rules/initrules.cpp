#include "check/filekeys.h"
#include "check/fileuses.h"
#include "check/initneeds.h"
#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/savelosses.h"
#include "check/text.h"
#include "check/units.h"
#include "check/usedpaths.h"
#include "shared/kvpath.h"

#include <QHash>
#include <QSet>

#include <fmt/format.h>

#include <algorithm>
#include <optional>

// Whether the "_init" file makes what the series needs.

namespace {

QString folderOf(const QString& path)
{
    return kvGetDirName(path, '/');
}

/// A folder that a series needs and that nothing makes.
struct Lack
{
    const Need* need;
    const InitEntry* entry; ///< the line that would make it if it were not commented out, or null
};

/// Of a folder that is another one on each machine or at each run, the part that is the same.
QString fixedFolder(const QString& folder)
{
    int end = folder.size();
    for (const char* variable : {hostVariable, dateVariable, tempVariable}) {
        const int place = folder.indexOf(QLatin1String(variable));
        end = place < 0 ? end : std::min(end, place);
    }
    return folderOf(folder.left(end));
}

/// The folder as the task names it.
std::string shownFolder(const Lack& lack)
{
    return quoted(fixedFolder(folderOf(QString::fromLatin1(lack.need->text))));
}

/// Compares what a series needs with what the "_init" file makes and with what is on the disk.
/// Names that are others on each machine or at each save, and those of another system, can't be
/// compared. A source that nothing makes has a finding of its own.
class InitComparison
{
public:
    InitComparison(const SeriesFacts& facts, const FileUses& uses, const Environment& environment,
                   Findings& findings)
        : m_facts(facts)
        , m_uses(uses)
        , m_environment(environment)
        , m_findings(findings)
        , m_needs(facts, uses)
        , m_init(facts, uses)
    {
        for (const Need& need : m_needs.all())
            compare(need);
    }

    void report();

private:
    void compare(const Need& need);
    void compareFolder(const Need& need, const QString& folder, const InitEntry* entry);
    bool isThere(const QString& folder);
    bool isBelowFile(const QString& folder);
    bool makesOtherSize(const Need& need, const InitEntry& entry) const;
    void reportMissing();
    void reportLacks();
    void reportLack(const Lack& lack, const std::vector<std::string>& names);
    void reportSizes();
    void reportUnneeded();

    /// Found out once, and only if it is asked for.
    const std::string& advice()
    {
        if (m_advice.empty())
            m_advice = adviceToRenewInit(m_facts, m_uses);
        return m_advice;
    }

    const SeriesFacts& m_facts;
    const FileUses& m_uses;
    const Environment& m_environment;
    Findings& m_findings;
    Needs m_needs;
    InitFile m_init;
    std::vector<Lack> m_lacks;
    std::vector<Need> m_otherSizes;
    QHash<QByteArray, bool> m_folderIsThere; ///< Latin-1
    QSet<QString> m_existingFolders;         ///< above those that do not exist
    std::string m_advice;
};

/// False for a file that is there in a size of its own, and for one that is made twice: these have
/// findings of their own.
bool InitComparison::makesOtherSize(const Need& need, const InitEntry& entry) const
{
    const qint64 wanted = std::min<qint64>(need.size, maxFileSize);
    if (!entry.isActive || m_init.makesSize(need.fullName(), wanted / bytesPerKib))
        return false;
    const PathStatus status = m_environment.look(need.fullName());
    return !status.exists() || status.size == entry.size;
}

void InitComparison::compare(const Need& need)
{
    if (need.isWritten || m_uses.isForeign(need.line->path(need.which)))
        return;
    const InitEntry* entry = m_init.entryOf(need.fullName());
    if (need.isDummy) {
        // With the names of the machines, the folders of all of them are looked at.
        const QString folder = folderOf(need.fullName());
        if (!dependsOnMachine(folder) || m_uses.givenMachines() == 0)
            compareFolder(need, fixedFolder(folder), entry);
    } else if (!dependsOnMachine(need.fullName()) && entry != nullptr &&
               makesOtherSize(need, *entry)) {
        m_otherSizes.push_back(need);
    }
}

void InitComparison::compareFolder(const Need& need, const QString& folder, const InitEntry* entry)
{
    if (!folder.isEmpty() && !m_init.makesFolder(folder) && !isThere(folder))
        m_lacks.push_back({&need, entry});
}

/// True also for a folder below a file, which has a finding of its own.
bool InitComparison::isThere(const QString& folder)
{
    const QByteArray key = toLatin1(folder);
    const auto known = m_folderIsThere.constFind(key);
    if (known != m_folderIsThere.cend())
        return *known;
    const InitEntry* entry = m_init.entryOf(folder.chopped(1));
    if (entry != nullptr && entry->isActive)
        return *m_folderIsThere.insert(key, true);
    const PathStatus status = m_environment.look(folder);
    const bool isThere = status.exists() ? status.isFolder() : isBelowFile(folder);
    return *m_folderIsThere.insert(key, isThere);
}

/// From the top: of a deep folder that does not exist most of those above do not either.
bool InitComparison::isBelowFile(const QString& folder)
{
    for (int end = folder.indexOf('/', 1); end >= 0; end = folder.indexOf('/', end + 1)) {
        const QString above = folder.left(end);
        if (m_existingFolders.contains(above))
            continue;
        const PathStatus status = m_environment.look(above);
        if (!status.isFolder())
            return status.exists();
        m_existingFolders.insert(above);
    }
    return false;
}

constexpr Rule initMissing = {
    "init-missing",
    Severity::Warning,
    "series",
    "The series needs folders that do not exist, and has no _init file that makes them.",
    "run dpc init --write, or load and save the series",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out/[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    series({"mytest.dpc",
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out/[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"},
           {"mytest_init.dpc", "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  "
                               "[cfgPath]/out/dummyFile;  ;  ;  true;\n"})};

void InitComparison::reportMissing()
{
    std::vector<std::string> names;
    for (const Lack& lack : m_lacks)
        names.push_back(utf8(lack.need->text));
    const Lack& first = m_lacks.front();
    m_findings.add(
        initMissing, *first.need->line, first.need->line->columnOf(first.need->which),
        Message(
            fmt::format(
                "the folder {} does not exist{}, and the series has no {}_init.dpc that makes it",
                shownFolder(first),
                names.size() > 1 ? fmt::format(", nor {} more", names.size() - 1) : "",
                printable(m_facts.name.baseName)),
            advice())
            .about(std::move(names)));
}

constexpr Rule initOutdated = {
    "init-outdated",
    Severity::Warning,
    "series",
    "A folder that a task needs does not exist, and the _init file does not make it, or it makes a "
    "source in another size than the task has.",
    "run dpc init --write, or load and save the series",
    series({"mytest.dpc",
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out/[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"},
           {"mytest_init.dpc", "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  "
                               "[cfgPath]/dummyFile;  ;  ;  true;\n"}),
    series({"mytest.dpc",
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out/[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"},
           {"mytest_init.dpc", "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  "
                               "[cfgPath]/dummyFile;  ;  ;  true;\n"
                               "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  "
                               "[cfgPath]/out/dummyFile;  ;  ;  true;\n"})};

constexpr Rule initNames = {
    "init-names",
    Severity::Warning,
    "series",
    "The folders that the _init file makes lack the name of the series: it was made in the form "
    "and saved once.",
    "run dpc init --write, or load and save the series",
    series({"mytest.dpc",
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[cfgName]/[host].txt;  [cfgPath]/[host].csv;  "
            "true;\n"},
           {"mytest_init.dpc", "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  "
                               "[cfgPath]/dummyFile;  ;  ;  true;\n"}),
    series({"mytest.dpc",
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[cfgName]/[host].txt;  [cfgPath]/[host].csv;  "
            "true;\n"},
           {"mytest_init.dpc", "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  "
                               "[cfgPath]/mytest/dummyFile;  ;  ;  true;\n"
                               "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  "
                               "[cfgPath]/dummyFile;  ;  ;  true;\n"})};

/// One finding for each path of a task: "[iter]" may stand for many names.
void InitComparison::reportLacks()
{
    for (size_t i = 0; i < m_lacks.size();) {
        const Lack& lack = m_lacks[i];
        std::vector<std::string> names;
        for (; i < m_lacks.size() && m_lacks[i].need->line == lack.need->line &&
               m_lacks[i].need->which == lack.need->which;
             ++i)
            names.push_back(utf8(m_lacks[i].need->text));
        reportLack(lack, names);
    }
}

void InitComparison::reportLack(const Lack& lack, const std::vector<std::string>& names)
{
    const Need& need = *lack.need;
    const int column = need.line->columnOf(need.which);
    const QString nameless = m_needs.namelessText(need);
    const auto made = m_facts.init.constFind(nameless.toLatin1().left(maxPath));
    if (!nameless.isEmpty() && made != m_facts.init.cend()) {
        m_findings.add(initNames, *need.line, column,
                       Message(fmt::format("the task looks for {}, but line {} of the _init file "
                                           "makes {}: the task had no config file yet when it was "
                                           "saved",
                                           quoted(need.text), made->line, quoted(nameless)),
                               advice())
                           .about(names));
        return;
    }
    const std::string others =
        names.size() > 1 ? fmt::format(", nor {} more", names.size() - 1) : std::string();
    const std::string reason =
        lack.entry != nullptr
            ? fmt::format("line {} of the _init file is commented out", lack.entry->line)
            : "the _init file does not make it";
    m_findings.add(initOutdated, *need.line, column,
                   Message(fmt::format("the folder {} does not exist{}, and {}", shownFolder(lack),
                                       others, reason),
                           advice())
                       .about(names));
}

void InitComparison::reportSizes()
{
    for (const Need& need : m_otherSizes) {
        const InitEntry* entry = m_init.entryOf(need.fullName());
        m_findings.add(
            initOutdated, *need.line, need.line->columnOf(need.which),
            Message(fmt::format("line {} of the _init file makes {} with {} KiB, but the task has "
                                "{} KiB",
                                entry->line, quoted(need.text), entry->size / bytesPerKib,
                                need.size / bytesPerKib),
                    advice()));
    }
}

constexpr Rule initUnneeded = {
    "init-unneeded",
    Severity::Note,
    "series",
    "A line of the _init file makes a file that no task of the series uses.",
    "remove the line, or run dpc init --write",
    series({"mytest.dpc", plainTask},
           {"mytest_init.dpc", "Stream;NOflush;NOprealloc;  0;    0; -1; 102400;1;0;  MEMORY;  "
                               "[cfgPath]/old.dat;  ;  ;  true;\n"}),
    series({"mytest.dpc", plainTask}, plainInit)};

/// True if the files hold all that the series is meant to have. If not, the lines of the "_init"
/// file may be for what lacks.
bool isWhole(const SeriesFacts& facts)
{
    const bool isLoaded =
        std::none_of(facts.lines.begin(), facts.lines.end(),
                     [](const LineFact& line) { return line.kind == LineFact::Kind::Rejected; });
    int next = 0;
    for (const FileFact& file : facts.files) {
        if (!file.isRead() || file.isCopy)
            continue;
        if (!file.readable || file.number > next)
            return false;
        next = file.number + (file.markers > 0 ? 1 : 0);
    }
    const auto hasNumber = [&](const FileFact& file) {
        return file.isRead() && file.number == next;
    };
    return isLoaded && std::any_of(facts.files.begin(), facts.files.end(), hasNumber);
}

/// The uses of all tasks are looked at only if a line makes what no task needs, and a save only if
/// it is none of them: the save puts names there that are not used as they are, such as the folder
/// of an empty field.
void InitComparison::reportUnneeded()
{
    if (!isWhole(m_facts))
        return;
    QSet<QByteArray> needed;
    for (const Need& need : m_needs.all())
        needed.insert(need.path);
    std::optional<UsedPaths> used;
    std::optional<QSet<QByteArray>> saved;
    for (const InitTarget& made : m_init.files()) {
        if (!made.entry.isActive || made.isOwn || needed.contains(made.path.toLatin1()))
            continue;
        if (!used)
            used.emplace(m_facts, m_uses);
        if (used->contains(made.path))
            continue;
        if (!saved)
            saved = namesAfterSave(m_facts);
        if (!saved->contains(made.name))
            m_findings.add(initUnneeded, made.entry.file, made.entry.line, 1,
                           fmt::format("the line makes {}, which no task of the series uses",
                                       quoted(made.path)));
    }
}

void InitComparison::report()
{
    if (m_facts.initFile < 0) {
        if (!m_lacks.empty())
            reportMissing();
        return;
    }
    if (!m_facts.files[size_t(m_facts.initFile)].readable)
        return;
    reportLacks();
    reportSizes();
    reportUnneeded();
}

} // namespace

void checkInit(const SeriesFacts& facts, const FileUses& uses, const Environment& environment,
               Findings& findings)
{
    if (facts.isInit || facts.limitReached || facts.closedWaitFolder() != nullptr)
        return;
    InitComparison(facts, uses, environment, findings).report();
}

RuleList initRules()
{
    return {&initMissing, &initOutdated, &initNames, &initUnneeded};
}
