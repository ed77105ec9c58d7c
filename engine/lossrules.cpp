#include "engine/lossrules.h"

#include "check/text.h"

#include <algorithm>
#include <vector>

const Rule fioTwoFiles = {
    "fio-two-files",
    Severity::Error,
    "series",
    "A config file lies in the folder and in _wait, and the two differ: which one runs is not "
    "known.",
    "Remove one of the two.",
    series(
        {"mytest.dpc",
         "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat;  ;  ;  false;\n"},
        {"_wait/mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;2048;1;0;  MEMORY;  "
                             "[cfgPath]/out.dat;  ;  ;  false;\n"}),
    series(
        {"mytest.dpc",
         "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat;  ;  ;  false;\n"},
        {"_wait/mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  "
                             "[cfgPath]/out.dat;  ;  ;  false;\n"})};

const Rule fioNotRead = {
    "fio-not-read",
    Severity::Error,
    "lines",
    "A line can't be read as a task, or is one of WinApi: its work would be missing.",
    "Correct or remove the line; `dpc check` tells why it can't be read.",
    series({"mytest.dpc", "WinApi;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  "
                          "[cfgPath]/out.dat;  ;  ;  false;\n"}),
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat; "
                          " ;  ;  false;\n"})};

const Rule fioNotRun = {
    "fio-not-run",
    Severity::Warning,
    "series",
    "A line follows a marker, or no marker leads to a file: it does not run.",
    "Move the line before the marker, or remove the file that is left over.",
    series(
        {"mytest.dpc",
         "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat;  ;  ;  false;\n"},
        {"mytest1.dpc",
         "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/b.dat;  ;  ;  false;\n"}),
    series(
        {"mytest.dpc",
         "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat;  ;  ;  false;\n"
         "[cfgPath]/mytest1.dpc\n"},
        {"mytest1.dpc",
         "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/b.dat;  ;  ;  false;\n"})};

const Rule fioMarker = {
    "fio-marker",
    Severity::Error,
    "series",
    "A marker leads to another file than the next one of the series, or to one that does not "
    "exist.",
    "Save the series again, or remove the marker.",
    series(
        {"mytest.dpc",
         "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat;  ;  ;  false;\n"
         "[cfgPath]/mytest1.dpc\n"}),
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat; "
                          " ;  ;  false;\n"})};

const Rule fioNoFile = {
    "fio-no-file",
    Severity::Error,
    "paths",
    "Neither source nor destination names a file: fio has nothing to read or write.",
    "Name a source or a destination.",
    series({"mytest.dpc",
            "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  MEMORY;  ;  ;  false;\n"}),
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat; "
                          " ;  ;  false;\n"})};

const Rule fioNoSendfile = {
    "fio-no-sendfile",
    Severity::Error,
    "lines",
    "The method is System: fio can't let the system copy (sendfile, copy_file_range).",
    "Copy in chunks with another method.",
    series({"mytest.dpc", "System;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  "
                          "[cfgPath]/out.dat;  ;  ;  false;\n"}),
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat; "
                          " ;  ;  false;\n"})};

const Rule fioName = {"fio-name",
                      Severity::Error,
                      "paths",
                      "fio can't take the name of the file: it is not an absolute path of this "
                      "system, or holds a # or ;, a control character or a word that fio replaces, "
                      "or a copy has a blank in a name or a name of more than 255 bytes.",
                      "Choose another name.",
                      series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  "
                                            "[cfgPath]/a#b.dat;  ;  ;  false;\n"}),
                      series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  "
                                            "[cfgPath]/a b.dat;  ;  ;  false;\n"})};

const Rule fioSpecialFile = {
    "fio-special-file",
    Severity::Error,
    "paths",
    "The file is a device, a pipe, a socket or a folder, or lies below /dev, /proc or /sys.",
    "Name a regular file.",
    series({"mytest.dpc",
            "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  /dev/out.dat;  ;  ;  false;\n"}),
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat; "
                          " ;  ;  false;\n"})};

