#include "check/taskfields.h"
#include "check/text.h"

#include <fmt/format.h>

#include <array>
#include <cstdlib>

// Numbers and settings: what they become, and what they do.

namespace {

constexpr int chunkWaitField = 4;
constexpr int chunkSizeField = 5;
constexpr int sysBufferField = 6;
constexpr int fileSizeField = 7;
constexpr int iterationsField = 8;
constexpr int cacheModeField = 9;

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
    return {{{chunkWaitField, " ms", 1, w.chunkWait, u.chunkWait, 0, 0, 500},
             {chunkSizeField, " KiB", 1024, w.chunkSize, u.chunkSize, 0, 0, 10240},
             {sysBufferField, "", 1, w.sysBufferMode, u.sysBufferMode, -1, -1, 5},
             {fileSizeField, " KiB", 1024, w.fileSize, u.fileSize, 0, 1024, 1048576},
             {iterationsField, "", 1, w.iterations, u.iterations, 1, 1, 100},
             {cacheModeField, "", 1, w.cacheMode, u.cacheMode, 0, 0, 5}}};
}

std::string inUnits(const Number& number, std::int32_t value)
{
    return fmt::format("{}{}", value / number.unitSize, number.unit);
}

/// What the text says, however large; the reader takes the first 249 characters.
long long textValue(const LineFact& line, const Number& number)
{
    return std::strtoll(line.field(number.field).left(249).constData(), nullptr, 10);
}

bool overflows(const LineFact& line, const Number& number)
{
    const long long value = textValue(line, number);
    return value > INT32_MAX || value < INT32_MIN || value * number.unitSize != number.written;
}

bool isEmptyNumber(const LineFact& line, const Number& number)
{
    const QByteArray text = line.field(number.field);
    return text.isEmpty() || text == "-";
}

void checkNegative(const LineFact& line, const Number& number, Findings& findings)
{
    const int column = line.columnOf(number.field);
    if (number.field == iterationsField)
        findings.add(Rule::NoIterations, line, column,
                     fmt::format("{} iterations: the task does nothing", number.used));
    else
        findings.add(Rule::NegativeNumber, line, column,
                     fmt::format("{} is negative: {}", fieldName(number.field),
                                 inUnits(number, number.written)));
}

/// What normalisation takes away because the method or the test type has no use for it.
bool hasNoEffect(const LineFact& line, const Number& number)
{
    if (number.field == sysBufferField)
        return number.used == -1;
    return number.field == chunkWaitField && line.used.chunkSize == 0;
}

std::string reason(const LineFact& line)
{
    if (line.used.chunkSize == 0)
        return fmt::format("a {} {} without chunks", methodWord(line.used.method), typeWord(line));
    return fmt::format("a {} {}", methodWord(line.used.method), typeWord(line));
}

void checkChange(const LineFact& line, const Number& number, Findings& findings)
{
    const int column = line.columnOf(number.field);
    const std::int32_t value = number.written;
    if (value == number.used)
        return;
    if (hasNoEffect(line, number))
        findings.add(Rule::NoEffect, line, column,
                     fmt::format("{} has no effect for {}: {} becomes {}", fieldName(number.field),
                                 reason(line), value, inUnits(number, number.used)));
    else
        findings.add(Rule::ChangedValue, line, column,
                     fmt::format("{} {}{} becomes {} for {}", fieldName(number.field),
                                 value / number.unitSize, number.unit, inUnits(number, number.used),
                                 reason(line)));
}

void checkNumber(const LineFact& line, const Number& number, Findings& findings)
{
    if (number.field > line.fields.count)
        return;
    const int column = line.columnOf(number.field);
    if (isEmptyNumber(line, number))
        findings.add(Rule::EmptyNumber, line, column,
                     fmt::format("{} is empty and counts as 0", fieldName(number.field)));
    if (overflows(line, number)) {
        findings.add(Rule::SizeOverflow, line, column,
                     fmt::format("{} {} is too large: it becomes {}", fieldName(number.field),
                                 quoted(line.field(number.field)), inUnits(number, number.used)));
        return;
    }
    checkChange(line, number, findings);
    if (number.used < number.smallest)
        checkNegative(line, number, findings);
    else if (number.used / number.unitSize < number.least ||
             number.used / number.unitSize > number.most)
        findings.add(Rule::BeyondForm, line, column,
                     fmt::format("{} {} can't be shown in the editor's form, which has {} to {}",
                                 fieldName(number.field), inUnits(number, number.used),
                                 number.least, number.most));
}

void checkFlag(const LineFact& line, int field, bool written, bool used, Findings& findings)
{
    if (written != used)
        findings.add(Rule::NoEffect, line, line.columnOf(field),
                     fmt::format("{} has no effect for {}: the editor clears it", fieldName(field),
                                 reason(line)));
}

void checkChunks(const LineFact& line, Findings& findings)
{
    const int chunk = line.used.chunkSize;
    const int size = line.used.fileSize;
    if (chunk <= 0 || size <= 0)
        return;
    const int column = line.columnOf(chunkSizeField);
    if (size < chunk)
        findings.add(Rule::ChunkTooLarge, line, column,
                     fmt::format("the file of {} KiB is smaller than one chunk of {} KiB",
                                 size / 1024, chunk / 1024));
    else if (size % chunk != 0)
        findings.add(Rule::ChunkRemainder, line, column,
                     fmt::format("the file of {} KiB is not a multiple of the chunk of {} KiB: "
                                 "the last chunk has {} KiB",
                                 size / 1024, chunk / 1024, size % chunk / 1024));
}

} // namespace

const char* fieldName(int field)
{
    static constexpr const char* names[] = {
        "method",        "flush",     "pre-allocate", "chunk wait", "chunk size",
        "system buffer", "file size", "iterations",   "cache mode", "source",
        "destination",   "log file",  ".csv file",    "done file"};
    return field >= 1 && field <= taskLineFieldCount ? names[field - 1] : "text";
}

const char* methodWord(IoMethod method)
{
    for (int i = 0; i < 4; ++i) {
        if (int(method) == i)
            return methodWords[i];
    }
    return "";
}

TestType typeOf(const LineFact& line)
{
    if (line.toMemory)
        return TestType::Read;
    return line.fromMemory ? TestType::Write : TestType::Copy;
}

const char* typeWord(const LineFact& line)
{
    switch (typeOf(line)) {
    case TestType::Copy:
        return "Copy";
    case TestType::Write:
        return "Write";
    case TestType::Read:
        break;
    }
    return "Read";
}

void checkNumbers(const LineFact& line, Findings& findings)
{
    for (const Number& number : numbersOf(line))
        checkNumber(line, number, findings);
    checkFlag(line, 2, line.written.flush, line.used.flush, findings);
    checkFlag(line, 3, line.written.preallocate, line.used.preallocate, findings);
    checkChunks(line, findings);
}
