#pragma once

#include "engine/plan.h"

// Job files: what fio is given. Pure; the texts are bytes of the file system's encoding.

/// The job file of one machine in one stage.
QByteArray jobFileText(const Plan& plan, size_t stage, const PlanJobFile& file);

/// Begins the names of the logs that fio writes for a section. fio adds the address of the machine
/// and not its port, so two servers at one address need a name each.
QByteArray logNameOf(const PlanJob& job, const PlanSection& section);

/// Bytes of the longest line that a job needs; at most maxNameLine can be written.
int longestLineOf(const PlanJob& job);

/// Sections of a job file that prepare and move no bytes of a task: null jobs of
/// `preparationBytes`, which fio reports like all others. One whose command failed has 0 bytes.
std::vector<QByteArray> preparationNames(const Plan& plan, size_t stage, const PlanJobFile& file);

/// Bytes that a section reports which only asks or prepares, if it succeeded.
constexpr qint64 preparationBytes = 4096;

/// A section that runs a command on the machine and moves no bytes. `stonewall` lets it wait for
/// the sections above.
QByteArray preparationSection(const QByteArray& name, const QByteArray& command, bool stonewall);

/// A condition as `exec_prerun=` takes it. fio appends "> JOB.prerun.txt", which would empty a file
/// of that name: this way the shell ends before it opens one.
QByteArray asPrerun(const QByteArray& condition);
