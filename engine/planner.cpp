#include "engine/planner.h"

#include "check/text.h"
#include "configset/filestocreate.h"
#include "engine/jobplanner.h"
#include "engine/losses.h"
#include "engine/lossrules.h"
#include "engine/stagefiles.h"
#include "model/limits.h"
#include "shared/kvfile.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"
#include "shared/kvtime.h"

#include <QCryptographicHash>

#include <algorithm>
#include <fmt/format.h>

namespace {

MachineValues valuesOf(const PlanMachine& machine, const QString& date)
{
    MachineValues values;
    values.computerName = computerNameFrom(machine.name.toLatin1().constData());
    values.date = date;
    values.tempFolder = kvToString8<maxPath>(machine.tempFolder);
    return values;
}

/// A line of an _init file that makes a folder: the editor gives it one byte, which is 0 KiB.
bool makesFolder(const LineFact& line)
{
    return line.path(DestPath).endsWith(dummyFileName) && line.used.fileSize == 0;
}

bool isForeign(const SeriesFacts& facts)
{
    const QString path = facts.runFolder + facts.name.baseName;
    return std::any_of(path.begin(), path.end(), [](QChar c) { return c.unicode() > 0xFF; });
}

/// A plan that knows its machines and nothing else.
Plan withMachines(const PlanOptions& options)
{
    Plan plan;
    plan.machines = options.machines;
    if (!plan.machines.empty())
        return plan;
    PlanMachine here;
    here.name = kvToQString(getComputerName());
    here.tempFolder =
        options.localTempFolder.isEmpty() ? kvToQString(kvGetTempDir()) : options.localTempFolder;
    plan.machines.push_back(here);
    return plan;
}

/// Goes through the config files of a series, their tasks and the machines.
class Planner
{
public:
    Planner(const SeriesFacts& facts, const PlanOptions& options)
        : m_facts(facts)
        , m_options(options)
        , m_plan(withMachines(options))
        , m_jobs(m_plan, options)
    {
        m_plan.date =
            options.date.isEmpty() ? _kvTime(true).asStringFileName_TruncSec() : options.date;
        m_plan.info = facts.info;
        m_plan.startAtMinute = options.startAtMinute;
    }

    PlanResult plan()
    {
        if (isForeign(m_facts)) {
            m_result.problems.push_back("the name of the folder or the series has letters outside "
                                        "Latin-1, which a task can't name");
            return std::move(m_result);
        }
        const std::vector<StageFile> stages = stageFiles(m_facts, m_losses);
        setIdentity(stages);
        addInitStage();
        for (const StageFile& stage : stages)
            addStage(m_facts, stage, false);
        m_jobs.finish();
        if (m_options.onlyStage && m_plan.jobs.empty())
            m_result.misuse.push_back(fmt::format("unknown stage {}: the series has {}",
                                                  *m_options.onlyStage,
                                                  counted(m_stagesSeen, "stage")));
        if (m_plan.jobs.empty() && !m_losses.hasErrors() && m_result.misuse.empty())
            m_result.problems.push_back("no task of the series makes a job");
        m_result.losses = m_losses.takeSorted();
        m_result.plan = std::move(m_plan);
        return std::move(m_result);
    }

private:
    /// The same series at the same moment on the same machines has the same name.
    void setIdentity(const std::vector<StageFile>& stages)
    {
        const QString file =
            stages.empty() ? QString() : m_facts.files[size_t(stages.front().file)].path;
        m_plan.series = m_facts.runFolder + file.mid(file.lastIndexOf('/') + 1);
        QCryptographicHash hash(QCryptographicHash::Sha256);
        const auto add = [&](const QByteArray& text) {
            hash.addData(text);
            hash.addData("\n");
        };
        add(m_plan.series.toUtf8());
        add(m_plan.date.toUtf8());
        for (const PlanMachine& machine : m_plan.machines)
            add(machine.name.toUtf8() + ' ' + machine.address);
        for (const LineFact& line : m_facts.lines)
            add(line.text);
        constexpr int digits = 12;
        m_plan.id = QString::fromLatin1(hash.result().toHex().left(digits));
    }

    /// The sources that the _init file makes, on one machine for all.
    void addInitStage()
    {
        if (m_facts.initFile < 0)
            return;
        const FileFact& file = m_facts.files[size_t(m_facts.initFile)];
        const auto folderOf = [](const QString& path) {
            return path.left(path.lastIndexOf('/') + 1);
        };
        m_initFacts = readSeries({folderOf(file.path), m_facts.name.baseName + initFileSuffix},
                                 folderOf(file.shown));
        if (!m_initFacts.files.empty()) { // else it is gone since it was looked for
            StageFile stage;
            stage.endLine = size_t(m_initFacts.files.front().endEntry);
            addStage(m_initFacts, stage, true);
        }
    }

    void addStage(const SeriesFacts& facts, const StageFile& file, bool isInit)
    {
        if (!m_options.onlyStage) {
            planStage(facts, file, isInit);
            return;
        }
        // Whether a file is a stage shows when its jobs are planned. Files and losses of other
        // stages do not count for the only one.
        const Losses losses = m_losses;
        const FilesMade made = m_jobs.filesMade();
        const bool isStage = planStage(facts, file, isInit);
        const bool isWanted = isStage && m_stagesSeen == *m_options.onlyStage;
        m_stagesSeen += isStage ? 1 : 0;
        if (isWanted)
            return;
        m_losses = losses;
        m_jobs.setFilesMade(made);
        if (isStage) {
            m_plan.jobs.resize(m_plan.stages.back().files.front().firstJob);
            m_plan.stages.pop_back();
        }
    }

