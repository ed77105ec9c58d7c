#include "dpc/roundtrip.h"

#include "check/text.h"
#include "check/units.h"
#include "dpc/alignment.h"
#include "dpc/commands.h"
#include "dpc/json.h"
#include "dpc/oneseries.h"
#include "dpc/resave.h"
#include "model/limits.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QSet>

#include <fmt/format.h>

#include <algorithm>
#include <ostream>

namespace {

/// Far more than a save writes into a file.
constexpr qint64 maxCompared = 256 * bytesPerKib;

/// Whole lines, if the file is too large to be compared.
QByteArray contentOf(const QString& path)
{
    QFile file(path);
    const bool isFile = QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly);
    QByteArray content = isFile ? file.read(maxCompared) : QByteArray();
    if (!file.atEnd() && content.contains('\n'))
        content.truncate(content.lastIndexOf('\n') + 1);
    return content;
}

/// The last line has a line end in a file that is whole.
std::vector<std::string> linesOf(const QByteArray& content)
{
    std::vector<std::string> lines;
    int start = 0;
    while (start < content.size()) {
        const int end = content.indexOf('\n', start);
        const int next = end < 0 ? content.size() : end + 1;
        lines.push_back(content.mid(start, next - start).toStdString());
        start = next;
    }
    return lines;
}

LineChange lineChange(int index, bool isNew, const std::string& line)
{
    QByteArray text = QByteArray::fromStdString(line);
    const bool hasLineEnd = text.endsWith('\n');
    text.chop(hasLineEnd ? 1 : 0);
    return {index + 1, isNew, text, hasLineEnd};
}

std::vector<LineChange> lineChanges(const QByteArray& before, const QByteArray& after)
{
    const std::vector<std::string> old = linesOf(before);
    const std::vector<std::string> now = linesOf(after);
    std::vector<LineChange> changes;
    for (const AlignedPair& pair : align(old, now)) {
        const bool same = pair.first >= 0 && pair.second >= 0 &&
                          old[size_t(pair.first)] == now[size_t(pair.second)];
        if (!same && pair.first >= 0)
            changes.push_back(lineChange(pair.first, false, old[size_t(pair.first)]));
        if (!same && pair.second >= 0)
            changes.push_back(lineChange(pair.second, true, now[size_t(pair.second)]));
    }
    return changes;
}

FileChange changeOf(const SeriesFacts& facts, const ResavedFile& file)
{
    FileChange change;
    change.shownPath = shownPath(facts, file.path);
    change.obstacle = file.obstacle;
    change.isCut = file.isCut;
    change.fullSize = file.fullSize;
    const QByteArray before = contentOf(file.path);
    if (!file.obstacle.empty()) {
        change.kind = FileChange::Kind::Blocked;
    } else if (!QFileInfo::exists(file.path)) {
        change.kind = FileChange::Kind::Created;
        change.lineCount = file.content.count('\n');
    } else if (before != file.content) {
        change.kind = FileChange::Kind::Changed;
        change.lines = lineChanges(before, file.content);
        change.bytesNotShown = QFileInfo(file.path).size() - before.size();
    }
    return change;
}

/// Files that a load reads and the save does not write.
void addKept(const SeriesFacts& facts, const QSet<QString>& written,
             std::vector<FileChange>& changes)
{
    for (const FileFact& file : facts.files) {
        if (!file.isRead() || written.contains(file.path))
            continue;
        FileChange change;
        change.kind = FileChange::Kind::Kept;
        change.shownPath = shownPath(facts, file.path);
        changes.push_back(change);
    }
}

std::string linesAsText(const std::vector<LineChange>& lines)
{
    std::string text;
    for (const LineChange& line : lines)
        text += fmt::format("{:5} {} {}{}\n", line.line, line.isNew ? '+' : '-',
                            printable(QString::fromLatin1(line.text)),
                            line.hasLineEnd ? "" : " (no line end)");
    return text;
}

std::string changeAsText(const FileChange& file)
{
    const std::string path = printable(file.shownPath);
    switch (file.kind) {
    case FileChange::Kind::Created:
        return fmt::format("{}: is created, with {}\n", path, counted(file.lineCount, "line"));
    case FileChange::Kind::Changed:
        return fmt::format("{}: changes\n", path) + linesAsText(file.lines);
    case FileChange::Kind::Blocked:
        return fmt::format("{}: can't be written: {}\n", path, file.obstacle);
    case FileChange::Kind::Kept:
        return fmt::format("{}: stays as it is, and is loaded again next time\n", path);
    case FileChange::Kind::Unchanged:
        break;
    }
    return {};
}

} // namespace

