#include "dpc/totals.h"

#include "check/taskfields.h"
#include "check/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

namespace {

constexpr qint64 most = std::numeric_limits<qint64>::max();

qint64 product(qint64 a, qint64 b)
{
    qint64 result = 0;
    return __builtin_mul_overflow(a, b, &result) ? most : result;
}

void add(qint64& sum, qint64 value)
{
    if (__builtin_add_overflow(sum, value, &sum))
        sum = most;
}

/// The last chunk may be shorter; without chunks, nothing waits.
qint64 chunksOf(const TaskSettings& task)
{
    if (task.chunkSize <= 0)
        return 0;
    return (std::max(qint64(task.fileSize), qint64(0)) + task.chunkSize - 1) / task.chunkSize;
}

void addTask(Totals& totals, const LineFact& line)
{
    const qint64 iterations = std::max(line.used.iterations, 0);
    const qint64 bytes = product(std::max(line.used.fileSize, 0), iterations);
    ++totals.tasks;
    if (!line.toMemory)
        add(totals.bytesWritten, bytes);
    if (!line.fromMemory)
        add(totals.bytesRead, bytes);
    const qint64 wait = product(chunksOf(line.used), std::max(line.used.chunkWait, 0));
    add(totals.leastWait, product(wait, iterations));
}

std::string size(qint64 bytes)
{
    constexpr const char* units[] = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    double value = double(bytes) / 1024;
    size_t unit = 0;
    // The largest number of bytes is 8 EiB.
    while (value >= 1024) {
        value /= 1024;
        ++unit;
    }
    return fmt::format("{} bytes ({:.1f} {})", bytes, value, units[unit]);
}

} // namespace

Totals totalsOf(const SeriesFacts& facts)
{
    Totals totals;
    totals.files =
        int(std::count_if(facts.files.begin(), facts.files.end(),
                          [](const FileFact& file) { return file.isRead() && file.readable; }));
    for (const LineFact& line : facts.lines) {
        if (isTask(line))
            addTask(totals, line);
    }
    return totals;
}

std::string totalsAsText(const Totals& totals)
{
    return fmt::format("{} in {}\nwritten: {}\nread:    {}\nleast waiting time: {}.{:03} s\n",
                       counted(totals.tasks, "task"), counted(totals.files, "config file"),
                       size(totals.bytesWritten), size(totals.bytesRead), totals.leastWait / 1000,
                       totals.leastWait % 1000);
}
