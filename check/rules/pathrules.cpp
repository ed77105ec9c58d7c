#include "check/taskfields.h"
#include "check/text.h"
#include "shared/kvpath.h"

#include <QSet>

#include <fmt/format.h>

// What is wrong with a path by itself: its variables, its form, its folder.

namespace {

constexpr const char* variables[] = {"[iter]",    "[host]",       "[date]",     "[temp]",
                                     "[cfgID]",   "[cfgTaskID]",  "[cfgName]",  "[cfgPath]",
                                     "[cfgline]", "[cfgLogName]", "[cfgNameID]"};

bool isVariable(const std::string& word)
{
    for (const char* variable : variables) {
        if (word == variable)
            return true;
    }
    return false;
}

bool isRelative(const QByteArray& path)
{
    _kvString8_allSize<500> text;
    text.add(path.constData(), path.size());
    return isRelativePath(text);
}

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
            findings.add(Rule::UnknownVariable, line, column + open,
                         fmt::format("{} is no variable{}: it stays in the name as it is",
                                     quoted(QByteArray::fromStdString(word)),
                                     didYouMean(closest(word, variables))));
        open = text.indexOf('[', close);
    }
}

void checkRelative(const LineFact& line, TaskPath which, Findings& findings)
{
    const QByteArray path = line.path(which);
    if (path.isEmpty() || !isRelative(path))
        return;
    const bool mayBeMemory = which <= DestPath && path.toUpper() == "MEMORY";
    // A misspelled variable at the start is one mistake, not two.
    if (path.startsWith('[') && !isVariable(path.left(path.indexOf(']') + 1).toStdString()))
        return;
    findings.add(Rule::RelativePath, line, line.columnOf(which),
                 mayBeMemory ? fmt::format("{} is a file name (did you mean MEMORY?)", quoted(path))
                             : fmt::format("{} is relative to the folder of the config file "
                                           "(did you mean {}?)",
                                           quoted(path), quoted("[cfgPath]/" + path)));
}

/// The editor writes its full path, which may hold brackets that are no variable.
void checkMarkerPath(const SeriesFacts& facts, const LineFact& line, Findings& findings)
{
    const int column = line.column + 1;
    const QByteArray folder = facts.runFolder.toLatin1();
    const int known = line.text.startsWith(folder) ? folder.size() : 0;
    checkVariables(line, line.text.mid(known), column + known, findings);
    if (line.text.size() > longestPath)
        findings.add(Rule::LongPath, line, column + longestPath,
                     fmt::format("the marker has {} characters: what follows the first 500 is not "
                                 "read",
                                 line.text.size()));
    if (isRelative(line.text) && !line.text.startsWith('['))
        findings.add(Rule::RelativePath, line, column,
                     fmt::format("the marker {} is no full path (did you mean {}?)",
                                 quoted(line.text), quoted("[cfgPath]/" + line.text)));
}

void checkLogs(const LineFact& line, Findings& findings)
{
    for (const TaskPath which : {LogPath, CsvPath}) {
        const QByteArray path = line.path(which);
        const char* name = fieldName(firstPathField + which);
        // A line that ends early has its own finding.
        if (path.isEmpty() && firstPathField + which <= line.fields.count)
            findings.add(
                Rule::EmptyLog, line, line.columnOf(which),
                fmt::format("{} is empty: a load turns it into the folder of the config file",
                            name));
        else if (path.endsWith('/'))
            findings.add(Rule::LogIsFolder, line, line.columnOf(which),
                         fmt::format("{} {} is a folder, not a file", name, quoted(path)));
    }
}

void checkExpandedLength(const LineFact& line, TaskPath which, NameExpander& names,
                         Findings& findings)
{
    const QByteArray path = line.path(which);
    // What can't grow that long need not be tried: most of the time goes into replacing variables.
    if (path.size() + path.count('[') * names.longestValue() < longestPath)
        return;
    if (path.size() < longestPath && names.resolve(line, path).size() >= longestPath)
        findings.add(Rule::LongPath, line, line.columnOf(which),
                     fmt::format("{} is cut at 500 characters when its variables are replaced",
                                 fieldName(firstPathField + which)));
}

/// A path of another system can't be looked for on this one.
bool isForeign(const QByteArray& path)
{
    return path.startsWith('\\') || (path.size() > 1 && path[1] == ':');
}

QString folderOf(const QString& path)
{
    return kvGetDirName(path, '/');
}

/// Says of each destination folder once that nothing makes it.
class FolderRule
{
public:
    FolderRule(const SeriesFacts& facts, const CheckOptions& options, Findings& findings)
        : m_options(options)
        , m_findings(findings)
        , m_anyMachine(facts, noMachine())
        , m_here(facts, thisMachine())
    {
        for (auto it = facts.init.cbegin(); it != facts.init.cend(); ++it)
            m_made.insert(folderOf(QString::fromLatin1(it.key())));
    }

    void check(const LineFact& line)
    {
        const QByteArray dest = line.path(DestPath);
        // Below the config file's folder, the "_init" file is asked as a whole.
        if (dest.isEmpty() || dest.startsWith("[cfgPath]") || isForeign(dest))
            return;
        const QString folder = folderOf(m_anyMachine.resolve(line, dest));
        if (m_checked.contains(folder))
            return;
        m_checked.insert(folder);
        if (dependsOnMachine(folder) && !folder.contains(QLatin1String("[date]")))
            checkLocal(line, folder);
        else if (!m_made.contains(folderOf(m_here.initName(line, dest))) &&
                 !m_options.environment.exists(folderOf(m_here.resolve(line, dest))))
            m_findings.add(
                Rule::DestFolder, line, line.columnOf(DestPath),
                fmt::format("the folder {} does not exist, and nothing makes it", quoted(folder)));
    }

private:
    void checkLocal(const LineFact& line, const QString& folder)
    {
        if (folder == QLatin1String("[temp]/"))
            return;
        m_findings.add(
            Rule::DestFolderLocal, line, line.columnOf(DestPath),
            fmt::format("the folder {} must be there on each machine: the _init file does "
                        "not make it",
                        quoted(folder)));
    }

    const CheckOptions& m_options;
    Findings& m_findings;
    NameExpander m_anyMachine;
    NameExpander m_here;
    QSet<QString> m_made;
    QSet<QString> m_checked;
};

} // namespace

void checkPaths(const SeriesFacts& facts, const CheckOptions& options, Findings& findings)
{
    NameExpander names(facts, thisMachine());
    FolderRule folders(facts, options, findings);
    for (const LineFact& line : facts.lines) {
        if (isMarker(line))
            checkMarkerPath(facts, line, findings);
        if (!isTask(line))
            continue;
        if (line.fromMemory && line.toMemory)
            findings.add(Rule::NoPaths, line, line.columnOf(SourcePath),
                         "neither source nor destination names a file: there is nothing to test");
        for (const TaskPath which : {SourcePath, DestPath, LogPath, CsvPath}) {
            checkVariables(line, line.path(which), line.columnOf(which), findings);
            checkRelative(line, which, findings);
            checkExpandedLength(line, which, names, findings);
        }
        checkLogs(line, findings);
        folders.check(line);
    }
    checkSources(facts, options, findings);
}
