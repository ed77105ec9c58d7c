#pragma once

#include "check/remarks.h"
#include "check/seriesfacts.h"
#include "model/pathvariables.h"

#include <QStringList>

#include <iterator>
#include <optional>
#include <string>

/// How tasks are listed.
enum class ListFormat
{
    Text,
    Csv,
    Json
};

/// The names of the formats, in the order of ListFormat.
constexpr const char* listFormats[] = {"text", "csv", "json"};
static_assert(std::size(listFormats) == int(ListFormat::Json) + 1, "each format has its name");

/// Whose names are shown: with variables as they are, or as one machine sees them.
struct Expansion
{
    MachineValues machine;
    int iteration = 0;
};

/// The series as the editor's table shows it. With an expansion every path is resolved, and the
/// .csv files, which the table does not show, have a column of their own. Text and JSON have
/// totals, JSON the remarks as well.
std::string listSeries(const SeriesFacts& facts, ListFormat format,
                       const std::optional<Expansion>& expansion, const Remarks& remarks);

/// A line of a table for spreadsheets, as UTF-8. A quote is doubled; a cell with a quote or a comma
/// stands in quotes; what is not safe to look at is written as "\x1B". A cell that begins with "=",
/// "+", "-" or "@" and is not a number has an apostrophe before it, so that nothing computes it.
std::string csvLine(const QStringList& cells);
