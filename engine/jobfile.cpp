#include "engine/jobfile.h"

#include "engine/calllog.h"
#include "engine/guards.h"
#include "engine/names.h"

#include <QByteArrayList>
#include <QSet>

namespace {

QByteArray number(qint64 n)
{
    return QByteArray::number(n);
}

QByteArray prefix(size_t stage)
{
    return 's' + number(qint64(stage));
}

/// Commands that make the folder on a machine behind a server and write the logs there, as many in
/// each as a line can hold.
std::vector<QByteArray> logCommands(const Plan& plan, const PlanJobFile& file)
{
    if (file.logFolder.isEmpty())
        return {};
    std::vector<QByteArray> commands = {"mkdir -m 0700 " + shellWord(encodedName(file.logFolder))};
    QSet<QByteArray> written;
    for (size_t i = file.firstJob; i < file.endJob; ++i) {
        const PlanJob& job = plan.jobs[i];
        if (!job.log || written.contains(job.log->file))
            continue;
        written.insert(job.log->file);
        const QByteArray command = logCommand(job, job.log->file);
        if (commands.back().size() + command.size() < maxNameLine)
            commands.back() += " && " + command;
        else
            commands.push_back(command);
    }
    return commands;
}

/// The conditions that must hold when a section begins, and its steps before its time counts.
QByteArray jobCondition(const PlanJob& job, bool isFirst)
{
    QByteArrayList conditions;
    for (const PlanFile* file : {&job.source, &job.destination}) {
        if (file->path.isEmpty())
            continue;
        GuardTest test;
        test.path = file->path;
        const bool isWritten = file == &job.destination;
        test.state = isFirst || !isWritten ? file->atJob : FileState::Made;
        test.bytes = job.bytes;
        conditions += guardCondition(test);
        if (isWritten && test.state == FileState::Made)
            conditions += "test -f " + shellWord(file->proof);
    }
    if (job.preallocate && isFirst)
        conditions +=
            "fallocate -l " + number(job.bytes) + ' ' + shellWord(encodedName(job.made()));
    if (job.dropCaches && isFirst)
        conditions += "sync && echo 3 > /proc/sys/vm/drop_caches";
    const PlanFile& made = job.destination;
    if (isFirst && made.atJob != FileState::Made && !made.proof.isEmpty())
        conditions += ": > " + shellWord(made.proof);
    return conditions.join(" && ");
}

const char* direction(JobKind kind)
{
    return kind == JobKind::Copy ? "rw" : kind == JobKind::Read ? "read" : "write";
}

/// The options of a section that needs plain options only.
QByteArray plainOptions(const PlanJob& job, const PlanSection& section)
{
    QByteArray text = "size=" + number(section.bytes) + "\nbs=" + number(section.chunk) + '\n';
    if (section.offset > 0)
        text += "offset=" + number(section.offset) + '\n';
    if (job.flush)
        text += "fsync=1\nend_fsync=1\n";
    return text;
}

QByteArray jobSection(const PlanJob& job, const PlanSection& section)
{
    const bool isCopy = job.kind == JobKind::Copy;
    const QString& file = job.kind == JobKind::Read ? job.source.path : job.destination.path;
    QByteArray text = '[' + section.name + "]\n";
    text += "ioengine=sync\ncreate_on_open=1\ninvalidate=0\nfadvise_hint=";
    text += job.adviseSequential ? "sequential" : "0";
    text += "\nstonewall\nrw=";
    text += direction(job.kind);
    text += "\nfilename=" + fileNameValue(file) + '\n';
    text += job.log ? "read_iolog=" + job.log->file + '\n' : plainOptions(job, section);
    // Without it fio writes other bytes than it has read.
    if (isCopy)
        text += "scramble_buffers=0\n";
    if (job.waitMs > 0)
        text += "thinktime=" + number(job.waitMs) + "ms\n";
    // A chunk of a copy is a read and a write.
    if (job.waitMs > 0 && isCopy)
        text += "thinktime_blocks=2\n";
    const bool isFirst = section.offset == 0;
    text += "exec_prerun=" + asPrerun(jobCondition(job, isFirst)) + '\n';
    const QByteArray output = QByteArray(outputFolderName) + '/' + logNameOf(job, section);
    text += "write_bw_log=" + output + "\nwrite_lat_log=" + output +
            "\nlog_avg_msec=100\nlog_unix_epoch=1\n";
    return text;
}

/// Sleeps until the clock of the machine begins a new minute, with its fraction of a second.
QByteArray untilNextMinute()
{
    return "sleep \"$(date +%s.%N | awk '{printf \"%.3f\", 60 - $1 % 60}')\"";
}

struct Preparation
{
    QByteArray name;
    QByteArray command;
};

std::vector<Preparation> preparations(const Plan& plan, size_t stage, const PlanJobFile& file)
{
    std::vector<Preparation> all;
    int count = 0;
    for (const QByteArray& command : logCommands(plan, file))
        all.push_back({prefix(stage) + "-prepare-" + number(count++), command});
    if (plan.startAtMinute)
        all.push_back({prefix(stage) + "-start", untilNextMinute()});
    return all;
}

} // namespace

QByteArray asPrerun(const QByteArray& condition)
{
    return condition + " || exec false || :";
}

QByteArray preparationSection(const QByteArray& name, const QByteArray& command, bool stonewall)
{
    const QByteArray size = number(preparationBytes);
    return '[' + name + "]\nioengine=null\nrw=read\nsize=" + size + "\nbs=" + size + '\n' +
           (stonewall ? "stonewall\n" : "") + "exec_prerun=" + asPrerun(command) + '\n';
}

QByteArray logNameOf(const PlanJob& job, const PlanSection& section)
{
    return job.machine == 0 ? section.name : section.name + "-m" + number(job.machine);
}

int longestLineOf(const PlanJob& job)
{
    return asPrerun(jobCondition(job, true)).size();
}

QByteArray jobFileText(const Plan& plan, size_t stage, const PlanJobFile& file)
{
    QByteArray text;
    for (const Preparation& preparation : preparations(plan, stage, file))
        text += preparationSection(preparation.name, preparation.command, true) + '\n';
    for (size_t i = file.firstJob; i < file.endJob; ++i) {
        for (const PlanSection& section : plan.jobs[i].sections)
            text += jobSection(plan.jobs[i], section) + '\n';
    }
    text.chop(1);
    return text;
}

std::vector<QByteArray> preparationNames(const Plan& plan, size_t stage, const PlanJobFile& file)
{
    std::vector<QByteArray> names;
    for (const Preparation& preparation : preparations(plan, stage, file))
        names.push_back(preparation.name);
    return names;
}
