#include "dpc/report/reporttime.h"

#include "check/text.h"
#include "check/units.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace {

constexpr int maxSteps = 600;
constexpr double sampleSeconds = 0.1; ///< a line of a log tells of the 100 ms before it
constexpr int maxMachines = 8;        ///< more lines in one picture can't be told apart

struct Sample
{
    int machine = 0;
    double second = 0;
    double mib = 0; ///< that were moved in the 100 ms before
};

/// "time, rate, direction, size, offset": ms since 1970, KiB/s.
void readLog(const QString& path, int machine, qint64 startMs, std::vector<Sample>& samples)
{
    constexpr qint64 maxLogBytes = 16LL << 20;
    constexpr double kibPerMib = 1024;
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return;
    for (const QByteArray& line : file.read(maxLogBytes).split('\n')) {
        const QList<QByteArray> fields = line.split(',');
        if (fields.size() < 2)
            continue;
        bool isTime = false;
        bool isRate = false;
        const qint64 time = fields[0].trimmed().toLongLong(&isTime);
        const double rate = fields[1].trimmed().toDouble(&isRate);
        if (isTime && isRate && time >= startMs)
            samples.push_back(
                {machine, double(time - startMs) / msPerSecond, rate / kibPerMib * sampleSeconds});
    }
}

std::optional<qint64> firstStart(const RecordedRun& run, int stage)
{
    std::optional<qint64> first;
    for (const RecordedJob& job : run.jobs) {
        if (job.startMs && (stage < 0 || job.stage == stage))
            first = std::min(first.value_or(*job.startMs), *job.startMs);
    }
    return first;
}

std::vector<Sample> samplesOf(const RecordedRun& run, qint64 startMs)
{
    std::vector<Sample> samples;
    for (const RecordedJob& job : run.jobs) {
        const int machine = run.machines.indexOf(job.machine);
        for (const QString& log : job.bandwidthLogs) {
            // Names in results come from files, and lead nowhere else.
            if (machine >= 0 && !log.startsWith('/') && !log.contains(QLatin1String("..")))
                readLog(run.folder + '/' + log, machine, startMs, samples);
        }
    }
    return samples;
}

} // namespace

TimeLine timeLineOf(const RecordedRun& run)
{
    TimeLine line;
    const std::optional<qint64> startMs = firstStart(run, -1);
    const std::vector<Sample> samples = startMs ? samplesOf(run, *startMs) : std::vector<Sample>();
    if (samples.empty())
        return line;
    double end = 0;
    for (const Sample& sample : samples)
        end = std::max(end, sample.second);
    line.step = std::max(sampleSeconds, std::ceil(end / maxSteps / sampleSeconds) * sampleSeconds);
    const bool isMany = run.machines.size() > maxMachines;
    for (const QString& machine : run.machines) {
        if (!isMany)
            line.series.push_back({QString::fromStdString(printable(machine)), {}});
    }
    if (isMany)
        line.series.push_back({QStringLiteral("all machines"), {}});
    const size_t steps = size_t(end / line.step) + 1;
    for (TimeLine::Series& series : line.series)
        series.values.resize(steps);
    for (const Sample& sample : samples)
        line.series[isMany ? 0 : size_t(sample.machine)]
            .values[size_t(sample.second / line.step)] += sample.mib / line.step;
    for (int stage = 1; stage < int(run.stages.size()); ++stage) {
        const std::optional<qint64> begin = firstStart(run, stage);
        if (begin)
            line.stages.push_back(
                {QString("stage %1").arg(stage), double(*begin - *startMs) / msPerSecond});
    }
    return line;
}
