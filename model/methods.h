#pragma once

#include "shared/kvfileglobal.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string_view>

// The properties of each I/O method. A method is one row of `ioMethods`; everything that reads,
// writes, shows or checks a method asks this table.

/// How the speed test reads and writes. Records may hold any other number as well.
enum class IoMethod : std::int32_t
{
    Posix,
    System,
    Stream,
    AnsiC,
    WinApi
};

/// Never stored: it follows from which of the two paths means memory.
enum class TestType
{
    Copy,
    Write,
    Read
};

/// A way in which a method can buffer a file.
struct SystemBuffer
{
    const char* text;   ///< as the form offers it
    SysBufferMode mode; ///< as a record and a line hold it
};

/// The chunks that copies of a method need.
enum class CopyChunks
{
    Optional, ///< the whole file may be copied at once
    Needed,   ///< a chunk size; without one, normalising sets the default
    OwnWay    ///< the system copies as it likes: the form starts without chunks, a record has some
};

/// The buffer of a library between a task and the system, unless a setting turns it off.
enum class LibraryBuffer
{
    None,             ///< each chunk is one call of the system
    JoinsSmallChunks, ///< smaller chunks than the buffer become one call
    CutsChunks        ///< calls have the size of the buffer, whatever the chunks have
};

/// Abilities and restrictions of a method.
enum MethodTrait : unsigned
{
    IsRead = 1U << 0U,          ///< without it, a line is written, but rejected when it is read
    CopiesOnly = 1U << 1U,      ///< the form offers no other test type
    CanPreallocate = 1U << 2U,  ///< if something is written
    BufferIsOfChunk = 1U << 3U, ///< a system buffer other than the default needs chunks
};

/// A method.
struct MethodInfo
{
    const char* name; ///< in a line of a config file, and in the table
    CopyChunks copyChunks;
    LibraryBuffer libraryBuffer;
    unsigned traits; ///< a sum of MethodTrait
    /// In the order of the form; what has no text is not a buffer.
    std::array<SystemBuffer, 4> systemBuffers;

    /// True if the method has the trait.
    constexpr bool has(MethodTrait trait) const { return (traits & trait) != 0; }
};

/// All methods, by their number.
constexpr MethodInfo ioMethods[] = {
    {"Posix",
     CopyChunks::Needed,
     LibraryBuffer::None,
     IsRead | CanPreallocate,
     {{{"default", -1}, {"Linux only - use POSIX_FADV_SEQUENTIAL flag", 1}}}},
    {"System", CopyChunks::OwnWay, LibraryBuffer::None, IsRead | CopiesOnly, {{{"default", -1}}}},
    {"Stream",
     CopyChunks::Optional,
     LibraryBuffer::JoinsSmallChunks,
     IsRead | BufferIsOfChunk,
     {{{"default", -1}, {"disable buffer", 0}, {"use same size as chunk size", 1}}}},
    // The second "default" is meant: people know the list with four entries.
    {"AnsiC",
     CopyChunks::Needed,
     LibraryBuffer::CutsChunks,
     IsRead | BufferIsOfChunk,
     {{{"default", -1},
       {"default", -1},
       {"disable buffer", 0},
       {"use same size as chunk size", 1}}}},
    {"WinApi",
     CopyChunks::Needed,
     LibraryBuffer::None,
     CanPreallocate,
     {{{"default", -1},
       {"FILE_FLAG_WRITE_THROUGH", 0},
       {"FILE_FLAG_SEQUENTIAL_SCAN", 1},
       {" FILE_FLAG_WRITE_THROUGH + FILE_FLAG_SEQUENTIAL_SCAN", 2}}}},
};

constexpr int methodCount = int(std::size(ioMethods));
static_assert(methodCount == int(IoMethod::WinApi) + 1, "each method has its row");

/// The row of a method; null for a number that is not a method.
constexpr const MethodInfo* methodInfo(IoMethod method)
{
    const auto number = static_cast<std::int32_t>(method);
    return number >= 0 && number < methodCount ? &ioMethods[number] : nullptr;
}

/// The name of a method; empty for a number that is not a method.
constexpr const char* methodName(IoMethod method)
{
    const MethodInfo* const info = methodInfo(method);
    return info != nullptr ? info->name : "";
}

/// True for the name of a method whose lines are written, but rejected when they are read.
bool isWrittenOnly(std::string_view name);

/// The test types, by their number, as people read them.
constexpr const char* testTypeNames[] = {"Copy", "Write", "Read"};

constexpr int testTypeCount = int(std::size(testTypeNames));
static_assert(testTypeCount == int(TestType::Read) + 1, "each test type has its name");

/// The name of a test type.
constexpr const char* testTypeName(TestType type)
{
    return testTypeNames[int(type)];
}

/// The settings that a method and a test type allow. The defaults are those of an unknown method.
struct TaskRules
{
    SysBufferMode maxSystemBuffer = std::numeric_limits<SysBufferMode>::max();
    bool hasOneSystemBuffer = false;      ///< whatever was asked for becomes `maxSystemBuffer`
    bool systemBufferNeedsChunks = false; ///< without chunks only the default is left
    bool chunkSizeIsNeeded = false;       ///< a record without one gets the default chunk size
    bool allowsNoChunks = true;           ///< the form offers to work without chunks
    bool startsWithoutChunks = false;     ///< the form sets that when the method is chosen
    bool allowsPreallocation = false;
    bool allowsFlush = true;
};

/// The rules of a method and a test type. Both a record that is normalised and the form follow
/// them.
TaskRules rulesFor(IoMethod method, TestType type);
