#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// How bad a finding is.
enum class Severity
{
    Error,   ///< the series does not run, or not as it was meant
    Warning, ///< probably a mistake
    Note     ///< good to know
};

/// One file of an example.
struct ExampleFile
{
    /// Below the folder of the series; a folder if it ends in "/".
    std::string_view name;
    /// Its bytes. A character that is followed by "{N}" stands there N times: "x{500}".
    std::string_view content;
    int times = 1; ///< how often the content stands in the file
};

/// A small series on a small machine, on which a rule can be tried. A disk holds nothing but what
/// the example names.
struct RuleExample
{
    static constexpr std::size_t maxFiles = 3;

    std::array<ExampleFile, maxFiles> files{}; ///< unused ones have no name
    std::string_view machines{};               ///< names with commas between; empty: this one alone
    std::string_view existing{};               ///< on the disk; a folder with "/", a pipe with "|"
    std::int64_t existingKib = 0;              ///< the size of that file
    std::int64_t freeMib = 1 << 20;            ///< what the disk has left
};

/// A series of up to three files.
constexpr RuleExample series(ExampleFile first, ExampleFile second = {}, ExampleFile third = {})
{
    return {{first, second, third}};
}

/// A series of one file, mytest.dpc.
constexpr RuleExample oneFile(std::string_view content, int times = 1)
{
    return series({"mytest.dpc", content, times});
}

/// The same example on several machines.
constexpr RuleExample onMachines(std::string_view names, RuleExample example)
{
    example.machines = names;
    return example;
}

/// The same example with a file, a folder or a pipe on the disk.
constexpr RuleExample withExisting(std::string_view path, std::int64_t kib, RuleExample example)
{
    example.existing = path;
    example.existingKib = kib;
    return example;
}

/// The same example on a disk with little space.
constexpr RuleExample withSpace(std::int64_t mib, RuleExample example)
{
    example.freeMib = mib;
    return example;
}

/// A class of mistakes that `dpc check` finds. Each rule is one constant, which stands above the
/// function that checks it, and is known by its address.
struct Rule
{
    const char* name = nullptr; ///< lowercase words with "-" between; scripts turn rules off by it
    Severity severity = Severity::Error; ///< of most findings, and the worst of all
    const char* category = nullptr;      ///< lines, paths, series or machines
    const char* meaning = nullptr;       ///< one or two sentences
    /// Advice about a finding: a clause in the imperative, without a capital and a full stop.
    /// It ends messages that have no advice of their own.
    const char* advice = nullptr;
    RuleExample hit;  ///< a series in which the rule finds something
    RuleExample miss; ///< a series in which it finds nothing
};

/// Rules in the order in which they are listed.
using RuleList = std::vector<const Rule*>;
