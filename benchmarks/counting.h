#pragma once

#include <QByteArray>

#include <valgrind/callgrind.h>

// Costs as callgrind counts them: instructions of the program and its calls of the system, the same
// in every run. Outside callgrind the work is only done.

namespace counting {

/// Counts one run of the work under this name.
template <class Work>
void countOnce(const QByteArray& name, const Work& work)
{
    CALLGRIND_ZERO_STATS; // calls of the system are counted all the time
    CALLGRIND_TOGGLE_COLLECT;
    work();
    CALLGRIND_TOGGLE_COLLECT;
    CALLGRIND_DUMP_STATS_AT(name.constData());
}

/// Counts the second run: in the first one functions are bound and caches are filled.
template <class Work>
void count(const QByteArray& name, const Work& work)
{
    work();
    countOnce(name, work);
}

/// Prints a figure that callgrind does not count, such as a number of allocations.
void print(const QByteArray& name, qint64 figure);

/// How often memory of just this size has been asked for so far.
qint64 allocationsOf(std::size_t bytes);

/// Ends the program if its work was not done: a figure would be worth nothing.
void require(bool holds, const char* what);

} // namespace counting
