#pragma once

#include "check/rule.h"

#include <QString>

#include <set>
#include <string>
#include <vector>

/// The name of the file that turns rules off for the series of its folder.
inline constexpr const char* rulesFileName = "dpc.rules";

/// The rules that a file turns off.
struct RulesFile
{
    std::set<const Rule*> rulesOff;
    std::vector<std::string> problems; ///< a sentence for each line that can't be used
};

/// Reads a file of rules; a file that does not exist turns nothing off. Each line is "RULE:
/// reason";
/// "#" begins a comment. A rule that does not exist and a missing reason are problems. `shownPath`
/// is the path as the user spells it.
RulesFile readRulesFile(const QString& path, const QString& shownPath);
