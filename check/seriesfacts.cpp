#include "check/seriesfacts.h"

#include "check/environment.h"
#include "check/filescanner.h"
#include "check/text.h"
#include "configset/configfilereader.h"
#include "model/pathvariables.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

/// An active line counts before one that is commented out, and of several the last: it leaves the
/// file as it is.
void addInitLine(InitEntry& entry, InitEntry next)
{
    if (!next.isActive && entry.isActive)
        return;
    if (entry.isActive && entry.size != next.size) {
        next.otherLine = entry.line;
        next.otherSize = entry.size;
    }
    entry = next;
}

/// Reads what the lines of an "_init" file create, those that are commented out included.
void readInit(SeriesFacts& facts, int index, int entryLimit)
{
    const auto path = kvToString8<maxPath>(facts.files[size_t(index)].path);
    ConfigFileReader reader(path);
    _kvString<maxLine> line;
    TestTask task;
    while (facts.init.size() < entryLimit && reader.readLine(line)) {
        const ConfigLine kind = takeConfigLine(line);
        if (kind == ConfigLine::Blank || !readTaskLineAsIs(task, line, path) ||
            task.waitForNextConfig || task.destPath.isEmpty())
            continue;
        const TaskLineField dest = splitTaskLine(line).fields[DestField - 1];
        InitEntry& entry = facts.init[kvToQString(line).toLatin1().mid(dest.column, dest.length)];
        addInitLine(entry, {index, reader.lineNumber(), task.io.fileSize, kind == ConfigLine::Entry,
                            entry.otherLine, entry.otherSize});
    }
}

void addFile(SeriesFacts& facts, const QString& path, int number, bool waits, FileRole role)
{
    FileFact file;
    file.role = role;
    file.path = path;
    file.shown = shownPath(facts, path);
    file.number = number;
    file.waits = waits;
    file.size = QFileInfo(path).size();
    facts.files.push_back(file);
}

/// A link that leads nowhere is there as well, and can't be read.
bool isThere(const QString& path)
{
    return QFileInfo::exists(path) || QFileInfo(path).isSymLink();
}

void findFiles(SeriesFacts& facts, FolderNames& folderNames)
{
    const QString folders[] = {facts.name.folder, facts.name.folder + waitFolder()};
    for (int number = 0; number < seriesFileCount; ++number) {
        for (const QString& folder : folders) {
            const QString path = seriesFile(folder, facts.name.baseName, number);
            if (isThere(path))
                addFile(facts, path, number, folder != folders[0], FileRole::Series);
        }
    }
    for (const QString& folder : folders) {
        const QStringList names = folderNames.beyondSeries(folder, facts.name.baseName);
        for (const QString& name : names)
            addFile(facts, folder + name, seriesFileCount, folder != folders[0], FileRole::Beyond);
    }
}

/// The "_init" file lies beside "_wait", also if the series was opened inside of it.
void findInit(SeriesFacts& facts)
{
    const QString path = initFile({facts.runFolder, facts.name.baseName});
    if (isThere(path)) {
        facts.initFile = int(facts.files.size());
        addFile(facts, path, seriesFileCount, false, FileRole::Init);
    }
    const QString other = initFile({facts.runFolder + waitFolder(), facts.name.baseName});
    if (isThere(other))
        addFile(facts, other, seriesFileCount, true, FileRole::OtherInit);
}

void findClosedWaitFolder(SeriesFacts& facts)
{
    const PathStatus status = realEnvironment().look(facts.name.folder + waitFolder().chopped(1));
    if (status.kind == PathStatus::Kind::Nothing || (status.isFolder() && status.isReadable))
        return;
    const QString path = facts.name.folder + waitFolder();
    addFile(facts, status.isFolder() ? path : path.chopped(1), seriesFileCount, false,
            FileRole::WaitFolder);
    std::string& reason = facts.files.back().whyUnreadable;
    if (status.isFolder())
        reason = "you have no right to look into it";
    else
        reason = status.isFile() ? "it is a file" : status.whyUnreadable;
}

bool haveSameBytes(const QString& first, const QString& second)
{
    QFile a(first);
    QFile b(second);
    if (!a.open(QIODevice::ReadOnly) || !b.open(QIODevice::ReadOnly) || a.size() != b.size())
        return false;
    constexpr qint64 piece = 1 << 16;
    while (!a.atEnd()) {
        if (a.read(piece) != b.read(piece))
            return false;
    }
    return true;
}

