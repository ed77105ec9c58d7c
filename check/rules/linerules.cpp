#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/taskfields.h"
#include "check/text.h"

#include <QHash>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <vector>

// Faults of a line as text: its fields, its length, its letters.

namespace {

using namespace std::string_view_literals;

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
    "The line looks like UTF-8; config files are Latin-1, so its letters turn into others. A note "
    "for the first such comment of a file.",
    "save the file as Latin-1",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [cfgPath]/Pr\xC3\xBC"
            "fung_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [cfgPath]/Pr\xFC"
            "fung_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

void checkLetters(const LineFact& line, Findings& findings)
{
    if (!looksLikeUtf8(line.text))
        return;
    const bool isComment = line.kind == LineFact::Kind::Comment;
    findings.add(utf8Text, line, isComment ? 1 : line.column + firstHighByte(line.text) + 1,
                 Message(fmt::format("the {} looks like UTF-8, but config files are Latin-1: it "
                                     "reads as {}",
                                     isComment ? "comment" : "line",
                                     quoted(line.text.mid(firstHighByte(line.text), 40))))
                     .as(isComment ? Severity::Note : Severity::Warning));
}

constexpr Rule longLine = {
    "long-line",
    Severity::Error,
    "lines",
    "A line ends at 1,000 characters: more is not read, and was lost when it was saved. A "
    "warning for a comment.",
    "shorten it",
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
                           "save the file again as Latin-1 text; often it is UTF-16",
                           oneFile("S\0t\0r\0e\0a\0m\0;\0\n"
                                   "\0"sv),
                           oneFile(plainTask)};

void checkLength(const LineFact& line, Findings& findings)
{
    const bool isComment = line.kind == LineFact::Kind::Comment;
    if (line.hasZero)
        findings.add(zeroByte, line, line.column + line.text.size() + 1,
                     "the line holds a zero byte: what follows it is not read");
    if (line.length > maxLine)
        findings.add(longLine, line, maxLine + 1,
                     Message(fmt::format("the {} has {} characters: only the first {} are read",
                                         isComment ? "comment" : "line", line.length, maxLine))
                         .as(isComment ? Severity::Warning : Severity::Error));
    else if (line.length == maxLine && !isComment && !line.text.endsWith(';') && !isMarker(line))
        findings.add(longLine, line, maxLine,
                     Message(fmt::format("the line has {} characters, the most that a save writes: "
                                         "its end was cut off",
                                         maxLine),
                             "restore the end, and shorten the paths"));
}

constexpr Rule splitLine = {
    "split-line",
    Severity::Error,
    "lines",
    "A line end inside of a task, as it comes with a pasted path, splits it: the first part loads "
    "as another task, and the rest does not load.",
    "join the lines",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat\n"
            ";  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

void checkSplit(const LineFact& line, Findings& findings)
{
    if (line.splitEnd > 0)
        findings.add(splitLine, line, int(line.length) + 1,
                     fmt::format("a line end splits the task, which goes on to line {}: {}the rest "
                                 "does not load",
                                 line.splitEnd,
                                 isTask(line) ? "the first part loads as another task, and " : ""));
}

constexpr Rule badLine = {
    "bad-line",
    Severity::Error,
    "lines",
    "The editor rejects the line and skips it: the method is unknown, or a number field is not a "
    "number.",
    "correct the field that the finding names",
    oneFile("Posx  ;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

/// The methods that are read.
std::vector<const char*> readMethods()
{
    std::vector<const char*> names;
    for (const MethodInfo& method : ioMethods) {
        if (method.has(IsRead))
            names.push_back(method.name);
    }
    return names;
}

Message whyRejected(const LineFact& line)
{
    const QByteArray text = line.field(line.problem.field);
    const char* const result = ": the editor skips the line";
    if (line.problem.field > MethodField)
        return fmt::format("{} {} is not a whole number{}", fieldName(line.problem.field),
                           quoted(text), result);
    if (text.startsWith('#'))
        return {fmt::format("a blank stands before the '#'{}", result),
                "begin a comment with '#' as the first character of its line"};
    if (line.text.contains(configFileExtension))
        return {fmt::format("the line looks like a marker, but does not end in {}{}",
                            configFileExtension, result),
                "remove what follows the name of the next file"};
    const std::vector<const char*> methods = readMethods();
    if (text.isEmpty())
        return {fmt::format("the method is missing{}", result),
                fmt::format("begin the line with {}", fmt::join(methods, ", "))};
    return fmt::format("unknown method {}{}{}", quoted(text),
                       didYouMean(closest(text.toStdString(), methods.data(), int(methods.size()))),
                       result);
}

constexpr Rule winApi = {
    "winapi",
    Severity::Warning,
    "lines",
    "WinApi tasks are written, but the editor does not load them again.",
    "choose another method, such as Posix, or edit the series by hand only",
    oneFile("WinApi;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Posix ;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

void checkRejected(const LineFact& line, Findings& findings)
{
    if (line.isRest)
        return;
    if (line.problem.field == MethodField && isWrittenOnly(line.field(MethodField).toStdString()))
        findings.add(
            winApi, line, line.columnOf(MethodField),
            "the editor writes WinApi tasks, but does not load them: a load and a save lose "
            "the line");
    else
        findings.add(badLine, line, line.columnOf(line.problem.field), whyRejected(line));
}

constexpr Rule missingFields = {
    "missing-fields",
    Severity::Warning,
    "lines",
    "The line has fewer than fourteen fields; the others count as 0 or empty.",
    "complete the line",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;\n"),
    oneFile(plainTask)};

constexpr Rule extraFields = {
    "extra-fields",
    Severity::Warning,
    "lines",
    "Text after the fourteenth field is not read; often a file name holds a \";\".",
    "rename the file, or remove the text",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/a;b_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

void checkFieldCount(const LineFact& line, Findings& findings)
{
    if (line.fields.count < taskLineFieldCount && line.splitEnd == 0)
        findings.add(
            missingFields, line, line.column + line.text.size() + 1,
            fmt::format(
                "the line ends after {} of {} fields: {} and what follows count as 0 or empty",
                line.fields.count, taskLineFieldCount, fieldName(line.fields.count + 1)));
    if (line.fields.beyond.length > 0)
        findings.add(extraFields, line, line.column + line.fields.beyond.column + 1,
                     fmt::format("{} follows field {} and is not read: a ';' in a file name ends "
                                 "the field",
                                 quoted(line.text.mid(line.fields.beyond.column)),
                                 taskLineFieldCount));
}

constexpr Rule unknownWord = {
    "unknown-word",
    Severity::Warning,
    "lines",
    "A word that a yes-or-no field does not know counts as no.",
    "write the word that the finding names",
    oneFile("Posix ;Flush  ;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Posix ;flush  ;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

/// The words of a yes-or-no field; the first of each are those that a save writes.
struct YesNoField
{
    int field;
    std::vector<const char*> yes;
    std::vector<const char*> no;
};

bool isAmong(const QByteArray& word, const std::vector<const char*>& known)
{
    return std::any_of(known.begin(), known.end(), [&](const char* k) { return word == k; });
}

void checkWords(const LineFact& line, Findings& findings)
{
    static const YesNoField fields[] = {
        {FlushField, {"flush", "true", "1"}, {"NOflush", "false", "0"}},
        {PreallocateField, {"prealloc", "true", "1"}, {"NOprealloc", "false", "0"}},
        {DoneField, {"true"}, {"false", "0"}},
    };
    for (const YesNoField& field : fields) {
        const QByteArray word = line.field(field.field);
        if (!word.isEmpty() && !isAmong(word, field.yes) && !isAmong(word, field.no))
            findings.add(unknownWord, line, line.columnOf(field.field),
                         {fmt::format("unknown word {} for {}: it counts as no", quoted(word),
                                      fieldName(field.field)),
                          fmt::format("write '{}' for yes, '{}' for no", field.yes.front(),
                                      field.no.front())});
    }
}

void checkLine(const LineFact& line, Findings& findings)
{
    checkLetters(line, findings);
    checkLength(line, findings);
    checkSplit(line, findings);
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
    "A save writes at most 5,000 characters into a file, and loses the rest, the marker first. A "
    "warning for a file that was written by hand and is longer.",
    "divide the tasks into several config files with \"Wait for next config file\"",
    oneFile(plainTask, 40),
    oneFile(plainTask, 15)};

/// A file that is full and has no line end was cut by a save.
void checkFileSize(const FileFact& file, int index, Findings& findings)
{
    if (file.lineAtLimit == 0 || file.isCopy)
        return;
    Message message =
        file.size == maxConfigFile
            ? Message(fmt::format("the file has {} characters, the most that a save writes: its "
                                  "end was cut off",
                                  maxConfigFile))
            : Message(fmt::format("the file has {} characters: a save would cut it here, at {}",
                                  file.size, maxConfigFile))
                  .as(Severity::Warning);
    findings.add(longFile, index, file.lineAtLimit, file.columnAtLimit, std::move(message));
}

constexpr Rule sameTask = {
    "same-task",
    Severity::Note,
    "lines",
    "A config file holds the same task twice, with the same settings and files.",
    "remove one of the lines, unless the test is to run twice; \"iterations\" repeats a task",
    oneFile(plainTask, 2),
    series({"mytest.dpc", plainTaskAndMarker}, {"mytest1.dpc", plainTask})};

/// The work of a task, as a key: its settings as they are loaded, and its files in each iteration,
/// however they are spelled.
QByteArray contentOf(const LineFact& line, int place, const FileUses& uses)
{
    const TaskSettings& task = line.used;
    QByteArray content;
    const auto add = [&content](int value) {
        content.append(reinterpret_cast<const char*>(&value), sizeof value);
    };
    for (const int value :
         {line.file, int(task.method), int(task.flush), int(task.preallocate), int(task.chunkWait),
          int(task.chunkSize), int(task.sysBufferMode), int(task.fileSize), int(task.iterations),
          int(task.cacheMode), int(task.writeDone)})
        add(value);
    for (const TaskPath role : {SourcePath, DestPath, LogPath, CsvPath}) {
        for (int i = 0; i < uses.useCount(place, role); ++i) {
            const FileUse& use = uses.use(place, role, i);
            // On another machine it may be another file.
            add(uses.nameOf(use).byHost ? -1 : 1);
            add(uses.fileOf(use, 0));
        }
        add(0);
    }
    return content;
}

} // namespace

void checkLines(const SeriesFacts& facts, Findings& findings)
{
    for (const auto* lines : {&facts.lines, &facts.initLines}) {
        for (const LineFact& line : *lines)
            checkLine(line, findings);
    }
    for (size_t i = 0; i < facts.files.size(); ++i)
        checkFileSize(facts.files[i], int(i), findings);
}

void checkSameTasks(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
{
    QHash<QByteArray, int> firstLines;
    for (int i = 0; i < int(facts.lines.size()); ++i) {
        const LineFact& line = facts.lines[size_t(i)];
        if (!isTask(line))
            continue;
        const QByteArray content = contentOf(line, i, uses);
        const auto first = firstLines.constFind(content);
        if (first == firstLines.cend())
            firstLines.insert(content, line.line);
        else
            findings.add(sameTask, line, line.column + 1,
                         fmt::format("the task is the same as in line {}: it runs again on the "
                                     "same files",
                                     *first));
    }
}

RuleList lineRules()
{
    return {&badLine,  &winApi,   &splitLine, &missingFields, &extraFields, &unknownWord,
            &longLine, &zeroByte, &sameTask,  &longFile,      &utf8Text};
}