const Rule fioSize = {
    "fio-size",
    Severity::Error,
    "lines",
    "The size of the file or of a chunk is 0, negative, or more than fio takes.",
    "Give the task a size.",
    series(
        {"mytest.dpc",
         "Posix;NOflush;NOprealloc;0;64;-1;0;1;0;  MEMORY;  [cfgPath]/out.dat;  ;  ;  false;\n"}),
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat; "
                          " ;  ;  false;\n"})};

const Rule fioWait = {
    "fio-wait",
    Severity::Error,
    "lines",
    "The wait between chunks is negative, or more than the 4,294,967 ms that fio can wait.",
    "Shorten the wait.",
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;4294968;64;-1;1024;1;0;  MEMORY;  "
                          "[cfgPath]/out.dat;  ;  ;  false;\n"}),
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;1000;64;-1;1024;1;0;  MEMORY;  "
                          "[cfgPath]/out.dat;  ;  ;  false;\n"})};

const Rule fioTooManyChunks = {
    "fio-too-many-chunks",
    Severity::Error,
    "lines",
    "A copy has so many chunks that the log of its calls would have more than 4,000,000 lines.",
    "Copy in larger chunks.",
    withExisting("/data/src.dat", 2097152,
                 oneFile("Posix;NOflush;NOprealloc;0;1;-1;1024;1;0;  /data/src.dat;  "
                         "[cfgPath]/b.dat;  ;  ;  false;\n")),
    withExisting("/data/src.dat", 1048576,
                 oneFile("Posix;NOflush;NOprealloc;0;1;-1;1024;1;0;  /data/src.dat;  "
                         "[cfgPath]/b.dat;  ;  ;  false;\n"))};

const Rule fioTooManyJobs = {
    "fio-too-many-jobs",
    Severity::Error,
    "lines",
    "The tasks of a config file make more than the 4,000 sections that fio takes in one job file.",
    "Lower the iterations, or put a marker between the tasks.",
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;4001;0;  MEMORY;  "
                          "[cfgPath]/[iter].dat;  ;  ;  false;\n"}),
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;4000;0;  MEMORY;  "
                          "[cfgPath]/[iter].dat;  ;  ;  false;\n"})};

const Rule fioBufferSizes = {
    "fio-buffer-sizes",
    Severity::Warning,
    "lines",
    "The buffer of a stream of less than 8 KiB a chunk, or of AnsiC, joins and cuts chunks into "
    "calls of other sizes; fio makes one call for each chunk.",
    "Allow it, or choose Posix.",
    series({"mytest.dpc", "AnsiC;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat; "
                          " ;  ;  false;\n"}),
    series({"mytest.dpc", "Stream;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  "
                          "[cfgPath]/out.dat;  ;  ;  false;\n"})};

const Rule fioPreallocate = {
    "fio-preallocate",
    Severity::Warning,
    "lines",
    "The file is allocated by a command before the task, and the time for it is not measured.",
    "Allow it, or turn pre-allocation off.",
    series(
        {"mytest.dpc",
         "Posix;NOflush;prealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat;  ;  ;  false;\n"}),
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat; "
                          " ;  ;  false;\n"})};

const Rule fioFlush = {
    "fio-flush",
    Severity::Warning,
    "lines",
    "With a wait between chunks fio waits before the flush and not after it; with a name that no "
    "log of calls can hold, the last flush is not measured.",
    "Allow it, or take the wait or the flush away.",
    series(
        {"mytest.dpc",
         "Posix;flush;NOprealloc;10;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat;  ;  ;  false;\n"}),
    series(
        {"mytest.dpc",
         "Posix;flush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat;  ;  ;  false;\n"})};

const Rule fioCacheMode = {"fio-cache-mode",
                           Severity::Warning,
                           "lines",
                           "fio can't clear caches in this way: mode 3 is done by a command as "
                           "root before the task, the others are left out.",
                           "Allow it, or choose not to clear caches.",
                           series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;1;1;  "
                                                 "MEMORY;  [cfgPath]/out.dat;  ;  ;  false;\n"}),
                           series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  "
                                                 "MEMORY;  [cfgPath]/out.dat;  ;  ;  false;\n"})};

