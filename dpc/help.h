#pragma once

#include <string>

/// What the help page of a command says beyond its options.
struct HelpPage
{
    const char* command; ///< "dpc" or the subcommand
    const char* title;   ///< half a sentence
    const char* synopsis;
    const char* description;
    const char* end; ///< exit status and examples
};

/// The page of "dpc" itself or of a subcommand.
const HelpPage& helpPage(const std::string& command);
