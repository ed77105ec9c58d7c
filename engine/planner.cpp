#include "engine/planner.h"

#include "check/nameexpander.h"
#include "check/text.h"
#include "engine/filesmade.h"
#include "engine/jobfile.h"
#include "engine/losses.h"
#include "engine/lossrules.h"
#include "engine/names.h"
#include "engine/stagefiles.h"
#include "engine/taskplan.h"
#include "shared/kvfile.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"
#include "shared/kvtime.h"

#include <QCryptographicHash>
#include <QHash>

#include <algorithm>
#include <fmt/format.h>

namespace {

/// Sections that fio takes in one job file; 4,200 fail.
constexpr int maxSections = 4000;

/// What fio calls files that are not files.
constexpr const char* specialFolders[] = {"/dev/", "/proc/", "/sys/"};

bool isSpecial(const QString& path)
{
    return std::any_of(std::begin(specialFolders), std::end(specialFolders),
                       [&](const char* folder) { return path.startsWith(QLatin1String(folder)); });
}

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
    return line.path(DestPath).endsWith("dummyFile") && line.used.fileSize == 0;
}

bool isForeign(const SeriesFacts& facts)
{
    const QString path = facts.runFolder + facts.name.baseName;
    return std::any_of(path.begin(), path.end(), [](QChar c) { return c.unicode() > 0xFF; });
}

