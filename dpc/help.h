#pragma once

#include "dpc/command.h"

#include <string>

// Facts about dpc as a whole, worded once for the help page and the manual page.

inline constexpr const char* mainTitle =
    "check, explain and run the config files of a disk and file server speed test";
/// Paragraphs, as in Command::description.
inline constexpr const char* mainDescription =
    R"(Reads a series of config files (mytest.dpc, mytest1.dpc, ... and mytest_init.dpc, in their folder and its subfolder _wait) with the reader of the editor twDiskProbe, and says what the editor keeps quiet.

Most commands run no test and write no file: beyond reading config files they only ask whether files exist and how much space there is. init --write writes the one file that it names, and export and report write what they are told. Only run does the reading and writing of a series, on fio.

A PATH is any file of a series; the other files are found by its name.)";
inline constexpr const char* mainSuccess = "no errors found, no differences";
inline constexpr const char* mainFindings = "errors found, differences, or a run that failed";
inline constexpr const char* usageStatus = "wrong use, or something that can't be read";
inline constexpr const char* rulesFileMeaning =
    "in the folder of a series, outside _wait: a line \"RULE: reason\" turns a rule of dpc check "
    "off "
    "for the series of that folder; \"#\" begins a comment";
inline constexpr const char* noColorMeaning =
    "if set and not empty, output on a terminal has no color";

/// The page of "dpc" itself.
std::string mainHelp();

/// The page of a subcommand.
std::string helpFor(const Command& command);

/// How a subcommand is typed, one line for each form: "dpc check [OPTIONS] PATH...".
std::vector<std::string> synopsisOf(const Command& command);

/// Words in lines of at most so many characters, each after an indent, each with a line end.
std::string wrapped(const std::string& text, const std::string& indent, size_t width = 80);

/// The text behind the name of an option: "" for a flag, else its value: "FORMAT:{text,json}".
std::string valueText(const Option& option);

/// The meaning of an option, with its default if it has choices.
std::string meaningOf(const Option& option);
