#pragma once

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
    "the machines that run the series, with commas between; may be repeated",
    {},
    true};
inline constexpr Option hostsFileOption{
    "--hosts-file", "FILE", ValueKind::File,
    "the same from a file, one name per line; \"#\" begins a comment"};

/// The names of the machines that the two options give, each once.
QStringList hostsOf(const Arguments& arguments);
