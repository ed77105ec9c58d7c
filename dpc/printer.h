#pragma once

#include "check/finding.h"
#include "check/remarks.h"

#include <string>
#include <vector>

/// One finding per line, as compilers print them: "file:line:column: error: text [rule]".
std::string findingsAsText(const std::vector<Finding>& findings, bool colour);

/// One object: the findings, how many there are of each severity, and the remarks.
std::string findingsAsJson(const std::vector<Finding>& findings, const Remarks& remarks = {});

/// "2 errors, 1 warning, 0 notes".
std::string summaryOf(const std::vector<Finding>& findings);

/// How many of them are of this severity.
int countOf(const std::vector<Finding>& findings, Severity severity);
