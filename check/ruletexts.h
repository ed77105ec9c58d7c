#pragma once

#include "check/rule.h"

#include <string>

// The catalogue of rules for people.

/// "error" and so on.
const char* severityName(Severity severity);

/// One rule: its meaning, what to do, and its examples.
std::string ruleAsText(const Rule& rule);

/// All rules: their names, severities and meanings, and what to do.
std::string rulesAsText();

/// The page docs/rules.md.
std::string rulesAsMarkdown();
