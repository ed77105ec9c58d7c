#pragma once

#include "engine/plan.h"
#include "engine/sectionindex.h"

#include <QHash>

#include <optional>
#include <string>
#include <vector>

// The results of a run, job by job: the plan, accounted against what fio reported. Values that
// nobody measured are absent.

/// The result of one planned job.
struct JobResult
{
    bool isGood = false;             ///< it ran, without an error, and did its bytes
    std::string reason;              ///< why it is not good, in UTF-8
    std::optional<qint64> doneBytes; ///< of a copy, what was written
    std::optional<int> error;        ///< error number of the system, 0 for none
    std::optional<qint64> startMs;   ///< ms since 1970
    std::optional<qint64> runtimeMs; ///< waits included
    std::optional<qint64> ioNs;      ///< sum of the latencies of reads, writes and syncs
    std::optional<qint64> syncs;
    std::optional<qint64> syncNs;
    std::optional<IoFigures> read; ///< if the kind of the job reads
    std::optional<IoFigures> write;
    std::vector<QString> bandwidthLogs; ///< relative to the folder of the run

    /// True if fio reported a read or a write of it.
    bool hasBegun() const;
    /// End in ms since 1970.
    std::optional<qint64> endMs() const;
    /// Bytes per second, waits included.
    std::optional<double> rate() const;
    /// Bytes per second of the I/O alone.
    std::optional<double> ioRate() const;
};

/// How a stage ended.
enum class StageState
{
    NotRun,
    Complete,
    Incomplete, ///< a job did not do its bytes
    Interrupted ///< by a signal or by the timeout
};

/// "notRun", "complete", "incomplete" or "interrupted".
const char* stageStateName(StageState state);

/// The result of one stage.
struct StageResult
{
    StageState state = StageState::NotRun;
    std::optional<qint64> startedMs; ///< ms since 1970
    std::optional<qint64> endedMs;
};

/// The logs that fio left behind in a folder, by machine and section.
class FioLogs
{
public:
    FioLogs() = default;
    /// Lists `folder`; the names of the files are given as `prefix` and their names in it.
    FioLogs(const QString& folder, const QString& prefix);

    /// Logs of the bandwidth, whose names start with `begin` (logNameOf). `host` as fio reports it,
    /// empty without a server.
    std::vector<QString> bandwidth(const QByteArray& begin, const QString& host) const;
    /// The moment of the last line in the log of latencies, ms since 1970.
    std::optional<qint64> lastMoment(const QByteArray& begin, const QString& host) const;

private:
    using Key = QByteArray;
    static Key keyOf(const QByteArray& begin, const QByteArray& kind, const QString& host);

    QString m_folder;
    QString m_prefix;
    QHash<Key, QString> m_files;
};

/// The jobs of one stage, as a range of Plan::jobs.
struct JobRange
{
    size_t begin;
    size_t end; ///< one after the last
};

/// Jobs of a stage.
JobRange jobsOf(const Plan& plan, size_t stage);

/// Accounts one stage: a result for each of its jobs, in the order of the plan. `hosts` belong to
/// the machines of the plan. Exit status and messages of fio count for nothing.
std::vector<JobResult> accountStage(const Plan& plan, size_t stage,
                                    const std::vector<FioHost>& hosts, const FioOutput& output,
                                    const FioLogs& logs);

/// The result of a job that fio was never told of.
JobResult notRun(std::string reason);
