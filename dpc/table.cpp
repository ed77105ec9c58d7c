#include "dpc/table.h"

#include <algorithm>
#include <fmt/format.h>

namespace {

constexpr int gap = 2;
constexpr int leastFirstColumn = 12;

std::vector<int> widthsOf(const Table& table)
{
    std::vector<int> widths;
    for (int column = 0; column < table.headers.size(); ++column) {
        int width = table.headers[column].size();
        for (const QStringList& row : table.rows)
            width = std::max(width, row[column].size());
        widths.push_back(width);
    }
    return widths;
}

int totalOf(const std::vector<int>& widths)
{
    int total = -gap;
    for (const int width : widths)
        total += width + gap;
    return total;
}

QString shortened(const QString& text, int width)
{
    if (text.size() <= width)
        return text;
    const QString dots = QStringLiteral("...");
    const int kept = width - dots.size();
    return text.left(kept / 2) + dots + text.right(kept - kept / 2);
}

void removeColumn(Table& table, int column)
{
    table.headers.removeAt(column);
    table.isNumber.erase(table.isNumber.begin() + column);
    for (QStringList& row : table.rows)
        row.removeAt(column);
}

/// The headers of the columns that did not fit.
QStringList fit(Table& table, int width, const QStringList& leastImportant)
{
    QStringList left;
    for (const QString& header : leastImportant) {
        const std::vector<int> widths = widthsOf(table);
        const int excess = totalOf(widths) - width;
        if (excess <= widths.front() - leastFirstColumn)
            break;
        const int column = table.headers.indexOf(header);
        if (column > 0) {
            removeColumn(table, column);
            left += header;
        }
    }
    const std::vector<int> widths = widthsOf(table);
    const int excess = std::max(totalOf(widths) - width, 0);
    const int first = std::max(widths.front() - excess, leastFirstColumn);
    table.headers[0] = shortened(table.headers[0], first);
    for (QStringList& row : table.rows)
        row[0] = shortened(row[0], first);
    return left;
}

std::string lineOf(const QStringList& cells, const Table& table, const std::vector<int>& widths)
{
    QString line;
    for (int i = 0; i < cells.size(); ++i) {
        const int width = widths[size_t(i)];
        line += QString(i == 0 ? 0 : gap, ' ') + (table.isNumber[size_t(i)]
                                                      ? cells[i].rightJustified(width)
                                                      : cells[i].leftJustified(width));
    }
    while (line.endsWith(' '))
        line.chop(1);
    return line.toStdString() + '\n';
}

} // namespace

std::string tableAsText(Table table, int width, const QStringList& leastImportant)
{
    const QStringList left = width > 0 ? fit(table, width, leastImportant) : QStringList();
    const std::vector<int> widths = widthsOf(table);
    std::string text = lineOf(table.headers, table, widths);
    for (const QStringList& row : table.rows)
        text += lineOf(row, table, widths);
    for (const QString& header : left)
        text += "(column left out: " + header.toStdString() + ")\n";
    return text;
}

QString escapedMarkdown(QString text)
{
    for (const char* special : {"\\", "|", "`", "*", "_", "<", "[", "&"})
        text.replace(QLatin1String(special), '\\' + QLatin1String(special));
    return text;
}

std::string tableAsMarkdown(const Table& table)
{
    std::string text;
    const auto addLine = [&](const QStringList& cells) {
        for (const QString& cell : cells)
            text += "| " + escapedMarkdown(cell).toStdString() + ' ';
        text += "|\n";
    };
    addLine(table.headers);
    for (const bool isNumber : table.isNumber)
        text += isNumber ? "|--:" : "|---";
    text += "|\n";
    for (const QStringList& row : table.rows)
        addLine(row);
    return text;
}

std::string escapedHtml(const QString& text)
{
    return text.toHtmlEscaped().replace('\'', QLatin1String("&#39;")).toStdString();
}

std::string tableAsHtml(const Table& table, const std::string& caption)
{
    std::string text = "<table class=\"sortable\"><caption>" + caption + "</caption><thead><tr>";
    const auto classOf = [&](int column) {
        return table.isNumber[size_t(column)] ? " class=\"number\"" : "";
    };
    for (int i = 0; i < table.headers.size(); ++i)
        text +=
            fmt::format("<th scope=\"col\"{}>{}</th>", classOf(i), escapedHtml(table.headers[i]));
    text += "</tr></thead><tbody>\n";
    for (const QStringList& row : table.rows) {
        text += "<tr>";
        for (int i = 0; i < row.size(); ++i)
            text += fmt::format("<td{}>{}</td>", classOf(i), escapedHtml(row[i]));
        text += "</tr>\n";
    }
    return text + "</tbody></table>\n";
}