/// Makes the jobs one by one, and remembers what they leave behind.
class Planner
{
public:
    Planner(const SeriesFacts& facts, const PlanOptions& options)
        : m_facts(facts)
        , m_options(options)
        , m_made(std::max<size_t>(options.machines.size(), 1))
    {
        m_plan.date =
            options.date.isEmpty() ? _kvTime(true).asStringFileName_TruncSec() : options.date;
        m_plan.info = facts.info;
        m_plan.startAtMinute = options.startAtMinute;
        setMachines();
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
        if (m_options.onlyStage && m_plan.jobs.empty())
            m_result.misuse.push_back(fmt::format("there is no stage {}: the series has {}",
                                                  *m_options.onlyStage,
                                                  counted(m_stagesSeen, "stage")));
        if (m_plan.jobs.empty() && !m_losses.hasErrors() && m_result.misuse.empty())
            m_result.problems.push_back("no task of the series makes a job");
        m_result.losses = m_losses.takeSorted();
        m_result.plan = std::move(m_plan);
        return std::move(m_result);
    }

private:
    void setMachines()
    {
        m_plan.machines = m_options.machines;
        if (!m_plan.machines.empty())
            return;
        PlanMachine here;
        here.name = kvToQString(getComputerName());
        here.tempFolder = m_options.localTempFolder.isEmpty() ? kvToQString(kvGetTempDir())
                                                              : m_options.localTempFolder;
        m_plan.machines.push_back(here);
    }

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
        m_initFacts = readSeries({folderOf(file.path), m_facts.name.baseName + "_init"},
                                 folderOf(file.shown));
        if (m_initFacts.files.empty())
            return;
        StageFile stage;
        stage.endLine = size_t(m_initFacts.files.front().endEntry);
        addStage(m_initFacts, stage, true);
    }

    void addStage(const SeriesFacts& facts, const StageFile& file, bool isInit)
    {
        if (!m_options.onlyStage) {
            planStage(facts, file, isInit);
            return;
        }
        // Whether a file is a stage shows when its jobs are planned. What another stage would make
        // or lose does not count for the only one.
        const Losses losses = m_losses;
        const FilesMade made = m_made;
        const bool isStage = planStage(facts, file, isInit);
        const bool isWanted = isStage && m_stagesSeen == *m_options.onlyStage;
        m_stagesSeen += isStage ? 1 : 0;
        if (isWanted)
            return;
        m_losses = losses;
        m_made = made;
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

    int stageIndex() const { return int(m_plan.stages.size()) - 1; }

    void addMachine(const SeriesFacts& facts, const std::vector<const LineFact*>& tasks,
                    int machine)
    {
        beginFile(machine);
        NameExpander names(facts, valuesOf(m_plan.machines[size_t(machine)], m_plan.date));
        for (const LineFact* line : tasks) {
            if (!hasTempFolder(*line, machine))
                continue;
            for (int iteration = 0; iteration < line->used.iterations; ++iteration) {
                if (!addJob(facts, *line, names, iteration))
                    break;
            }
        }
        endFile();
    }

    void beginFile(int machine)
    {
        m_file = PlanJobFile();
        m_file.machine = machine;
        const QByteArray stage = "stage-" + QByteArray::number(stageIndex());
        m_file.file =
            stage + (m_plan.isLocal() ? QByteArray() : '-' + machineKey(m_plan, machine)) + ".fio";
        m_file.firstJob = m_plan.jobs.size();
        m_logs.clear();
        m_sections = 0;
    }

    void endFile()
    {
        m_file.endJob = m_plan.jobs.size();
        if (m_file.endJob == m_file.firstJob)
            return;
        const size_t stage = size_t(stageIndex());
        m_file.sections = m_sections + int(preparationNames(m_plan, stage, m_file).size());
        m_plan.stages.back().files.push_back(m_file);
    }

    bool isBehindServer() const
    {
        return !m_plan.machines[size_t(m_file.machine)].address.isEmpty();
    }

    /// "[temp]" of another machine is not known here.
    bool hasTempFolder(const LineFact& line, int machine)
    {
        const bool isNeeded =
            line.path(SourcePath).contains("[temp]") || line.path(DestPath).contains("[temp]");
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

    /// False if no further iteration of the task need be looked at.
    bool addJob(const SeriesFacts& facts, const LineFact& line, NameExpander& names, int iteration)
    {
        const LossSink lose = sinkOf(facts, line);
        PlanJob job = jobOfTask(line);
        if (m_plan.stages.back().isInit && job.kind == JobKind::Write)
            job.kind = JobKind::Create;
        job.stage = stageIndex();
        job.machine = m_file.machine;
        job.iteration = iteration;
        job.source.path = names.resolve(line, line.path(SourcePath), iteration);
        job.destination.path = names.resolve(line, line.path(DestPath), iteration);
        if (!areNamesGood(job, lose) || !placeSource(job, lose) || !placeSections(job, lose))
            return false;
        placeDestination(job, lose);
        m_plan.jobs.push_back(std::move(job));
        return true;
    }

    bool areNamesGood(const PlanJob& job, const LossSink& lose) const
    {
        return isNameGood(job.source.path, SourcePath, lose) &&
               isNameGood(job.destination.path, DestPath, lose);
    }

    bool isNameGood(const QString& path, TaskPath which, const LossSink& lose) const
    {
        const int field = firstPathField + which;
        if (path.isEmpty())
            return true;
        const std::string problem = path.size() >= maxPath
                                        ? "has 500 characters with its variables replaced, and "
                                          "may have been cut"
                                        : nameProblem(path);
        if (!problem.empty()) {
            lose(fioName, field, quoted(path) + ' ' + problem);
            return false;
        }
        const PathStatus status =
            m_plan.isLocal() ? m_options.environment.look(path) : PathStatus();
        const bool isOther = status.isFolder() || status.kind == PathStatus::Kind::Other;
        if (isOther || isSpecial(path) || isSpecial(status.canonical)) {
            lose(fioSpecialFile, field, quoted(path) + " is not a regular file");
            return false;
        }
        return true;
    }

    /// Settles what is read, and how much: what an earlier job makes, or the file that this machine
    /// sees, or what the task says.
    bool placeSource(PlanJob& job, const LossSink& lose)
    {
        PlanFile& source = job.source;
        if (source.path.isEmpty())
            return true;
        const FileState state =
            job.kind == JobKind::Copy ? FileState::ReadWritable : FileState::Readable;
        const auto maker = m_made.before(source.path, job.machine, job.stage);
        if (maker) {
            job.bytes = maker->bytes;
            source.atJob = maker->machine == job.machine ? FileState::Made : state;
            return true;
        }
        source.atJob = state;
        source.beforeRun = state;
        const PathStatus status = m_options.environment.look(source.path);
        if (status.isFile())
            job.bytes = status.size;
        if (job.bytes <= 0)
            lose(fioSize, firstPathField,
                 fmt::format("{} is empty, or its size is not known: fio can't read it",
                             quoted(source.path)));
        return job.bytes > 0;
    }

    void placeDestination(PlanJob& job, const LossSink& lose)
    {
        PlanFile& destination = job.destination;
        if (destination.path.isEmpty())
            return;
        const auto maker = m_made.before(destination.path, job.machine, job.stage);
        if (maker && maker->machine == job.machine) {
            destination.atJob = FileState::Made;
            lose(fioOverwrite, firstPathField + DestPath,
                 "an earlier job of the run makes the file: fio writes over it in place, and does "
                 "not cut it before");
        } else {
            const bool isAgain =
                m_options.mayOverwrite &&
                m_options.mayOverwrite(m_plan.machines[size_t(job.machine)].name, destination.path);
            destination.beforeRun = isAgain ? FileState::MaybeMade : FileState::Absent;
            destination.atJob = isAgain || maker ? FileState::MaybeMade : FileState::Absent;
        }
        m_made.add(destination.path, {job.stage, job.machine, job.bytes});
    }

    bool placeSections(PlanJob& job, const LossSink& lose)
    {
        const QByteArray name =
            fmt::format("s{}-l{}-i{}", job.stage, job.line, job.iteration).c_str();
        if (!chooseSections(job, name, logFile(name), isBehindServer(), lose))
            return false;
        if (job.log)
            shareLog(job);
        m_sections += int(job.sections.size());
        if (m_sections <= maxSections)
            return true;
        lose(fioTooManyJobs, 1,
             fmt::format("fio takes at most {} sections in one job file, and the tasks of this "
                         "config file make more with all their iterations",
                         maxSections));
        return false;
    }

    QByteArray logFile(const QByteArray& name) const
    {
        const QByteArray folder =
            isBehindServer() ? encodedName(remoteLogFolder()) : QByteArray(logFolderName);
        return folder + '/' + name + ".log";
    }

    /// New on a machine behind a server: nobody else has put a log there.
    QString remoteLogFolder() const
    {
        const QString& temp = m_plan.machines[size_t(m_file.machine)].tempFolder;
        const bool isPlain = temp.startsWith('/') && !temp.startsWith(QLatin1String("//")) &&
                             std::all_of(temp.begin(), temp.end(), [](QChar c) {
                                 return (c.unicode() < 0x80 && c.isLetterOrNumber()) || c == '/' ||
                                        c == '-' || c == '_' || c == '.';
                             });
        return QStringLiteral("%1/dpc-%2-s%3-%4")
            .arg(isPlain && temp != "/" ? temp : QStringLiteral("/tmp"), m_plan.id)
            .arg(stageIndex())
            .arg(QString::fromLatin1(machineKey(m_plan, m_file.machine)));
    }

    /// Iterations that do the same have one log.
    void shareLog(PlanJob& job)
    {
        const QString calls = QStringLiteral("%1\n%2\n%3\n%4\n%5")
                                  .arg(job.source.path, job.destination.path)
                                  .arg(job.bytes)
                                  .arg(job.chunk)
                                  .arg(job.flush);
        const auto known = m_logs.constFind(calls);
        if (known != m_logs.constEnd())
            job.log->file = *known;
        else
            m_logs.insert(calls, job.log->file);
        if (isBehindServer())
            m_file.logFolder = remoteLogFolder();
    }

    const SeriesFacts& m_facts;
    const PlanOptions& m_options;
    SeriesFacts m_initFacts;
    Plan m_plan;
    PlanResult m_result;
    Losses m_losses;
    FilesMade m_made;
    PlanJobFile m_file;                ///< that is being filled
    QHash<QString, QByteArray> m_logs; ///< of this file, by what they say
    int m_sections = 0;
    int m_stagesSeen = 0; ///< if only one is planned
    bool m_saidTemp = false;
};

} // namespace

PlanResult planSeries(const SeriesFacts& facts, const PlanOptions& options)
{
    // What was chosen inside of "_wait" runs outside of it, beside what lies there already.
    const QString wait = waitFolder();
    if (!facts.name.folder.endsWith('/' + wait))
        return Planner(facts, options).plan();
    const QString shown = facts.shownFolder.endsWith(wait) ? facts.shownFolder.chopped(wait.size())
                                                           : facts.shownFolder + "../";
    return Planner(readSeries({facts.runFolder, facts.name.baseName}, shown), options).plan();
}
