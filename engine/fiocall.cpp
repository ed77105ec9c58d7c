#include "engine/fiocall.h"

#include <QElapsedTimer>
#include <QFile>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <memory>
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

/// fio ends its jobs at once; a guard that waits for the minute on another machine does not.
constexpr int graceMs = 90000;

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
    return number >= 0 && ::dup2(number, target) == target;
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
    const ssize_t ignored = ::write(reportTo, &error, sizeof error);
    ::_exit(ignored == ssize_t(sizeof error) ? 1 : 2);
}
// GCOVR_EXCL_STOP

/// Reads the error number of a child that could not become fio; 0 once it has.
int errorOfChild(int from)
{
    int error = 0;
    ssize_t got = 0;
    do
        got = ::read(from, &error, sizeof error);
    while (got < 0 && errno == EINTR);
    return got == ssize_t(sizeof error) ? error : 0;
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
    const int forkError = child < 0 ? errno : 0;
    ::close(report[1]);
    const int error = child < 0 ? forkError : errorOfChild(report[0]);
    ::close(report[0]);
    if (error == 0)
        return child;
    if (child > 0)
        ::waitpid(child, nullptr, 0);
    problem = QString::fromLocal8Bit(std::strerror(error));
    return 0;
}

/// Waits for a signal of the set, at most so many ms; 0 if none came.
int waitForSignal(const sigset_t& set, int ms)
{
    constexpr int msPerSecond = 1000;
    constexpr long nsPerMs = 1000000;
    const timespec time{ms / msPerSecond, long(ms % msPerSecond) * nsPerMs};
    const int signal = ::sigtimedwait(&set, nullptr, &time);
    return signal > 0 ? signal : 0;
}

/// Watches over fio until it ends.
class Watch
{
public:
    Watch(pid_t process, const FioCall& call, const sigset_t& watched)
        : m_process(process)
        , m_call(call)
        , m_signals(watched)
    {
        m_time.start();
    }

    FioExit untilEnd()
    {
        while (!hasEnded()) {
            takeSignal(waitForSignal(m_signals, nextWaitMs()));
            checkTime();
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

    int nextWaitMs() const
    {
        qint64 wait = m_call.tickMs;
        if (m_exit.stopped != StopReason::None)
            wait = std::min<qint64>(wait, m_stoppedAt + graceMs - m_time.elapsed());
        else if (m_call.timeoutMs > 0)
            wait = std::min<qint64>(wait, m_call.timeoutMs - m_time.elapsed());
        return int(std::max<qint64>(wait, 1));
    }

    void takeSignal(int signal)
    {
        const StopReason reason = reasonOf(signal);
        if (reason != StopReason::None && m_exit.stopped != StopReason::None)
            kill();
        else if (reason != StopReason::None)
            stop(reason);
        else if (signal == 0 && m_call.onTick)
            m_call.onTick(m_process);
    }

    void checkTime()
    {
        if (m_exit.stopped != StopReason::None && m_time.elapsed() > m_stoppedAt + graceMs)
            kill();
        else if (m_exit.stopped == StopReason::None && m_call.timeoutMs > 0 &&
                 m_time.elapsed() >= m_call.timeoutMs)
            stop(StopReason::Timeout);
    }

    void stop(StopReason reason)
    {
        m_exit.stopped = reason;
        m_stoppedAt = m_time.elapsed();
        // The jobs are processes of fio's; without a server they would read the signal as well, and
        // a guard that waits for the minute has to.
        ::kill(-m_process, SIGINT);
    }

    void kill()
    {
        m_exit.wasKilled = true;
        ::kill(-m_process, SIGKILL);
    }

    pid_t m_process;
    const FioCall& m_call;
    const sigset_t& m_signals;
    QElapsedTimer m_time;
    qint64 m_stoppedAt = 0;
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
    // even while it is blocked.
    struct sigaction standard
    {};
    standard.sa_handler = SIG_DFL;
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
    while (waitForSignal(m_state->watched, 0) != 0) {
    }
    ::sigprocmask(SIG_SETMASK, &m_state->maskBefore, nullptr);
    delete m_state;
}

StopReason SignalGuard::pending() const
{
    for (int signal = waitForSignal(m_state->watched, 0); signal != 0;
         signal = waitForSignal(m_state->watched, 0)) {
        if (reasonOf(signal) != StopReason::None)
            return reasonOf(signal);
    }
    return StopReason::None;
}

StopReason SignalGuard::sleep(int ms) const
{
    QElapsedTimer time;
    time.start();
    StopReason reason = StopReason::None;
    for (qint64 left = ms; left > 0 && reason == StopReason::None; left = ms - time.elapsed())
        reason = reasonOf(waitForSignal(m_state->watched, int(left)));
    return reason;
}

FioExit SignalGuard::run(const FioCall& call) const
{
    FioExit exit;
    const pid_t process = start(call, m_state->maskBefore, exit.problem);
    return process > 0 ? Watch(process, call, m_state->watched).untilEnd() : exit;
}
