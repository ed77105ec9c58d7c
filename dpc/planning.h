#pragma once

#include "dpc/command.h"
#include "engine/planner.h"

#include <functional>
#include <optional>

// What export and run share: the options of a plan, and the losses that a user allows.

inline constexpr Option tempOption{
    "--temp", "PATH", ValueKind::Folder,
    "the folder that [temp] stands for, on machines for which the file of machines gives none"};
inline constexpr Option dateOption{"--date", "TEXT", ValueKind::Text,
                                   "the text that [date] stands for; default: now"};
inline constexpr Option allowLossOption{
    "--allow-loss",
    "NAMES",
    ValueKind::Loss,
    "run although the work of a task changes by these rules, with commas between; may be repeated",
    {},
    true};

/// What the options say of a plan. Throws UsageError for options that can't be used.
PlanOptions planOptions(const Arguments& arguments);

/// Plans the series that a path leads to. If there is none, or if the options are wrong for it,
/// says so on the error stream and returns nothing.
std::optional<PlanResult> planOf(const QString& path, const PlanOptions& options,
                                 const Output& output);

/// True if nothing is in the way of the plan: no error, no problem, and no loss that the arguments
/// don't allow. Else says on the error stream what is. Throws UsageError for a rule that is
/// unknown.
bool isAllowed(const PlanResult& result, const Arguments& arguments, const Output& output);
