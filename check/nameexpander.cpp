#include "check/nameexpander.h"

#include "check/text.h"
#include "shared/kvfile.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"
#include "shared/kvtime.h"

#include <algorithm>
#include <string>
#include <utility>

namespace {

using Path = _kvString8_allSize<maxPath>;

Path toPath(const QByteArray& text)
{
    Path path;
    path.add(text.constData(), text.size());
    return path;
}

int longestValueOf(const SeriesFacts& facts, const MachineValues& machine)
{
    constexpr int maxNumbersAndAdditions = 20;
    int longest = std::max(facts.runFolder.size(), facts.name.baseName.size());
    longest = std::max(longest, machine.computerName ? int(machine.computerName->length) : 0);
    longest = std::max(longest, machine.tempFolder ? int(machine.tempFolder->length) : 0);
    longest = std::max(longest, machine.date ? machine.date->size() : 0);
    return longest + maxNumbersAndAdditions;
}

} // namespace

NameExpander::NameExpander(const SeriesFacts& facts, MachineValues machine)
    : m_facts(facts)
    , m_machine(std::move(machine))
    , m_longestValue(longestValueOf(facts, m_machine))
{}

void NameExpander::turnTo(const LineFact& line)
{
    if (line.file == m_file)
        return;
    m_file = line.file;
    const FileFact& file = m_facts.fileOf(line);
    const QString fileName = file.path.mid(file.path.lastIndexOf('/') + 1);
    m_task.configPath = kvToString8<maxPath>(m_facts.runFolder + fileName);
    m_task.configId = file.number;
}

QString NameExpander::expand(const LineFact& line, const QByteArray& path, int iteration,
                             bool keepCfgPath)
{
    _kvString<maxPath> text;
    text.addSignExtended(path.constData(), path.size());
    return kvToQString(
        replaceFileVariables(m_task, text, line.taskNumber, iteration, keepCfgPath, m_machine));
}

QString NameExpander::resolve(const LineFact& line, const QByteArray& path, int iteration)
{
    turnTo(line);
    if (path.isEmpty() || !isRelative(path))
        return expand(line, path, iteration, false);
    return expand(line, m_facts.runFolder.toLatin1() + path, iteration, false);
}

QString NameExpander::initName(const LineFact& line, const QByteArray& path, int iteration)
{
    turnTo(line);
    return expand(line, path, iteration, true);
}

QString NameExpander::namelessInitName(const LineFact& line, const QByteArray& path, int iteration)
{
    turnTo(line);
    m_file = -1;
    m_task.configPath.clear();
    return expand(line, path, iteration, true);
}

QString NameExpander::valueOf(const LineFact& line, const char* variable, int iteration)
{
    turnTo(line);
    return expand(line, variable, iteration, false);
}

TestTask& NameExpander::record(const LineFact& line)
{
    turnTo(line);
    m_task.io.fileSize = line.used.fileSize;
    // Names that don't tell the iteration are the same in all.
    int iterations = 0;
    for (const TaskPath which : {SourcePath, DestPath, LogPath, CsvPath})
        iterations = std::max(iterations, iterationsOf(line, line.path(which)));
    m_task.iterations = std::min(iterations, m_facts.iterationLimit);
    m_task.sourcePath = toPath(line.path(SourcePath));
    m_task.destPath = toPath(line.path(DestPath));
    m_task.logPath = toPath(line.path(LogPath));
    m_task.csvPath = toPath(line.path(CsvPath));
    return m_task;
}

MachineValues noMachine()
{
    return {_kvString<maxPath>(hostVariable), QString::fromLatin1(dateVariable),
            Path(tempVariable)};
}

MachineValues thisMachine()
{
    return {getComputerName(), _kvTime(true).asStringFileName_TruncSec(), kvGetTempDir()};
}

void replaceConfigPath(QByteArray& path, const QByteArray& folder)
{
    if (!holds(path, configPathVariable))
        return;
    // "[cfgPath]/x" and "[cfgPath]x" are the same.
    path.replace("[cfgPath]/", configPathVariable);
    path.replace(configPathVariable, folder);
}

bool isRelative(const QByteArray& path)
{
    // The beginning tells, and copying all of each path takes time.
    constexpr int longestBeginning = int(std::char_traits<char>::length(configPathVariable));
    Path beginning;
    beginning.add(path.constData(), std::min(path.size(), longestBeginning));
    return isRelativePath(beginning);
}

bool dependsOnMachine(const QString& name)
{
    return name.contains(QLatin1String(hostVariable)) ||
           name.contains(QLatin1String(dateVariable)) || name.contains(QLatin1String(tempVariable));
}
