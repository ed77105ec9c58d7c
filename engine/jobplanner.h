#pragma once

#include "check/nameexpander.h"
#include "engine/filesmade.h"
#include "engine/planner.h"
#include "engine/taskplan.h"

#include <QHash>

/// Adds jobs to the last stage of a plan, machine by machine, one by one, in the order of the run.
class JobPlanner
{
public:
    /// Both must outlive it; the machines of the plan must be known.
    JobPlanner(Plan& plan, const PlanOptions& options)
        : m_plan(plan)
        , m_options(options)
        , m_made(plan.machines.size())
    {}

    /// Starts the job file that the next jobs of the stage belong to.
    void beginFile(int machine);

    /// Adds the job of one iteration of a task that fio can do. False if that fails, and so would
    /// all further iterations; says why.
    bool add(const LineFact& line, NameExpander& names, int iteration, const LossSink& lose);

    /// Adds the file to the stage if it has jobs.
    void endFile();

    /// Which files the jobs so far make; a stage that is left out again takes its own along.
    const FilesMade& filesMade() const { return m_made; }
    /// As filesMade() gave them before the stage that is left out.
    void setFilesMade(const FilesMade& made) { m_made = made; }

    /// To be called after the last stage: a later job may need something of an earlier one.
    void finish();

private:
    bool placeName(PlanFile& file, const LineFact& line, TaskPath which, NameExpander& names,
                   int iteration, const LossSink& lose) const;
    bool placeSource(PlanJob& job, const LossSink& lose) const;
    bool placeSections(PlanJob& job, const LossSink& lose);
    void placeDestination(PlanJob& job, const LossSink& lose);
    void placeWhatIsMade(PlanJob& job, const LossSink& lose);
    void shareLog(PlanJob& job);
    void countLog(const PlanJob& job);
    void leaveProof(PlanJob& job) const;

    int stageIndex() const { return int(m_plan.stages.size()) - 1; }
    bool isBehindServer(int machine) const
    {
        return !m_plan.machines[size_t(machine)].address.isEmpty();
    }
    QString workFolder(int stage, int machine) const;
    QByteArray workFile(const char* localFolder, int stage, int machine,
                        const QByteArray& name) const;

    Plan& m_plan;
    const PlanOptions& m_options;
    FilesMade m_made;
    PlanJobFile m_file;                ///< that is being filled
    QHash<QString, QByteArray> m_logs; ///< of this file, by what they say
    int m_sections = 0;                ///< of its jobs, and of the commands that write logs
    int m_lineSize = 0;                ///< of the last of these commands
};
