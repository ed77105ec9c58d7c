#pragma once

#include "check/rule.h"

#include <QString>

#include <string>
#include <vector>

/// A diagnostic: rule, location, message.
struct Finding
{
    const Rule* rule; ///< never null
    int file;         ///< its place among the files of the series, for sorting
    QString path;
    int line;         ///< from 1
    int column;       ///< from 1
    std::string text; ///< what, why it matters, and what to do; UTF-8 that is safe to print
    Severity severity = rule->severity;
    std::vector<std::string> names{}; ///< all that the text counts: "'a' and 5 more"; for programs
    int more = 0;                     ///< findings of the rule in the file that this one stands for
};
