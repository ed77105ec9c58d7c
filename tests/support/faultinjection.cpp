#include "tests/support/faultinjection.h"

#include "tests/support/childprocess.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <map>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#ifndef __x86_64__
#error "the registers that hold a system call are known for x86-64 only"
#endif

namespace test {

namespace {

/// Calls on memory, threads, signals and time have no part in files. Under the sanitizers they come
/// as they like, so they aren't even counted; a file looks the same before and after them.
bool concernsFiles(long call)
{
    constexpr long others[] = {
        SYS_brk,           SYS_mmap,         SYS_munmap,      SYS_mremap,          SYS_mprotect,
        SYS_futex,         SYS_rt_sigaction, SYS_madvise,     SYS_rt_sigprocmask,  SYS_getrandom,
        SYS_exit_group,    SYS_gettid,       SYS_sched_yield, SYS_sigaltstack,     SYS_getpid,
        SYS_clock_gettime, SYS_tgkill,       SYS_nanosleep,   SYS_clock_nanosleep, SYS_setgroups,
        SYS_setgid,        SYS_setuid};
    return std::find(std::begin(others), std::end(others), call) == std::end(others);
}

/// By this signal the child says that its calls from now on are not part of its work.
constexpr int endOfWork = SIGUSR1;

class Tracer
{
public:
    Tracer(pid_t child, const Injection& injection, std::function<void()> meanwhile)
        : child_(child)
        , injection_(injection)
        , meanwhile_(std::move(meanwhile))
    {}

    TracedRun run()
    {
        int status = 0;
        wait(status);
        check(::ptrace(PTRACE_SETOPTIONS, child_, 0, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL));
        while (!WIFEXITED(status) && !WIFSIGNALED(status)) {
            if (WIFSTOPPED(status) && WSTOPSIG(status) == endOfWork) {
                check(::ptrace(PTRACE_DETACH, child_, 0, 0));
                wait(status);
                break;
            }
            if (WIFSTOPPED(status) && WSTOPSIG(status) == (SIGTRAP | 0x80))
                atCall();
            // Other signals are the child's own and reach it; the first one only told us to begin.
            const int signal = WIFSTOPPED(status) ? WSTOPSIG(status) : 0;
            const bool passedOn = signal != SIGSTOP && signal != (SIGTRAP | 0x80);
            check(::ptrace(PTRACE_SYSCALL, child_, 0, passedOn ? signal : 0));
            wait(status);
        }
        run_.endedWell = WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
        return run_;
    }

private:
    /// A child that has just been killed is gone for ptrace before it is waited for.
    static void check(long result)
    {
        if (result < 0 && errno != ESRCH)
            qFatal("can't trace a child process; does the system forbid ptrace?");
    }

    void wait(int& status) const
    {
        if (::waitpid(child_, &status, 0) != child_)
            qFatal("can't wait for a child process");
    }

    [[nodiscard]] user_regs_struct registers() const
    {
        user_regs_struct registers = {};
        check(::ptrace(PTRACE_GETREGS, child_, 0, &registers));
        return registers;
    }

    void atCall()
    {
        __ptrace_syscall_info info = {};
        check(::ptrace(PTRACE_GET_SYSCALL_INFO, child_, sizeof info, &info));
        if (info.op == PTRACE_SYSCALL_INFO_ENTRY)
            atEntry(static_cast<long>(registers().orig_rax));
        else if (info.op == PTRACE_SYSCALL_INFO_EXIT)
            atExit();
    }

    void atEntry(long call)
    {
        hit_ = false;
        if (!concernsFiles(call))
            return;
        const int index = static_cast<int>(run_.calls.size());
        run_.calls.push_back(call);
        hit_ = index == injection_.at || (index > injection_.at && strikesAgain(call));
        hit_ = hit_ && injection_.fault != Fault::None;
        if (!hit_)
            return;
        if (meanwhile_)
            meanwhile_();
        user_regs_struct changed = registers();
        if (injection_.fault == Fault::Kill)
            ::kill(child_, SIGKILL);
        else if (injection_.fault == Fault::Short && call == SYS_write)
            changed.rdx /= 2;
        else if (failsBefore())
            changed.orig_rax = noCall;
        check(::ptrace(PTRACE_SETREGS, child_, 0, &changed));
    }

