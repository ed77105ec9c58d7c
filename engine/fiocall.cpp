#include "engine/fiocall.h"

#include <QDeadlineTimer>
#include <QFile>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

/// The mask and the handlers of the signals before the call.
struct SignalGuard::State
{
    sigset_t watched{};
    sigset_t maskBefore{};
    struct sigaction interruptBefore
    {};
    struct sigaction terminateBefore
    {};
    struct sigaction childBefore
    {};
};

namespace {

StopReason reasonOf(int signal)
{
    if (signal == SIGINT)
        return StopReason::Interrupt;
    return signal == SIGTERM || signal == SIGHUP ? StopReason::Terminate : StopReason::None;
}

/// A call in the form that the system takes, made before the fork: afterwards nothing may allocate.
struct PreparedCall
{
    explicit PreparedCall(const FioCall& call)
        : folder(QFile::encodeName(call.folder))
        , outputFile(QFile::encodeName(call.outputFile))
        , errorFile(QFile::encodeName(call.errorFile))
    {
        words.push_back(QFile::encodeName(call.program));
        for (const QString& argument : call.arguments)
            words.push_back(QFile::encodeName(argument));
        for (QByteArray& word : words)
            pointers.push_back(word.data());
        pointers.push_back(nullptr);
    }

    QByteArray folder;
    QByteArray outputFile;
    QByteArray errorFile;
    std::vector<QByteArray> words;
    std::vector<char*> pointers;
};

bool redirect(int target, const char* file, int flags)
{
    constexpr mode_t everyonesUmask = 0666;
    const int number = ::open(file, flags | O_CLOEXEC, everyonesUmask);
    return number != -1 && ::dup2(number, target) == target;
}

// GCOVR_EXCL_START: a child that is about to be another program can't write what it reached.
/// Only calls that are allowed between fork and exec. Reports an error number and never returns.
[[noreturn]] void becomeFio(const PreparedCall& call, const sigset_t& mask, int reportTo)
{
    // Ctrl+C reaches the whole group of the terminal; fio is told by us, once.
    ::setpgid(0, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGINT);
    constexpr int newFile = O_WRONLY | O_CREAT | O_EXCL;
    const bool isReady = ::chdir(call.folder.constData()) == 0 &&
                         redirect(STDIN_FILENO, "/dev/null", O_RDONLY) &&
                         redirect(STDOUT_FILENO, call.outputFile.constData(), newFile) &&
                         redirect(STDERR_FILENO, call.errorFile.constData(), newFile);
    if (isReady) {
        ::sigprocmask(SIG_SETMASK, &mask, nullptr);
        ::execvp(call.pointers[0], call.pointers.data());
    }
    const int error = errno;
    [[maybe_unused]] const ssize_t written = ::write(reportTo, &error, sizeof error);
    ::_exit(EXIT_FAILURE);
}
// GCOVR_EXCL_STOP

/// Reads the error number of a child that could not become fio; 0 once it has.
int errorOfChild(int from)
{
    int error = 0;
    // All signals that have handlers are blocked: nothing interrupts it.
    [[maybe_unused]] const ssize_t got = ::read(from, &error, sizeof error);
    return error;
}

/// Starts fio; 0 and a problem if that fails.
pid_t start(const FioCall& call, const sigset_t& mask, QString& problem)
{
    const PreparedCall prepared(call);
    std::array<int, 2> report{};
    if (::pipe2(report.data(), O_CLOEXEC) != 0) {
        problem = QString::fromLocal8Bit(std::strerror(errno));
        return 0;
    }
    const pid_t child = ::fork();
    if (child == 0)
        becomeFio(prepared, mask, report[1]);
    int error = errno;
    ::close(report[1]);
    if (child != -1)
        error = errorOfChild(report[0]);
    ::close(report[0]);
    if (error == 0)
        return child;
    if (child != -1)
        ::waitpid(child, nullptr, 0);
    problem = QString::fromLocal8Bit(std::strerror(error));
    return 0;
}

/// Waits for a signal of the set, at most for the time; 0 if none came. Of several it takes the one
/// of the lowest number, so SIGCHLD after those that end a run.
int waitForSignal(const sigset_t& set, std::chrono::milliseconds most)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(most);
    const std::chrono::nanoseconds rest = most - seconds;
    const timespec time{seconds.count(), rest.count()};
    return std::max(::sigtimedwait(&set, nullptr, &time), 0);
}

/// The same without waiting.
int takeSignal(const sigset_t& set)
{
    return waitForSignal(set, std::chrono::milliseconds::zero());
}

