#include "engine/jobplanner.h"

#include "check/text.h"
#include "engine/calllog.h"
#include "engine/jobfile.h"
#include "engine/lossrules.h"
#include "engine/names.h"
#include "model/limits.h"

#include <algorithm>
#include <fmt/format.h>

namespace {

/// Sections that fio takes in one job file; 4,200 fail.
constexpr int maxSections = 4000;

/// Below these nothing is a regular file of a disk.
constexpr const char* specialFolders[] = {"/dev/", "/proc/", "/sys/"};

bool isSpecial(const QString& path)
{
    return std::any_of(std::begin(specialFolders), std::end(specialFolders),
                       [&](const char* folder) { return path.startsWith(QLatin1String(folder)); });
}

/// True for a folder whose name means the same to fio, to a shell and in a log.
bool isPlainFolder(const QString& path)
{
    return path.startsWith('/') && path != "/" && !path.startsWith(QLatin1String("//")) &&
           std::all_of(path.begin(), path.end(), [](QChar c) {
               return (c.unicode() < 0x80 && c.isLetterOrNumber()) || c == '/' || c == '-' ||
                      c == '_' || c == '.';
           });
}

/// True if a name with its variables replaced is longer than a path can be: what is added at its
/// end does not arrive.
bool wasCut(const LineFact& line, const QByteArray& name, NameExpander& names, int iteration)
{
    if (name.size() + name.count('[') * names.longestValue() < maxPath)
        return false;
    return name.size() >= maxPath ||
           names.resolve(line, name + 'x', iteration) != names.resolve(line, name, iteration) + 'x';
}

void loseTooMany(const LossSink& lose)
{
    lose(fioTooManyJobs, 1,
         fmt::format("fio takes at most {} sections in one job file, and the tasks of this config "
                     "file make more with all their iterations",
                     maxSections));
}

} // namespace

void JobPlanner::beginFile(int machine)
{
    m_file = PlanJobFile();
    m_file.machine = machine;
    const QByteArray stage = "stage-" + QByteArray::number(stageIndex());
    m_file.file =
        stage + (m_plan.isLocal() ? QByteArray() : '-' + machineKey(m_plan, machine)) + ".fio";
    m_file.firstJob = m_plan.jobs.size();
    m_logs.clear();
    m_sections = 0;
    m_lineSize = 0;
}

void JobPlanner::endFile()
{
    m_file.endJob = m_plan.jobs.size();
    if (m_file.endJob > m_file.firstJob)
        m_plan.stages.back().files.push_back(m_file);
}

bool JobPlanner::add(const LineFact& line, NameExpander& names, int iteration, const LossSink& lose)
{
    PlanJob job = jobOfTask(line);
    if (m_plan.stages.back().isInit && job.kind == JobKind::Write)
        job.kind = JobKind::Create;
    job.stage = stageIndex();
    job.machine = m_file.machine;
    job.iteration = iteration;
    if (!placeName(job.source, line, SourcePath, names, iteration, lose) ||
        !placeName(job.destination, line, DestPath, names, iteration, lose) ||
        !placeSource(job, lose) || !placeSections(job, lose))
        return false;
    placeDestination(job, lose);
    const bool fits = longestLineOf(job) <= maxNameLine;
    if (!fits)
        lose(fioName, firstPathField,
             "the names need so many quotes that no line of a job file can hold their guard");
    m_plan.jobs.push_back(std::move(job));
    return fits;
}

bool JobPlanner::placeName(PlanFile& file, const LineFact& line, TaskPath which,
                           NameExpander& names, int iteration, const LossSink& lose) const
{
    const int field = firstPathField + which;
    const QByteArray& name = line.path(which);
    if (name.isEmpty())
        return true;
    const QString path = names.resolve(line, name, iteration);
    file.path = path;
    const std::string problem =
        wasCut(line, name, names, iteration)
            ? fmt::format("has more than {} characters with its variables replaced", maxPath)
            : nameProblem(path);
    if (!problem.empty()) {
        lose(fioName, field, quoted(path) + ' ' + problem);
        return false;
    }
    const PathStatus status = m_plan.isLocal() ? m_options.environment.look(path) : PathStatus();
    const bool isOther = status.exists() && !status.isFile();
    if (isOther || isSpecial(path) || isSpecial(status.canonical)) {
        lose(fioSpecialFile, field, quoted(path) + " is not a regular file");
        return false;
    }
    return true;
}

/// Settles what is read, and how much: what an earlier job makes, or the file that this machine
/// sees, or what the task says.
bool JobPlanner::placeSource(PlanJob& job, const LossSink& lose) const
{
    PlanFile& source = job.source;
    if (source.path.isEmpty())
        return true;
    source.atJob = job.kind == JobKind::Copy ? FileState::ReadWritable : FileState::Readable;
    const auto maker = m_made.before(source.path, job.machine, job.stage);
    if (maker) {
        job.bytes = maker->bytes;
        if (maker->machine == job.machine)
            source.atJob = FileState::Made;
        return true;
    }
    source.beforeRun = source.atJob;
    const PathStatus status = m_options.environment.look(source.path);
    if (status.isFile())
        job.bytes = status.size;
    if (job.bytes <= 0)
        lose(fioSize, firstPathField,
             fmt::format("{} is empty, or its size is not known: fio can't read it",
                         quoted(source.path)));
    return job.bytes > 0;
}

