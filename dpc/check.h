#pragma once

#include "check/checker.h"
#include "dpc/command.h"

/// The request to check, as the arguments state it.
struct CheckRequest
{
    QStringList paths;
    CheckOptions options;
    std::string format = "text"; ///< a choice of --format
    bool quiet = false;
    bool summary = false;           ///< also if no terminal reads it
    bool warningsAreErrors = false; ///< for the exit status
};

/// Checks all series that the paths lead to, prints the findings, and returns the exit status.
int runCheck(const CheckRequest& request, const Output& output);
