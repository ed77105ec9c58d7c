#include "engine/taskplan.h"

#include "check/taskfields.h"
#include "check/text.h"
#include "engine/calllog.h"
#include "engine/lossrules.h"
#include "engine/names.h"
#include "model/methods.h"

#include <algorithm>
#include <fmt/format.h>

namespace {

constexpr int kib = 1024;

/// fio counts waits in 32 bits of microseconds.
constexpr int maxWaitMs = 4294967;

/// The largest chunk that the editor can make, and one that a call of the system can still take.
constexpr qint64 maxChunk = 1024LL * 1024 * 1024;

/// The cache modes that a task can ask for.
enum CacheMode
{
    KeepCaches = 0,
    DropCaches = 3
};

/// The method of a task; a line that is read has a known one.
const MethodInfo& methodOf(const LineFact& line)
{
    return *methodInfo(line.used.method);
}

/// Judges the library's buffer between task and system, which fio does not have. With no buffer,
/// or one of the size of a chunk, each chunk is one call there as well.
void judgeBuffer(const LineFact& line, const LossSink& lose)
{
    constexpr int streamBuffer = 8 * kib;
    const TaskSettings& used = line.used;
    const bool hasSetting = used.sysBufferMode >= 0;
    const LibraryBuffer buffer = methodOf(line).libraryBuffer;
    if (hasSetting && (buffer != LibraryBuffer::None || used.sysBufferMode == 0)) {
        lose(fioSystemBuffer, SysBufferField,
             "fio has no buffer between a task and the system: every chunk is one call, as with "
             "this setting");
        return;
    }
    const bool isWhole = used.chunkSize == 0 || used.chunkSize >= used.fileSize;
    if (buffer == LibraryBuffer::CutsChunks)
        lose(fioBufferSizes, MethodField,
             fmt::format("the buffer of {} cuts chunks into calls of other sizes; fio makes one "
                         "call for each chunk",
                         methodOf(line).name));
    else if (buffer == LibraryBuffer::JoinsSmallChunks && !isWhole && used.chunkSize < streamBuffer)
        lose(fioBufferSizes, ChunkSizeField,
             fmt::format("the buffer of a stream joins chunks of less than 8 KiB; fio makes one "
                         "call for each chunk of {} KiB",
                         used.chunkSize / kib));
}

void judgeCaches(const LineFact& line, const LossSink& lose)
{
    const int mode = line.used.cacheMode;
    if (mode == DropCaches)
        lose(fioCacheMode, CacheModeField,
             "the caches of the whole system are dropped right before the task by a command, which "
             "needs the rights of root");
    else if (mode != KeepCaches)
        lose(fioCacheMode, CacheModeField,
             fmt::format("fio can't clear caches as mode {} says: the task runs with the caches as "
                         "they are",
                         mode));
}

bool judgeNumbers(const LineFact& line, const LossSink& lose)
{
    const TaskSettings& used = line.used;
    bool isPossible = true;
    const auto fail = [&](const Rule& rule, int field, std::string text) {
        lose(rule, field, std::move(text));
        isPossible = false;
    };
    if (used.chunkWait < 0)
        fail(fioWait, ChunkWaitField, "a wait of less than nothing has no likeness in fio");
    else if (used.chunkWait > maxWaitMs)
        fail(fioWait, ChunkWaitField,
             fmt::format("fio waits at most {} ms between chunks", maxWaitMs));
    if (used.chunkSize < 0)
        fail(fioSize, ChunkSizeField, "a chunk of less than nothing has no likeness in fio");
    // The size of what a Read or a Copy reads is that of its source, if that is known.
    if (used.fileSize < 0 || (used.fileSize == 0 && typeOf(line) == TestType::Write))
        fail(fioSize, FileSizeField, "fio can't write a file of this size");
    return isPossible;
}

PlanSection sectionOf(const PlanJob& job, const QByteArray& name)
{
    PlanSection section;
    section.name = name;
    section.bytes = job.bytes;
    section.chunk = job.chunk;
    return section;
}

/// The last chunk as a section of its own: plain fio leaves it out.
void splitLastChunk(PlanJob& job)
{
    const qint64 rest = job.bytes % job.chunk;
    if (rest == 0)
        return;
    PlanSection last = job.sections.front();
    last.name += "-rest";
    last.offset = job.bytes - rest;
    last.bytes = last.chunk = rest;
    job.sections.front().bytes -= rest;
    job.sections.push_back(last);
}

/// Why a log can't say what the job does; empty if it can.
std::string logProblem(const PlanJob& job, bool isBehindServer)
{
    for (const PlanFile* file : {&job.source, &job.destination}) {
        if (!file->path.isEmpty() && !fitsLog(file->path))
            return fmt::format("{} has a blank or more than {} bytes, which a log of fio's calls "
                               "can't hold",
                               quoted(file->path), maxLogName);
    }
    if (logLines(job) > maxLogLines)
        return fmt::format("the log of fio's calls would have {} lines, more than {}",
                           logLines(job), maxLogLines);
    if (isBehindServer && logCommand(job, job.log->file).size() > maxNameLine)
        return "the command that writes the log of fio's calls on the machine is too long";
    return {};
}

bool isTooLong(const std::string& problem, const PlanJob& job)
{
    return !problem.empty() && logLines(job) > maxLogLines;
}

} // namespace

