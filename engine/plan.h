#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <string>
#include <vector>

// The work of a run of a series on fio: jobs by stage and machine, as values. planner.h makes a
// plan, exporter.h writes it, planfile.h reads it back.
//
// Names of files are absolute. Sizes are bytes, waits milliseconds. Texts that fio is given are the
// bytes of the file system's encoding.

/// A machine that runs jobs.
struct PlanMachine
{
    QString name;       ///< "[host]"
    QByteArray address; ///< as `fio --client=` takes it; empty for this machine without a server
    QString tempFolder; ///< "[temp]"; empty if nobody said it
};

/// How a job moves its bytes.
enum class JobKind
{
    Create, ///< writes a source that the _init file makes
    Write,
    Read,
    Copy
};

/// "create", "write", "read" or "copy".
const char* jobKindName(JobKind kind);

/// The required state of a file on the machine that uses it.
enum class FileState
{
    Absent,      ///< nothing is there, a dangling link neither
    Made,        ///< a regular file and no link: an earlier job of the same machine makes it
    MaybeMade,   ///< Absent or Made: another machine makes it if both see one folder, or an earlier
                 ///< run may have made it
    Readable,    ///< a regular file with the planned size, links followed
    ReadWritable ///< the same, and may be written: fio opens the source of a copy in this way
};

/// "absent", "made", "maybe-made", "readable" or "read-writable".
const char* fileStateName(FileState state);

/// A file of a job.
struct PlanFile
{
    QString path;                        ///< empty means memory
    FileState atJob = FileState::Absent; ///< asked by the guard of the job
    std::optional<FileState> beforeRun;  ///< asked before the first byte of the run; not set: an
                                         ///< earlier job makes it, so that there is nothing to ask
    /// A small file that the guard of the first job leaves which writes this one, and that the
    /// guards of the others ask for: what came into the way of the first is not theirs to write.
    /// Named as PlanLog::file; empty without others.
    QByteArray proof;
};

/// A part of a job, as fio counts it. Most jobs have one; a file whose size is not a multiple of
/// the chunk and whose name no log can hold has a second one for its last chunk.
struct PlanSection
{
    QByteArray name;   ///< [a-z0-9-]+, unique on its machine in the whole plan
    qint64 bytes = 0;  ///< that it reads, or writes; a copy does both
    qint64 offset = 0; ///< of its first byte in the file
    qint64 chunk = 0;  ///< bytes of one call
};

/// The calls of one job, one by one, in the notation of fio: what plain sections can't say.
struct PlanLog
{
    QByteArray file; ///< as the job file names it: relative to the folder of the export, or on the
                     ///< machine behind a server
};

/// One task, iteration and machine.
struct PlanJob
{
    int stage = 0;   ///< index in Plan::stages
    int machine = 0; ///< index in Plan::machines
    JobKind kind = JobKind::Write;
    int line = 0;      ///< of the config file, from 1
    int task = 0;      ///< "[cfgTaskID]"
    int iteration = 0; ///< "[iter]", from 0
    PlanFile source;
    PlanFile destination;
    qint64 bytes = 0; ///< planned: size of the file
    qint64 chunk = 0; ///< the last one may be shorter
    int waitMs = 0;   ///< between chunks
    bool flush = false;
    bool preallocate = false;
    bool adviseSequential = false;
    bool dropCaches = false;
    std::optional<PlanLog> log;        ///< if it has one, it has one section
    std::vector<PlanSection> sections; ///< never empty

    /// Name of the first section.
    const QByteArray& name() const { return sections.front().name; }
    /// Calls that move bytes, of one direction.
    qint64 chunks() const { return (bytes + chunk - 1) / chunk; }
    /// The file that it leaves behind; empty for a Read.
    const QString& made() const { return destination.path; }
};

/// The jobs of one machine in one stage.
struct PlanJobFile
{
    int machine = 0;     ///< index in Plan::machines
    QByteArray file;     ///< relative to the folder of the export
    size_t firstJob = 0; ///< index in Plan::jobs
    size_t endJob = 0;   ///< one after its last
    QString logFolder;   ///< new, made by the job file on a machine behind a server for logs and
                         ///< proofs; empty: not needed
    int sections = 0;    ///< that fio runs, those that only prepare included
};

/// One config file. A marker ends it, and is a barrier.
struct PlanStage
{
    QString configFile;             ///< its path when it runs: outside "_wait"
    QString shownFile;              ///< as the user spells its folder
    bool isInit = false;            ///< makes the sources of the _init file
    std::vector<PlanJobFile> files; ///< of those machines that have jobs; never empty
};

/// The whole run. Jobs lie stage by stage, in a stage machine by machine, and run in this order on
/// their machine; the machines of a stage run side by side.
struct Plan
{
    QString series; ///< its first config file, outside "_wait"
    QString date;   ///< "[date]", one moment for all
    QString id;     ///< of this plan, 12 hexadecimal digits: names the folders on other machines
    std::vector<std::string> info; ///< lines of the info text
    bool startAtMinute = false;    ///< each stage begins at the next full minute of the clock
    std::vector<PlanMachine> machines;
    std::vector<PlanStage> stages;
    std::vector<PlanJob> jobs;

    /// Without servers: one machine, this one.
    bool isLocal() const { return machines.size() == 1 && machines.front().address.isEmpty(); }
};

/// Of a machine in names of files and folders: "2-pc01" for the second.
QByteArray machineKey(const Plan& plan, int machine);

// Names in the folder of an export.
constexpr const char* planFileName = "plan.json";
constexpr const char* readmeFileName = "README";
constexpr const char* logFolderName = "logs";      ///< logs of jobs that run on this machine
constexpr const char* proofFolderName = "made";    ///< proofs of jobs that run on this machine
constexpr const char* guardFolderName = "guards";  ///< calls that only look
constexpr const char* outputFolderName = "output"; ///< what fio writes: bandwidth and latency logs
