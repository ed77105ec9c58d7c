#pragma once

#include "check/machines.h"
#include "dpc/command.h"

// Options that several subcommands share.

inline constexpr Option helpOption{"-h,--help", nullptr, ValueKind::Flag,
                                   "print this page, and end"};
inline constexpr Option versionOption{"--version", nullptr, ValueKind::Flag,
                                      "print the version, and end"};
inline constexpr Option hostsOption{
    "--hosts",
    "NAMES",
    ValueKind::Machine,
    "the machines that run the series, with commas between; pc[01-20] stands for twenty; may be "
    "repeated",
    {},
    true};
inline constexpr Option hostsFileOption{
    "--hosts-file", "FILE", ValueKind::File,
    "the same from a file, one name or range per line; \"#\" begins a comment"};
inline constexpr Option machinesOption{
    "--machines", "NUMBER", ValueKind::Number,
    "so many machines, with the names machine01 and so on; not beside --hosts and --hosts-file"};

inline constexpr const char* colorChoices[] = {"auto", "always", "never"};
inline constexpr Option colorOption{
    "--color", "WHEN", ValueKind::Choice,
    "when to print in color; auto: on a terminal, unless NO_COLOR is set", colorChoices};

/// The machines that the three options give, each name once; none if no option is given. Throws
/// UsageError for options that name no machine.
MachineList machinesOf(const Arguments& arguments);
