#pragma once

#include "check/fileuses.h"
#include "check/foldersabove.h"
#include "check/nameexpander.h"
#include "configset/filestocreate.h"

#include <QHash>
#include <QSet>

#include <vector>

// The files and folders that a series needs before it can run, and those that its "_init" file
// makes.

/// A file or folder that a task needs before it can run.
struct Need
{
    const LineFact* line;
    TaskPath which;
    QByteArray text; ///< as a line of the "_init" file names it, Latin-1
    QByteArray path; ///< where it lies, Latin-1
    qint64 size;     ///< bytes
    bool isDummy;    ///< only there to make its folder
    bool isWritten;  ///< a source that an earlier task writes

    /// The same for comparisons with other names.
    QString fullName() const { return QString::fromLatin1(path); }
};

/// The files and folders that a series needs, as its paths name them, each once, as a save collects
/// them.
class Needs
{
public:
    /// Both must outlive it.
    Needs(const SeriesFacts& facts, const FileUses& uses);

    /// In the order in which a save collects them.
    const std::vector<Need>& all() const { return m_needs; }

    /// As a task without a config file would name it: the _init file of a first save does. Empty if
    /// that is the same.
    QString namelessText(const Need& need);

private:
    QStringList textsOf(const TestTask& task, int taskNumber) const;
    void addUse(const FileUse& use);
    QByteArray folderName(const LineFact& line, const FileUse& use);
    void add(const FileUse& use, const QByteArray& text, qint64 size, bool isDummy);
    QByteArray resolved(const FileUse& use, const QByteArray& text);

    const SeriesFacts& m_facts;
    const FileUses& m_uses;
    const MachineValues m_noMachine = noMachine();
    NameExpander m_names;
    const QByteArray m_runFolder = m_facts.runFolder.toLatin1();
    std::vector<bool> m_isFolderKnown; ///< of each name
    QSet<QByteArray> m_known;
    std::vector<Need> m_needs;
};

/// A line of the "_init" file, with the full name of the file that it makes.
struct InitTarget
{
    QString path;
    QByteArray name; ///< as the line has it, Latin-1
    InitEntry entry;
    bool isOwn; ///< a config file of the series
};

/// The lines of the "_init" file, by full names.
class InitFile
{
public:
    /// The facts must outlive it.
    InitFile(const SeriesFacts& facts, const FileUses& uses);

    /// The line that names a file, or null. Of several an active one.
    const InitEntry* entryOf(const QString& path) const;

    /// True if a line makes the file in this size, whether another one makes it anew or not.
    bool makesSize(const QString& path, qint64 kib) const { return m_sizes.contains({path, kib}); }

    /// True if a line makes a file in the folder or below it, or if there are too many to tell.
    bool makesFolder(const QString& folder) const { return m_folders.contains(folder); }

    /// All lines, in their order.
    const std::vector<InitTarget>& files() const { return m_files; }

private:
    std::vector<InitTarget> m_files;
    QHash<QString, InitEntry> m_entries;
    QSet<QPair<QString, qint64>> m_sizes; ///< KiB
    FoldersAbove m_folders;
};

/// The names that a save of the series as it is loaded puts into the "_init" file, on this machine,
/// Latin-1.
QSet<QByteArray> namesAfterSave(const SeriesFacts& facts);
