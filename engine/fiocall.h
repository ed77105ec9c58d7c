#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <sys/types.h>

/// One call of fio.
struct FioCall
{
    QString program;       ///< a path, or a name to be searched in PATH
    QStringList arguments; ///< in the file system's encoding once they are passed on
    QString folder;        ///< working folder of fio
    QString outputFile;    ///< receives standard output; must not exist
    QString errorFile;     ///< receives standard error; must not exist
    int timeoutMs = 0;     ///< 0: as long as it takes
    int graceMs = 90000;   ///< from a stop to a kill: a guard that waits for the minute ends late
    int tickMs = 1000;     ///< how often `onTick` is called
    std::function<void(pid_t process)> onTick; ///< while fio runs; may be empty
};

/// Why a call was stopped.
enum class StopReason
{
    None,
    Interrupt, ///< SIGINT
    Terminate, ///< SIGTERM or SIGHUP
    Timeout
};

/// The result of a call.
struct FioExit
{
    QString problem; ///< why fio could not be started; empty if it was
    StopReason stopped = StopReason::None;
    bool wasKilled = false; ///< it did not end when it was asked to: what it reports is missing
};

/// Holds back SIGINT, SIGTERM and SIGHUP, so that they end a run in order: fio is told, waited for
/// and accounted. One at a time, in a program with one thread. SIGHUP stays ignored if it was.
class SignalGuard
{
public:
    SignalGuard();
    ~SignalGuard();
    Q_DISABLE_COPY_MOVE(SignalGuard)

    /// Takes one that has arrived, without waiting.
    StopReason pending() const;

    /// Waits so many ms, or until one arrives.
    StopReason sleep(int ms) const;

    /// Runs fio to its end. A signal or the timeout is passed on as SIGINT, at which fio stops its
    /// jobs on all machines and reports; a second signal, or the grace without an end, kills it.
    /// fio gets SIGINT as well if this process dies.
    FioExit run(const FioCall& call) const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};
