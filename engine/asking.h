#pragma once

#include "engine/fiomachines.h"

/// The answers of the machines of a plan.
struct Answers
{
    std::vector<std::string> reasons; ///< why the run can't be; empty: everything is as planned
    StopReason stopped = StopReason::None; ///< nothing more was asked then
};

/// Asks every machine whether files, space and rights are as the plan needs them, by the guards of
/// the export, which only look. Of a "no" it is found out which file is meant, and what is wrong.
Answers askMachines(const Plan& plan, const FioMachines& machines, RunFolder& folder);
