#include "check/seriesfacts.h"

#include "configset/configfilereader.h"
#include "model/pathvariables.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

QByteArray latin1(const _kvString<maxLine>& line)
{
    return kvToQString(line).toLatin1();
}

int leadingBlanks(const _kvString<maxLine>& line)
{
    int count = 0;
    while (count < line.length && kvdetail::isWhiteSpace(line.text[count]))
        ++count;
    return count;
}

/// Notes where the last character stands that a save would keep.
void noteLine(FileFact& file, const ConfigFileReader& reader, qint64& offset)
{
    if (file.lineAtLimit == 0 && offset + reader.lineLength() >= maxConfigFile) {
        file.lineAtLimit = reader.lineNumber();
        file.columnAtLimit = int(std::max<qint64>(maxConfigFile - offset, 1));
    }
    offset += reader.lineLength() + 1;
    file.lineCount = reader.lineNumber();
}

/// Reads the lines of one file into the facts.
class FileScanner
{
public:
    FileScanner(SeriesFacts& facts, FileFact& file, int index, int entryLimit)
        : m_facts(facts)
        , m_file(file)
        , m_index(index)
        , m_entryLimit(entryLimit)
        , m_path(kvToString8<maxPath>(file.path))
        , m_takesInfo(std::all_of(facts.info.begin(), facts.info.end(),
                                  [](const std::string& text) { return text.empty(); }))
    {}

    void scan()
    {
        ConfigFileReader reader(m_path);
        m_file.readable = reader.isOpen();
        m_file.firstEntry = m_file.endEntry = int(m_facts.lines.size());
        _kvString<maxLine> line;
        qint64 offset = 0;
        while (!m_facts.limitReached && reader.readLine(line)) {
            noteLine(m_file, reader, offset);
            scanLine(line, reader.lineLength(), reader.lineNumber());
        }
        m_file.wasCut = reader.fileWasCut();
        m_file.endEntry = int(m_facts.lines.size());
    }

private:
    void scanLine(_kvString<maxLine>& line, qint64 length, int number)
    {
        LineFact fact;
        fact.file = m_index;
        fact.line = number;
        fact.length = length;
        fact.hasZero = line.length < std::min<qint64>(length, maxLine);
        fact.column = leadingBlanks(line);
        const ConfigLine kind = takeConfigLine(line);
        if (kind == ConfigLine::Comment)
            scanComment(fact, line);
        else if (kind == ConfigLine::Entry)
            scanEntry(fact, line);
    }

    void scanComment(LineFact& fact, const _kvString<maxLine>& line)
    {
        if (m_takesInfo && m_facts.info.size() < maxSeriesComments)
            m_facts.info.push_back(kvToQString(line).toStdString());
        else if (m_takesInfo && m_facts.infoCut.line == 0)
            m_facts.infoCut = {m_index, fact.line};
        const bool isWhole = fact.length < maxLine && !fact.hasZero;
        if (isWhole || ++m_facts.brokenComments > maxSeriesComments)
            return;
        fact.text = latin1(line);
        m_facts.lines.push_back(fact);
    }

    void scanEntry(LineFact& fact, const _kvString<maxLine>& line)
    {
        if (m_facts.entryCount == m_entryLimit) {
            m_facts.limitReached = true;
            return;
        }
        ++m_facts.entryCount;
        fact.text = latin1(line);
        m_task = TestTask();
        if (!readTaskLineAsIs(m_task, line, m_path, &fact.problem)) {
            fact.kind = LineFact::Kind::Rejected;
            fact.fields = splitTaskLine(line);
        } else if (m_task.waitForNextConfig) {
            fact.kind = LineFact::Kind::Marker;
            ++m_file.markers;
        } else {
            takeTask(fact, line);
        }
        m_facts.lines.push_back(fact);
    }

    void takeTask(LineFact& fact, const _kvString<maxLine>& line)
    {
        fact.kind = LineFact::Kind::Task;
        fact.fields = splitTaskLine(line);
        fact.taskNumber = m_file.tasks++;
        fact.fromMemory = m_task.sourcePath.isEmpty();
        fact.toMemory = m_task.destPath.isEmpty();
        fact.written = settingsOf(m_task);
        m_task.normalise();
        fact.used = settingsOf(m_task);
    }

    SeriesFacts& m_facts;
    FileFact& m_file;
    int m_index;
    int m_entryLimit;
    _kvString8_allSize<maxPath> m_path;
    bool m_takesInfo;
    TestTask m_task;
};

/// Reads an "_init" file: what its lines create, those that are commented out included.
void readInit(SeriesFacts& facts, FileFact& file, int entryLimit)
{
    const auto path = kvToString8<maxPath>(file.path);
    ConfigFileReader reader(path);
    file.readable = reader.isOpen();
    _kvString<maxLine> line;
    TestTask task;
    qint64 offset = 0;
    while (facts.init.size() < entryLimit && reader.readLine(line)) {
        noteLine(file, reader, offset);
        const ConfigLine kind = takeConfigLine(line);
        if (kind == ConfigLine::Blank || !readTaskLineAsIs(task, line, path) ||
            task.waitForNextConfig || task.destPath.isEmpty())
            continue;
        const TaskLineField dest = splitTaskLine(line).fields[DestField - 1];
        InitEntry& entry = facts.init[latin1(line).mid(dest.column, dest.length)];
        // An active line counts before one that is commented out.
        if (!entry.isActive)
            entry = {reader.lineNumber(), task.io.fileSize, kind == ConfigLine::Entry};
    }
}

