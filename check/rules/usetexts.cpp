#include "check/rules/usetexts.h"

#include "check/taskfields.h"
#include "check/text.h"

#include <fmt/format.h>

std::string placeOf(const SeriesFacts& facts, int line)
{
    const LineFact& fact = facts.lines[size_t(line)];
    return fmt::format("{}:{}", printable(facts.fileOf(fact).shown), fact.line);
}

std::string listedMachines(const FileUses& uses, const std::vector<int>& machines, int count)
{
    constexpr size_t maxShown = 3;
    std::string text;
    for (size_t i = 0; i < machines.size() && i < maxShown; ++i)
        text += (i == 0 ? "" : ", ") + printable(uses.machines()[size_t(machines[i])].host);
    if (count > int(maxShown))
        text += fmt::format(" and {} more", count - int(maxShown));
    return text;
}

std::string roleOf(const SeriesFacts& facts, const FileUse& use)
{
    return fmt::format("the {} of {}", fieldName(firstPathField + use.role),
                       placeOf(facts, use.line));
}
