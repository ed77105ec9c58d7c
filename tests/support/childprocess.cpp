#include "tests/support/childprocess.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <grp.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace test {

void endChild(int status)
{
#ifdef TWDP_COVERAGE
    // Each library writes the counts of what it reached when it goes.
    std::exit(status); // NOLINT(concurrency-mt-unsafe): one thread
#endif
    ::_exit(status);
}

void giveUpRights(gid_t group)
{
    if (::geteuid() != 0)
        return;
    if (::setgroups(1, &group) != 0 || ::setgid(nobody) != 0 || ::setuid(nobody) != 0)
        ::abort();
}

pid_t startChild(const std::function<void()>& work)
{
    const pid_t child = ::fork();
    if (child < 0)
        qFatal("can't start a child process");
    if (child > 0)
        return child;
    ::alarm(childSeconds);
    work();
    endChild(EXIT_SUCCESS);
}

bool endedWell(pid_t child)
{
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            return false;
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
}

bool runInChild(const std::function<void()>& work)
{
    return endedWell(startChild(work));
}

bool runWithoutRights(const std::function<void()>& work, gid_t group)
{
    return runInChild([&] {
        giveUpRights(group);
        work();
    });
}

WithoutRights::WithoutRights()
    : m_wasRoot(::geteuid() == 0)
{
    // The real user as well, whose rights access() tells.
    if (m_wasRoot && ::setresuid(nobody, nobody, 0) != 0)
        ::abort();
}

WithoutRights::~WithoutRights()
{
    if (!m_wasRoot)
        return;
    if (::setresuid(0, 0, 0) != 0)
        ::abort();
    // Switched off by the other user; LeakSanitizer looks into the process at its end.
    ::prctl(PR_SET_DUMPABLE, 1);
}

int openFiles()
{
    constexpr int most = 256;
    int count = 0;
    for (int number = 0; number < most; ++number)
        count += ::fcntl(number, F_GETFD) >= 0 ? 1 : 0;
    return count;
}

} // namespace test