/// With the folder as the user spells it; the companion may lie one folder above that.
QString shownPath(const SeriesFacts& facts, const QString& path)
{
    if (path.startsWith(facts.name.folder))
        return facts.shownFolder + path.mid(facts.name.folder.size());
    const QString name = path.mid(facts.runFolder.size());
    return facts.shownFolder.endsWith(waitFolder())
               ? facts.shownFolder.chopped(waitFolder().size()) + name
               : facts.shownFolder + "../" + name;
}

void addFile(SeriesFacts& facts, const QString& path, int number, bool waits, bool isRead)
{
    FileFact file;
    file.path = path;
    file.shown = shownPath(facts, path);
    file.number = number;
    file.waits = waits;
    file.isRead = isRead;
    file.size = QFileInfo(path).size();
    facts.files.push_back(file);
}

void findFiles(SeriesFacts& facts, FolderNames& folderNames)
{
    const QString folders[] = {facts.name.folder, facts.name.folder + waitFolder()};
    for (int number = 0; number < seriesFileCount; ++number) {
        for (const QString& folder : folders) {
            const QString path = seriesFile(folder, facts.name.baseName, number);
            // A link that leads nowhere is there as well, and can't be read.
            if (QFileInfo::exists(path) || QFileInfo(path).isSymLink())
                addFile(facts, path, number, folder != folders[0], true);
        }
    }
    for (const QString& folder : folders) {
        const QStringList names = folderNames.beyondSeries(folder, facts.name.baseName);
        for (const QString& name : names)
            addFile(facts, folder + name, seriesFileCount, folder != folders[0], false);
    }
}

/// A series that was opened inside "_wait" has its companion beside that folder.
void findInit(SeriesFacts& facts)
{
    for (const QString& folder : {facts.name.folder, facts.runFolder}) {
        const QString path = initFile({folder, facts.name.baseName});
        if (facts.initFile < 0 && QFileInfo(path).isFile()) {
            facts.initFile = int(facts.files.size());
            addFile(facts, path, seriesFileCount, false, false);
        }
    }
}

long long namesOf(const SeriesFacts& facts)
{
    long long count = 0;
    for (const LineFact& line : facts.lines) {
        for (const TaskPath which : {SourcePath, DestPath, LogPath, CsvPath})
            count += line.kind == LineFact::Kind::Task
                         ? std::max(iterationsOf(line, line.path(which)), 0)
                         : 0;
    }
    return count;
}

} // namespace

int iterationsOf(const LineFact& line, const QByteArray& path)
{
    return path.contains(iterVariable) ? line.used.iterations : std::min(line.used.iterations, 1);
}

TaskSettings settingsOf(const TestTask& task)
{
    const _fileGLobal& io = task.io;
    return {task.method,      io.flush,    io.preallocate,  io.chunkWait, io.chunkSize,
            io.sysBufferMode, io.fileSize, task.iterations, io.cacheMode, task.writeDone};
}

QByteArray LineFact::field(int number) const
{
    const TaskLineField& place = fields.fields[size_t(number - 1)];
    return text.mid(place.column, place.length);
}

QByteArray LineFact::path(TaskPath which) const
{
    if ((which == SourcePath && fromMemory) || (which == DestPath && toMemory))
        return {};
    return field(firstPathField + which).left(maxPath);
}

int LineFact::columnOf(int number) const
{
    return column + fields.fields[size_t(number - 1)].column + 1;
}

SeriesFacts readSeries(const SeriesName& name, const QString& shownFolder, const ReadLimits& limits,
                       FolderNames* names)
{
    SeriesFacts facts;
    facts.name = name;
    facts.shownFolder = shownFolder;
    facts.runFolder = name.folder.endsWith('/' + waitFolder())
                          ? name.folder.left(name.folder.size() - waitFolder().size())
                          : name.folder;
    facts.isInit = name.baseName.endsWith(QLatin1String(initFileSuffix));
    FolderNames ownNames;
    findFiles(facts, names == nullptr ? ownNames : *names);
    for (size_t i = 0; i < facts.files.size(); ++i) {
        if (facts.files[i].isRead)
            FileScanner(facts, facts.files[i], int(i), limits.entries).scan();
    }
    if (!facts.isInit)
        findInit(facts);
    if (facts.initFile >= 0)
        readInit(facts, facts.files[size_t(facts.initFile)], limits.entries);
    facts.nameCount = namesOf(facts);
    facts.iterationLimit = facts.nameCount > limits.names ? 1 : INT32_MAX;
    return facts;
}