std::vector<FileChange> roundTrip(const SeriesFacts& facts)
{
    const std::vector<ResavedFile> saved = resave(facts);
    std::vector<FileChange> changes;
    QSet<QString> written;
    for (const ResavedFile& file : saved) {
        const FileChange change = changeOf(facts, file);
        if (change.kind != FileChange::Kind::Blocked)
            written.insert(file.path);
        if (change.kind != FileChange::Kind::Unchanged || change.isCut)
            changes.push_back(change);
    }
    // An empty list is not saved, and leaves nothing behind.
    if (!saved.empty())
        addKept(facts, written, changes);
    return changes;
}

std::string changesAsText(const std::vector<FileChange>& files)
{
    std::string text;
    for (const FileChange& file : files) {
        text += changeAsText(file);
        if (file.bytesNotShown > 0)
            text += fmt::format("{}: {} more bytes go, and are not shown\n",
                                printable(file.shownPath), file.bytesNotShown);
        if (file.isCut)
            text += fmt::format("{}: is cut at {}{} characters\n", printable(file.shownPath),
                                maxConfigFile,
                                file.fullSize > 0 ? fmt::format(" of {}", file.fullSize) : "");
    }
    return text;
}

namespace {

constexpr const char* formats[] = {"text", "json"};
constexpr Option format{"--format", "FORMAT", ValueKind::Choice, "how to print the changes",
                        formats};
constexpr const Option* options[] = {&format};
constexpr Operand operands[] = {{"PATH", ValueKind::ConfigFile}};

constexpr const char* description =
    R"(Loads the series as the editor does, renders in memory what the editor would save under the same name, and compares it with the disk, file by file and line by line: "-" is a line that is there now, "+" a line that would be there. Also tells of files that would be made, cut, or left over, and of what is in the way of a file. Nothing is written.)";

constexpr const char* examples[] = {"dpc roundtrip mytest.dpc"};

const char* wordFor(FileChange::Kind kind)
{
    switch (kind) {
    case FileChange::Kind::Created:
        return "created";
    case FileChange::Kind::Changed:
        return "changed";
    case FileChange::Kind::Blocked:
        return "blocked";
    case FileChange::Kind::Kept:
        return "kept";
    case FileChange::Kind::Unchanged:
        break;
    }
    return "unchanged";
}

QJsonObject jsonOf(const FileChange& file)
{
    QJsonArray lines;
    for (const LineChange& line : file.lines)
        lines.append(QJsonObject{{"line", line.line},
                                 {"change", line.isNew ? "+" : "-"},
                                 {"text", QString::fromLatin1(line.text)},
                                 {"hasLineEnd", line.hasLineEnd}});
    QJsonObject object{{"file", file.shownPath}, {"change", wordFor(file.kind)}, {"lines", lines}};
    if (file.kind == FileChange::Kind::Created)
        object.insert("lineCount", file.lineCount);
    if (file.kind == FileChange::Kind::Blocked)
        object.insert("reason", QString::fromStdString(file.obstacle));
    if (file.bytesNotShown > 0)
        object.insert("bytesNotShown", file.bytesNotShown);
    if (file.isCut)
        object.insert("cutAt", maxConfigFile);
    return object;
}

std::string asJson(const std::vector<FileChange>& changes, const Remarks& remarks)
{
    QJsonArray files;
    for (const FileChange& file : changes)
        files.append(jsonOf(file));
    QJsonObject all = jsonOutput(remarks);
    all.insert("files", files);
    return jsonText(all);
}

int run(const Arguments& arguments, const Output& output)
{
    Remarks remarks;
    const auto facts = readOneSeries(arguments.operands().front(), remarks);
    // The lines that a load leaves out are among the changes.
    remarks.notChecked.clear();
    std::vector<FileChange> changes;
    if (facts)
        changes = roundTrip(*facts);
    const bool json = arguments.value(format) == "json";
    output.out << (json ? asJson(changes, remarks) : changesAsText(changes));
    if (printRemarks(remarks, output))
        return exitUsage;
    return changes.empty() ? exitClean : exitFindings;
}

} // namespace

const Command roundTripCommand{
    "roundtrip",
    "tell what a load and a save in the editor would change",
    options,
    operands,
    description,
    "a load and a save change nothing",
    "they change something",
    examples,
    run,
};
