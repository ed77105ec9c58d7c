#pragma once

#include <QtGlobal>

#include <functional>
#include <sys/types.h>

// Work that may hang, die or give up rights is done in a child process. A plain fork is enough and
// costs a millisecond: the child needs no start of its own and no sanitizer in the right order.

namespace test {

/// No child outlives this; one that hangs dies of SIGALRM.
constexpr unsigned childSeconds = 60;

/// Starts a child that does the work and ends without the destructors and exit handlers of the
/// test program.
pid_t startChild(const std::function<void()>& work);

/// Ends this process, which is a child, in the same way.
[[noreturn]] void endChild(int status);

/// True if the child ended on its own and well.
bool endedWell(pid_t child);

/// Both in one.
bool runInChild(const std::function<void()>& work);

/// How many files this process has open.
int openFiles();

constexpr gid_t nobody = 65534;

/// Makes root "nobody" with the given group, for the rest of this process. Other users stay.
void giveUpRights(gid_t group = nobody);

/// runInChild by a user who may write only what everybody may, or the given group. Root becomes
/// "nobody" for it, because the system checks no permissions for root.
bool runWithoutRights(const std::function<void()>& work, gid_t group = nobody);

/// Root is "nobody" as long as this lives, in the test program itself: what it reaches counts as
/// covered, and all checks of a test can be used. The group stays. Other users stay.
class WithoutRights
{
public:
    WithoutRights();
    ~WithoutRights();
    Q_DISABLE_COPY_MOVE(WithoutRights)

private:
    bool m_wasRoot;
};

} // namespace test
