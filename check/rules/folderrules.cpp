#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/rules/usetexts.h"
#include "check/taskfields.h"
#include "check/text.h"

#include <QSet>

#include <fmt/format.h>

#include <algorithm>

// Files in place of folders, and folders that do not exist.

namespace {

constexpr Rule folderIsFile = {
    "folder-is-file",
    Severity::Error,
    "paths",
    "A path leads through a file as if it were a folder: the file exists, or a task makes it.",
    "name another folder, or another file",
    withExisting("/data/out", 1,
                 oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
                         "/data/out/[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  "
                         "true;\n")),
    withExisting("/data/out/", 0,
                 oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
                         "/data/out/[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  "
                         "true;\n"))};

/// True for what can't hold files.
bool isFileOrDevice(PathStatus::Kind kind)
{
    return kind != PathStatus::Kind::Folder && kind != PathStatus::Kind::Nothing &&
           kind != PathStatus::Kind::DeadLink;
}

/// Compares the folders that files need with the files that tasks make.
class FoldersAndFiles
{
public:
    FoldersAndFiles(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
        : m_facts(facts)
        , m_uses(uses)
        , m_findings(findings)
        , m_firstUser(uses.folders().size(), -1)
    {}

    void check()
    {
        for (int i = 0; i < int(m_uses.uses().size()); ++i)
            noteFolders(i);
        for (size_t i = 0; i < m_firstUser.size(); ++i) {
            const KeyedFolder& folder = m_uses.folders()[i];
            if (m_firstUser[i] >= 0)
                m_folderOfKey.insert(folder.key, int(i));
            if (m_firstUser[i] >= 0 &&
                (isFileOrDevice(folder.kind) || m_uses.isOwnFile(folder.key)))
                say(m_uses.uses()[size_t(m_firstUser[i])],
                    fmt::format("is a file{}: {} can't lie below it",
                                m_uses.isOwnFile(folder.key) ? " of the series itself" : "",
                                quoted(nameOf(m_firstUser[i]))),
                    folder.shownPath);
        }
        for (const FileUse& use : m_uses.uses()) {
            const int machines = m_uses.nameOf(use).byHost ? int(m_uses.machines().size()) : 1;
            for (int machine = 0; machine < machines; ++machine)
                checkFile(use, m_uses.file(use, machine).path);
        }
        for (const InitUse& made : m_uses.init())
            checkMade(made);
    }

private:
    const QByteArray& nameOf(int use) const
    {
        return m_uses.nameOf(m_uses.uses()[size_t(use)]).text;
    }

    void noteFolders(int use)
    {
        const UsedName& name = m_uses.nameOf(m_uses.uses()[size_t(use)]);
        const int machines = name.byHost ? int(m_uses.machines().size()) : 1;
        for (int machine = 0; machine < machines; ++machine) {
            int folder = m_uses.file(m_uses.uses()[size_t(use)], machine).path.folder;
            while (folder >= 0 && m_firstUser[size_t(folder)] < 0) {
                m_firstUser[size_t(folder)] = use;
                folder = m_uses.folders()[size_t(folder)].parent;
            }
        }
    }

    /// A file that a task names, and that another one needs as a folder.
    void checkFile(const FileUse& use, const KeyedPath& path)
    {
        const auto folder = m_folderOfKey.constFind(path.key);
        const bool isKnown = path.kind != PathStatus::Kind::Nothing || path.namesFolder;
        if (folder == m_folderOfKey.cend() || isKnown || m_said.contains(path.key))
            return;
        m_said.insert(path.key);
        sayClash(use, m_uses.uses()[size_t(m_firstUser[size_t(*folder)])], path.key);
    }

    /// A file that the "_init" file makes, and that a task needs as a folder.
    void checkMade(const InitUse& made)
    {
        const KeyedPath& path = m_uses.files()[size_t(made.file)].path;
        const auto folder = m_folderOfKey.constFind(path.key);
        const bool isKnown = path.kind != PathStatus::Kind::Nothing || path.namesFolder;
        if (!made.entry.isActive || folder == m_folderOfKey.cend() || isKnown ||
            m_said.contains(path.key))
            return;
        m_said.insert(path.key);
        const FileUse& below = m_uses.uses()[size_t(m_firstUser[size_t(*folder)])];
        say(below,
            fmt::format("leads through a file: line {} of the _init file makes {}", made.entry.line,
                        quoted(made.name)),
            m_uses.nameOf(below).text);
    }

    /// At the file or at what lies below it, whichever has fewer uses, or the later one.
    void sayClash(const FileUse& file, const FileUse& below, const QByteArray& key)
    {
        if (m_usesOf.isEmpty())
            countUses();
        const int asFile = m_usesOf.value(key);
        const int asFolder = m_usesBelow.value(key);
        const bool isBelow = asFile != asFolder ? asFolder < asFile : below.line > file.line;
        const QByteArray name = m_uses.nameOf(file).text;
        if (isBelow)
            say(below, "leads through a file: it is " + roleOf(m_facts, file),
                m_uses.nameOf(below).text);
        else
            say(file, "is a file here, and a folder for " + roleOf(m_facts, below), name);
    }

    /// Of each file and of each folder; once, because each file may clash.
    void countUses()
    {
        const std::vector<KeyedFolder>& folders = m_uses.folders();
        std::vector<int> below(folders.size());
        for (const FileUse& use : m_uses.uses()) {
            const KeyedPath& path = m_uses.file(use, 0).path;
            ++m_usesOf[path.key];
            for (int i = path.folder; i >= 0; i = folders[size_t(i)].parent)
                ++below[size_t(i)];
        }
        // One folder may have several spellings.
        for (size_t i = 0; i < folders.size(); ++i)
            m_usesBelow[folders[i].key] += below[i];
    }

    void say(const FileUse& use, const std::string& what, const QByteArray& path)
    {
        const LineFact& line = m_facts.lines[size_t(use.line)];
        m_findings.add(folderIsFile, line, line.columnOf(use.role),
                       fmt::format("{} {}", quoted(path), what));
    }

    const SeriesFacts& m_facts;
    const FileUses& m_uses;
    Findings& m_findings;
    std::vector<int> m_firstUser; ///< of each folder, -1 if only the "_init" file uses it
    QHash<QByteArray, int> m_folderOfKey;
    QHash<QByteArray, int> m_usesOf;    ///< by the keys of files
    QHash<QByteArray, int> m_usesBelow; ///< by the keys of folders
    QSet<QByteArray> m_said;
};

constexpr Rule destFolder = {
    "dest-folder",
    Severity::Warning,
    "paths",
    "The folder of the destination does not exist, and the _init file does not make it. A folder "
    "that a link leads into counts for log and .csv files as well.",
    "make the folder, or correct the name",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  /data/out/[host].dat;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    withExisting(
        "/data/out/", 0,
        oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
                "/data/out/[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"))};

