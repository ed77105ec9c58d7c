#pragma once

#include <QHash>
#include <QString>

#include <algorithm>
#include <optional>
#include <vector>

/// Which files the jobs of a plan make, in the order of the run.
class FilesMade
{
public:
    /// By whom, and how large.
    struct Maker
    {
        int stage;
        int machine;
        qint64 bytes;
        size_t firstJob; ///< index in Plan::jobs of the first that wrote it on this machine
    };

    /// For so many machines; none has made a file yet.
    explicit FilesMade(size_t machines)
        : m_ofMachine(machines)
    {}

    /// Notes the job that now makes the file, which comes after all that were added.
    void add(const QString& path, const Maker& maker)
    {
        m_ofMachine[size_t(maker.machine)][path] = maker;
        std::vector<Maker>& stages = m_lastOfStage[path];
        if (!stages.empty() && stages.back().stage == maker.stage)
            stages.back() = maker;
        else
            stages.push_back(maker);
    }

    /// The job whose file a machine meets: its own last one, or a later one of an earlier stage,
    /// which it sees if the machines share the folder.
    std::optional<Maker> before(const QString& path, int machine, int stage) const
    {
        const QHash<QString, Maker>& own = m_ofMachine[size_t(machine)];
        const auto mine = own.constFind(path);
        const std::optional<Maker> earlier = lastBefore(path, stage);
        if (mine != own.constEnd() && (!earlier || earlier->stage <= mine->stage))
            return *mine;
        return earlier;
    }

private:
    std::optional<Maker> lastBefore(const QString& path, int stage) const
    {
        const auto found = m_lastOfStage.constFind(path);
        if (found == m_lastOfStage.constEnd())
            return std::nullopt;
        const auto last = std::find_if(found->rbegin(), found->rend(),
                                       [&](const Maker& maker) { return maker.stage < stage; });
        return last == found->rend() ? std::nullopt : std::optional<Maker>(*last);
    }

    std::vector<QHash<QString, Maker>> m_ofMachine;
    QHash<QString, std::vector<Maker>> m_lastOfStage; ///< one for each stage that makes it
};
