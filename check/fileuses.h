#pragma once

#include "check/filekeys.h"
#include "check/foreignpaths.h"
#include "check/nametemplates.h"
#include "check/seriesfacts.h"

#include <QHash>
#include <QStringList>

#include <array>
#include <vector>

// Who uses which file: one table for all rules, made once from the facts of a series. It has an
// entry for each name that a path stands for, and grows with their number, not with their pairs.

/// The names of a machine that runs the series.
struct MachineName
{
    QString host;      ///< as the user names it
    QByteArray inPath; ///< the value of "[host]", Latin-1
};

/// In place of a machine: the same on all of them.
constexpr int allMachines = -1;

/// One use of a name, by a task in one iteration. The path of the task tells the role of the file.
struct FileUse
{
    int line; ///< its place among the lines of the series
    TaskPath role;
    int iteration; ///< from 0
    int name;      ///< its place among the names
};

/// A name as a task has it, with the variables of the task replaced and those of a machine left in:
/// "[cfgPath]", "[host]", "[date]" and "[temp]".
struct UsedName
{
    QByteArray text; ///< Latin-1
    bool byHost = false;
    bool byDate = false;
    bool byTemp = false;
    bool mustExpandAnew = false; ///< the text alone does not tell where it leads
    int firstPlace = 0; ///< its file on the first machine; if `byHost` those of the others follow
    std::array<int, taskPathCount> firstUse = {-1, -1, -1, -1}; ///< in each role, -1 if none
};

/// How a file is reached: by a name, on one machine or on all.
struct FileWay
{
    int name;
    int machine;
};

/// A file that the series touches, under whatever names.
struct UsedFile
{
    KeyedPath path;
    bool isLocal = false;  ///< below "[temp]": each machine has its own
    bool isShared = false; ///< beside the config files or on a file server: all machines see it
    bool isOwn = false;    ///< a file of the series itself, by its name
    int init = -1;         ///< the line of the "_init" file that makes it, the last active one
    std::vector<FileWay> ways;

    /// True if something is there already that can be opened.
    bool exists() const
    {
        return path.kind != PathStatus::Kind::Nothing && path.kind != PathStatus::Kind::DeadLink;
    }
    /// True for what holds no bytes of its own: a folder, a device.
    bool isNoFile() const { return path.namesFolder || (exists() && !isFile()); }
    /// True for what loses nothing when it is written, such as /dev/null.
    bool isDevice() const { return path.kind == PathStatus::Kind::Device; }
    /// True if it is there already, and a regular file.
    bool isFile() const { return path.kind == PathStatus::Kind::File; }
};

/// A file that a line of the "_init" file makes.
struct InitUse
{
    QByteArray name; ///< as the line has it, Latin-1
    InitEntry entry;
    int file = 0; ///< its place among the files
};

/// The table.
class FileUses
{
public:
    /// Of a series on these machines; none: on this one alone, whose values can be given. The facts
    /// and the environment must outlive it.
    FileUses(const SeriesFacts& facts, const QStringList& hosts, const Environment& environment,
             const MachineValues& here = thisMachine());

    /// The machines that are looked at: those of the user (of more than 150,000 names that hold
    /// [host] only the first machines), or this one.
    const std::vector<MachineName>& machines() const { return m_machines; }
    /// How many machines the user named, 0 if none.
    int givenMachines() const { return m_givenMachines; }

    /// True if no machine but this one runs the series: its folder for temporary files is known.
    bool isThisMachine() const { return m_isThisMachine; }

    /// The number of names that a path of a line stands for; 0 for memory and in lines that are not
    /// tasks.
    int useCount(int line, TaskPath role) const;
    /// The use of a path in an iteration; without "[iter]" that is the same in all. The path must
    /// have one.
    const FileUse& use(int line, TaskPath role, int iteration) const;

    /// All uses, in the order of lines, then paths, then iterations.
    const std::vector<FileUse>& uses() const { return m_uses; }
    /// All names, in the order of their first use.
    const std::vector<UsedName>& names() const { return m_names; }
    /// All files.
    const std::vector<UsedFile>& files() const { return m_files; }
    /// All folders of these files.
    const std::vector<KeyedFolder>& folders() const { return m_keys.folders(); }
    /// The lines of the "_init" file, in their order.
    const std::vector<InitUse>& init() const { return m_init; }

    /// The name of a use.
    const UsedName& nameOf(const FileUse& use) const { return m_names[size_t(use.name)]; }
    /// The place among the files to which a use leads on a machine.
    int fileOf(const FileUse& use, int machine) const;
    /// The file to which a use leads on a machine.
    const UsedFile& file(const FileUse& use, int machine) const
    {
        return m_files[size_t(fileOf(use, machine))];
    }

    /// True for the key of a config file of the series, of its "_init" file, or of the file that
    /// turns rules off, by its name and folder: the files come and go while the series runs.
    bool isOwnFile(const QByteArray& key) const;

    /// True if an earlier task, or an earlier iteration, writes a file before a use reads it.
    bool isWrittenBefore(const UsedFile& file, const FileUse& reading) const;

    /// True for a path of a task, or a name, that this system can't look up.
    bool isForeign(const QByteArray& name) const { return m_foreign.contains(name); }

    /// The full name of a use on a machine, Latin-1; "[date]" stays.
    QByteArray pathOn(const FileUse& use, int machine) const;

private:
    using LineUses = std::array<int, taskPathCount + 1>;

    void takeMachines(const QStringList& hosts);
    void addUses(int line, TaskPath role);
    int nameFor(const LineFact& line, const QByteArray& path, int iteration);
    const FileUse& firstUseOf(const UsedName& name) const;
    void limitMachines();
    void placeNames();
    void addInit();
    int fileAt(const QByteArray& path, bool isHere);

    const SeriesFacts& m_facts;
    MachineValues m_here;
    NameTemplates m_templates;
    FileKeys m_keys;
    QByteArray m_runFolder;
    QByteArray m_runFolderKey; ///< with "/" at the end
    QByteArray m_temp;
    ForeignPaths m_foreign;
    std::vector<MachineName> m_machines;
    int m_givenMachines = 0;
    int m_longestValue = 0;      ///< characters, at least, of what a variable stands for
    bool m_isThisMachine = true; ///< the only one

    std::vector<FileUse> m_uses;
    std::vector<LineUses> m_lineUses; ///< where the uses of each path of a line begin
    std::vector<UsedName> m_names;
    std::vector<int> m_places; ///< the file of each name on each machine
    std::vector<UsedFile> m_files;
    std::vector<InitUse> m_init;
    QHash<QByteArray, int> m_nameOfText;
    QHash<QByteArray, int> m_fileOfKey;
};
