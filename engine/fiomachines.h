#pragma once

#include "engine/fiocall.h"
#include "engine/plan.h"
#include "engine/results.h"
#include "engine/runfolder.h"

/// How fio is called for the machines of a plan, from the folder of the run.
class FioMachines
{
public:
    /// A job file of one machine, relative to the folder.
    struct JobFile
    {
        int machine; ///< index in Plan::machines
        QByteArray file;
    };

    /// All must outlive it.
    FioMachines(const Plan& plan, const RunFolder& folder, const SignalGuard& heldSignals,
                QString program);

    /// Tries to connect to each machine, for at most so many ms. A sentence for each one that does
    /// not answer.
    std::vector<std::string> reach(int timeoutMs) const;

    /// Where output of a call goes: `output/NAME.txt` and `output/NAME.err`.
    struct Output
    {
        QString name;
        int timeoutMs; ///< 0: as long as it takes
        std::function<void(pid_t process)> onTick;
    };

    /// One call for all: on machines behind servers it begins and ends together.
    FioExit call(const std::vector<JobFile>& files, const Output& output) const;

    /// The output of a call.
    FioOutput read(const QString& name) const;
    /// The first line of what it complained about, empty if it did not.
    std::string complaint(const QString& name) const;

    /// The names that fio gives the machines.
    const std::vector<FioHost>& hosts() const { return m_hosts; }

private:
    const Plan& m_plan;
    const RunFolder& m_folder;
    const SignalGuard& m_signals;
    QString m_program;
    std::vector<FioHost> m_hosts;
    QStringList m_clients; ///< as `--client=` takes them
};