const Rule fioSystemBuffer = {
    "fio-system-buffer",
    Severity::Note,
    "lines",
    "The buffer setting has no effect: fio has no buffer of its own, and makes one call for each "
    "chunk.",
    "Nothing.",
    series({"mytest.dpc", "Stream;NOflush;NOprealloc;0;64;1;1024;1;0;  MEMORY;  [cfgPath]/out.dat; "
                          " ;  ;  false;\n"}),
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;1;1024;1;0;  MEMORY;  [cfgPath]/out.dat;  "
                          ";  ;  false;\n"})};

const Rule fioLastChunk = {
    "fio-last-chunk",
    Severity::Note,
    "lines",
    "The shorter last chunk is a section of its own, for a log of calls can't hold the name.",
    "Nothing.",
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;1000;-1;1024;1;0;  MEMORY;  [cfgPath]/a "
                          "b.dat;  ;  ;  false;\n"}),
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;1000;-1;1024;1;0;  MEMORY;  "
                          "[cfgPath]/out.dat;  ;  ;  false;\n"})};

const Rule fioOverwrite = {
    "fio-overwrite",
    Severity::Note,
    "paths",
    "An earlier job of the run makes the file: fio writes over it in place, and does not cut it "
    "before.",
    "Put [iter], [cfgID] or [cfgTaskID] into the name.",
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;2;0;  MEMORY;  [cfgPath]/out.dat; "
                          " ;  ;  false;\n"}),
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;2;0;  MEMORY;  "
                          "[cfgPath]/[iter].dat;  ;  ;  false;\n"})};

const Rule fioFolder = {
    "fio-folder",
    Severity::Note,
    "series",
    "The lines of the _init file that make folders are not jobs: fio makes the folders of its "
    "files itself, with mode 0700.",
    "Nothing.",
    series(
        {"mytest.dpc",
         "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat;  ;  ;  false;\n"},
        {"mytest_init.dpc",
         "Stream;NOflush;NOprealloc;0;0;-1;0;1;0;  MEMORY;  [cfgPath]/dummyFile;  ;  ;  false;\n"}),
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat; "
                          " ;  ;  false;\n"})};

const Rule fioLog = {
    "fio-log",
    Severity::Note,
    "series",
    "The log, the .csv file and the done file of the speed test are not written: results go to the "
    "folder of the run.",
    "Nothing.",
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat; "
                          " [cfgPath]/[host].txt;  ;  false;\n"}),
    series({"mytest.dpc", "Posix;NOflush;NOprealloc;0;64;-1;1024;1;0;  MEMORY;  [cfgPath]/out.dat; "
                          " ;  ;  false;\n"})};

const RuleList& lossRules()
{
    static const RuleList rules = {&fioTwoFiles,    &fioNotRead,       &fioNotRun,
                                   &fioMarker,      &fioNoFile,        &fioNoSendfile,
                                   &fioName,        &fioSpecialFile,   &fioSize,
                                   &fioWait,        &fioTooManyChunks, &fioTooManyJobs,
                                   &fioBufferSizes, &fioPreallocate,   &fioFlush,
                                   &fioCacheMode,   &fioSystemBuffer,  &fioLastChunk,
                                   &fioOverwrite,   &fioFolder,        &fioLog};
    return rules;
}

const Rule* lossRuleNamed(const std::string& name)
{
    const RuleList& rules = lossRules();
    const auto found = std::find_if(rules.begin(), rules.end(),
                                    [&](const Rule* rule) { return name == rule->name; });
    return found == rules.end() ? nullptr : *found;
}

const char* closestLossRuleName(const std::string& name)
{
    std::vector<const char*> names;
    for (const Rule* rule : lossRules())
        names.push_back(rule->name);
    return closest(name, names.data(), int(names.size()));
}
