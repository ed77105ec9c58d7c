#pragma once

#include "engine/plan.h"
#include "engine/results.h"

#include <QByteArray>
#include <QJsonArray>
#include <QSet>

#include <optional>
#include <string>
#include <vector>

// The folder of a run: what the run is doing, and what it may have made.

/// How a run stands.
enum class RunState
{
    Running,    ///< or killed
    Complete,   ///< every job did its bytes
    Incomplete, ///< every stage ran, and a job did not do its bytes
    Failed,     ///< a stage failed, and those after it did not run
    Interrupted,
    Refused ///< nothing was run
};

/// "running", "complete", "incomplete", "failed", "interrupted" or "refused".
const char* runStateName(RunState state);

/// The content of `state.json`.
struct RunStatus
{
    RunState state = RunState::Running;
    std::optional<int> stage; ///< that runs, or at which the run ended; none before the first
    std::vector<std::string> reasons; ///< one sentence each, in UTF-8
    qint64 startedMs = 0;             ///< ms since 1970
    std::optional<qint64> endedMs;
};

// Names in the folder of a run, beside those of the export.
constexpr const char* stateFileName = "state.json";
constexpr const char* manifestFileName = "manifest";
constexpr const char* resultsFileName = "results.json";
constexpr const char* tableFileName = "results.csv";

/// The folder while the run goes on. Holds a lock on it that ends with the process, however that
/// ends.
class RunFolder
{
public:
    RunFolder() = default;
    ~RunFolder();
    Q_DISABLE_COPY_MOVE(RunFolder)

    /// Why nothing can be run into a path, as one sentence: it is there already, and then how that
    /// run ended, or in which stage it was killed. Empty if nothing is there.
    static std::string whyTaken(const QString& path);

    /// True while the process that makes the run lives.
    static bool isLocked(const QString& path);

    /// Makes the folder; false, and an error of the system, if it can't be made or is there.
    bool create(const QString& path, std::string& problem);

    /// With "/" at its end.
    const QString& path() const { return m_path; }
    /// A file in it.
    QString file(const QString& name) const { return m_path + name; }

    /// Replaces a file as a whole. False if it can't be written; the first reason is kept.
    bool write(const QString& name, const QByteArray& content);
    /// Replaces `state.json`.
    bool writeState(const RunStatus& status);
    /// Why a file could not be written; empty if all could.
    const std::string& problem() const { return m_problem; }

private:
    QString m_path;
    int m_lock = -1;
    std::string m_problem;
};

/// A line of a manifest: machine and path.
struct MadeFile
{
    QString machine;
    QString path;
};

/// The text of a manifest, in the encoding of the file system.
QByteArray manifestText(const std::vector<MadeFile>& files);

/// The files that the manifest of an earlier run names.
class EarlierRun
{
public:
    /// Nothing, and half a sentence, if the folder does not hold a run that made files.
    static std::optional<EarlierRun> read(const QString& folder, std::string& problem);
    /// The series that it ran: Plan::series.
    const QString& series() const { return m_series; }
    /// True if that run may have made the file on the machine.
    bool made(const QString& machine, const QString& path) const;

private:
    QString m_series;
    QSet<QByteArray> m_lines;
};
