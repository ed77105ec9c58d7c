#pragma once

#include "dpc/command.h"

// All subcommands. To add one, write it in a file of its name, and name it here and in
// commands.cpp.

extern const Command checkCommand;
extern const Command explainCommand;
extern const Command showCommand;
extern const Command diffCommand;
extern const Command roundTripCommand;
extern const Command initCommand;
extern const Command exportCommand;
extern const Command runCommand;
extern const Command reportCommand;

/// All subcommands, in the order of the help page.
const std::vector<const Command*>& allCommands();

/// The subcommand of this name; null if it is unknown.
const Command* commandNamed(const std::string& name);

/// The name that a person most likely meant, or null.
const char* closestCommandName(const std::string& name);
