#pragma once

#include "dpc/command.h"

#include <string>

// Pages that are made from the tables of options. They stand in files of the project, which a test
// compares with these functions, and writes if TWDP_UPDATE_GOLDEN is 1.

/// packaging/man/dpc.1.
std::string manualPage();

/// packaging/completions/dpc.bash.
std::string bashCompletion();

/// packaging/completions/_dpc.
std::string zshCompletion();

/// packaging/completions/dpc.fish.
std::string fishCompletion();

/// The options of one subcommand as a table of docs/dpc.md.
std::string optionsAsMarkdown(const Command& command);

/// The exit statuses of all subcommands as a table of docs/dpc.md.
std::string statusAsMarkdown();