    void atExit()
    {
        const bool fails = failsBefore() || injection_.fault == Fault::FailAfter;
        if (!hit_ || !fails)
            return;
        user_regs_struct changed = registers();
        changed.rax = static_cast<unsigned long long>(-injection_.error);
        check(::ptrace(PTRACE_SETREGS, child_, 0, &changed));
    }

    [[nodiscard]] bool strikesAgain(long call) const
    {
        const bool isSame = call == run_.calls[static_cast<size_t>(injection_.at)];
        const bool isChange = call == SYS_write || call == SYS_ftruncate;
        return injection_.fault == Fault::FailOnwards ||
               (injection_.fault == Fault::Refuse && isSame) ||
               (injection_.fault == Fault::RefuseAndBreak && (isSame || isChange));
    }

    [[nodiscard]] bool failsBefore() const
    {
        return injection_.fault == Fault::Fail || injection_.fault == Fault::FailOnwards ||
               injection_.fault == Fault::Refuse || injection_.fault == Fault::RefuseAndBreak;
    }

    static constexpr unsigned long long noCall = ~0ULL;

    pid_t child_;
    Injection injection_;
    std::function<void()> meanwhile_;
    TracedRun run_;
    bool hit_ = false;
};

} // namespace

TracedRun runWithFault(const std::function<void()>& work, const Injection& injection,
                       const std::function<void()>& meanwhile)
{
    // A close that is not carried out leaves a file open.
    const bool canClose = injection.fault != Fault::Fail && injection.fault != Fault::FailOnwards;
    const pid_t child = startChild([&] {
        if (::ptrace(PTRACE_TRACEME, 0, 0, 0) != 0)
            ::abort();
        // The first file that the work opens gets the number 0, which is not a failure.
        ::close(STDIN_FILENO);
        const int before = openFiles();
        ::raise(SIGSTOP);
        work();
        ::raise(endOfWork);
        if (canClose && openFiles() != before)
            endChild(EXIT_FAILURE);
    });
    return Tracer(child, injection, meanwhile).run();
}

QString callName(long call)
{
    static const std::map<long, const char*> names = {
        {SYS_write, "write"},         {SYS_openat, "openat"},       {SYS_close, "close"},
        {SYS_fsync, "fsync"},         {SYS_fdatasync, "fdatasync"}, {SYS_rename, "rename"},
        {SYS_renameat, "renameat"},   {SYS_renameat2, "renameat2"}, {SYS_linkat, "linkat"},
        {SYS_link, "link"},           {SYS_unlink, "unlink"},       {SYS_unlinkat, "unlinkat"},
        {SYS_mkdir, "mkdir"},         {SYS_mkdirat, "mkdirat"},     {SYS_fchmod, "fchmod"},
        {SYS_fchown, "fchown"},       {SYS_chmod, "chmod"},         {SYS_statx, "statx"},
        {SYS_stat, "stat"},           {SYS_lstat, "lstat"},         {SYS_fstat, "fstat"},
        {SYS_newfstatat, "fstatat"},  {SYS_readlink, "readlink"},   {SYS_lseek, "lseek"},
        {SYS_access, "access"},       {SYS_faccessat, "faccessat"}, {SYS_getcwd, "getcwd"},
        {SYS_ftruncate, "ftruncate"}, {SYS_open, "open"},           {SYS_futex, "futex"}};
    const auto name = names.find(call);
    return name == names.end() ? QStringLiteral("call %1").arg(call)
                               : QString::fromLatin1(name->second);
}

} // namespace test
