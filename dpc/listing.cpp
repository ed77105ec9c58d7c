#include "dpc/listing.h"

#include "check/nameexpander.h"
#include "check/taskfields.h"
#include "check/text.h"
#include "dpc/json.h"
#include "dpc/totals.h"
#include "model/taskcells.h"
#include "shared/kvtext.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>

namespace {

/// As the editor's table spells them.
QStringList headers()
{
    QStringList titles;
    for (const char* title : taskCellTitles)
        titles += QString::fromLatin1(title);
    return titles;
}

constexpr int sourceCell = 8;

struct Row
{
    const LineFact* line = nullptr;
    int configFile = 0;
    QStringList cells;
    QStringList paths; ///< source, destination, log, .csv
};

/// The line as the editor loads it.
TestTask loaded(const SeriesFacts& facts, const LineFact& line)
{
    TestTask task;
    _kvString<maxLine> text;
    text.add(line.text.constData(), line.text.size());
    readTaskLine(task, text, kvToString8<maxPath>(facts.fileOf(line).path));
    return task;
}

QStringList pathsOf(const TestTask& task)
{
    QStringList paths;
    for (const auto* path : {&task.sourcePath, &task.destPath, &task.logPath, &task.csvPath})
        paths += kvToQString(*path);
    return paths;
}

QStringList expandedPaths(NameExpander& names, const LineFact& line, int iteration)
{
    QStringList paths;
    for (const TaskPath which : {SourcePath, DestPath, LogPath, CsvPath}) {
        const QByteArray path = line.path(which);
        paths += path.isEmpty() ? QString() : names.resolve(line, path, iteration);
    }
    return paths;
}

std::vector<Row> rowsOf(const SeriesFacts& facts, const std::optional<Expansion>& expansion)
{
    NameExpander names(facts, expansion ? expansion->machine : MachineValues());
    std::vector<Row> rows;
    int configFile = 0;
    for (const LineFact& line : facts.lines) {
        if (!isTask(line) && !isMarker(line))
            continue;
        const TestTask task = loaded(facts, line);
        Row row{&line, configFile, taskCells(task, configFile), {}};
        if (isTask(line)) {
            row.paths =
                expansion ? expandedPaths(names, line, expansion->iteration) : pathsOf(task);
            for (int i = 0; i < row.cells.size() - sourceCell; ++i)
                row.cells[sourceCell + i] = row.paths[i];
            if (expansion)
                row.cells += row.paths[CsvPath];
        } else {
            ++configFile;
            if (expansion)
                row.cells += row.cells.back();
        }
        rows.push_back(row);
    }
    return rows;
}

QStringList headersFor(const std::optional<Expansion>& expansion)
{
    return expansion ? headers() + QStringList{QStringLiteral("Csv")} : headers();
}

QString shown(const QString& cell)
{
    return QString::fromStdString(printable(cell));
}

/// Numbers to the right, texts to the left, two blanks between the columns.
std::string aligned(const std::vector<QStringList>& lines)
{
    std::vector<int> widths(size_t(lines.front().size()));
    for (const QStringList& cells : lines) {
        for (int i = 0; i < cells.size(); ++i)
            widths[size_t(i)] = std::max(widths[size_t(i)], cells[i].size());
    }
    const auto isNumber = [](int column) {
        return column == 0 || (column >= 3 && column < sourceCell);
    };
    std::string text;
    for (const QStringList& cells : lines) {
        QString line;
        for (int i = 0; i < cells.size(); ++i) {
            const int width = widths[size_t(i)];
            line += (isNumber(i) ? cells[i].rightJustified(width) : cells[i].leftJustified(width)) +
                    "  ";
        }
        while (line.endsWith(' '))
            line.chop(1);
        text += utf8(line) + '\n';
    }
    return text;
}

std::string asText(const SeriesFacts& facts, const std::vector<Row>& rows,
                   const QStringList& header)
{
    std::vector<QStringList> lines{header};
    for (const Row& row : rows) {
        QStringList cells;
        for (const QString& cell : row.cells)
            cells += shown(cell);
        lines.push_back(cells);
    }
    return aligned(lines) + '\n' + totalsAsText(totalsOf(facts));
}

/// True for a text that a spreadsheet would compute, and show as something else.
bool isFormula(const QString& cell)
{
    bool isNumber = false;
    cell.toLongLong(&isNumber);
    return !cell.isEmpty() && QStringLiteral("=+-@").contains(cell[0]) && !isNumber;
}

std::string asCsv(const std::vector<Row>& rows, const QStringList& header)
{
    std::string text = csvLine(header);
    for (const Row& row : rows)
        text += csvLine(row.cells);
    return text;
}

QJsonObject jsonOf(const SeriesFacts& facts, const Row& row)
{
    const LineFact& line = *row.line;
    QJsonObject object{{"configFile", row.configFile},
                       {"file", facts.fileOf(line).shown},
                       {"line", line.line},
                       {"isMarker", isMarker(line)}};
    if (isMarker(line)) {
        object.insert("next", QString::fromLatin1(line.text));
        return object;
    }
    const TaskSettings& task = line.used;
    const QJsonObject settings{{"method", methodName(task.method)},
                               {"testType", typeWord(line)},
                               {"flush", task.flush},
                               {"preallocate", task.preallocate},
                               {"chunkWaitMs", task.chunkWait},
                               {"chunkSizeKiB", task.chunkSize / 1024},
                               {"systemBuffer", task.sysBufferMode},
                               {"fileSizeKiB", task.fileSize / 1024},
                               {"iterations", task.iterations},
                               {"cacheMode", task.cacheMode},
                               {"source", row.paths[SourcePath]},
                               {"destination", row.paths[DestPath]},
                               {"log", row.paths[LogPath]},
                               {"csv", row.paths[CsvPath]},
                               {"doneFile", task.writeDone}};
    for (auto it = settings.begin(); it != settings.end(); ++it)
        object.insert(it.key(), it.value());
    return object;
}

std::string asJson(const SeriesFacts& facts, const std::vector<Row>& rows, const Remarks& remarks)
{
    QJsonArray list;
    for (const Row& row : rows)
        list.append(jsonOf(facts, row));
    const Totals totals = totalsOf(facts);
    const QJsonObject sums{{"configFiles", totals.files},
                           {"tasks", totals.tasks},
                           {"bytesWritten", totals.bytesWritten},
                           {"bytesRead", totals.bytesRead},
                           {"leastWaitMs", totals.leastWait}};
    QJsonObject all = jsonOutput(remarks);
    all.insert("tasks", list);
    all.insert("totals", sums);
    return jsonText(all);
}

} // namespace

std::string csvLine(const QStringList& cells)
{
    QStringList quotedCells;
    for (const QString& text : cells) {
        QString cell = shown(text);
        if (isFormula(cell))
            cell.prepend('\'');
        if (cell.contains('"') || cell.contains(','))
            cell = '"' + cell.replace('"', QStringLiteral("\"\"")) + '"';
        quotedCells += cell;
    }
    return utf8(quotedCells.join(',')) + "\r\n";
}

std::string listSeries(const SeriesFacts& facts, ListFormat format,
                       const std::optional<Expansion>& expansion, const Remarks& remarks)
{
    const std::vector<Row> rows = rowsOf(facts, expansion);
    switch (format) {
    case ListFormat::Csv:
        return asCsv(rows, headersFor(expansion));
    case ListFormat::Json:
        return asJson(facts, rows, remarks);
    case ListFormat::Text:
        break;
    }
    return asText(facts, rows, headersFor(expansion));
}
