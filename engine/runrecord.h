#pragma once

#include <QJsonArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <string>
#include <vector>

// A run as its folder tells of it, for reports. Figures that nobody measured are absent, and never
// 0.

/// One planned job.
struct RecordedJob
{
    int stage = 0;
    QString configFile;
    int line = 0; ///< from 1
    int task = 0; ///< from 0
    QString kind; ///< "write", "read", "copy" or "create"
    QString machine;
    int iteration = 0; ///< from 0
    QString name;
    QString source;      ///< empty means memory
    QString destination; ///< empty means memory
    qint64 plannedBytes = 0;
    bool isGood = false;
    QString reason; ///< why it is not good
    std::optional<qint64> doneBytes;
    std::optional<qint64> startMs; ///< since 1970
    std::optional<qint64> endMs;
    std::optional<qint64> runtimeMs; ///< waits between chunks included
    std::optional<double> rate;      ///< bytes per second, waits included
    std::optional<double> ioRate;    ///< bytes per second of the I/O alone
    std::optional<qint64> p50Ns;
    std::optional<qint64> p99Ns;
    std::optional<qint64> maxNs;
    QStringList bandwidthLogs; ///< relative to the folder of the run
};

/// One stage.
struct RecordedStage
{
    QString configFile;
    QString state; ///< "complete", "incomplete", "interrupted" or "notRun"
};

/// All of a run.
struct RecordedRun
{
    QString folder; ///< as the user spells it, without "/" at its end
    QString state;  ///< as results.json has it, or "killed", or "running"
    QStringList reasons;
    QString series;
    QStringList info;
    std::optional<qint64> startedMs; ///< since 1970
    std::optional<qint64> endedMs;
    QString fioVersion; ///< empty: unknown
    QString dpcVersion; ///< empty: unknown
    QStringList machines;
    QJsonArray losses; ///< findings, as `dpc check --format=json` writes them
    std::vector<RecordedStage> stages;
    std::vector<RecordedJob> jobs;

    /// True if every job did its bytes.
    bool isComplete() const { return state == QLatin1String("complete"); }
};

/// Reads the folder of a run, at most 256 MiB of a file. A run that was killed, or goes on, has the
/// jobs of its plan, without figures. Nothing, and a sentence, if the folder holds no run, or one
/// of a version that is not known.
std::optional<RecordedRun> readRun(const QString& folder, std::string& problem);
