#pragma once

#include <array>
#include <string>

/// How bad a finding is.
enum class Severity
{
    Error,   ///< the series does not run, or not as it was meant
    Warning, ///< probably a mistake
    Note     ///< good to know
};

/// "error" and so on.
const char* severityName(Severity severity);

/// Everything that `dpc check` looks for, in the order of the table in rules.cpp.
enum class Rule
{
    BadLine,
    WinApi,
    MissingFields,
    ExtraFields,
    EmptyNumber,
    UnknownWord,
    SizeOverflow,
    NegativeNumber,
    ChangedValue,
    NoEffect,
    BeyondForm,
    NoIterations,
    ChunkTooLarge,
    ChunkRemainder,
    LongLine,
    ZeroByte,
    LongPath,
    LongFile,
    Utf8Text,
    NoPaths,
    EmptyLog,
    LogIsFolder,
    UnknownVariable,
    RelativePath,
    SameFile,
    SourceMissing,
    SourceDate,
    SourceLocal,
    OverwritesSource,
    DestFolder,
    DestFolderLocal,
    ManyIterations,
    FolderLetters,
    LongName,
    Unreadable,
    TooMuch,
    EmptyFile,
    NumberGap,
    NumberLimit,
    NotLoaded,
    BothFolders,
    MarkerTarget,
    MarkerFolder,
    LastMarker,
    AfterMarker,
    Leftover,
    InitMissing,
    InitOutdated,
    InitNames,
    SharedOutput,
    SharedResults,
    MaybeShared,
    DiskSpace,
    count
};

constexpr int ruleCount = int(Rule::count);

/// One line of the table of rules.
struct RuleInfo
{
    Rule rule;
    const char* subject; ///< lines, paths, series or machines
    const char* name;
    Severity severity;
    const char* meaning; ///< one sentence
    const char* bad;     ///< an example that hits
    const char* good;    ///< what to write instead
};

/// All rules, in the order of Rule.
const std::array<RuleInfo, ruleCount>& ruleTable();

/// The line of one of them.
const RuleInfo& infoOf(Rule rule);

/// Null where no rule has this name.
const RuleInfo* ruleNamed(const std::string& name);

/// The rule whose name is close to a wrong one, or null.
const char* closestRuleName(const std::string& name);

/// The table for people: names, severities, meanings and examples.
std::string rulesAsText();

/// The same in the notation of docs/dpc.md.
std::string rulesAsMarkdown();
