#include "check/checker.h"
#include "check/taskfields.h"
#include "check/text.h"

#include <fmt/format.h>

#include <algorithm>

// What is wrong with a line as text: its fields, its length, its letters.

namespace {

bool isUtf8(const QByteArray& text)
{
    const auto isContinuation = [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0U) == 0x80;
    };
    bool found = false;
    for (int i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const int more = lead < 0x80    ? 0
                         : lead >= 0xF0 ? 3
                         : lead >= 0xE0 ? 2
                         : lead >= 0xC2 ? 1
                                        : -1;
        if (more < 0 || lead > 0xF4 || i + more >= text.size())
            return false;
        for (int k = 1; k <= more; ++k) {
            if (!isContinuation(text[i + k]))
                return false;
        }
        found = found || more > 0;
        i += more + 1;
    }
    return found;
}

int firstHighByte(const QByteArray& text)
{
    const auto found = std::find_if(text.begin(), text.end(),
                                    [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
    return int(found - text.begin());
}

void checkLetters(const LineFact& line, Findings& findings)
{
    if (line.kind != LineFact::Kind::Comment && isUtf8(line.text))
        findings.add(Rule::Utf8Text, line, line.column + firstHighByte(line.text) + 1,
                     fmt::format("looks like UTF-8, but config files are Latin-1: reads as {}",
                                 quoted(line.text.mid(firstHighByte(line.text), 40))));
}

void checkLength(const LineFact& line, Findings& findings)
{
    if (line.hasZero)
        findings.add(Rule::ZeroByte, line, line.column + line.text.size() + 1,
                     "the line holds a zero byte: everything behind it is not read");
    if (line.length > longestLine)
        findings.add(
            Rule::LongLine, line, longestLine + 1,
            fmt::format("the line has {} characters: what follows the first 1000 is not read",
                        line.length));
    else if (line.length == longestLine && line.kind != LineFact::Kind::Comment &&
             !line.text.endsWith(';') && !isMarker(line))
        findings.add(
            Rule::LongLine, line, longestLine,
            "the line has 1000 characters, the most that a save writes: its end was cut off");
}

std::string whyRejected(const LineFact& line)
{
    const QByteArray text = line.field(line.problem.field);
    if (line.problem.field > 1)
        return fmt::format("{} {} is no whole number: the editor skips the line",
                           fieldName(line.problem.field), quoted(text));
    if (text.startsWith('#'))
        return "the '#' of a comment must be the first character of its line: the editor skips the "
               "line";
    if (text.endsWith(".dpc") || line.text.contains(".dpc"))
        return "the line looks like a marker, but must end in .dpc: the editor skips it";
    return fmt::format("{} is no method{}: the editor skips the line", quoted(text),
                       didYouMean(closest(text.toStdString(), methodWords)));
}

void checkRejected(const LineFact& line, Findings& findings)
{
    if (line.problem.field == 1 && line.field(1) == "WinApi")
        findings.add(Rule::WinApi, line, line.columnOf(1),
                     "the editor writes WinApi tasks but does not load them: the line is lost");
    else
        findings.add(Rule::BadLine, line, line.columnOf(line.problem.field), whyRejected(line));
}

void checkFieldCount(const LineFact& line, Findings& findings)
{
    if (line.fields.count < taskLineFieldCount)
        findings.add(
            Rule::MissingFields, line, line.column + line.text.size() + 1,
            fmt::format(
                "the line ends after {} of 14 fields: {} and what follows count as 0 or empty",
                line.fields.count, fieldName(line.fields.count + 1)));
    if (line.fields.beyond.length > 0)
        findings.add(Rule::ExtraFields, line, line.column + line.fields.beyond.column + 1,
                     "text after field 14 is not read; does a file name hold a ';'?");
}

void checkWord(const LineFact& line, int field, std::initializer_list<const char*> known,
               const char* meant, Findings& findings)
{
    const QByteArray word = line.field(field);
    if (word.isEmpty() ||
        std::any_of(known.begin(), known.end(), [&](const char* k) { return word == k; }))
        return;
    findings.add(
        Rule::UnknownWord, line, line.columnOf(field),
        fmt::format("{} {} counts as no; for yes write {}", fieldName(field), quoted(word), meant));
}

void checkWords(const LineFact& line, Findings& findings)
{
    checkWord(line, 2, {"flush", "true", "1", "NOflush", "false", "0"}, "'flush'", findings);
    checkWord(line, 3, {"prealloc", "true", "1", "NOprealloc", "false", "0"}, "'prealloc'",
              findings);
    checkWord(line, 14, {"true", "false", "0"}, "'true'", findings);
}

void checkPathLengths(const LineFact& line, Findings& findings)
{
    for (int field = firstPathField; field < firstPathField + taskPathCount; ++field) {
        const int length = line.fields.fields[size_t(field - 1)].length;
        if (length > longestPath)
            findings.add(Rule::LongPath, line, line.columnOf(field) + longestPath,
                         fmt::format("{} has {} characters: what follows the first 500 is not read",
                                     fieldName(field), length));
        else if (length == longestPath)
            findings.add(
                Rule::LongPath, line, line.columnOf(field) + longestPath - 1,
                fmt::format("{} has 500 characters, the most that a path can: was it cut off?",
                            fieldName(field)));
    }
}

void checkLine(const LineFact& line, Findings& findings)
{
    checkLetters(line, findings);
    checkLength(line, findings);
    if (line.kind == LineFact::Kind::Rejected)
        checkRejected(line, findings);
    if (!isTask(line))
        return;
    checkFieldCount(line, findings);
    checkWords(line, findings);
    checkPathLengths(line, findings);
    checkNumbers(line, findings);
}

void checkFileSize(const FileFact& file, int index, Findings& findings)
{
    if (file.lineAtLimit == 0 || (file.size == longestConfigFile && file.columnAtLimit == 1))
        return;
    const bool wasCut = file.size == longestConfigFile;
    findings.add(
        Rule::LongFile, index, file.lineAtLimit, file.columnAtLimit,
        wasCut
            ? "the file has 5000 characters, the most that a save writes: its end was cut off"
            : fmt::format("the file has {} characters: a save cuts it here, at 5000", file.size));
}

} // namespace

void checkLines(const SeriesFacts& facts, Findings& findings)
{
    for (const LineFact& line : facts.lines)
        checkLine(line, findings);
    for (size_t i = 0; i < facts.files.size(); ++i)
        checkFileSize(facts.files[i], int(i), findings);
}
