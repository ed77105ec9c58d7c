#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/taskfields.h"
#include "check/text.h"
#include "check/units.h"

#include <fmt/format.h>

#include <array>
#include <cstdlib>

// Numbers and settings: what they become, and what they do.

namespace {

/// A number of a line: as the text says, as the record has it, as normalisation leaves it.
struct Number
{
    int field;
    const char* unit;
    std::int64_t unitSize; ///< bytes
    std::int32_t written;
    std::int32_t used;
    std::int32_t smallest;
    std::int32_t least; ///< that the form can show, in units
    std::int32_t most;
};

std::array<Number, 6> numbersOf(const LineFact& line)
{
    const TaskSettings& w = line.written;
    const TaskSettings& u = line.used;
    return {
        {{ChunkWaitField, " ms", 1, w.chunkWait, u.chunkWait, 0, 0, maxFormChunkWait},
         {ChunkSizeField, " KiB", 1024, w.chunkSize, u.chunkSize, 0, 0, maxFormChunkKib},
         {SysBufferField, "", 1, w.sysBufferMode, u.sysBufferMode, -1, -1, maxSysBufferModeRead},
         {FileSizeField, " KiB", 1024, w.fileSize, u.fileSize, 0, minFormFileKib,
          kibFromBytes(maxFileSize)},
         {IterationsField, "", 1, w.iterations, u.iterations, 1, 1, maxFormIterations},
         {CacheModeField, "", 1, w.cacheMode, u.cacheMode, 0, 0, maxFormCacheMode}}};
}

std::string inUnits(const Number& number, std::int32_t value)
{
    return fmt::format("{}{}", value / number.unitSize, number.unit);
}

/// The number that the text means, of any size; the reader takes its first characters.
long long textValue(const LineFact& line, const Number& number)
{
    const std::string text(line.fieldText(number.field).substr(0, maxNumberLength));
    return std::strtoll(text.c_str(), nullptr, 10);
}

bool overflows(const LineFact& line, const Number& number)
{
    const long long value = textValue(line, number);
    return value > INT32_MAX || value < INT32_MIN || value * number.unitSize != number.written;
}

bool isEmptyNumber(const LineFact& line, const Number& number)
{
    const std::string_view text = line.fieldText(number.field);
    return text.empty() || text == "-";
}

constexpr Rule negativeNumber = {
    "negative-number",
    Severity::Warning,
    "lines",
    "A size or a wait is negative.",
    "write 0 or a positive number",
    oneFile("Stream;NOflush;NOprealloc; 50;  -64; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

constexpr Rule noIterations = {
    "no-iterations",
    Severity::Warning,
    "lines",
    "Fewer than one iteration: the task does nothing.",
    "write 1, or remove the task",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;0;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

void checkNegative(const LineFact& line, const Number& number, Findings& findings)
{
    const int column = line.columnOf(number.field);
    if (number.field == IterationsField)
        findings.add(noIterations, line, column,
                     fmt::format("{} iterations: the task does nothing", number.used));
    else
        findings.add(negativeNumber, line, column,
                     fmt::format("{} is negative: {}", fieldName(number.field),
                                 inUnits(number, number.written)));
}

constexpr Rule noEffect = {
    "no-effect",
    Severity::Note,
    "lines",
    "The setting has no effect for this method and test type; the editor clears it.",
    "choose another method, or leave the setting out",
    oneFile("Stream;NOflush;prealloc  ; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Posix ;NOflush;prealloc  ; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

/// True for a setting that normalisation removes because the method or the test type does not use
/// it.
bool hasNoEffect(const LineFact& line, const Number& number)
{
    if (number.field == SysBufferField)
        return number.used == -1;
    return number.field == ChunkWaitField && line.used.chunkSize == 0;
}

std::string reason(const LineFact& line)
{
    if (line.used.chunkSize == 0)
        return fmt::format("a {} {} without chunks", methodName(line.used.method), typeWord(line));
    return fmt::format("a {} {}", methodName(line.used.method), typeWord(line));
}

constexpr Rule changedValue = {
    "changed-value",
    Severity::Warning,
    "lines",
    "The editor changes the value when it reads the line.",
    "write the value that the editor uses",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 2000000;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 1048576;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

void checkChange(const LineFact& line, const Number& number, Findings& findings)
{
    const int column = line.columnOf(number.field);
    const std::int32_t value = number.written;
    if (value == number.used)
        return;
    if (hasNoEffect(line, number))
        findings.add(noEffect, line, column,
                     fmt::format("{} has no effect for {}: {} becomes {}", fieldName(number.field),
                                 reason(line), value, inUnits(number, number.used)));
    else
        findings.add(changedValue, line, column,
                     fmt::format("{} {}{} becomes {} for {}", fieldName(number.field),
                                 value / number.unitSize, number.unit, inUnits(number, number.used),
                                 reason(line)));
}

constexpr Rule emptyNumber = {
    "empty-number",
    Severity::Warning,
    "lines",
    "A number field that is empty or a lone \"-\" counts as 0.",
    "write the number, also if it is 0",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

constexpr Rule sizeOverflow = {
    "size-overflow",
    Severity::Error,
    "lines",
    "A number does not fit into its 32 bits and becomes another one.",
    "write a smaller number",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 4194304;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

constexpr Rule beyondForm = {
    "beyond-form",
    Severity::Note,
    "lines",
    "The form of the editor can't show the value; overwriting the row there changes it.",
    "edit the task by hand only, or choose a value that the form has",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;500;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;100;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

void checkNumber(const SeriesFacts& facts, const LineFact& line, const Number& number,
                 Findings& findings)
{
    if (number.field > line.fields.count)
        return;
    const int column = line.columnOf(number.field);
    if (isEmptyNumber(line, number))
        findings.add(emptyNumber, line, column,
                     fmt::format("{} is empty and counts as 0", fieldName(number.field)));
    if (overflows(line, number)) {
        findings.add(sizeOverflow, line, column,
                     fmt::format("{} {} is too large: it becomes {}", fieldName(number.field),
                                 quoted(line.field(number.field)), inUnits(number, number.used)));
        return;
    }
    checkChange(line, number, findings);
    if (number.used < number.smallest)
        checkNegative(line, number, findings);
    else if (!facts.isOfInit(line) && (number.used / number.unitSize < number.least ||
                                       number.used / number.unitSize > number.most))
        // The _init file is not made in the form.
        findings.add(beyondForm, line, column,
                     fmt::format("{} {} can't be shown in the editor's form, which has {} to {}",
                                 fieldName(number.field), inUnits(number, number.used),
                                 number.least, number.most));
}

void checkFlag(const LineFact& line, int field, bool written, bool used, Findings& findings)
{
    if (written != used)
        findings.add(noEffect, line, line.columnOf(field),
                     fmt::format("{} has no effect for {}: the editor clears it", fieldName(field),
                                 reason(line)));
}

constexpr Rule chunkTooLarge = {
    "chunk-too-large",
    Severity::Warning,
    "lines",
    "The file is smaller than one chunk.",
    "choose a smaller chunk or a larger file",
    oneFile("Stream;NOflush;NOprealloc; 50; 2048; -1; 1024;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Stream;NOflush;NOprealloc; 50;  256; -1; 1024;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

constexpr Rule chunkRemainder = {
    "chunk-remainder",
    Severity::Note,
    "lines",
    "The file size is not a multiple of the chunk size: the last chunk is shorter.",
    "choose a file size that is a multiple, if all chunks must be equal",
    oneFile("Stream;NOflush;NOprealloc; 50; 1000; -1; 1024;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Stream;NOflush;NOprealloc; 50;  256; -1; 1024;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

void checkChunks(const LineFact& line, Findings& findings)
{
    const int chunk = line.used.chunkSize;
    const int size = line.used.fileSize;
    if (chunk <= 0 || size <= 0)
        return;
    const int column = line.columnOf(ChunkSizeField);
    if (size < chunk)
        findings.add(chunkTooLarge, line, column,
                     fmt::format("the file of {} KiB is smaller than one chunk of {} KiB",
                                 size / bytesPerKib, chunk / bytesPerKib));
    else if (size % chunk != 0)
        findings.add(chunkRemainder, line, column,
                     fmt::format("the file of {} KiB is not a multiple of the chunk of {} KiB: "
                                 "the last chunk has {} KiB",
                                 size / bytesPerKib, chunk / bytesPerKib,
                                 size % chunk / bytesPerKib));
}

constexpr Rule cacheMode = {
    "cache-mode",
    Severity::Note,
    "lines",
    "The form names another method or system for the cache mode: the cache is not cleared.",
    "choose the cache mode for the method and the system, or 0",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;4;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Posix ;NOflush;NOprealloc; 50; 1024;  1; 102400;1;4;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

/// The systems on which the machines run, as far as the paths of a task tell.
struct Systems
{
    bool maybeWindows = true;
    bool maybeOther = true;
};

Systems systemsOf(const LineFact& line)
{
    Systems systems;
    for (const TaskPath which : {SourcePath, DestPath, LogPath, CsvPath}) {
        const QByteArray& path = line.path(which);
        if (path.startsWith('\\') || path.indexOf(':') == 1)
            systems.maybeOther = false;
        else if (path.startsWith('/') && !path.startsWith("//"))
            systems.maybeWindows = false;
    }
    return systems;
}

/// The form's texts for a cache mode.
struct CacheModeInfo
{
    const char* system;
    bool isOfWindows;
    const char* methods; ///< null for all
};

constexpr CacheModeInfo cacheModes[] = {
    {nullptr, false, nullptr}, {"Windows", true, nullptr},           {"Windows", true, nullptr},
    {"Linux", false, nullptr}, {"Linux", false, "Posix and System"}, {"macOS", false, "Posix"}};
static_assert(std::size(cacheModes) == maxFormCacheMode + 1, "each cache mode has its row");

void checkCacheMode(const LineFact& line, Findings& findings)
{
    const int mode = line.used.cacheMode;
    if (mode < 1 || mode >= int(std::size(cacheModes)))
        return;
    const CacheModeInfo& info = cacheModes[mode];
    const Systems systems = systemsOf(line);
    const char* const method = methodName(line.used.method);
    const int column = line.columnOf(CacheModeField);
    if (info.methods != nullptr && !QByteArray(info.methods).contains(method))
        findings.add(cacheMode, line, column,
                     fmt::format("cache mode {} is for {} only: a {} task does not clear the cache",
                                 mode, info.methods, method));
    else if (info.isOfWindows ? !systems.maybeWindows : !systems.maybeOther)
        findings.add(cacheMode, line, column,
                     fmt::format("cache mode {} is for {}, but the paths are those of another "
                                 "system: the cache is not cleared",
                                 mode, info.system));
}

void checkTask(const SeriesFacts& facts, const LineFact& line, Findings& findings)
{
    for (const Number& number : numbersOf(line))
        checkNumber(facts, line, number, findings);
    checkFlag(line, FlushField, line.written.flush, line.used.flush, findings);
    checkFlag(line, PreallocateField, line.written.preallocate, line.used.preallocate, findings);
    checkChunks(line, findings);
    checkCacheMode(line, findings);
}

} // namespace

void checkNumbers(const SeriesFacts& facts, Findings& findings)
{
    for (const auto* lines : {&facts.lines, &facts.initLines}) {
        for (const LineFact& line : *lines) {
            if (isTask(line))
                checkTask(facts, line, findings);
        }
    }
}

RuleList numberRules()
{
    return {&emptyNumber, &sizeOverflow, &negativeNumber, &changedValue,   &noEffect,
            &beyondForm,  &noIterations, &chunkTooLarge,  &chunkRemainder, &cacheMode};
}
