#include "model/testtask.h"

#include "model/methods.h"

#include <algorithm>

namespace {

bool isMemory(const _kvString8_allSize<maxPath>& path)
{
    return path.isEmpty() || path.isEqual("MEMORY");
}

TestType typeByEmptiness(const TestTask& task)
{
    if (task.sourcePath.isEmpty())
        return TestType::Write;
    return task.destPath.isEmpty() ? TestType::Read : TestType::Copy;
}

void applySystemBufferRules(TestTask& task, const TaskRules& rules)
{
    SysBufferMode& mode = task.io.sysBufferMode;
    mode = rules.hasOneSystemBuffer ? rules.maxSystemBuffer : std::min(mode, rules.maxSystemBuffer);
    if (rules.systemBufferNeedsChunks && mode >= 0 && task.io.chunkSize <= 0)
        mode = defaultSysBufferMode;
}

} // namespace

TestTask::TestTask()
{
    io.cacheMode = 0;
    io.fileSize = 0;
    io.unused = 0;
}

void TestTask::setDefaults()
{
    using Path = _kvString8_allSize<maxPath>;
    method = IoMethod::Stream;
    io.sysBufferMode = defaultSysBufferMode;
    setChunkWait(50);
    setChunkSize(bytesFromKib(1024));
    io.preallocate = false;
    io.flush = false;
    io.cacheMode = 0;
    io.fileSize = bytesFromKib(102400);
    iterations = 1;
    sourcePath = Path("[cfgPath]/testfile_[cfgName]-[cfgTaskID].dat");
    destPath = Path("[temp]/[cfgName]/testfile_[cfgName]-[cfgTaskID].dat");
    logPath = Path("[cfgPath]/[cfgName]/[host].txt");
    csvPath = Path("[cfgPath]/[cfgName]-[cfgTaskID]_results.csv");
    writeDone = true;
    waitForNextConfig = false;
    configId = 0;
}

void TestTask::setFileCreation(const _kvString8_allSize<maxPath>& path, std::int64_t bytes)
{
    destPath = path; // first, because the path may be one of those that are cleared
    waitForNextConfig = false;
    writeDone = true;
    iterations = 1;
    configId = 0;
    csvPath.clear();
    logPath.clear();
    method = IoMethod::Stream;
    sourcePath.clear();
    io.preallocate = false;
    io.flush = false;
    io.fileSize = static_cast<std::int32_t>(std::min<std::int64_t>(bytes, maxTaskFile));
    io.sysBufferMode = defaultSysBufferMode;
    setChunkWait(0);
    setChunkSize(0);
    io.cacheMode = 0;
}

bool TestTask::usesMemory() const
{
    return isMemory(sourcePath) || isMemory(destPath);
}

bool TestTask::readsIntoMemory() const
{
    return isMemory(destPath);
}

TestType TestTask::testType() const
{
    if (!usesMemory())
        return TestType::Copy;
    return readsIntoMemory() ? TestType::Read : TestType::Write;
}

void TestTask::setChunkWait(std::int32_t ms)
{
    io.chunkWait = ms;
    io.ioChunkWait = static_cast<std::uint16_t>(ms);
}

void TestTask::setChunkSize(std::int32_t bytes)
{
    io.chunkSize = bytes;
    io.ioBufferSize = bytes;
}

void TestTask::normalise()
{
    io.fileSize = std::min(io.fileSize, maxFileSize);

    const TaskRules rules = rulesFor(method, typeByEmptiness(*this));
    applySystemBufferRules(*this, rules);
    if (io.chunkSize == 0 && rules.chunkSizeIsNeeded)
        setChunkSize(copyFile_chunksize());
    io.preallocate = io.preallocate && rules.allowsPreallocation;
    io.flush = io.flush && rules.allowsFlush;
    if (io.chunkSize == 0) {
        io.flush = false;
        setChunkWait(0);
    }
}
