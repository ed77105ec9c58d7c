#pragma once

#include "check/checkoptions.h"
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
    std::vector<std::string>
        problems; ///< one sentence for each path under which nothing can be checked
};

/// All findings of all series that the paths lead to, each series once: "*.dpc" names the files of
/// one, and its "_init" file, many times. Any file and any folder can be given: what is not a
/// series, or can't be read, is a finding or a problem.
CheckResult checkAll(const QStringList& paths, const CheckOptions& options);