constexpr Rule destFolderLocal = {
    "dest-folder-local",
    Severity::Note,
    "paths",
    "A folder must be there on each machine: the _init file makes those of destinations below "
    "[cfgPath] only, and those with [host] in their names for one machine.",
    "make the folder on each machine, or write into [temp] itself",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[temp]/[cfgName]/out.dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [temp]/out.dat;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

/// Says of each destination folder once that nothing makes it.
class FolderRule
{
public:
    FolderRule(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
        : m_facts(facts)
        , m_uses(uses)
        , m_findings(findings)
    {
        for (const InitUse& made : uses.init()) {
            if (!made.entry.isActive)
                continue;
            int folder = uses.files()[size_t(made.file)].path.folder;
            for (; folder >= 0; folder = uses.folders()[size_t(folder)].parent)
                m_made.insert(uses.folders()[size_t(folder)].key);
        }
    }

    void check(int line)
    {
        const LineFact& fact = m_facts.lines[size_t(line)];
        for (const TaskPath role : {DestPath, LogPath, CsvPath}) {
            checkLinks(line, role);
            checkOfMachines(line, role);
        }
        const QByteArray& dest = fact.path(DestPath);
        // Below the config file's folder, the "_init" file is asked as a whole.
        if (dest.isEmpty() || dest.startsWith(configPathVariable) || m_uses.isForeign(dest))
            return;
        for (int i = 0; i < m_uses.useCount(line, DestPath); ++i) {
            const FileUse& use = m_uses.use(line, DestPath, i);
            const QByteArray name = m_uses.nameOf(use).text;
            const QByteArray folder = name.left(name.lastIndexOf('/') + 1);
            if (m_checked.contains(folder))
                continue;
            m_checked.insert(folder);
            const UsedFile& file = m_uses.file(use, 0);
            if (folder == "[temp]/" || file.isNoFile() || isDeadLink(file) || isThere(use))
                continue;
            const bool isLocal = holds(folder, hostVariable) || holds(folder, tempVariable);
            say(fact, folder, isLocal && !holds(folder, dateVariable));
        }
    }

private:
    static bool isDeadLink(const UsedFile& file)
    {
        return file.path.kind == PathStatus::Kind::DeadLink;
    }

    /// A link that leads into a folder that does not exist: once for each folder.
    void checkLinks(int line, TaskPath role)
    {
        const LineFact& fact = m_facts.lines[size_t(line)];
        for (int i = 0; i < m_uses.useCount(line, role); ++i) {
            const FileUse& use = m_uses.use(line, role, i);
            const UsedFile& file = m_uses.file(use, 0);
            if (!isDeadLink(file))
                continue;
            const KeyedFolder& folder = m_uses.folders()[size_t(file.path.folder)];
            if (folder.kind != PathStatus::Kind::Nothing || m_made.contains(folder.key) ||
                m_linked.contains(folder.key))
                continue;
            m_linked.insert(folder.key);
            m_findings.add(destFolder, fact, fact.columnOf(role),
                           fmt::format("the {} {} is a link to {}, and the folder {} does not "
                                       "exist: the file can't be made",
                                       fieldName(firstPathField + role),
                                       quoted(m_uses.nameOf(use).text),
                                       quoted(QString::fromUtf8(file.path.key)),
                                       quoted(folder.shownPath + '/')));
        }
    }

    /// A folder of each machine: the "_init" file is made on one of them.
    void checkOfMachines(int line, TaskPath role)
    {
        const LineFact& fact = m_facts.lines[size_t(line)];
        if (m_uses.givenMachines() == 0 || m_uses.isForeign(fact.path(role)))
            return;
        for (int i = 0; i < m_uses.useCount(line, role); ++i) {
            const FileUse& use = m_uses.use(line, role, i);
            if (!m_uses.nameOf(use).byHost)
                continue;
            const QByteArray name = m_uses.nameOf(use).text;
            const QByteArray folder = name.left(name.lastIndexOf('/') + 1);
            if (!isOfEachMachine(folder) || m_checked.contains(folder))
                continue;
            m_checked.insert(folder);
            sayLacking(fact, role, folder, machinesWithout(use));
        }
    }

    /// True for a folder that is another one on each machine, and can be looked at.
    static bool isOfEachMachine(const QByteArray& folder)
    {
        return holds(folder, hostVariable) && !holds(folder, dateVariable) &&
               !holds(folder, tempVariable);
    }

    std::vector<int> machinesWithout(const FileUse& use) const
    {
        std::vector<int> lacking;
        for (int machine = 0; machine < int(m_uses.machines().size()); ++machine) {
            const int place = m_uses.file(use, machine).path.folder;
            const KeyedFolder& folder = m_uses.folders()[size_t(place)];
            if (folder.kind == PathStatus::Kind::Nothing && !m_made.contains(folder.key))
                lacking.push_back(machine);
        }
        return lacking;
    }

    void sayLacking(const LineFact& line, TaskPath role, const QByteArray& folder,
                    const std::vector<int>& lacking)
    {
        if (lacking.empty())
            return;
        const std::string machines = listedMachines(m_uses, lacking, int(lacking.size()));
        // Elsewhere it may be on a disk of the machine itself.
        std::string text =
            folder.startsWith(configPathVariable)
                ? fmt::format("the folder {} does not exist for {}, and nothing makes it",
                              quoted(folder), machines)
                : fmt::format("the folder {} must be there on each machine, and is not here for {}",
                              quoted(folder), machines);
        text += role == DestPath && !folder.startsWith(configPathVariable)
                    ? ": the _init file does not make it"
                    : ": the _init file makes it for the machine that saved the series";
        m_findings.add(destFolderLocal, line, line.columnOf(role),
                       {text, "make the folders, or put [host] into the name of the file"});
    }

    /// On all machines that the folder can be seen of.
    bool isThere(const FileUse& use) const
    {
        const UsedName& name = m_uses.nameOf(use);
        const int machines = name.byHost ? int(m_uses.machines().size()) : 1;
        for (int machine = 0; machine < machines; ++machine) {
            const int place = m_uses.file(use, machine).path.folder;
            const KeyedFolder& folder = m_uses.folders()[size_t(place)];
            // A file in its place has a finding of its own.
            if (folder.kind == PathStatus::Kind::Nothing && !m_made.contains(folder.key))
                return false;
        }
        return !name.byHost || m_uses.givenMachines() > 0 || !holds(name.text, "[host]/");
    }

    void say(const LineFact& line, const QByteArray& folder, bool isLocal)
    {
        if (isLocal)
            m_findings.add(
                destFolderLocal, line, line.columnOf(DestPath),
                fmt::format("the folder {} must be there on each machine: the _init file does "
                            "not make it",
                            quoted(folder)));
        else
            m_findings.add(
                destFolder, line, line.columnOf(DestPath),
                fmt::format("the folder {} does not exist, and nothing makes it", quoted(folder)));
    }

    const SeriesFacts& m_facts;
    const FileUses& m_uses;
    Findings& m_findings;
    QSet<QByteArray> m_made;
    QSet<QByteArray> m_checked;
    QSet<QByteArray> m_linked; ///< folders that links lead into
};

} // namespace

void checkFolders(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
{
    FolderRule folders(facts, uses, findings);
    for (int line = 0; line < int(facts.lines.size()); ++line)
        folders.check(line);
    FoldersAndFiles(facts, uses, findings).check();
}

RuleList folderRules()
{
    return {&folderIsFile, &destFolder, &destFolderLocal};
}
