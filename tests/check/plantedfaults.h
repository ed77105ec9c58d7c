#pragma once

#include "tests/check/randomseries.h"

#include <functional>
#include <vector>

// Faults that a test plants in series at random, and the findings that they must give.

/// The findings that a fault must give.
struct Planted
{
    QVector<QStringList> wanted; ///< at least one of each list: "rule place"
    QStringList alsoTrue;        ///< "rule", or "rule place"
    RandomSeries::State latest =
        RandomSeries::State::InitRun; ///< later the fault has done its damage
};

/// Changes a series so that one thing is wrong in it; false if the series has no place for it.
using Fault = std::function<bool(RandomSeries& series, Planted& planted)>;

struct NamedFault
{
    const char* name;
    Fault plant;
};

/// Faults in the tasks, planted before a save.
const std::vector<NamedFault>& faultsInTasks();

/// Faults in the files, planted after a save.
const std::vector<NamedFault>& faultsInFiles();

// Shared by both.

/// "rule file:line" of a task.
QString findingAt(const char* rule, const RandomSeries::Task& task);

/// The text of a path.
QByteArray textOf(const _kvString8_allSize<500>& path);

/// Draws one of the tasks that fit; false if none does.
bool isDrawn(RandomSeries& series, RandomSeries::Task*& drawn,
             const std::function<bool(const RandomSeries::Task&)>& isFit);