/// Watches over fio until it ends.
class Watch
{
public:
    Watch(pid_t process, const FioCall& call, const sigset_t& watched)
        : m_process(process)
        , m_call(call)
        , m_signals(watched)
        , m_deadline(call.timeoutMs != 0 ? QDeadlineTimer(call.timeoutMs)
                                         : QDeadlineTimer(QDeadlineTimer::Forever))
    {}

    FioExit untilEnd()
    {
        while (!hasEnded()) {
            act(waitForSignal(m_signals, nextWait()));
            if (m_deadline.hasExpired())
                actOnTime();
        }
        return m_exit;
    }

private:
    bool hasEnded() const
    {
        int status = 0;
        if (::waitpid(m_process, &status, WNOHANG) == 0)
            return false;
        // Jobs of a fio that somebody killed would write on.
        if (WIFSIGNALED(status))
            ::kill(-m_process, SIGKILL);
        return true;
    }

    std::chrono::milliseconds nextWait() const
    {
        const std::chrono::milliseconds tick(m_call.tickMs);
        const std::chrono::milliseconds left(m_deadline.remainingTime());
        return m_deadline.isForever() ? tick : std::min(tick, left);
    }

    void act(int signal)
    {
        const StopReason reason = reasonOf(signal);
        if (reason != StopReason::None && m_exit.stopped != StopReason::None)
            kill();
        else if (reason != StopReason::None)
            stop(reason);
        else if (signal == 0 && m_call.onTick)
            m_call.onTick(m_process);
    }

    void actOnTime()
    {
        if (m_exit.stopped == StopReason::None)
            stop(StopReason::Timeout);
        else
            kill();
    }

    void stop(StopReason reason)
    {
        m_exit.stopped = reason;
        tell(SIGINT);
    }

    void kill()
    {
        m_exit.wasKilled = true;
        tell(SIGKILL);
    }

    /// The jobs are processes of fio's; without a server they would read the signal as well, and a
    /// guard that waits for the minute has to.
    void tell(int signal)
    {
        m_deadline.setRemainingTime(m_call.graceMs);
        ::kill(-m_process, signal);
    }

    pid_t m_process;
    const FioCall& m_call;
    const sigset_t& m_signals;
    QDeadlineTimer m_deadline; ///< for the call; once it is stopped, for its end
    FioExit m_exit;
};

} // namespace

SignalGuard::SignalGuard()
    : m_state(new State)
{
    ::sigemptyset(&m_state->watched);
    for (const int signal : {SIGINT, SIGTERM, SIGCHLD})
        ::sigaddset(&m_state->watched, signal);
    struct sigaction hangup
    {};
    ::sigaction(SIGHUP, nullptr, &hangup);
    if (hangup.sa_handler != SIG_IGN)
        ::sigaddset(&m_state->watched, SIGHUP);
    ::sigprocmask(SIG_BLOCK, &m_state->watched, &m_state->maskBefore);
    // Shells start what runs in the background with SIGINT ignored, and an ignored signal is lost
    // even while it is blocked. An action without a handler is the default one.
    const struct sigaction standard
    {};
    ::sigaction(SIGINT, &standard, &m_state->interruptBefore);
    ::sigaction(SIGTERM, &standard, &m_state->terminateBefore);
    ::sigaction(SIGCHLD, &standard, &m_state->childBefore);
}

SignalGuard::~SignalGuard()
{
    ::sigaction(SIGINT, &m_state->interruptBefore, nullptr);
    ::sigaction(SIGTERM, &m_state->terminateBefore, nullptr);
    ::sigaction(SIGCHLD, &m_state->childBefore, nullptr);
    // A signal that arrived too late for fio must not end the program before it has told its
    // results.
    while (takeSignal(m_state->watched) != 0) {
    }
    ::sigprocmask(SIG_SETMASK, &m_state->maskBefore, nullptr);
}

StopReason SignalGuard::pending() const
{
    return reasonOf(takeSignal(m_state->watched));
}

StopReason SignalGuard::sleep(int ms) const
{
    const QDeadlineTimer end(ms);
    StopReason reason = StopReason::None;
    while (reason == StopReason::None && !end.hasExpired())
        reason = reasonOf(
            waitForSignal(m_state->watched, std::chrono::milliseconds(end.remainingTime())));
    return reason;
}

FioExit SignalGuard::run(const FioCall& call) const
{
    FioExit exit;
    const pid_t process = start(call, m_state->maskBefore, exit.problem);
    return process != 0 ? Watch(process, call, m_state->watched).untilEnd() : exit;
}
