#pragma once

#include "check/checker.h"
#include "dpc/listing.h"

#include <iosfwd>
#include <string>
#include <vector>

// What each command does once its arguments are understood.

/// How a command ends.
enum ExitCode
{
    exitClean = 0,    ///< nothing found, nothing different
    exitFindings = 1, ///< findings that count, or a difference
    exitUsage = 2     ///< wrong use, or something that can't be read
};

/// Where a command writes to.
struct Output
{
    std::ostream& out;
    std::ostream& err;
    bool colour = false; ///< of `out`
};

/// The arguments of `dpc check`.
struct CheckCommand
{
    QStringList paths;
    CheckOptions options;
    bool json = false;
    bool quiet = false;
    bool warningsAreErrors = false; ///< as errors, for the exit status
};

/// The arguments of `dpc show`.
struct ShowCommand
{
    QString path;
    ListFormat format = ListFormat::Text;
    std::optional<Expansion> expansion;
};

/// Prints the findings of all series.
int runCheck(const CheckCommand& command, const Output& output);
/// Prints the tasks of a series, and its totals.
int runShow(const ShowCommand& command, const Output& output);
/// Prints what is different between two series.
int runDiff(const QString& first, const QString& second, const Output& output);
/// Prints what a load and a save would change.
int runRoundTrip(const QString& path, const Output& output);

/// One sentence to the error stream; returns exitUsage.
int fail(const Output& output, const std::string& sentence);
