#pragma once

#include "shared/kvstring8.h"
#include "shared/kvtime.h"

#include <cstdint>

/// The default chunk size for copying, in bytes.
int copyFile_chunksize();

/// How the system buffers a file: -1 is the default, the meaning of the others is the I/O method's.
/// Records and config files may hold any 32-bit number.
using SysBufferMode = std::int32_t;
constexpr SysBufferMode defaultSysBufferMode = -1;

/// How the cache is cleared before a test: 0 is not at all. Records and config files may hold any
/// 32-bit number.
using CacheMode = std::int32_t;

/// The settings with which a file is read or written. The order of members and of the two virtual
/// operations is fixed: the speed test's own classes are laid out upon it.
class _fileGLobal
{
public:
    _fileGLobal();

    /// This base supports no preallocation: sets `errorText` and returns false.
    virtual bool preallocateFile();
    /// This base does not know which settings are valid: sets `errorText`.
    virtual void clearInvalidSettings();

    /// Sets `errorText` to "ERROR: " followed by the texts, cut at 500 characters. A text may be
    /// `errorText` itself.
    void setErrorText(const _kvString8_allSize<500>& text1,
                      const _kvString8_allSize<500>& text2 = {},
                      const _kvString8_allSize<500>& text3 = {},
                      const _kvString8_allSize<500>& text4 = {},
                      const _kvString8_allSize<500>& text5 = {});

    _kvString8_allSize<500> errorText; ///< last error, empty if there was none
    SysBufferMode sysBufferMode;
    std::int32_t chunkWait; ///< wait between chunks, in ms
    std::int32_t chunkSize; ///< bytes; 0 reads or writes the file at once
    bool preallocate;       ///< pre-allocate the file before the test
    bool flush;             ///< flush after each chunk
    CacheMode cacheMode;    ///< not set by the constructor
    std::int32_t fileSize;  ///< bytes; not set by the constructor
    std::int64_t unused;    ///< not set by the constructor

    // One block from here to the end, zeroed as a whole by the constructor.
    std::uint16_t ioChunkWait; ///< second copy of chunkWait
    std::int64_t generation;   ///< starts at 1
    std::int32_t ioBufferSize; ///< bytes; second copy of chunkSize
    kvTimer timer;
};