    /// False if the file makes no jobs.
    bool planStage(const SeriesFacts& facts, const StageFile& file, bool isInit)
    {
        const QString& path = facts.files[size_t(file.file)].path;
        PlanStage stage;
        stage.configFile = facts.runFolder + path.mid(path.lastIndexOf('/') + 1);
        stage.shownFile = facts.files[size_t(file.file)].shown;
        stage.isInit = isInit;
        m_plan.stages.push_back(stage);
        const std::vector<const LineFact*> tasks = tasksOf(facts, file, isInit);
        const size_t machines = isInit ? 1 : m_plan.machines.size();
        for (size_t machine = 0; machine < machines; ++machine)
            addMachine(facts, tasks, int(machine));
        if (!m_plan.stages.back().files.empty())
            return true;
        m_plan.stages.pop_back();
        return false;
    }

    /// The tasks of a file that fio can do.
    std::vector<const LineFact*> tasksOf(const SeriesFacts& facts, const StageFile& file,
                                         bool isInit)
    {
        std::vector<const LineFact*> tasks;
        const LineFact* firstLog = nullptr;
        const LineFact* firstFolder = nullptr;
        int logs = 0;
        int folders = 0;
        for (size_t i = file.firstLine; i < file.endLine; ++i) {
            const LineFact& line = facts.lines[i];
            if (!isTask(line))
                continue;
            if (isInit && makesFolder(line)) {
                firstFolder = folders++ == 0 ? &line : firstFolder;
                continue;
            }
            const bool hasLog = !line.path(LogPath).isEmpty() || !line.path(CsvPath).isEmpty() ||
                                line.used.writeDone;
            if (hasLog && !isInit)
                firstLog = logs++ == 0 ? &line : firstLog;
            if (isPossible(facts, line))
                tasks.push_back(&line);
        }
        if (firstFolder != nullptr)
            m_losses.addAtField(fioFolder, facts, *firstFolder, firstPathField + DestPath,
                                fmt::format("{} for a folder: fio makes the folders of its files "
                                            "itself, with mode 0700",
                                            counted(folders, "line")));
        if (firstLog != nullptr)
            m_losses.addAtField(fioLog, facts, *firstLog, firstPathField + LogPath,
                                fmt::format("log, .csv and done files of {} are not written",
                                            counted(logs, "task")));
        return tasks;
    }

    bool isPossible(const SeriesFacts& facts, const LineFact& line)
    {
        if (line.fromMemory && line.toMemory) {
            m_losses.addAtField(fioNoFile, facts, line, firstPathField,
                                "neither source nor destination names a file");
            return false;
        }
        return judgeSettings(line, sinkOf(facts, line));
    }

    LossSink sinkOf(const SeriesFacts& facts, const LineFact& line)
    {
        return [this, &facts, &line](const Rule& rule, int field, std::string text) {
            m_losses.addAtField(rule, facts, line, field, std::move(text));
        };
    }

    void addMachine(const SeriesFacts& facts, const std::vector<const LineFact*>& tasks,
                    int machine)
    {
        m_jobs.beginFile(machine);
        NameExpander names(facts, valuesOf(m_plan.machines[size_t(machine)], m_plan.date));
        for (const LineFact* line : tasks) {
            if (!hasTempFolder(*line, machine))
                continue;
            const LossSink lose = sinkOf(facts, *line);
            for (int iteration = 0; iteration < line->used.iterations; ++iteration) {
                if (!m_jobs.add(*line, names, iteration, lose))
                    break;
            }
        }
        m_jobs.endFile();
    }

    /// "[temp]" of another machine is not known here.
    bool hasTempFolder(const LineFact& line, int machine)
    {
        const bool isNeeded = line.path(SourcePath).contains(tempVariable) ||
                              line.path(DestPath).contains(tempVariable);
        const PlanMachine& where = m_plan.machines[size_t(machine)];
        if (!isNeeded || !where.tempFolder.isEmpty())
            return true;
        if (!m_saidTemp)
            m_result.misuse.push_back(fmt::format(
                "the series names [temp], and the temporary folder of {} is not known: give it "
                "with --temp PATH, or with temp=PATH behind the machine in the file of machines",
                quoted(where.name)));
        m_saidTemp = true;
        return false;
    }

    const SeriesFacts& m_facts;
    const PlanOptions& m_options;
    SeriesFacts m_initFacts;
    Plan m_plan;
    PlanResult m_result;
    Losses m_losses;
    JobPlanner m_jobs;
    int m_stagesSeen = 0; ///< if only one is planned
    bool m_saidTemp = false;
};

} // namespace

PlanResult planSeries(const SeriesFacts& facts, const PlanOptions& options)
{
    // A file that was chosen inside "_wait" runs outside of it, beside the files that lie there
    // already.
    const QString wait = waitFolder();
    if (!facts.name.folder.endsWith('/' + wait))
        return Planner(facts, options).plan();
    const QString shown = facts.shownFolder.endsWith(wait) ? facts.shownFolder.chopped(wait.size())
                                                           : facts.shownFolder + "../";
    return Planner(readSeries({facts.runFolder, facts.name.baseName}, shown), options).plan();
}
