#include "check/filescanner.h"

#include "check/environment.h"
#include "check/text.h"
#include "configset/configfilereader.h"
#include "model/limits.h"
#include "model/methods.h"
#include "shared/kvtext.h"

#include <algorithm>

namespace {

QByteArray latin1(const _kvString<maxLine>& line)
{
    return toLatin1(kvToQString(line));
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

/// True for the beginning of a task line that lacks fields.
bool isPartOfTask(const QByteArray& text)
{
    const QByteArray method = text.left(text.indexOf(';')).trimmed();
    return text.count(';') < taskLineFieldCount - 1 &&
           std::any_of(std::begin(ioMethods), std::end(ioMethods),
                       [&](const MethodInfo& known) { return method == known.name; });
}

} // namespace

FileScanner::FileScanner(SeriesFacts& facts, std::vector<LineFact>& lines, FileFact& file,
                         int index, int entryLimit)
    : m_facts(facts)
    , m_lines(lines)
    , m_file(file)
    , m_index(index)
    , m_entryLimit(entryLimit)
    , m_path(kvToString8<maxPath>(file.path))
    , m_takesInfo(!file.isInit() &&
                  std::all_of(facts.info.begin(), facts.info.end(),
                              [](const std::string& text) { return text.empty(); }))
{}

void FileScanner::scan()
{
    ConfigFileReader reader(m_path);
    m_file.readable = reader.isOpen();
    if (!m_file.readable)
        m_file.whyUnreadable = realEnvironment().look(m_file.path).whyUnreadable;
    m_file.firstEntry = m_file.endEntry = int(m_lines.size());
    _kvString<maxLine> line;
    qint64 offset = 0;
    while (!m_facts.limitReached && reader.readLine(line)) {
        noteLine(m_file, reader, offset);
        scanLine(line, reader.lineLength(), reader.lineNumber());
    }
    // A part of a file must not pass for the whole: a share that goes away gives only the
    // beginning.
    const QString error = reader.readError();
    if (!error.isEmpty()) {
        m_file.readable = false;
        m_file.whyUnreadable = error.toStdString();
    }
    m_file.wasCut = reader.fileWasCut();
    m_file.endEntry = int(m_lines.size());
}

void FileScanner::scanLine(_kvString<maxLine>& line, qint64 length, int number)
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

void FileScanner::scanComment(LineFact& fact, const _kvString<maxLine>& line)
{
    if (m_takesInfo && m_facts.info.size() < maxSeriesComments)
        m_facts.info.push_back(kvToQString(line).toStdString());
    else if (m_takesInfo && m_facts.infoCut.line == 0)
        m_facts.infoCut = {m_index, fact.line};
    fact.text = latin1(line);
    const bool isFirstUtf8 = !m_hasUtf8Comment && looksLikeUtf8(fact.text);
    m_hasUtf8Comment = m_hasUtf8Comment || isFirstUtf8;
    const bool isWhole =
        fact.length <= maxLine && !fact.hasZero && !isPartOfTask(fact.text) && !isFirstUtf8;
    if (isWhole || ++m_facts.brokenComments > maxSeriesComments)
        return;
    m_lines.push_back(std::move(fact));
}

void FileScanner::scanEntry(LineFact& fact, const _kvString<maxLine>& line)
{
    if (m_facts.entryCount == m_entryLimit) {
        m_facts.limitReached = true;
        return;
    }
    ++m_facts.entryCount;
    fact.text = latin1(line);
    if (!readTaskLineAsIs(m_task, line, m_path, &fact.problem)) {
        fact.kind = LineFact::Kind::Rejected;
        fact.fields = splitTaskLine(line);
    } else if (m_task.waitForNextConfig) {
        fact.kind = LineFact::Kind::Marker;
        ++m_file.markers;
    } else {
        takeTask(fact, line);
    }
    m_lines.push_back(std::move(fact));
}

void FileScanner::takeTask(LineFact& fact, const _kvString<maxLine>& line)
{
    fact.kind = LineFact::Kind::Task;
    fact.fields = splitTaskLine(line);
    fact.taskNumber = m_file.tasks++;
    fact.fromMemory = m_task.sourcePath.isEmpty();
    fact.toMemory = m_task.destPath.isEmpty();
    fact.written = settingsOf(m_task);
    m_task.normalise();
    fact.used = settingsOf(m_task);
    for (const TaskPath which : {SourcePath, DestPath, LogPath, CsvPath}) {
        const bool isMemory =
            which == SourcePath ? fact.fromMemory : which == DestPath && fact.toMemory;
        if (!isMemory)
            fact.paths[size_t(which)] = fact.field(firstPathField + which).left(maxPath);
    }
}

void markSplitTasks(std::vector<LineFact>& lines)
{
    for (size_t first = 0; first + 1 < lines.size(); ++first) {
        if (lines[first + 1].kind != LineFact::Kind::Rejected || !isPartOfTask(lines[first].text))
            continue;
        int separators = lines[first].text.count(';');
        size_t next = first + 1;
        while (next < lines.size() && lines[next].file == lines[first].file &&
               lines[next].kind == LineFact::Kind::Rejected && separators < taskLineFieldCount - 1)
            separators += lines[next++].text.count(';');
        const bool isWhole =
            separators == taskLineFieldCount ||
            (separators == taskLineFieldCount - 1 && !lines[next - 1].text.endsWith(';'));
        if (!isWhole || next == first + 1)
            continue;
        lines[first].splitEnd = lines[next - 1].line;
        for (size_t rest = first + 1; rest < next; ++rest)
            lines[rest].isRest = true;
        first = next - 1;
    }
}
