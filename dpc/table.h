#pragma once

#include <QStringList>

#include <string>
#include <vector>

/// A table of texts that are safe to look at; see printable().
struct Table
{
    QStringList headers;
    std::vector<bool> isNumber; ///< of each column: stands on the right
    std::vector<QStringList> rows;
};

/// Columns with two blanks between. In a terminal of `width` characters, the first column is cut in
/// its middle, and columns are left out from `leastImportant` on, a list of headers, until the rest
/// fits; a width of 0 fits all. Left out columns are named below the table.
std::string tableAsText(Table table, int width = 0, const QStringList& leastImportant = {});

/// As a table of Markdown.
std::string tableAsMarkdown(const Table& table);

/// As a table of HTML, with the class "sortable"; numbers have the class "number".
std::string tableAsHtml(const Table& table, const std::string& caption);

/// A text as HTML shows it.
std::string escapedHtml(const QString& text);

/// A text as Markdown shows it.
QString escapedMarkdown(QString text);
