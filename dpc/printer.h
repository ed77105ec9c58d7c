#pragma once

#include "check/checker.h"
#include "check/finding.h"
#include "check/remarks.h"

#include <string>
#include <vector>

/// One finding per line, as compilers print them: "file:line:column: error: text [rule]".
std::string findingsAsText(const std::vector<Finding>& findings, bool colour);

/// One object: the findings, how many there are of each severity, and the remarks.
std::string findingsAsJson(const std::vector<Finding>& findings, const Remarks& remarks = {});

/// The same for a check: how much was checked as well.
std::string checkAsJson(const CheckResult& result);

/// One annotation per finding, in the commands that workflows of GitHub read from a log.
std::string findingsForGithub(const std::vector<Finding>& findings);

/// All rules in one object.
std::string rulesAsJson();

/// "3 files, 12 tasks, 20 machines; not checked: 4 Windows paths".
std::string extentAsText(const CheckExtent& extent);

/// "2 errors, 1 warning, 0 notes".
std::string summaryOf(const std::vector<Finding>& findings);

/// How many of them are of this severity.
int countOf(const std::vector<Finding>& findings, Severity severity);
