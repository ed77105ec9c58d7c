#pragma once

#include <QString>

#include <functional>
#include <vector>

// Faults at the system calls of a piece of work. The work runs in a child process under ptrace, as
// a debugger would run it: so every call is seen, whatever library makes it and by whatever name,
// and nothing has to be preloaded, which the sanitizers would not bear.

namespace test {

enum class Fault
{
    None,
    Fail,           ///< the call isn't carried out and returns the error
    FailAfter,      ///< the call is carried out and returns the error all the same, as on a network
    FailOnwards,    ///< this call and all that follow return the error: the disk is gone
    Refuse,         ///< this call and all later ones of its kind return the error
    RefuseAndBreak, ///< Refuse, and nothing can be changed afterwards in what is open
    Short,          ///< a write takes only half of its bytes
    Kill            ///< the process ends just before the call
};

struct Injection
{
    Fault fault = Fault::None;
    int at = 0;    ///< the call, counted from zero
    int error = 0; ///< an errno, for the kinds of failure
};

struct TracedRun
{
    std::vector<long> calls; ///< the numbers of the system calls on files, in order
    bool endedWell = false;  ///< the work returned, and left no file open
};

/// Does the work in a child process with one fault. Each time that it strikes, `meanwhile` is done
/// first, in this process, as if somebody else did it.
TracedRun runWithFault(const std::function<void()>& work, const Injection& injection,
                       const std::function<void()>& meanwhile = {});

/// Name of a system call for messages: "write"; "call 42" for those without a part in this.
QString callName(long call);

} // namespace test
