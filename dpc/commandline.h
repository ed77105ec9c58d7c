#pragma once

#include "dpc/command.h"

/// Runs dpc with its arguments (without the program's name, in the file system's encoding) and
/// returns its exit code. Never throws for what a user typed.
int runDpc(const std::vector<std::string>& arguments, const Output& output);
