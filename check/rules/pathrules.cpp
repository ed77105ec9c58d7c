#include "check/nameexpander.h"
#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/taskfields.h"
#include "check/text.h"
#include "shared/kvpath.h"

#include <fmt/format.h>

// What is wrong with a path by itself: its variables, its form, its folder.

namespace {

bool isVariable(const std::string& word)
{
    for (const char* variable : pathVariables) {
        if (word == variable)
            return true;
    }
    return false;
}

constexpr Rule unknownVariable = {
    "unknown-variable",
    Severity::Warning,
    "paths",
    "A word in brackets is not a variable and stays as it is; capitals count.",
    "Write the variable as the editor lists it.",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[CfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

/// Every "[word]" without a bracket inside.
void checkVariables(const LineFact& line, const QByteArray& text, int column, Findings& findings)
{
    int open = text.indexOf('[');
    while (open >= 0) {
        const int close = text.indexOf(']', open);
        if (close < 0)
            return;
        // "[a[host]": the inner one counts.
        open = text.lastIndexOf('[', close);
        const std::string word = text.mid(open, close - open + 1).toStdString();
        if (!isVariable(word))
            findings.add(unknownVariable, line, column + open,
                         fmt::format("{} is no variable{}: it stays in the name as it is",
                                     quoted(QByteArray::fromStdString(word)),
                                     didYouMean(closest(word, pathVariables))));
        open = text.indexOf('[', close);
    }
}

constexpr Rule relativePath = {
    "relative-path",
    Severity::Warning,
    "paths",
    "A relative path is taken from the folder of the config file, which changes when it is copied.",
    "Begin the path with [cfgPath] or with a folder.",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  out/[host].dat;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out/[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

void checkRelative(const LineFact& line, TaskPath which, Findings& findings)
{
    const QByteArray path = line.path(which);
    if (path.isEmpty() || !isRelative(path))
        return;
    const bool mayBeMemory = which <= DestPath && path.toUpper() == "MEMORY";
    // A misspelled variable at the start is one mistake, not two.
    if (path.startsWith('[') && !isVariable(path.left(path.indexOf(']') + 1).toStdString()))
        return;
    findings.add(relativePath, line, line.columnOf(which),
                 mayBeMemory ? fmt::format("{} is a file name (did you mean MEMORY?)", quoted(path))
                             : fmt::format("{} is relative to the folder of the config file "
                                           "(did you mean {}?)",
                                           quoted(path), quoted("[cfgPath]/" + path)));
}

/// The "_init" file has no logs on purpose.
constexpr Rule emptyLog = {
    "empty-log",
    Severity::Note,
    "paths",
    "An empty log or .csv field comes back from a load as the folder of the config file.",
    "Name a log and a .csv file.",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_[host].dat;  ;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

void checkLogs(const SeriesFacts& facts, const LineFact& line, Findings& findings)
{
    for (const TaskPath which : {LogPath, CsvPath}) {
        const QByteArray path = line.path(which);
        const char* name = fieldName(firstPathField + which);
        // A line that ends early has its own finding.
        if (path.isEmpty() && firstPathField + which <= line.fields.count && !facts.isInit)
            findings.add(
                emptyLog, line, line.columnOf(which),
                fmt::format("{} is empty: a load turns it into the folder of the config file",
                            name));
    }
}

constexpr Rule longPath = {
    "long-path",
    Severity::Error,
    "paths",
    "A path ends at 500 characters, as written and with its variables replaced.",
    "Shorten the path.",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/x{500}_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

void checkPathLength(const LineFact& line, TaskPath which, NameExpander& names, Findings& findings)
{
    const int length = line.fields.fields[size_t(firstPathField + which - 1)].length;
    const int column = line.columnOf(which);
    const char* name = fieldName(firstPathField + which);
    const QByteArray path = line.path(which);
    if (length > maxPath)
        findings.add(longPath, line, column + maxPath,
                     fmt::format("{} has {} characters: what follows the first {} is not read",
                                 name, length, maxPath));
    else if (length == maxPath)
        findings.add(longPath, line, column + maxPath - 1,
                     fmt::format("{} has {} characters, the most that a path can: was it cut off?",
                                 name, maxPath));
    // What can't grow that long need not be tried: most of the time goes into replacing variables.
    else if (path.size() + path.count('[') * names.longestValue() >= maxPath &&
             names.resolve(line, path).size() >= maxPath)
        findings.add(longPath, line, column,
                     fmt::format("{} is cut at {} characters when its variables are replaced", name,
                                 maxPath));
}

/// The editor writes its full path, which may hold brackets that are no variable.
void checkMarkerPath(const SeriesFacts& facts, const LineFact& line, Findings& findings)
{
    const int column = line.column + 1;
    const QByteArray folder = facts.runFolder.toLatin1();
    const int known = line.text.startsWith(folder) ? folder.size() : 0;
    checkVariables(line, line.text.mid(known), column + known, findings);
    if (line.text.size() > maxPath)
        findings.add(longPath, line, column + maxPath,
                     fmt::format("the marker has {} characters: what follows the first {} is not "
                                 "read",
                                 line.text.size(), maxPath));
    if (isRelative(line.text) && !line.text.startsWith('['))
        findings.add(relativePath, line, column,
                     fmt::format("the marker {} is no full path (did you mean {}?)",
                                 quoted(line.text), quoted("[cfgPath]/" + line.text)));
}

constexpr Rule noPaths = {"no-paths",
                          Severity::Error,
                          "paths",
                          "Neither source nor destination names a file.",
                          "Name a source, a destination or both.",
                          oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
                                  "MEMORY;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
                          oneFile(plainTask)};

void checkTask(const SeriesFacts& facts, const LineFact& line, NameExpander& names,
               Findings& findings)
{
    if (line.fromMemory && line.toMemory)
        findings.add(noPaths, line, line.columnOf(SourcePath),
                     "neither source nor destination names a file: there is nothing to test");
    for (const TaskPath which : {SourcePath, DestPath, LogPath, CsvPath}) {
        checkVariables(line, line.path(which), line.columnOf(which), findings);
        checkRelative(line, which, findings);
        checkPathLength(line, which, names, findings);
    }
    checkLogs(facts, line, findings);
}

} // namespace

void checkPaths(const SeriesFacts& facts, Findings& findings)
{
    NameExpander names(facts, thisMachine());
    for (const LineFact& line : facts.lines) {
        if (isMarker(line))
            checkMarkerPath(facts, line, findings);
        if (!isTask(line))
            continue;
        checkTask(facts, line, names, findings);
    }
}

RuleList pathRules()
{
    return {&longPath, &noPaths, &emptyLog, &unknownVariable, &relativePath};
}
