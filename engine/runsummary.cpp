#include "engine/runsummary.h"

#include "check/units.h"

#include <QHash>

#include <algorithm>
#include <cmath>

namespace {

/// The task and machine that a job belongs to. The folder may differ from run to run.
QString taskKey(const RecordedJob& job)
{
    const QString file = job.configFile.section('/', -1);
    return QString("%1\n%2\n%3\n%4\n").arg(job.stage).arg(job.line).arg(job.kind, file) +
           job.machine;
}

template <class Number>
void addTo(std::optional<Number>& sum, const std::optional<qint64>& value, double factor = 1)
{
    if (value)
        sum = sum.value_or(0) + Number(double(*value) * factor);
}

template <class Value>
void addTo(std::vector<double>& values, const std::optional<Value>& value)
{
    if (value)
        values.push_back(double(*value));
}

std::optional<double> medianOf(const std::vector<double>& values)
{
    const std::optional<Spread> spread = spreadOf(values);
    return spread ? std::optional(spread->median) : std::nullopt;
}

TaskSummary taskOf(const std::vector<const RecordedJob*>& jobs)
{
    constexpr double secondsPerMs = 1e-3;
    constexpr qint64 shortMs = 1000;
    TaskSummary task;
    task.first = *jobs.front();
    std::vector<double> rates;
    std::vector<double> ioRates;
    std::vector<double> p50;
    std::vector<double> p99;
    for (const RecordedJob* job : jobs) {
        ++task.iterations;
        task.good += job->isGood ? 1 : 0;
        addTo(task.bytes, job->doneBytes);
        addTo(task.seconds, job->runtimeMs, secondsPerMs);
        addTo(rates, job->rate);
        addTo(ioRates, job->ioRate);
        addTo(p50, job->p50Ns);
        addTo(p99, job->p99Ns);
        if (job->maxNs)
            task.maxNs = std::max(task.maxNs.value_or(*job->maxNs), *job->maxNs);
        task.isShort = task.isShort || (job->runtimeMs && *job->runtimeMs < shortMs);
    }
    task.rate = spreadOf(std::move(rates));
    task.ioRate = spreadOf(std::move(ioRates));
    task.p50Ns = medianOf(p50);
    task.p99Ns = medianOf(p99);
    return task;
}

/// The moments of a stage, as its jobs tell them.
class StageClock
{
public:
    void add(const RecordedJob& job)
    {
        if (!job.startMs)
            return;
        m_first = std::min(m_first.value_or(*job.startMs), *job.startMs);
        if (job.endMs)
            m_last = std::max(m_last.value_or(*job.endMs), *job.endMs);
        const qint64 known = m_firstOfMachine.value(job.machine, *job.startMs);
        m_firstOfMachine.insert(job.machine, std::min(known, *job.startMs));
    }

    void tell(StageSummary& stage) const
    {
        if (m_first && m_last && *m_last > *m_first) {
            stage.seconds = double(*m_last - *m_first) / msPerSecond;
            if (stage.bytes)
                stage.rate = double(*stage.bytes) / *stage.seconds;
        }
        if (m_firstOfMachine.size() < 2)
            return;
        const auto [least, most] =
            std::minmax_element(m_firstOfMachine.cbegin(), m_firstOfMachine.cend());
        stage.skewMs = *most - *least;
    }

private:
    std::optional<qint64> m_first;
    std::optional<qint64> m_last;
    QHash<QString, qint64> m_firstOfMachine;
};

std::vector<StageSummary> stagesOf(const RecordedRun& run)
{
    std::vector<StageSummary> stages;
    for (const RecordedStage& stage : run.stages) {
        stages.emplace_back();
        stages.back().configFile = stage.configFile;
        stages.back().state = stage.state;
    }
    std::vector<StageClock> clocks(stages.size());
    for (const RecordedJob& job : run.jobs) {
        StageSummary& stage = stages[size_t(job.stage)];
        ++stage.jobs;
        stage.good += job.isGood ? 1 : 0;
        addTo(stage.bytes, job.doneBytes);
        clocks[size_t(job.stage)].add(job);
    }
    for (size_t i = 0; i < stages.size(); ++i)
        clocks[i].tell(stages[i]);
    return stages;
}

} // namespace

std::optional<Spread> spreadOf(std::vector<double> values)
{
    if (values.empty())
        return std::nullopt;
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    const double median =
        values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
    return Spread{values.front(), median, values.back(), int(values.size())};
}

RunSummary summaryOf(const RecordedRun& run)
{
    RunSummary summary;
    summary.stages = stagesOf(run);
    QHash<QString, size_t> places;
    std::vector<std::vector<const RecordedJob*>> tasks;
    for (const RecordedJob& job : run.jobs) {
        const QString key = taskKey(job);
        if (!places.contains(key)) {
            places.insert(key, tasks.size());
            tasks.emplace_back();
        }
        tasks[places.value(key)].push_back(&job);
    }
    for (const auto& jobs : tasks)
        summary.tasks.push_back(taskOf(jobs));
    return summary;
}

bool TaskComparison::isSlower(double part) const
{
    return ratio && isBeyondSpread && *ratio < 1 - part;
}

std::vector<TaskComparison> compare(const RunSummary& base, const RunSummary& other)
{
    QHash<QString, const TaskSummary*> others;
    for (const TaskSummary& task : other.tasks)
        others.insert(taskKey(task.first), &task);
    std::vector<TaskComparison> result;
    for (const TaskSummary& task : base.tasks) {
        TaskComparison& pair = result.emplace_back();
        pair.base = task;
        const TaskSummary* const match = others.value(taskKey(task.first));
        if (match == nullptr)
            continue;
        pair.other = *match;
        if (!task.ioRate || !match->ioRate || task.ioRate->median <= 0)
            continue;
        const Spread& a = *task.ioRate;
        const Spread& b = *match->ioRate;
        pair.ratio = b.median / a.median;
        pair.isBeyondSpread =
            std::abs(b.median - a.median) > std::max(a.max - a.min, b.max - b.min);
    }
    return result;
}
