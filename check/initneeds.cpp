#include "check/initneeds.h"

#include "check/text.h"
#include "check/units.h"
#include "model/tasklinereader.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"

#include <algorithm>

namespace {

/// With only the path that needs a folder; a source needs a file.
TestTask withPath(const TestTask& all, TaskPath which)
{
    TestTask task = all;
    task.sourcePath.clear();
    if (which != DestPath)
        task.destPath.clear();
    if (which != LogPath)
        task.logPath.clear();
    if (which != CsvPath)
        task.csvPath.clear();
    return task;
}

} // namespace

Needs::Needs(const SeriesFacts& facts, const FileUses& uses)
    : m_facts(facts)
    , m_uses(uses)
    , m_names(facts, noMachine())
    , m_isFolderKnown(uses.names().size(), false)
{
    for (const FileUse& use : uses.uses())
        addUse(use);
    m_known.clear();
}

QString Needs::namelessText(const Need& need)
{
    TestTask task = withPath(m_names.record(*need.line), need.which);
    const QStringList names = textsOf(task, need.line->taskNumber);
    task.configPath.clear();
    const QStringList nameless = textsOf(task, need.line->taskNumber);
    const int place = names.indexOf(QString::fromLatin1(need.text));
    const bool differs = place >= 0 && place < nameless.size() && nameless[place] != names[place];
    return differs ? nameless[place] : QString();
}

QStringList Needs::textsOf(const TestTask& task, int taskNumber) const
{
    FileToCreateList list;
    collectFilesOfTask(list, task, taskNumber, m_noMachine);
    QStringList texts;
    for (const FileToCreate& file : list.files())
        texts += file.text;
    return texts;
}

void Needs::addUse(const FileUse& use)
{
    const LineFact& line = m_facts.lines[size_t(use.line)];
    if (use.role == SourcePath) {
        add(use, m_uses.nameOf(use).text, line.used.fileSize, false);
        return;
    }
    const bool isElsewhere =
        use.role == DestPath && !line.path(DestPath).startsWith(configPathVariable);
    if (isElsewhere || m_isFolderKnown[size_t(use.name)])
        return;
    m_isFolderKnown[size_t(use.name)] = true;
    add(use, folderName(line, use), 1, true);
}

/// The file that has the folder of a path made.
QByteArray Needs::folderName(const LineFact& line, const FileUse& use)
{
    const UsedName& name = m_uses.nameOf(use);
    if (!name.mustExpandAnew)
        return name.text.left(name.text.lastIndexOf('/') + 1) + dummyFileName;
    const QByteArray& path = line.path(use.role);
    const QByteArray dummy = path.left(path.lastIndexOf('/') + 1) + dummyFileName;
    return toLatin1(m_names.initName(line, dummy, use.iteration));
}

void Needs::add(const FileUse& use, const QByteArray& text, qint64 size, bool isDummy)
{
    if (m_known.contains(text))
        return;
    m_known.insert(text);
    m_needs.push_back({&m_facts.lines[size_t(use.line)], use.role, text, resolved(use, text), size,
                       isDummy, !isDummy && m_uses.isWrittenBefore(m_uses.file(use, 0), use)});
}

/// Where the file lies that a line of the "_init" file makes by this name.
QByteArray Needs::resolved(const FileUse& use, const QByteArray& text)
{
    if (m_uses.nameOf(use).mustExpandAnew)
        return toLatin1(m_names.resolve(m_facts.lines[size_t(use.line)], text, use.iteration));
    QByteArray path = text;
    replaceConfigPath(path, m_runFolder);
    return resolvedPath(path);
}

InitFile::InitFile(const SeriesFacts& facts, const FileUses& uses)
{
    if (facts.initFile < 0)
        return;
    NameExpander names(facts, thisMachine());
    LineFact line;
    for (const InitUse& made : uses.init()) {
        line.file = made.entry.file;
        const QString path = names.resolve(line, made.name);
        m_files.push_back({path, made.name, made.entry, uses.files()[size_t(made.file)].isOwn});
        if (!m_entries.contains(path) || made.entry.isActive)
            m_entries.insert(path, made.entry);
        if (!made.entry.isActive)
            continue;
        m_sizes.insert({path, made.entry.size / bytesPerKib});
        if (made.entry.otherLine > 0)
            m_sizes.insert({path, made.entry.otherSize / bytesPerKib});
        m_folders.add(path);
    }
}

const InitEntry* InitFile::entryOf(const QString& path) const
{
    const auto found = m_entries.constFind(path);
    return found == m_entries.cend() ? nullptr : &*found;
}

QSet<QByteArray> namesAfterSave(const SeriesFacts& facts)
{
    QSet<QByteArray> names;
    const MachineValues machine = thisMachine();
    for (const LineFact& line : facts.lines) {
        TestTask task;
        _kvString<maxLine> text;
        text.addSignExtended(line.text.constData(), line.text.size());
        const FileFact& file = facts.fileOf(line);
        if (!isTask(line) || !readTaskLine(task, text, kvToString8<maxPath>(file.path)))
            continue;
        task.configId = file.number;
        task.iterations = std::min(task.iterations, facts.iterationLimit);
        FileToCreateList list; // of one task: all together take too much memory
        collectFilesOfTask(list, task, line.taskNumber, machine);
        for (const FileToCreate& created : list.files())
            names.insert(toLatin1(created.text));
    }
    return names;
}