bool JobPlanner::placeSections(PlanJob& job, const LossSink& lose)
{
    const QByteArray name = fmt::format("s{}-l{}-i{}", job.stage, job.line, job.iteration).c_str();
    const QByteArray log = workFile(logFolderName, job.stage, job.machine, name + ".log");
    if (!chooseSections(job, name, log, isBehindServer(job.machine), lose))
        return false;
    if (job.log)
        shareLog(job);
    m_sections += int(job.sections.size());
    if (m_sections <= maxSections)
        return true;
    loseTooMany(lose);
    return false;
}

/// Iterations that do the same have one log.
void JobPlanner::shareLog(PlanJob& job)
{
    const QString calls = QStringLiteral("%1\n%2\n%3\n%4\n%5")
                              .arg(job.source.path, job.destination.path)
                              .arg(job.bytes)
                              .arg(job.chunk)
                              .arg(job.flush);
    const auto known = m_logs.constFind(calls);
    if (known != m_logs.constEnd()) {
        job.log->file = *known;
        return;
    }
    m_logs.insert(calls, job.log->file);
    if (isBehindServer(job.machine))
        countLog(job);
}

/// Commands that write logs are put into one section as long as its line can hold them.
void JobPlanner::countLog(const PlanJob& job)
{
    const int size = logCommand(job, job.log->file).size();
    const bool needsSection = m_lineSize == 0 || m_lineSize + size >= maxNameLine;
    m_sections += needsSection ? 1 : 0;
    m_lineSize = needsSection ? size : m_lineSize + size;
}

void JobPlanner::placeDestination(PlanJob& job, const LossSink& lose)
{
    PlanFile& destination = job.destination;
    if (destination.path.isEmpty())
        return;
    placeWhatIsMade(job, lose);
    // The section with the last chunk is a later job for this.
    if (job.sections.size() > 1 && destination.atJob != FileState::Made)
        leaveProof(job);
}

void JobPlanner::placeWhatIsMade(PlanJob& job, const LossSink& lose)
{
    PlanFile& destination = job.destination;
    FilesMade::Maker maker = {job.stage, job.machine, job.bytes, m_plan.jobs.size()};
    const auto earlier = m_made.before(destination.path, job.machine, job.stage);
    if (earlier && earlier->machine == job.machine) {
        PlanJob& first = m_plan.jobs[earlier->firstJob];
        leaveProof(first);
        destination.proof = first.destination.proof;
        destination.atJob = FileState::Made;
        maker.firstJob = earlier->firstJob;
        lose(fioOverwrite, firstPathField + DestPath,
             "an earlier job of the run makes the file: fio writes over it in place, and does not "
             "cut it before");
    } else {
        const bool isAgain =
            m_options.mayOverwrite &&
            m_options.mayOverwrite(m_plan.machines[size_t(job.machine)].name, destination.path);
        destination.beforeRun = isAgain ? FileState::MaybeMade : FileState::Absent;
        destination.atJob = isAgain || earlier ? FileState::MaybeMade : FileState::Absent;
    }
    m_made.add(destination.path, maker);
}

void JobPlanner::leaveProof(PlanJob& job) const
{
    job.destination.proof = workFile(proofFolderName, job.stage, job.machine, job.name() + ".made");
}

void JobPlanner::finish()
{
    for (size_t stage = 0; stage < m_plan.stages.size(); ++stage) {
        for (PlanJobFile& file : m_plan.stages[stage].files) {
            for (size_t i = file.firstJob; i < file.endJob; ++i) {
                const PlanJob& job = m_plan.jobs[i];
                file.sections += int(job.sections.size());
                const PlanFile& made = job.destination;
                const bool leavesProof = !made.proof.isEmpty() && made.atJob != FileState::Made;
                const bool needsFolder = job.log || leavesProof;
                if (needsFolder && isBehindServer(file.machine) && file.logFolder.isEmpty())
                    file.logFolder = workFolder(int(stage), file.machine);
            }
            file.sections += int(preparationNames(m_plan, stage, file).size());
        }
    }
}

/// New on a machine behind a server: nobody else has put anything there.
QString JobPlanner::workFolder(int stage, int machine) const
{
    const QString& temp = m_plan.machines[size_t(machine)].tempFolder;
    return QStringLiteral("%1/dpc-%2-s%3-%4")
        .arg(isPlainFolder(temp) ? temp : QStringLiteral("/tmp"), m_plan.id)
        .arg(stage)
        .arg(QString::fromLatin1(machineKey(m_plan, machine)));
}

QByteArray JobPlanner::workFile(const char* localFolder, int stage, int machine,
                                const QByteArray& name) const
{
    const QByteArray folder =
        isBehindServer(machine) ? encodedName(workFolder(stage, machine)) : QByteArray(localFolder);
    return folder + '/' + name;
}
