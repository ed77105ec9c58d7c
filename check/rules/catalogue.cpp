#include "check/rules/catalogue.h"

#include "check/rules/families.h"
#include "check/text.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace {

// The families in order. They are named here, and don't register themselves: from a static library
// the linker takes only what somebody names.
constexpr RuleList (*families[])() = {lineRules,      numberRules,  pathRules,   variableRules,
                                      kindRules,      folderRules,  sourceRules, sizeRules,
                                      overwriteRules, roleRules,    fileRules,   markerRules,
                                      initRules,      machineRules, spaceRules};

RuleList joined()
{
    RuleList rules;
    for (const auto family : families) {
        const RuleList those = family();
        rules.insert(rules.end(), those.begin(), those.end());
    }
    return rules;
}

std::unordered_map<const Rule*, int> placesOfAll()
{
    std::unordered_map<const Rule*, int> places;
    for (const Rule* rule : allRules())
        places.emplace(rule, int(places.size()));
    return places;
}

} // namespace

const RuleList& allRules()
{
    static const RuleList rules = joined();
    return rules;
}

int orderOf(const Rule& rule)
{
    static const std::unordered_map<const Rule*, int> places = placesOfAll();
    return places.at(&rule);
}

const Rule* ruleNamed(const std::string& name)
{
    const RuleList& rules = allRules();
    const auto found = std::find_if(rules.begin(), rules.end(),
                                    [&](const Rule* rule) { return name == rule->name; });
    return found == rules.end() ? nullptr : *found;
}

const char* closestRuleName(const std::string& name)
{
    std::vector<const char*> names;
    for (const Rule* rule : allRules())
        names.push_back(rule->name);
    return closest(name, names.data(), int(names.size()));
}
