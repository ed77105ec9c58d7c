#pragma once

#include "check/rule.h"

#include <string>

/// All rules, in the order in which they are listed and in which findings at one place are sorted.
const RuleList& allRules();

/// The place of a rule of the catalogue in it.
int orderOf(const Rule& rule);

/// Null if no rule has this name.
const Rule* ruleNamed(const std::string& name);

/// The name of a rule that is close to a wrong one, or null.
const char* closestRuleName(const std::string& name);
