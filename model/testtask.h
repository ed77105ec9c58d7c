#pragma once

#include "model/limits.h"
#include "model/methods.h"
#include "shared/kvfileglobal.h"
#include "shared/kvstring16.h"
#include "shared/kvstring8.h"

#include <cstdint>

/// Whole KiB of a byte count, rounded towards zero.
constexpr std::int32_t kibFromBytes(std::int32_t bytes)
{
    return bytes / 1024;
}

/// Bytes of a KiB count in 32 bits: from 2097152 KiB on the result wraps round.
constexpr std::int32_t bytesFromKib(std::int32_t kib)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(kib) << 10);
}

/// A place for a result of the speed test; the editor only keeps it empty.
struct ResultSlot
{
    _kvString8_allSize<50> name;
    std::int64_t values[2] = {};
};

/// One entry of the task list: a test task, which is one line of a config file, or a marker that
/// means "Wait for next config file". A plain value of fixed size without heap memory. Texts are
/// Latin-1 and cut at their capacity; an empty source or destination means memory.
struct TestTask
{
    /// Clears every field; the settings start as _fileGLobal sets them.
    TestTask();

    /// Sets what a new task in the form starts with.
    void setDefaults();

    /// Turns the record into a Write task that creates a file of `bytes`, at most `maxTaskFile`.
    /// The path may be one of the record's own.
    void setFileCreation(const _kvString8_allSize<maxPath>& path, std::int64_t bytes);

    /// True unless both paths name a file; "MEMORY" and the empty path both mean memory.
    bool usesMemory() const;
    /// True if the destination is memory.
    bool readsIntoMemory() const;
    /// Read if the destination is memory, else Write if the source is, else Copy.
    TestType testType() const;

    /// Sets both copies of the setting, in ms.
    void setChunkWait(std::int32_t ms);
    /// Sets both copies of the setting, in bytes.
    void setChunkSize(std::int32_t bytes);

    /// Brings the settings into what the method and the test type can use. Done before a record is
    /// written and after it was read; here only the empty path counts as memory.
    void normalise();

    IoMethod method = IoMethod::Posix;
    _fileGLobal io;
    std::int32_t iterations = 0;
    _kvString8_allSize<maxPath> sourcePath;
    _kvString8_allSize<maxPath> destPath;
    _kvString8_allSize<maxPath> logPath;
    _kvString8_allSize<maxPath> csvPath;
    bool writeDone = false;                 ///< make "done_[host]" files after the config file
    _kvString8_allSize<maxPath> configPath; ///< the file that the line was read from
    std::int32_t configId = 0;              ///< position of the config file in its series, from 0
    bool waitForNextConfig = false;         ///< a marker, not a test
    _kvString8_allSize<maxPath> logPathAsRead;
    _kvString8_allSize<maxPath> csvPathAsRead;
    _kvString8_allSize<maxPath> sourcePathAsRead;
    _kvString8_allSize<maxPath> destPathAsRead;
    ResultSlot results[3];
    unsigned char reserved[32] = {};
    _kvString<maxLine> lineText; ///< the config line as it was read
};
