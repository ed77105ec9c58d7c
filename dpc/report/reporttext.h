#pragma once

#include "dpc/report/reporttables.h"

#include <QJsonObject>

// Formats of a report for terminals, documents and programs. The first run is the base of every
// comparison.

/// For a terminal of so many characters, 0 for any number.
std::string reportAsText(const std::vector<ReportedRun>& runs, int width);
/// For a page that Markdown is used for.
std::string reportAsMarkdown(const std::vector<ReportedRun>& runs);
/// A row per job.
std::string reportAsCsv(const std::vector<ReportedRun>& runs);
/// Summaries and comparisons; docs/report.md describes it.
QJsonObject reportAsJson(const std::vector<ReportedRun>& runs);