bool judgeSettings(const LineFact& line, const LossSink& lose)
{
    const TaskSettings& used = line.used;
    if (methodOf(line).copyChunks == CopyChunks::OwnWay) {
        lose(fioNoSendfile, MethodField,
             "fio has nothing like the system's own copying (sendfile, copy_file_range)");
        return false;
    }
    if (!judgeNumbers(line, lose))
        return false;
    judgeBuffer(line, lose);
    judgeCaches(line, lose);
    if (used.preallocate)
        lose(fioPreallocate, PreallocateField,
             "the file is allocated by a command before the task, and that time is not measured");
    if (used.flush && used.chunkWait > 0)
        lose(fioFlush, FlushField,
             "fio waits between a write and its flush, and not after the flush: the system has "
             "that time to write");
    return true;
}

PlanJob jobOfTask(const LineFact& line)
{
    const TaskSettings& used = line.used;
    PlanJob job;
    const TestType type = typeOf(line);
    job.kind = type == TestType::Copy   ? JobKind::Copy
               : type == TestType::Read ? JobKind::Read
                                        : JobKind::Write;
    job.line = line.line;
    job.task = line.taskNumber;
    job.bytes = used.fileSize;
    job.chunk = used.chunkSize;
    job.waitMs = used.chunkWait;
    job.flush = used.flush;
    job.preallocate = used.preallocate;
    job.adviseSequential = used.method == IoMethod::Posix && used.sysBufferMode == 1;
    job.dropCaches = used.cacheMode == DropCaches;
    return job;
}

bool chooseSections(PlanJob& job, const QByteArray& name, const QByteArray& logFile,
                    bool isBehindServer, const LossSink& lose)
{
    job.chunk = job.chunk != 0 ? std::min(job.chunk, job.bytes) : job.bytes;
    if (job.chunk > maxChunk) {
        lose(fioSize, ChunkSizeField,
             fmt::format("fio reads and writes at most 1 GiB in one call, and a chunk has {} bytes",
                         job.chunk));
        return false;
    }
    job.sections = {sectionOf(job, name)};
    const bool isCopy = job.kind == JobKind::Copy;
    if (!isCopy && !job.flush && job.bytes % job.chunk == 0)
        return true;
    job.log = PlanLog{logFile};
    const std::string problem = logProblem(job, isBehindServer);
    if (problem.empty())
        return true;
    if (isCopy) {
        lose(isTooLong(problem, job) ? fioTooManyChunks : fioName,
             isTooLong(problem, job) ? ChunkSizeField : firstPathField, problem);
        return false;
    }
    job.log.reset();
    splitLastChunk(job);
    if (job.flush)
        lose(fioFlush, FlushField,
             problem + ": the last flush of each section is made, but not measured");
    if (job.sections.size() > 1)
        lose(fioLastChunk, ChunkSizeField,
             problem + ": the shorter last chunk is a section of its own");
    return true;
}
