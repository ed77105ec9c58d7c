#include "dpc/commands.h"

#include "check/text.h"

#include <algorithm>

const std::vector<const Command*>& allCommands()
{
    static const std::vector<const Command*> commands = {
        &checkCommand, &explainCommand, &showCommand, &diffCommand,  &roundTripCommand,
        &initCommand,  &exportCommand,  &runCommand,  &reportCommand};
    return commands;
}

const Command* commandNamed(const std::string& name)
{
    const auto found = std::find_if(allCommands().begin(), allCommands().end(),
                                    [&](const Command* command) { return name == command->name; });
    return found == allCommands().end() ? nullptr : *found;
}

const char* closestCommandName(const std::string& name)
{
    std::vector<const char*> names;
    for (const Command* command : allCommands())
        names.push_back(command->name);
    return closest(name, names.data(), int(names.size()));
}
