#pragma once

#include "check/checkoptions.h"
#include "check/extent.h"
#include "check/finding.h"

#include <QStringList>

#include <string>
#include <vector>

/// All findings of a series that was read.
std::vector<Finding> checkSeries(const SeriesFacts& facts, const CheckOptions& options);

/// The result of a check.
struct CheckResult
{
    std::vector<Finding> findings;
    std::vector<std::string> problems; ///< a sentence for each reason for status 2
    CheckExtent extent;
};

/// All findings of all series that the paths lead to, without those of rules that a "dpc.rules"
/// beside a series turns off. Each series is checked once: "*.dpc" names the files of
/// one, and its "_init" file, many times. Any file and any folder can be given: what is not a
/// series, or can't be read, is a finding or a problem.
CheckResult checkAll(const QStringList& paths, const CheckOptions& options);
