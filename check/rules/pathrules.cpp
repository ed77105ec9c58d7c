#include "check/filekeys.h"
#include "check/nameexpander.h"
#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/rules/variables.h"
#include "check/taskfields.h"
#include "check/text.h"
#include "configset/filestocreate.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>

// Faults of a single path: its variables, its form, its folder.

namespace {

constexpr Rule relativePath = {
    "relative-path",
    Severity::Warning,
    "paths",
    "A relative path is taken from the folder of the config file, which changes when it is copied.",
    "begin the path with [cfgPath] or with a folder",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  out/[host].dat;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out/[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

constexpr unsigned char noBreakBlank = 0xA0;
constexpr unsigned char softHyphen = 0xAD;

/// The likely meaning of a path that is relative by mistake; empty if that is unknown.
Message relativeMessage(const QByteArray& path, TaskPath which)
{
    const std::string name = quoted(path);
    if (which <= DestPath && path.toUpper() == "MEMORY")
        return {fmt::format("{} is a file name here", name), "write MEMORY in capitals for memory"};
    if (path.startsWith('"') || path.startsWith('\''))
        return {fmt::format("the quotation marks of {} are part of its name, which makes the path "
                            "relative",
                            name),
                "remove them"};
    if (path.startsWith('~'))
        return {fmt::format("{} is relative: '~' does not stand for a folder here", name),
                "write the folder itself"};
    return {fmt::format("{} is relative to the folder of the config file, which changes when the "
                        "file is copied",
                        name),
            fmt::format("write {}", quoted("[cfgPath]/" + path))};
}

/// A save makes the folder of a name without one by "dummyFile" alone, which does no harm.
void checkRelative(const SeriesFacts& facts, const LineFact& line, TaskPath which,
                   Findings& findings)
{
    const QByteArray& path = line.path(which);
    if (path.isEmpty() || !isRelative(path) || (facts.isOfInit(line) && path == dummyFileName))
        return;
    // A misspelled variable at the start is one mistake, not two, and so is a character there that
    // can't be seen.
    if ((path.startsWith('[') && !isVariable(path.left(path.indexOf(']') + 1))) ||
        startsWithOtherNotation(path) || static_cast<unsigned char>(path[0]) == noBreakBlank)
        return;
    findings.add(relativePath, line, line.columnOf(which), relativeMessage(path, which));
}

constexpr Rule emptyLog = {
    "empty-log",
    Severity::Note,
    "paths",
    "An empty log or .csv field comes back from a load as the folder of the config file.",
    "name a log and a .csv file",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  ;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

/// The "_init" file has no logs on purpose, and a line that ends early has its own finding.
void checkLogs(const SeriesFacts& facts, const LineFact& line, Findings& findings)
{
    for (const TaskPath which : {LogPath, CsvPath}) {
        const int field = firstPathField + which;
        if (line.path(which).isEmpty() && field <= line.fields.count && !facts.isOfInit(line))
            findings.add(
                emptyLog, line, line.columnOf(which),
                fmt::format("{} is empty: a load turns it into the folder of the config file",
                            fieldName(field)));
    }
}

constexpr Rule longPath = {
    "long-path",
    Severity::Error,
    "paths",
    "A path ends at 500 characters, and a name in it at 255 bytes, as written and with the "
    "variables replaced.",
    "shorten the path",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/x{500}_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

/// Bytes that file systems take in a name.
constexpr int maxNameBytes = 255;

/// The bytes of the longest value of a variable, between two separators.
int mostBytesInValueOf(const SeriesFacts& facts, const MachineValues& machine)
{
    int longest = facts.name.baseName.toUtf8().size();
    QStringList values = facts.runFolder.split('/');
    values += kvToQString(*machine.computerName);
    values += kvToQString(*machine.tempFolder).replace('\\', '/').split('/');
    values += *machine.date;
    for (const QString& value : values)
        longest = std::max(longest, value.toUtf8().size());
    constexpr int maxDigits = 11; // of a number of 32 bits, which can follow the name of the series
    return longest + maxDigits;
}

/// Finds the paths that are cut while their variables are replaced, and names that are too long.
class LengthRule
{
public:
    LengthRule(const SeriesFacts& facts, const CheckOptions& options, Findings& findings)
        : m_facts(facts)
        , m_findings(findings)
        , m_machine(machineWithTheLongestName(options))
        , m_mostBytesInValue(mostBytesInValueOf(facts, m_machine))
        , m_names(facts, m_machine)
    {}

    void check(const LineFact& line, TaskPath which)
    {
        const int length = line.fields.fields[size_t(firstPathField + which - 1)].length;
        const int column = line.columnOf(which);
        const char* name = fieldName(firstPathField + which);
        if (length > maxPath)
            m_findings.add(longPath, line, column + maxPath,
                           fmt::format("{} has {} characters: what follows the first {} is not "
                                       "read",
                                       name, length, maxPath));
        else if (length == maxPath)
            m_findings.add(longPath, line, column + maxPath - 1,
                           Message(fmt::format("{} has {} characters, the most that a path can: "
                                               "its end may have been cut off",
                                               name, maxPath),
                                   "compare the end with what you meant"));
        else if (const int longest = longestExpansion(line, line.path(which)); longest > maxPath)
            m_findings.add(longPath, line, column,
                           fmt::format("{} has {} characters when its variables are replaced, and "
                                       "is cut at {}: another file is used",
                                       name, longest, maxPath));
        else if (const int bytes = longestNameIn(line, line.path(which)); bytes > maxNameBytes)
            m_findings.add(longPath, line, column,
                           fmt::format("a name in the {} has {} bytes, and file systems take at "
                                       "most {}: the file can't be made",
                                       name, bytes, maxNameBytes));
    }

private:
    static MachineValues machineWithTheLongestName(const CheckOptions& options)
    {
        MachineValues machine = thisMachine();
        if (!options.hosts.isEmpty())
            machine.computerName = _kvString<maxPath>();
        for (const QString& host : options.hosts) {
            const _kvString<maxPath> name = computerNameFrom(host.toLatin1().constData());
            if (name.length > machine.computerName->length)
                machine.computerName = name;
        }
        return machine;
    }

    /// A path that is too long for a moment only is cut as well.
    int longestExpansion(const LineFact& line, const QByteArray& path)
    {
        int length = path.size();
        if (!path.isEmpty() && isRelative(path))
            length += m_facts.runFolder.size();
        // Most paths can't grow that long, and replacing is what takes time.
        if (length + maxVariables(path) * m_names.longestValue() <= maxPath)
            return length;
        int longest = length;
        const int lastIteration = std::max(line.used.iterations - 1, 0);
        for (int i = 0; i < pathVariableCount; ++i) {
            if (const int uses = countOf(path, pathVariables[i]); uses > 0)
                length +=
                    uses * (valueLength(line, i, lastIteration) - int(qstrlen(pathVariables[i])));
            longest = std::max(longest, length);
        }
        return longest;
    }

    /// Most values are the same in all lines of a file.
    int valueLength(const LineFact& line, int variable, int iteration)
    {
        const VariesBy variation = variationOf(static_cast<PathVariable>(variable));
        if (variation == VariesBy::Iteration || variation == VariesBy::Task)
            return m_names.valueOf(line, pathVariables[variable], iteration).size();
        if (line.file != m_file)
            m_lengths.fill(-1);
        m_file = line.file;
        int& length = m_lengths[size_t(variable)];
        if (length < 0)
            length = m_names.valueOf(line, pathVariables[variable], iteration).size();
        return length;
    }

    /// The bytes of the longest name of a file or folder in a path. Linux counts those of UTF-8,
    /// Windows characters.
    int longestNameIn(const LineFact& line, const QByteArray& path)
    {
        if (mostBytesInName(path) <= maxNameBytes)
            return 0;
        const QString full =
            m_names.resolve(line, path, std::max(line.used.iterations - 1, 0)).replace('\\', '/');
        int longest = 0;
        for (const QString& name : full.split('/'))
            longest =
                std::max(longest, isForeignPath(path) ? name.size() : int(name.toUtf8().size()));
        return longest;
    }

    /// A number of bytes that no name in the path exceeds. It is fast: no variable is replaced.
    int mostBytesInName(const QByteArray& path) const
    {
        constexpr int bytesBeyondAscii = 2; // of Latin-1
        int longest = 0;
        int bytes = 0;
        for (const char c : path) {
            const bool isAscii = static_cast<unsigned char>(c) < 128;
            bytes += c == '[' ? m_mostBytesInValue : isAscii ? 1 : bytesBeyondAscii;
            if (c == '/' || c == '\\')
                bytes = 0;
            longest = std::max(longest, bytes);
        }
        return longest;
    }

    const SeriesFacts& m_facts;
    Findings& m_findings;
    const MachineValues m_machine;
    const int m_mostBytesInValue;
    NameExpander m_names;
    int m_file = -1;
    std::array<int, pathVariableCount> m_lengths = {}; ///< in the last file; -1 if unknown
};

constexpr Rule controlCharacter = {
    "control-character",
    Severity::Warning,
    "paths",
    "A path holds a character that can't be seen: a control character, a soft hyphen, or a "
    "no-break blank at the end of a name. It is part of the name. A note for a no-break blank "
    "between other letters, which looks like a blank, and for a blank at the end of a name.",
    "remove the character",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out\t_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

/// True at the beginning or the end of a path, and of a name in it.
bool isAtEndOfName(const QByteArray& path, int place)
{
    const auto isSeparator = [](char c) { return c == '/' || c == '\\'; };
    return place == 0 || place == path.size() - 1 || isSeparator(path[place - 1]) ||
           isSeparator(path[place + 1]);
}

/// The severity of a character that can't be seen, or that is taken for a blank; nothing for
/// others.
std::optional<Severity> hiddenAs(const QByteArray& path, int place)
{
    const auto code = static_cast<unsigned char>(path[place]);
    if (code == ' ')
        return isAtEndOfName(path, place) ? std::optional(Severity::Note) : std::nullopt;
    if (code == noBreakBlank)
        return isAtEndOfName(path, place) ? Severity::Warning : Severity::Note;
    const bool isHidden = code < 32 || (code > 126 && code < noBreakBlank) || code == softHyphen;
    return isHidden ? std::optional(Severity::Warning) : std::nullopt;
}

Message messageOnHidden(const QByteArray& path, int place, const char* field)
{
    const auto code = static_cast<unsigned char>(path[place]);
    if (code == ' ')
        return fmt::format(
            "a name in the {} begins or ends with a blank, which is part of the name", field);
    const char* const look = code == noBreakBlank && !isAtEndOfName(path, place)
                                 ? "looks like a blank, but is another character in the name"
                                 : "can't be seen and is part of the name";
    return fmt::format("{} holds the character \\x{:02X}, which {}", field, code, look);
}

/// The first, and of the first warnings before notes.
void checkCharacters(const LineFact& line, TaskPath which, Findings& findings)
{
    const QByteArray& path = line.path(which);
    std::optional<Severity> worst;
    int place = -1;
    for (int i = 0; i < path.size() && worst != Severity::Warning; ++i) {
        const char c = path[i];
        if (c > ' ' && c < 127)
            continue;
        const std::optional<Severity> severity = hiddenAs(path, i);
        // Parts of letters in UTF-8 are a mistake of their own.
        if (!severity || (worst && *severity == Severity::Note) ||
            (static_cast<unsigned char>(c) > 127 && looksLikeUtf8(line.text)))
            continue;
        worst = severity;
        place = i;
    }
    if (worst)
        findings.add(controlCharacter, line, line.columnOf(which) + place,
                     messageOnHidden(path, place, fieldName(firstPathField + which)).as(*worst));
}

void checkMarkerPath(const LineFact& line, Findings& findings)
{
    const int column = line.column + 1;
    if (line.text.size() > maxPath)
        findings.add(longPath, line, column + maxPath,
                     fmt::format("the marker has {} characters: what follows the first {} is not "
                                 "read",
                                 line.text.size(), maxPath));
    if (isRelative(line.text) && !line.text.startsWith('['))
        findings.add(
            relativePath, line, column,
            {fmt::format("the marker {} is not a full path, and is taken from the folder in "
                         "which the speed test runs",
                         quoted(line.text)),
             fmt::format("write {}", quoted("[cfgPath]/" + line.text))});
}

constexpr Rule noPaths = {
    "no-paths",
    Severity::Error,
    "paths",
    "Neither source nor destination names a file.",
    "name a source, a destination or both",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  MEMORY;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

void checkTask(const SeriesFacts& facts, const LineFact& line, LengthRule& lengths,
               Findings& findings)
{
    if (line.fromMemory && line.toMemory && line.splitEnd == 0)
        findings.add(noPaths, line, line.columnOf(SourcePath),
                     "neither source nor destination names a file: there is nothing to test");
    for (const TaskPath which : {SourcePath, DestPath, LogPath, CsvPath}) {
        checkRelative(facts, line, which, findings);
        checkCharacters(line, which, findings);
        lengths.check(line, which);
    }
    checkLogs(facts, line, findings);
}

} // namespace

void checkPaths(const SeriesFacts& facts, const CheckOptions& options, Findings& findings)
{
    LengthRule lengths(facts, options, findings);
    for (const auto* lines : {&facts.lines, &facts.initLines}) {
        for (const LineFact& line : *lines) {
            if (isMarker(line))
                checkMarkerPath(line, findings);
            if (isTask(line))
                checkTask(facts, line, lengths, findings);
        }
    }
}

RuleList pathRules()
{
    return {&longPath, &controlCharacter, &noPaths, &emptyLog, &relativePath};
}
