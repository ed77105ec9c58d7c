#include "check/rules.h"

#include "check/text.h"

#include <fmt/format.h>

#include <algorithm>

namespace {

constexpr Severity error = Severity::Error;
constexpr Severity warning = Severity::Warning;
constexpr Severity note = Severity::Note;

const std::array<RuleInfo, ruleCount> table = {{
    {Rule::BadLine, "lines", "bad-line", error,
     "The reader rejects the line: the method is unknown, or a number is none. The editor skips "
     "it.",
     "Stream;flush;prealloc;5x;64;...", "Stream;flush;prealloc; 5;64;..."},
    {Rule::WinApi, "lines", "winapi", error,
     "WinApi tasks are written, but the editor does not load them again.", "WinApi;flush  ;...",
     "Posix ;flush  ;..."},
    {Rule::MissingFields, "lines", "missing-fields", warning,
     "The line has fewer than fourteen fields; the others count as 0 or empty.",
     "Posix ;flush  ;prealloc  ; 10;", "a line with all fields"},
    {Rule::ExtraFields, "lines", "extra-fields", warning,
     "Text after the fourteenth field is not read; often a file name holds a \";\".",
     "...;  /data/a;b.dat;  ;  ;  true;", "...;  /data/a_b.dat;  ;  ;  true;"},
    {Rule::EmptyNumber, "lines", "empty-number", warning,
     "A number field that is empty or a lone \"-\" counts as 0.", "...; 10;;  1; 1024;...",
     "...; 10;   64;  1; 1024;..."},
    {Rule::UnknownWord, "lines", "unknown-word", warning,
     "A word that a yes-or-no field does not know counts as no.", "Posix ;Flush;...",
     "Posix ;flush  ;..."},
    {Rule::SizeOverflow, "lines", "size-overflow", error,
     "A number does not fit into its 32 bits and becomes another one.", "file size 4194304 (KiB)",
     "file size 1048576"},
    {Rule::NegativeNumber, "lines", "negative-number", warning, "A size or a wait is negative.",
     "chunk size -64", "chunk size 64"},
    {Rule::ChangedValue, "lines", "changed-value", warning,
     "The editor changes the value when it reads the line.", "file size 2000000 (becomes 1048576)",
     "file size 1048576"},
    {Rule::NoEffect, "lines", "no-effect", note,
     "The setting has no effect for this method and test type; the editor clears it.",
     "Stream with prealloc", "Stream with NOprealloc"},
    {Rule::BeyondForm, "lines", "beyond-form", note,
     "The form of the editor can't show the value; overwriting the row there changes it.",
     "iterations 500", "iterations 100"},
    {Rule::NoIterations, "lines", "no-iterations", warning,
     "Fewer than one iteration: the task does nothing.", "iterations 0", "iterations 1"},
    {Rule::ChunkTooLarge, "lines", "chunk-too-large", warning,
     "The file is smaller than one chunk.", "chunk size 2048, file size 1024",
     "chunk size 256, file size 1024"},
    {Rule::ChunkRemainder, "lines", "chunk-remainder", note,
     "The file size is not a multiple of the chunk size: the last chunk is shorter.",
     "chunk size 1000, file size 1024", "chunk size 256, file size 1024"},
    {Rule::LongLine, "lines", "long-line", error,
     "A line ends at 1,000 characters: more is not read, and was lost when it was saved.",
     "four paths of 300 characters", "shorter paths"},
    {Rule::ZeroByte, "lines", "zero-byte", warning,
     "The line holds a zero byte, and ends there for every reader.", "a file in UTF-16",
     "the same file in Latin-1"},
    {Rule::LongPath, "lines", "long-path", error,
     "A path ends at 500 characters, as written and with its variables replaced.",
     "a path of 600 characters", "a shorter path"},
    {Rule::LongFile, "lines", "long-file", error,
     "A save writes at most 5,000 characters into a file; the rest is lost, the marker first.",
     "30 tasks in one file", "15 tasks, a marker, 15 tasks"},
    {Rule::Utf8Text, "lines", "utf8-text", warning,
     "The line looks like UTF-8; config files are Latin-1, so its letters turn into others.",
     "\"Pr\xC3\xBC"
     "fung\" saved as UTF-8",
     "the same saved as Latin-1"},

    {Rule::NoPaths, "paths", "no-paths", error, "Neither source nor destination names a file.",
     "MEMORY;  MEMORY;", "MEMORY;  /data/a.dat;"},
    {Rule::EmptyLog, "paths", "empty-log", note,
     "An empty log or .csv field comes back from a load as the folder of the config file.",
     "an empty log field", "[cfgPath]/[host].txt"},
    {Rule::LogIsFolder, "paths", "log-is-folder", warning,
     "The log or .csv field names a folder: an empty field does after a load and a save.",
     "/series/_wait/", "/series/[host].txt"},
    {Rule::UnknownVariable, "paths", "unknown-variable", warning,
     "A word in brackets is no variable and stays as it is; capitals count.", "[CfgPath]/a.dat",
     "[cfgPath]/a.dat"},
    {Rule::RelativePath, "paths", "relative-path", warning,
     "A relative path is taken from the folder of the config file, which changes when it is "
     "copied.",
     "out/a.dat", "[cfgPath]/out/a.dat"},
    {Rule::SameFile, "paths", "same-file", error, "Source and destination are the same file.",
     "/data/a.dat;  /data/./a.dat;", "/data/a.dat;  /data/b.dat;"},
    {Rule::SourceMissing, "paths", "source-missing", error,
     "The source does not exist, and neither the _init file nor an earlier task makes it.",
     "a Read of /data/none.dat", "save the series again, or correct the name"},
    {Rule::SourceDate, "paths", "source-date", error,
     "[date] in a source is another name at every run: nothing that was made before has it.",
     "[cfgPath]/src_[date].dat", "[cfgPath]/src_[cfgTaskID].dat"},
    {Rule::SourceLocal, "paths", "source-local", warning,
     "The source is another file on each machine; the _init file makes only the one of the machine "
     "that saved the series.",
     "[temp]/src.dat", "[cfgPath]/src.dat, or an earlier task that writes it"},
    {Rule::OverwritesSource, "paths", "overwrites-source", warning,
     "The destination overwrites a source that a later task reads and that is there already.",
     "writes /data/a.dat, then reads it", "another destination"},
    {Rule::DestFolder, "paths", "dest-folder", warning,
     "The folder of the destination does not exist, and the _init file does not make it.",
     "/data/none/a.dat", "[cfgPath]/out/a.dat"},
    {Rule::DestFolderLocal, "paths", "dest-folder-local", note,
     "The folder of the destination must be there on each machine; the _init file makes folders "
     "below [cfgPath] only.",
     "[temp]/[cfgName]/a.dat", "[temp]/a.dat"},
    {Rule::ManyIterations, "paths", "many-iterations", warning,
     "The tasks have so many iterations in all that their file names are not checked one by one.",
     "iterations 2000000000", "iterations 100"},

    {Rule::FolderLetters, "series", "folder-letters", error,
     "The name of the folder or the file has letters outside Latin-1: the editor can't open it.",
     "a folder in Greek letters", "/data/tests/"},
    {Rule::LongName, "series", "long-name", error,
     "The path of a config file is cut at 250 characters when it is saved.",
     "a folder of 300 characters", "a shorter folder"},
    {Rule::Unreadable, "series", "unreadable", error,
     "A file of the series can't be read, or is no regular file; the editor skips it silently.",
     "a folder named mytest1.dpc", "a file of that name"},
    {Rule::TooMuch, "series", "too-much", error,
     "The files hold more than can be checked: 50,000 lines a series, 64 MiB a file.",
     "100,000 lines", "what the editor saves: about 20 lines a file"},
    {Rule::EmptyFile, "series", "empty-file", warning, "A file holds neither a task nor a marker.",
     "a list that ends with a marker", "a task after the marker"},
    {Rule::NumberGap, "series", "number-gap", warning, "A number is missing in the series.",
     "mytest.dpc, mytest2.dpc", "mytest.dpc, mytest1.dpc"},
    {Rule::NumberLimit, "series", "number-limit", error,
     "The editor loads numbers up to 19, without leading zeros.", "mytest20.dpc", "mytest19.dpc"},
    {Rule::NotLoaded, "series", "not-loaded", error,
     "By its name, a config file of the folder is one that the editor does not look for.",
     "a.dpc.dpc, A.DPC", "a.dpc"},
    {Rule::BothFolders, "series", "both-folders", warning,
     "The same file lies in the folder and in _wait: a load has its tasks twice.",
     "mytest1.dpc and _wait/mytest1.dpc", "one of them"},
    {Rule::MarkerTarget, "series", "marker-target", error,
     "The marker names another file than the next one of the series.", "mytest3.dpc in mytest.dpc",
     "mytest1.dpc in mytest.dpc"},
    {Rule::MarkerFolder, "series", "marker-folder", warning,
     "The marker names the next file in another folder: the series was moved after it was saved.",
     "/old/_wait/mytest1.dpc", "load and save the series in its new folder"},
    {Rule::LastMarker, "series", "last-marker", error,
     "The last file ends with a marker: machines wait for a file that does not exist.",
     "mytest1.dpc in mytest.dpc, alone", "a series that ends with a task"},
    {Rule::AfterMarker, "series", "after-marker", warning,
     "Lines follow a marker in the same file; a marker ends its file.", "a task after a marker",
     "the task in the next file"},
    {Rule::Leftover, "series", "leftover", warning,
     "No marker leads to the file: it is left over from a longer series, and is loaded again.",
     "_wait/mytest1.dpc after saving one file", "remove the old files before saving"},
    {Rule::InitMissing, "series", "init-missing", warning,
     "The series needs files or folders, and there is no _init file that makes them.",
     "mytest.dpc alone", "mytest.dpc and mytest_init.dpc"},
    {Rule::InitOutdated, "series", "init-outdated", warning,
     "The _init file does not make what the series needs now.",
     "a source was renamed in mytest.dpc by hand", "load and save the series"},
    {Rule::InitNames, "series", "init-names", warning,
     "The names in the _init file lack the name of the series: it was made in the form and saved "
     "once. Loading and saving it again mends it.",
     "[cfgPath]/testfile_-0.dat", "[cfgPath]/testfile_mytest-0.dat"},

    {Rule::SharedOutput, "machines", "shared-output", error,
     "Several machines write the same destination.", "[cfgPath]/out.dat",
     "[cfgPath]/out_[host].dat"},
    {Rule::SharedResults, "machines", "shared-results", warning,
     "Several machines write the same log or .csv file.", "[cfgPath]/results.csv",
     "[cfgPath]/results_[host].csv"},
    {Rule::MaybeShared, "machines", "maybe-shared", note,
     "Several machines write to the same path; they share the file where the folder is a share.",
     "/mnt/nas/out.dat", "/mnt/nas/out_[host].dat"},
    {Rule::DiskSpace, "machines", "disk-space", warning,
     "A file system has less room than the series needs, as far as this machine can tell.",
     "20 machines x 1 GiB, 10 GiB free", "smaller files"},
}};

} // namespace

