#pragma once

#include "engine/plan.h"

#include <functional>

// The calls of one job, one by one, in the format that fio calls "iolog": what its options alone
// can't say. A log states the shorter last chunk, a flush after each chunk, and that a copy writes
// what it has just read.

/// Lines of the largest log that is written. One of 1 GiB in chunks of 1 KiB, copied and flushed,
/// has 3,145,728; fio needs about 120 bytes of memory for each.
constexpr qint64 maxLogLines = 4000000;

/// Lines that the log of a job has.
qint64 logLines(const PlanJob& job);

/// Gives the log of a job to `write`, piece by piece, until that returns false.
bool writeLog(const PlanJob& job, const std::function<bool(const QByteArray&)>& write);

/// A shell command that writes the same log into a file, for a machine behind a server: fio sends
/// job files there, and no logs. Holds neither ";" nor "#".
QByteArray logCommand(const PlanJob& job, const QByteArray& file);