/// A run starts a file by copying it out of "_wait".
void noteCopies(SeriesFacts& facts)
{
    for (size_t i = 1; i < facts.files.size(); ++i) {
        FileFact& file = facts.files[i];
        const FileFact& before = facts.files[i - 1];
        file.isCopy = file.isRead() && before.isRead() && file.number == before.number &&
                      file.readable && before.readable && haveSameBytes(before.path, file.path);
    }
}

/// With a limit of its own: it is not part of what a load reads.
void scanInit(SeriesFacts& facts, FileFact& file, int entryLimit)
{
    SeriesFacts own;
    FileScanner(own, facts.initLines, file, facts.initFile, entryLimit).scan();
}

/// How many characters a path has at most once its variables are replaced.
int longestName(const SeriesFacts& facts, const QByteArray& path)
{
    const int longestValue = std::max(facts.runFolder.size(), facts.name.baseName.size());
    return std::min(path.size() + maxVariables(path) * longestValue, maxPath);
}

/// Counts the names that all paths stand for.
void countNames(SeriesFacts& facts, const ReadLimits& limits)
{
    long long characters = 0;
    for (const LineFact& line : facts.lines) {
        for (const TaskPath which : {SourcePath, DestPath, LogPath, CsvPath}) {
            const QByteArray path = isTask(line) ? line.path(which) : QByteArray();
            const long long names = path.isEmpty() ? 0 : std::max(iterationsOf(line, path), 0);
            facts.nameCount += names;
            characters += names > 1 ? names * longestName(facts, path) : 0;
        }
    }
    const bool areTooMany = facts.nameCount > limits.names || characters > limits.nameCharacters;
    facts.iterationLimit = areTooMany ? 1 : INT32_MAX;
}

} // namespace

QString shownPath(const SeriesFacts& facts, const QString& path)
{
    if (path.startsWith(facts.name.folder))
        return facts.shownFolder + path.mid(facts.name.folder.size());
    const QString name = path.mid(facts.runFolder.size());
    return facts.shownFolder.endsWith(waitFolder())
               ? facts.shownFolder.chopped(waitFolder().size()) + name
               : facts.shownFolder + "../" + name;
}

int iterationsOf(const LineFact& line, const QByteArray& path)
{
    return holds(path, iterVariable) ? line.used.iterations : std::min(line.used.iterations, 1);
}

TaskSettings settingsOf(const TestTask& task)
{
    const _fileGLobal& io = task.io;
    return {task.method,      io.flush,    io.preallocate,  io.chunkWait, io.chunkSize,
            io.sysBufferMode, io.fileSize, task.iterations, io.cacheMode, task.writeDone};
}

QByteArray LineFact::field(int number) const
{
    const std::string_view found = fieldText(number);
    return {found.data(), int(found.size())};
}

std::string_view LineFact::fieldText(int number) const
{
    const TaskLineField& place = fields.fields[size_t(number - 1)];
    const std::string_view whole(text.constData(), size_t(text.size()));
    return whole.substr(std::min(size_t(place.column), whole.size()), size_t(place.length));
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
    if (!facts.isInit)
        findInit(facts);
    findClosedWaitFolder(facts);
    for (size_t i = 0; i < facts.files.size(); ++i) {
        FileFact& file = facts.files[i];
        if (file.isRead())
            FileScanner(facts, facts.lines, file, int(i), limits.entries).scan();
    }
    if (facts.initFile >= 0) {
        FileFact& file = facts.files[size_t(facts.initFile)];
        scanInit(facts, file, limits.entries);
        readInit(facts, facts.initFile, limits.entries);
    }
    for (int i = 0; facts.isInit && i < int(facts.files.size()); ++i) {
        if (facts.files[size_t(i)].isRead())
            readInit(facts, i, limits.entries);
    }
    noteCopies(facts);
    markSplitTasks(facts.lines);
    markSplitTasks(facts.initLines);
    countNames(facts, limits);
    return facts;
}

const FileFact* SeriesFacts::closedWaitFolder() const
{
    const auto found = std::find_if(files.begin(), files.end(), [](const FileFact& file) {
        return file.role == FileRole::WaitFolder;
    });
    return found == files.end() ? nullptr : &*found;
}

SeriesFacts withoutCopies(const SeriesFacts& facts)
{
    SeriesFacts result = facts;
    result.lines.clear();
    for (FileFact& file : result.files) {
        if (!file.isRead())
            continue;
        const auto begin = facts.lines.begin() + file.firstEntry;
        const auto end = file.isCopy ? begin : facts.lines.begin() + file.endEntry;
        file.firstEntry = int(result.lines.size());
        result.lines.insert(result.lines.end(), begin, end);
        file.endEntry = int(result.lines.size());
    }
    return result;
}
