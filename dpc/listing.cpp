#include "dpc/listing.h"

#include "check/nameexpander.h"
#include "check/taskfields.h"
#include "check/text.h"
#include "dpc/json.h"
#include "dpc/table.h"
#include "dpc/totals.h"
#include "model/taskcells.h"
#include "shared/kvtext.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>

namespace {

/// The paths of a task, in the order of TaskPath.
constexpr const _kvString8_allSize<maxPath> TestTask::*taskPaths[] = {
    &TestTask::sourcePath, &TestTask::destPath, &TestTask::logPath, &TestTask::csvPath};
static_assert(std::size(taskPaths) == CsvPath + 1, "each path has its member");

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
    for (const auto path : taskPaths)
        paths += kvToQString(task.*path);
    return paths;
}

/// The cells of the editor's table, with these paths.
QStringList cellsWith(const QStringList& paths, const TestTask& task, int configFile)
{
    QStringList cells = taskCells(task, configFile);
    for (int column = 0; column < cells.size(); ++column) {
        const auto* const path = std::find(std::begin(taskPaths), std::end(taskPaths),
                                           taskColumns()[size_t(column)].path);
        if (path != std::end(taskPaths))
            cells[column] = paths[int(path - std::begin(taskPaths))];
    }
    return cells;
}

QStringList expandedPaths(NameExpander& names, const LineFact& line, int iteration)
{
    QStringList paths;
    for (const TaskPath which : {SourcePath, DestPath, LogPath, CsvPath}) {
        const QByteArray& path = line.path(which);
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
            row.cells = cellsWith(row.paths, task, configFile);
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

/// The rows below titles that the editor's table has as well.
Table tableOf(const std::vector<Row>& rows, const std::optional<Expansion>& expansion)
{
    Table table;
    for (const TaskColumn& column : taskColumns()) {
        table.headers += QString::fromLatin1(column.title);
        table.isNumber.push_back(column.isNumber);
    }
    if (expansion) {
        table.headers += QStringLiteral("Csv");
        table.isNumber.push_back(false);
    }
    for (const Row& row : rows)
        table.rows.push_back(row.cells);
    return table;
}

QString shown(const QString& cell)
{
    return QString::fromStdString(printable(cell));
}

std::string asText(const SeriesFacts& facts, Table table)
{
    for (QStringList& row : table.rows) {
        for (QString& cell : row)
            cell = shown(cell);
    }
    return tableAsText(table) + '\n' + totalsAsText(totalsOf(facts));
}

/// True for a text that a spreadsheet would compute, and show as something else.
bool isFormula(const QString& cell)
{
    bool isNumber = false;
    cell.toLongLong(&isNumber);
    return !cell.isEmpty() && QStringLiteral("=+-@").contains(cell[0]) && !isNumber;
}

std::string asCsv(const Table& table)
{
    std::string text = csvLine(table.headers);
    for (const QStringList& row : table.rows)
        text += csvLine(row);
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
        return asCsv(tableOf(rows, expansion));
    case ListFormat::Json:
        return asJson(facts, rows, remarks);
    case ListFormat::Text:
        break;
    }
    return asText(facts, tableOf(rows, expansion));
}
