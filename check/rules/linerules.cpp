#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/taskfields.h"
#include "check/text.h"

#include <fmt/format.h>

#include <algorithm>

// What is wrong with a line as text: its fields, its length, its letters.

namespace {

using namespace std::string_view_literals;

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

constexpr Rule utf8Text = {
    "utf8-text",
    Severity::Warning,
    "lines",
    "The line looks like UTF-8; config files are Latin-1, so its letters turn into others.",
    "Save the file as Latin-1.",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [cfgPath]/Pr\xC3\xBC"
            "fung_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [cfgPath]/Pr\xFC"
            "fung_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

void checkLetters(const LineFact& line, Findings& findings)
{
    if (line.kind != LineFact::Kind::Comment && isUtf8(line.text))
        findings.add(utf8Text, line, line.column + firstHighByte(line.text) + 1,
                     fmt::format("looks like UTF-8, but config files are Latin-1: reads as {}",
                                 quoted(line.text.mid(firstHighByte(line.text), 40))));
}

constexpr Rule longLine = {
    "long-line",
    Severity::Error,
    "lines",
    "A line ends at 1,000 characters: more is not read, and was lost when it was saved.",
    "Shorten the paths or the comment.",
    oneFile("# x{1000}\n"
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("# x{900}\n"
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

constexpr Rule zeroByte = {"zero-byte",
                           Severity::Warning,
                           "lines",
                           "The line holds a zero byte, and ends there for every reader.",
                           "Save the file again as Latin-1 text; often it is UTF-16.",
                           oneFile("S\0t\0r\0e\0a\0m\0;\0\n"
                                   "\0"sv),
                           oneFile(plainTask)};

void checkLength(const LineFact& line, Findings& findings)
{
    if (line.hasZero)
        findings.add(zeroByte, line, line.column + line.text.size() + 1,
                     "the line holds a zero byte: everything behind it is not read");
    if (line.length > maxLine)
        findings.add(
            longLine, line, maxLine + 1,
            fmt::format("the line has {} characters: what follows the first {} is not read",
                        line.length, maxLine));
    else if (line.length == maxLine && line.kind != LineFact::Kind::Comment &&
             !line.text.endsWith(';') && !isMarker(line))
        findings.add(
            longLine, line, maxLine,
            fmt::format(
                "the line has {} characters, the most that a save writes: its end was cut off",
                maxLine));
}

constexpr Rule badLine = {
    "bad-line",
    Severity::Error,
    "lines",
    "The editor rejects the line and skips it: the method is unknown, or a number field is not a "
    "number.",
    "Correct the field that the finding names.",
    oneFile("Posx  ;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

/// The method that a wrong word was meant to be, among those that are read.
const char* closestMethod(const std::string& word)
{
    std::vector<const char*> names;
    for (const MethodInfo& method : ioMethods) {
        if (method.has(IsRead))
            names.push_back(method.name);
    }
    return closest(word, names.data(), int(names.size()));
}

std::string whyRejected(const LineFact& line)
{
    const QByteArray text = line.field(line.problem.field);
    if (line.problem.field > MethodField)
        return fmt::format("{} {} is no whole number: the editor skips the line",
                           fieldName(line.problem.field), quoted(text));
    if (text.startsWith('#'))
        return "the '#' of a comment must be the first character of its line: the editor skips the "
               "line";
    if (line.text.contains(configFileExtension))
        return "the line looks like a marker, but must end in .dpc: the editor skips it";
    return fmt::format("{} is no method{}: the editor skips the line", quoted(text),
                       didYouMean(closestMethod(text.toStdString())));
}

constexpr Rule winApi = {
    "winapi",
    Severity::Error,
    "lines",
    "WinApi tasks are written, but the editor does not load them again.",
    "Choose another method; Posix is the closest.",
    oneFile("WinApi;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Posix ;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

void checkRejected(const LineFact& line, Findings& findings)
{
    if (line.problem.field == MethodField && isWrittenOnly(line.field(MethodField).toStdString()))
        findings.add(winApi, line, line.columnOf(MethodField),
                     "the editor writes WinApi tasks but does not load them: the line is lost");
    else
        findings.add(badLine, line, line.columnOf(line.problem.field), whyRejected(line));
}

constexpr Rule missingFields = {
    "missing-fields",
    Severity::Warning,
    "lines",
    "The line has fewer than fourteen fields; the others count as 0 or empty.",
    "Complete the line.",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;\n"),
    oneFile(plainTask)};

constexpr Rule extraFields = {
    "extra-fields",
    Severity::Warning,
    "lines",
    "Text after the fourteenth field is not read; often a file name holds a \";\".",
    "Rename the file, or remove the text.",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/a;b_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

void checkFieldCount(const LineFact& line, Findings& findings)
{
    if (line.fields.count < taskLineFieldCount)
        findings.add(
            missingFields, line, line.column + line.text.size() + 1,
            fmt::format(
                "the line ends after {} of {} fields: {} and what follows count as 0 or empty",
                line.fields.count, taskLineFieldCount, fieldName(line.fields.count + 1)));
    if (line.fields.beyond.length > 0)
        findings.add(extraFields, line, line.column + line.fields.beyond.column + 1,
                     fmt::format("text after field {} is not read; does a file name hold a ';'?",
                                 taskLineFieldCount));
}

constexpr Rule unknownWord = {
    "unknown-word",
    Severity::Warning,
    "lines",
    "A word that a yes-or-no field does not know counts as no.",
    "Write the word that the finding names.",
    oneFile("Posix ;Flush  ;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Posix ;flush  ;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

void checkWord(const LineFact& line, int field, std::initializer_list<const char*> known,
               const char* meant, Findings& findings)
{
    const QByteArray word = line.field(field);
    if (word.isEmpty() ||
        std::any_of(known.begin(), known.end(), [&](const char* k) { return word == k; }))
        return;
    findings.add(
        unknownWord, line, line.columnOf(field),
        fmt::format("{} {} counts as no; for yes write {}", fieldName(field), quoted(word), meant));
}

void checkWords(const LineFact& line, Findings& findings)
{
    checkWord(line, FlushField, {"flush", "true", "1", "NOflush", "false", "0"}, "'flush'",
              findings);
    checkWord(line, PreallocateField, {"prealloc", "true", "1", "NOprealloc", "false", "0"},
              "'prealloc'", findings);
    checkWord(line, DoneField, {"true", "false", "0"}, "'true'", findings);
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
}

constexpr Rule longFile = {
    "long-file",
    Severity::Error,
    "lines",
    "A save writes at most 5,000 characters into a file; the rest is lost, the marker first.",
    "Divide the tasks into several config files with \"Wait for next config file\".",
    oneFile(plainTask, 40),
    oneFile(plainTask, 15)};

void checkFileSize(const FileFact& file, int index, Findings& findings)
{
    if (file.lineAtLimit == 0 || (file.size == maxConfigFile && file.columnAtLimit == 1))
        return;
    const bool wasCut = file.size == maxConfigFile;
    findings.add(
        longFile, index, file.lineAtLimit, file.columnAtLimit,
        wasCut ? fmt::format(
                     "the file has {} characters, the most that a save writes: its end was cut off",
                     maxConfigFile)
               : fmt::format("the file has {} characters: a save cuts it here, at {}", file.size,
                             maxConfigFile));
}

} // namespace

void checkLines(const SeriesFacts& facts, Findings& findings)
{
    for (const LineFact& line : facts.lines)
        checkLine(line, findings);
    for (size_t i = 0; i < facts.files.size(); ++i)
        checkFileSize(facts.files[i], int(i), findings);
}

RuleList lineRules()
{
    return {&badLine,  &winApi,   &missingFields, &extraFields, &unknownWord,
            &longLine, &zeroByte, &longFile,      &utf8Text};
}
