#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/rules/usetexts.h"
#include "check/taskfields.h"
#include "check/text.h"

#include <QSet>

#include <fmt/format.h>

#include <algorithm>

// Folders in place of files, and files in place of folders.

namespace {

constexpr Rule fileIsFolder = {
    "file-is-folder",
    Severity::Error,
    "paths",
    "The source or destination names a folder: by a separator at its end, by [cfgPath] or [temp] "
    "alone, or because a folder of that name exists.",
    "name a file",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [cfgPath]/out/;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

constexpr Rule logIsFolder = {
    "log-is-folder",
    Severity::Warning,
    "paths",
    "The log or .csv field names a folder: an empty field does after a load and a save.",
    "name a file",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

/// True if a path ends in "." or "..", which are gone once it is resolved.
bool endsInDots(const QByteArray& path)
{
    const int start = std::max(path.lastIndexOf('/'), path.lastIndexOf('\\')) + 1;
    const QByteArray last = path.mid(start);
    return last == "." || last == "..";
}

/// Of all iterations and machines one is enough.
void checkNamedFolder(const SeriesFacts& facts, const FileUses& uses, int line, TaskPath role,
                      Findings& findings)
{
    for (int iteration = 0; iteration < uses.useCount(line, role); ++iteration) {
        const FileUse& use = uses.use(line, role, iteration);
        const KeyedPath& path = uses.file(use, 0).path;
        const LineFact& fact = facts.lines[size_t(line)];
        const bool isThere = path.kind == PathStatus::Kind::Folder;
        if (!isThere && !path.namesFolder && !endsInDots(fact.path(role)))
            continue;
        findings.add(role == SourcePath || role == DestPath ? fileIsFolder : logIsFolder, fact,
                     fact.columnOf(role),
                     fmt::format("the {} {} {}, and a file is needed",
                                 fieldName(firstPathField + role), quoted(uses.nameOf(use).text),
                                 isThere ? "is a folder" : "names a folder"));
        return;
    }
}

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
                (folder.kind == PathStatus::Kind::File || m_uses.isOwnFile(folder.key)))
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
        int asFile = 0;
        int asFolder = 0;
        for (const FileUse& use : m_uses.uses()) {
            const QByteArray& other = m_uses.file(use, 0).path.key;
            asFile += other == key ? 1 : 0;
            asFolder += other.startsWith(key + '/') ? 1 : 0;
        }
        const bool isBelow = asFile != asFolder ? asFolder < asFile : below.line > file.line;
        const QByteArray name = m_uses.nameOf(file).text;
        if (isBelow)
            say(below, "leads through a file: it is " + roleOf(m_facts, file),
                m_uses.nameOf(below).text);
        else
            say(file, "is a file here, and a folder for " + roleOf(m_facts, below), name);
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
    QSet<QByteArray> m_said;
};

constexpr Rule destFolder = {
    "dest-folder",
    Severity::Warning,
    "paths",
    "The folder of the destination does not exist, and the _init file does not make it. A folder "
    "of "
    "each machine counts for its log and .csv files as well.",
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
    "The folder of the destination must be there on each machine; the _init file makes folders "
    "below [cfgPath] only, and those with [host] in their names for one machine.",
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
        for (const TaskPath role : {DestPath, LogPath, CsvPath})
            checkOfMachines(line, role);
        const QByteArray& dest = fact.path(DestPath);
        // Below the config file's folder, the "_init" file is asked as a whole.
        if (dest.isEmpty() || dest.startsWith(configPathVariable) || isForeignPath(dest))
            return;
        for (int i = 0; i < m_uses.useCount(line, DestPath); ++i) {
            const FileUse& use = m_uses.use(line, DestPath, i);
            const QByteArray name = m_uses.nameOf(use).text;
            const QByteArray folder = name.left(name.lastIndexOf('/') + 1);
            if (m_checked.contains(folder))
                continue;
            m_checked.insert(folder);
            if (folder == "[temp]/" || m_uses.file(use, 0).isNoFile() || isThere(use))
                continue;
            const bool isLocal = holds(folder, hostVariable) || holds(folder, tempVariable);
            say(fact, folder, isLocal && !holds(folder, dateVariable));
        }
    }

private:
    /// A folder of each machine beside the config files: the "_init" file is made on one of them.
    void checkOfMachines(int line, TaskPath role)
    {
        const LineFact& fact = m_facts.lines[size_t(line)];
        if (m_uses.givenMachines() == 0 || !fact.path(role).startsWith(configPathVariable))
            return;
        for (int i = 0; i < m_uses.useCount(line, role); ++i) {
            const FileUse& use = m_uses.use(line, role, i);
            const QByteArray name = m_uses.nameOf(use).text;
            const QByteArray folder = name.left(name.lastIndexOf('/') + 1);
            if (!holds(folder, hostVariable) || holds(folder, dateVariable) ||
                m_checked.contains(folder))
                continue;
            m_checked.insert(folder);
            sayLacking(fact, role, folder, machinesWithout(use));
        }
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
        m_findings.add(
            destFolderLocal, line, line.columnOf(role),
            {fmt::format("the folder {} does not exist for {}, and nothing makes it: the _init "
                         "file makes it for the machine that saved the series",
                         quoted(folder), listedMachines(m_uses, lacking, int(lacking.size()))),
             "make the folders, or put [host] into the name of the file"});
    }

    /// On all machines that the folder can be seen of.
    bool isThere(const FileUse& use) const
    {
        const UsedName& name = m_uses.nameOf(use);
        if (name.byTemp && m_uses.machines().size() > 1)
            return false;
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
};

} // namespace

void checkFolders(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
{
    FolderRule folders(facts, uses, findings);
    for (int line = 0; line < int(facts.lines.size()); ++line) {
        for (const TaskPath role : {SourcePath, DestPath, LogPath, CsvPath})
            checkNamedFolder(facts, uses, line, role, findings);
        folders.check(line);
    }
    FoldersAndFiles(facts, uses, findings).check();
}

RuleList folderRules()
{
    return {&fileIsFolder, &logIsFolder, &folderIsFile, &destFolder, &destFolderLocal};
}
