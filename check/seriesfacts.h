#pragma once

#include "check/foldernames.h"
#include "configset/seriesname.h"
#include "model/tasklinereader.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <array>
#include <string>
#include <string_view>
#include <vector>

// The content of a series, read once with the editor's own reader. Rules and listings ask only
// this.

/// The settings of a task line, in bytes and ms like a record.
struct TaskSettings
{
    IoMethod method = IoMethod::Posix;
    bool flush = false;
    bool preallocate = false;
    std::int32_t chunkWait = 0;
    std::int32_t chunkSize = 0;
    std::int32_t sysBufferMode = 0;
    std::int32_t fileSize = 0;
    std::int32_t iterations = 0;
    std::int32_t cacheMode = 0;
    bool writeDone = false;
};

/// The settings of a record.
TaskSettings settingsOf(const TestTask& task);

/// The paths of a task in the order of the line.
enum TaskPath
{
    SourcePath,
    DestPath,
    LogPath,
    CsvPath,
    taskPathCount
};

constexpr int firstPathField = SourceField;

/// A line that holds something: a task, a marker, a line that the reader rejects, or a comment that
/// was cut, begins like a task or is the first in UTF-8.
struct LineFact
{
    /// The kind of the line.
    enum class Kind
    {
        Task,
        Marker,
        Rejected,
        Comment
    };

    Kind kind = Kind::Comment;
    int file = 0;      ///< its place among the files of the series
    int line = 0;      ///< from 1
    int column = 0;    ///< of `text` in the line, from 0
    qint64 length = 0; ///< bytes of the whole line in the file
    bool hasZero = false;
    QByteArray text; ///< as the reader was given it: trimmed, cut
    int taskNumber = 0;
    int splitEnd = 0;    ///< the last line of a task that line ends split, in its first one
    bool isRest = false; ///< belongs to such a task, and is not its first line

    // Of tasks and rejected lines only.
    TaskLineFields fields;
    TaskLineProblem problem;
    TaskSettings written; ///< as the line has them
    TaskSettings used;    ///< as the editor loads them
    bool fromMemory = false;
    bool toMemory = false;
    /// Of tasks: each path as the line has it; empty for memory and for what is not given.
    std::array<QByteArray, taskPathCount> paths;

    /// The text of a field, from 1.
    QByteArray field(int number) const;
    /// The same, for as long as the line is there.
    std::string_view fieldText(int number) const;
    /// One of the paths.
    const QByteArray& path(TaskPath which) const { return paths[size_t(which)]; }
    /// Where a field begins, from 1.
    int columnOf(int number) const;
    /// Where a path begins, from 1.
    int columnOf(TaskPath which) const { return columnOf(firstPathField + which); }
};

/// True for a line that names the next config file.
inline bool isMarker(const LineFact& line)
{
    return line.kind == LineFact::Kind::Marker;
}

/// True for a line that the reader takes as a task.
inline bool isTask(const LineFact& line)
{
    return line.kind == LineFact::Kind::Task;
}

/// The part that a file plays in the series.
enum class FileRole
{
    Series,    ///< a config file that a load reads
    Beyond,    ///< a config file with a number that no load looks for
    Init,      ///< the "_init" file
    OtherInit, ///< an "_init" file inside of "_wait", which nobody runs
    WaitFolder ///< the folder "_wait", if it can't be looked into
};

/// A file of the series, whether a load reads it or not.
struct FileFact
{
    FileRole role = FileRole::Series;
    QString path;       ///< absolute
    QString shown;      ///< as the user spells the folder
    int number = 0;     ///< in the series, from 0
    bool waits = false; ///< lies in "_wait"
    bool readable = false;
    std::string whyUnreadable; ///< half a sentence, empty for a file that was read
    bool isCopy = false;       ///< has the bytes of the file of its number outside of "_wait"
    qint64 size = 0;           ///< bytes
    bool wasCut = false;       ///< the reader's limit came first
    int lineAtLimit = 0; ///< the line that holds the last character of a saved file, 0 if none
    int columnAtLimit = 0;
    int lineCount = 0;
    int firstEntry = 0; ///< index of its first line that holds something
    int endEntry = 0;   ///< one after its last
    int tasks = 0;
    int markers = 0;

    /// True for a config file that a load reads.
    bool isRead() const { return role == FileRole::Series; }
    /// True for an "_init" file.
    bool isInit() const { return role == FileRole::Init || role == FileRole::OtherInit; }
};

/// One line of the "_init" file.
struct InitEntry
{
    int file = -1; ///< its place among the files of the series
    int line = 0;
    qint64 size = 0;
    bool isActive = false; ///< not commented out
    int otherLine = 0;     ///< an earlier active one with the same name and another size, 0 if none
    qint64 otherSize = 0;
};

/// A line of a file.
struct LinePlace
{
    int file = 0; ///< its place among the files of the series
    int line = 0; ///< from 1; 0 if there is none
};

/// All of a series.
struct SeriesFacts
{
    SeriesName name;     ///< with an absolute folder
    QString shownFolder; ///< as the user spells it
    QString runFolder;   ///< where the files lie when they run: outside "_wait"
    bool isInit = false; ///< the _init file was chosen itself
    std::vector<FileFact> files;
    std::vector<LineFact> lines;       ///< of config files
    std::vector<LineFact> initLines;   ///< of the _init file
    std::vector<std::string> info;     ///< comments that a load shows as the info text
    LinePlace infoCut;                 ///< the first comment that a load leaves out of it
    int brokenComments = 0;            ///< of which something can be said; not all are kept
    int initFile = -1;                 ///< its place among the files, -1 if there is none
    QHash<QByteArray, InitEntry> init; ///< by name; of several lines the last active one
    int entryCount = 0;                ///< tasks, markers and rejected lines
    bool limitReached = false;         ///< there are more entries than a load takes

    /// How many names all paths of the series stand for, one for each iteration.
    long long nameCount = 0;
    /// The number of iterations of each task that are looked at: all, or one if all would take too
    /// long.
    int iterationLimit = 0;

    /// The file that holds a line.
    const FileFact& fileOf(const LineFact& line) const { return files[size_t(line.file)]; }
    /// True for a line of an "_init" file, which is not made in the form.
    bool isOfInit(const LineFact& line) const { return isInit || fileOf(line).isInit(); }
    /// The "_wait" folder that can't be looked into, or null.
    const FileFact* closedWaitFolder() const;
};

/// How many names a path stands for.
int iterationsOf(const LineFact& line, const QByteArray& path);

/// A path as the user spells the folder of the series; its _init file and its rules may lie one
/// folder above that.
QString shownPath(const SeriesFacts& facts, const QString& path);

/// Limits of the work on one series.
struct ReadLimits
{
    int entries = maxSeriesEntries;
    /// If paths stand for more names, or for names with more characters in all iterations, those of
    /// one iteration are looked at.
    long long names = 150000;
    long long nameCharacters = 15000000;
};

/// Reads all files of a series that exist. Never fails: what can't be read is a fact as well.
/// Whoever reads several series of a folder keeps the `names`, so that the folder is listed once.
SeriesFacts readSeries(const SeriesName& name, const QString& shownFolder,
                       const ReadLimits& limits = {}, FolderNames* names = nullptr);

/// The same series without the lines of files that are copies of others: what a run has to do once.
SeriesFacts withoutCopies(const SeriesFacts& facts);
