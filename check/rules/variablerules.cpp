#include "check/nameexpander.h"
#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/rules/variables.h"
#include "check/text.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <fmt/format.h>

#include <vector>

// Whether the variables in a path are those that the speed test replaces.

namespace {

/// The longest variable whose name, without its brackets and in small letters, is the part of that
/// length which `part` takes of a text; null if there is none.
template <typename Part>
const char* longestVariable(const Part& part)
{
    const char* longest = nullptr;
    for (const char* variable : pathVariables) {
        const QByteArray name = QByteArray(variable).mid(1).chopped(1).toLower();
        const bool isLonger = longest == nullptr || qstrlen(variable) > qstrlen(longest);
        if (isLonger && part(name.size()) == name)
            longest = variable;
    }
    return longest;
}

/// The variable whose name the text begins with, in whatever capitals; else null.
const char* variableAtStart(const QByteArray& text)
{
    return longestVariable([small = text.toLower()](int size) { return small.left(size); });
}

/// The same for the end of a text.
const char* variableAtEnd(const QByteArray& text)
{
    return longestVariable([small = text.toLower()](int size) { return small.right(size); });
}

/// A path, or a marker, in which variables are looked for.
struct VariableText
{
    const LineFact& line;
    QByteArray text;
    int column; ///< where it begins, from 1
};

/// The variable that corresponds to a word of other programs, in whatever capitals; null if none
/// does.
const char* likenessOf(const QString& word)
{
    static const QHash<QString, const char*> likenesses = {
        {"host", "[host]"},          {"hostname", "[host]"},
        {"computername", "[host]"},  {"computer", "[host]"},
        {"machine", "[host]"},       {"machinename", "[host]"},
        {"node", "[host]"},          {"pc", "[host]"},
        {"date", "[date]"},          {"time", "[date]"},
        {"datetime", "[date]"},      {"timestamp", "[date]"},
        {"now", "[date]"},           {"temp", "[temp]"},
        {"tmp", "[temp]"},           {"tmpdir", "[temp]"},
        {"tempdir", "[temp]"},       {"tmppath", "[temp]"},
        {"temppath", "[temp]"},      {"iter", "[iter]"},
        {"iteration", "[iter]"},     {"loop", "[iter]"},
        {"run", "[iter]"},           {"cfgpath", "[cfgPath]"},
        {"pwd", "[cfgPath]"},        {"path", "[cfgPath]"},
        {"dir", "[cfgPath]"},        {"folder", "[cfgPath]"},
        {"cfgname", "[cfgName]"},    {"name", "[cfgName]"},
        {"cfgfile", "[cfgName]"},    {"cfgtaskid", "[cfgTaskID]"},
        {"taskid", "[cfgTaskID]"},   {"task", "[cfgTaskID]"},
        {"cfgid", "[cfgID]"},        {"id", "[cfgID]"},
        {"cfgnameid", "[cfgNameID]"}};
    return likenesses.value(word.toLower(), nullptr);
}

/// The variable that is meant by a word in brackets; null if that is unknown.
const char* meantBy(const QByteArray& word)
{
    const QString inside = QString::fromLatin1(word.mid(1).chopped(1)).trimmed();
    const char* const likeness = likenessOf(inside);
    return likeness != nullptr ? likeness : closest(word.toStdString(), pathVariables);
}

constexpr Rule unknownVariable = {
    "unknown-variable",
    Severity::Warning,
    "paths",
    "A word in brackets is not a variable, or a variable lacks a bracket: it stays in the name as "
    "it is. Capitals count.",
    "write the variable as the editor lists it",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[CfgPath]/out_[host].dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

/// Says what is wrong with the brackets of one path.
class BracketRule
{
public:
    BracketRule(const SeriesFacts& facts, const CheckOptions& options, Findings& findings)
        : m_options(options)
        , m_findings(findings)
        , m_names(facts, thisMachine())
        , m_runFolder(facts.runFolder.toLatin1())
    {}

    void check(const VariableText& path)
    {
        int from = 0;
        // A folder's own name may hold brackets.
        if (path.text.startsWith(m_runFolder))
            from = m_runFolder.size();
        int open = path.text.indexOf('[', from);
        checkUnopened(path, from, open < 0 ? path.text.size() : open);
        while (open >= 0) {
            const int close = path.text.indexOf(']', open);
            if (close < 0)
                return checkUnclosed(path, open);
            // "[a[host]": the inner one counts.
            const int inner = path.text.lastIndexOf('[', close);
            if (inner > open)
                checkUnclosed(path, open);
            checkWord(path, inner, close);
            open = path.text.indexOf('[', close);
            checkUnopened(path, close + 1, open < 0 ? path.text.size() : open);
        }
    }

private:
    void checkWord(const VariableText& path, int open, int close)
    {
        const QByteArray word = path.text.mid(open, close - open + 1);
        if (isVariable(word))
            return;
        if (m_findings.isFull(unknownVariable, path.line.file))
            return add(path, open, {});
        if (isOnDisk(path, close))
            return;
        add(path, open,
            fmt::format("unknown variable {}{}: it stays in the name as it is", quoted(word),
                        didYouMean(meantBy(word))));
    }

    /// A folder or a file may be called so.
    bool isOnDisk(const VariableText& path, int close)
    {
        int end = path.text.indexOf('/', close);
        end = end < 0 ? path.text.size() : end;
        return m_options.environment.exists(m_names.resolve(path.line, path.text.left(end)));
    }

    void checkUnclosed(const VariableText& path, int open)
    {
        const char* variable = variableAtStart(path.text.mid(open + 1));
        if (variable != nullptr)
            add(path, open,
                fmt::format("a ']' is missing (did you mean {}?): the text stays in the name as it "
                            "is",
                            variable));
    }

    void checkUnopened(const VariableText& path, int begin, int end)
    {
        const int close = path.text.indexOf(']', begin);
        if (close < 0 || close >= end)
            return;
        const char* variable = variableAtEnd(path.text.mid(begin, close - begin));
        if (variable != nullptr)
            add(path, close,
                fmt::format("a '[' is missing (did you mean {}?): the text stays in the name as it "
                            "is",
                            variable));
    }

    void add(const VariableText& path, int place, std::string text)
    {
        m_findings.add(unknownVariable, path.line, path.column + place, std::move(text));
    }

    const CheckOptions& m_options;
    Findings& m_findings;
    NameExpander m_names;
    QByteArray m_runFolder;
};

constexpr Rule otherNotation = {
    "other-notation",
    Severity::Warning,
    "paths",
    "The path holds a variable in the notation of another program, which stays in the name as it "
    "is. A note, unless the path begins with it: then the path is relative.",
    "write the variable in brackets, as the editor lists it",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
            "[cfgPath]/out_$HOSTNAME.dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile(plainTask)};

/// A word in the notation of another program.
struct OtherWord
{
    int place; ///< from 0
    QString text;
    const char* likeness; ///< the variable that it corresponds to, or null
};

std::vector<OtherWord> otherWordsIn(const QByteArray& path)
{
    // ${x}, $(x), {x}, <x>, %x%, !x!, @x@, (x) and $X; of a small word after "$" only those that
    // have a likeness.
    static const QRegularExpression pattern(
        R"(\$\{(\w+)\}|\$\((\w+)\)|\{(\w+)\}|<(\w+)>|%(\w+)%|!(\w+)!|@(\w+)@|\$([A-Za-z_]\w+))"
        R"(|\(((?:host|iter|date|temp|cfg)\w*)\))",
        QRegularExpression::CaseInsensitiveOption);
    std::vector<OtherWord> words;
    if (path.toStdString().find_first_of("${<%!@(") == std::string::npos)
        return words;
    auto matches = pattern.globalMatch(QString::fromLatin1(path));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const QString word = match.captured(match.lastCapturedIndex());
        const char* likeness = likenessOf(word);
        const bool isByName =
            match.captured().startsWith('$') && word == word.toUpper() && word != word.toLower();
        if (likeness != nullptr || isByName)
            words.push_back({match.capturedStart(), match.captured(), likeness});
    }
    return words;
}

/// At the start of a path the word is meant for the folder.
void checkOtherNotation(const VariableText& path, Findings& findings)
{
    for (const OtherWord& word : otherWordsIn(path.text))
        findings.add(otherNotation, path.line, path.column + word.place,
                     Message(fmt::format("{} is not a variable here{}: it stays in the name as it "
                                         "is",
                                         quoted(word.text), didYouMean(word.likeness)))
                         .as(word.place == 0 ? Severity::Warning : Severity::Note));
}

constexpr Rule folderVariable = {
    "folder-variable",
    Severity::Warning,
    "paths",
    "[cfgPath] and [temp] stand for whole folders: they belong at the start of a path, and a \"/\" "
    "follows [temp].",
    "begin the path with the variable and \"/\"",
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [temp]out.dat;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"),
    oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  [temp]/out.dat;  "
            "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")};

void checkFolderVariables(const VariableText& path, Findings& findings)
{
    const QByteArray temp = tempVariable;
    for (const QByteArray& variable : {QByteArray(configPathVariable), temp}) {
        const int inside = path.text.indexOf(variable, 1);
        if (inside > 0)
            findings.add(folderVariable, path.line, path.column + inside,
                         fmt::format("{} stands inside of a path, and becomes a full path there",
                                     variable.toStdString()));
    }
    const char after = path.text.size() > temp.size() ? path.text[temp.size()] : '/';
    if (path.text.startsWith(temp) && after != '/' && after != '\\')
        findings.add(folderVariable, path.line, path.column + temp.size(),
                     "a '/' is missing after [temp]: the name is not inside of the folder, but "
                     "beside it");
}

/// The path of a marker, as far as it is read.
QByteArray markerPath(const LineFact& line)
{
    return line.text.left(maxPath);
}

} // namespace

bool startsWithOtherNotation(const QByteArray& path)
{
    const std::vector<OtherWord> words = otherWordsIn(path);
    return !words.empty() && words.front().place == 0;
}

void checkVariables(const SeriesFacts& facts, const CheckOptions& options, Findings& findings)
{
    BracketRule brackets(facts, options, findings);
    // Most tasks have the same paths as others.
    QSet<QByteArray> clean;
    const auto check = [&](const VariableText& path) {
        if (clean.contains(path.text))
            return;
        const long long before = findings.count();
        brackets.check(path);
        checkOtherNotation(path, findings);
        checkFolderVariables(path, findings);
        if (findings.count() == before)
            clean.insert(path.text);
    };
    for (const auto* lines : {&facts.lines, &facts.initLines}) {
        for (const LineFact& line : *lines) {
            if (isMarker(line))
                check({line, markerPath(line), line.column + 1});
            if (!isTask(line))
                continue;
            for (const TaskPath which : {SourcePath, DestPath, LogPath, CsvPath})
                check({line, line.path(which), line.columnOf(which)});
        }
    }
}

RuleList variableRules()
{
    return {&unknownVariable, &otherNotation, &folderVariable};
}