const char* severityName(Severity severity)
{
    switch (severity) {
    case Severity::Error:
        return "error";
    case Severity::Warning:
        return "warning";
    case Severity::Note:
        break;
    }
    return "note";
}

const std::array<RuleInfo, ruleCount>& ruleTable()
{
    return table;
}

const RuleInfo& infoOf(Rule rule)
{
    return table[size_t(rule)];
}

const RuleInfo* ruleNamed(const std::string& name)
{
    const auto found = std::find_if(table.begin(), table.end(),
                                    [&](const RuleInfo& info) { return name == info.name; });
    return found == table.end() ? nullptr : &*found;
}

const char* closestRuleName(const std::string& name)
{
    std::array<const char*, ruleCount> names{};
    std::transform(table.begin(), table.end(), names.begin(),
                   [](const RuleInfo& info) { return info.name; });
    return closest(name, names.data(), ruleCount);
}

std::string rulesAsText()
{
    std::string text;
    for (const RuleInfo& info : table)
        text += fmt::format("{} ({}, {})\n    {}\n    bad:  {}\n    good: {}\n\n", info.name,
                            severityName(info.severity), info.subject, info.meaning, info.bad,
                            info.good);
    text.pop_back();
    return text;
}

std::string rulesAsMarkdown()
{
    std::string text = "| rule | severity | what it means | bad | good |\n|---|---|---|---|---|\n";
    for (const RuleInfo& info : table)
        text += fmt::format("| `{}` | {} | {} | {} | {} |\n", info.name,
                            severityName(info.severity), info.meaning, info.bad, info.good);
    return text;
}
