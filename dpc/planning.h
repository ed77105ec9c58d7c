#pragma once

#include "dpc/options.h"
#include "engine/planner.h"

#include <optional>
#include <set>

// The common part of `dpc export` and `dpc run`: a series, the machines, and the losses that are
// allowed.

inline constexpr Option tempOption{
    "--temp", "PATH", ValueKind::Folder,
    "the folder that [temp] stands for on machines whose line of the hosts file has none"};
inline constexpr Option dateOption{"--date", "TEXT", ValueKind::Text,
                                   "the text that [date] stands for; default: now"};
inline constexpr Option allowLossOption{
    "--allow-loss",
    "RULES",
    ValueKind::Loss,
    "go on although fio can't do what these rules name, with commas between; may be repeated",
    {},
    true};

/// The machines with the addresses of their servers; none if no option names a machine. Throws
/// UsageError for an address that is none, and for two machines at one.
std::vector<PlanMachine> planMachinesOf(const Arguments& arguments);

/// The settings of a plan, from the options. Throws UsageError as planMachinesOf().
PlanOptions planOptionsOf(const Arguments& arguments);

/// The losses that the user allows. Throws UsageError for an unknown rule.
std::set<const Rule*> allowedLossesOf(const Arguments& arguments);

/// The losses that forbid to go on: errors, and warnings that are not allowed.
std::vector<Finding> forbiddenLosses(const std::vector<Finding>& losses,
                                     const std::set<const Rule*>& allowed);
