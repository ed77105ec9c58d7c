#include "engine/fiocall.h"
#include "engine/fioprogress.h"
#include "tests/support/childprocess.h"
#include "tests/support/files.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <cerrno>
#include <csignal>
#include <limits>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

// A shell stands in for fio: what is under test is how a process is started, told and waited for.

namespace {

const sigset_t& signalSet()
{
    static const sigset_t all = [] {
        sigset_t set{};
        ::sigemptyset(&set);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP})
            ::sigaddset(&set, signal);
        return set;
    }();
    return all;
}

} // namespace

class TestFioCall : public QObject
{
    Q_OBJECT

private slots:
    void keepsBothOutputsAndTheFolder();
    void overwritesNoOutput();
    void saysWhyItCannotStart();
    void saysWhatTheSystemRefuses();
    void passesAnInterruptOn_data();
    void passesAnInterruptOn();
    void tellsEvenWhatIgnoresSignalsFromTheStart();
    void holdsSignalsThatWereIgnored_data();
    void holdsSignalsThatWereIgnored();
    void knowsHowFioEndedEvenIfThatWasIgnored();
    void stopsAtTheTimeout();
    void killsOnceTheGraceIsOver();
    void killsAtTheSecondSignal();
    void leavesNoJobOfAKilledFio();
    void endsWithItsParent();
    void leavesNothingOpen();
    void ticksWhileItWaits_data();
    void ticksWhileItWaits();
    void countsNoBytesOfAProcessThatIsGone();
    void sleepsUntilItIsTold();
    void givesSignalsBack();
    void holdsLateSignalsBack();

private:
    FioCall shell(const QString& script) const;
    QByteArray output() const { return test::contentOf(m_folder->filePath("out")); }

    QScopedPointer<QTemporaryDir> m_folder;

public slots:
    void init()
    {
        m_folder.reset(new QTemporaryDir);
        ::sigprocmask(SIG_UNBLOCK, &signalSet(), nullptr);
    }
};

FioCall TestFioCall::shell(const QString& script) const
{
    FioCall call;
    call.program = QStringLiteral("sh");
    call.arguments = QStringList{QStringLiteral("-c"), script};
    call.folder = m_folder->path();
    call.outputFile = m_folder->filePath("out");
    call.errorFile = m_folder->filePath("err");
    return call;
}

namespace {

/// A shell that reports what it was told, and then ends.
const char waiting[] = "trap 'echo told; exit 0' INT; kill -%1 $PPID; while :; do sleep 0.05; done";

} // namespace

void TestFioCall::keepsBothOutputsAndTheFolder()
{
    const SignalGuard guard;
    const FioExit exit = guard.run(shell("pwd; echo no >&2; exit 3"));
    QVERIFY(exit.problem.isEmpty());
    QCOMPARE(exit.stopped, StopReason::None);
    QCOMPARE(output().trimmed(), m_folder->path().toUtf8());
    QCOMPARE(test::contentOf(m_folder->filePath("err")), QByteArray("no\n"));
    constexpr mode_t everyones = 0666;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    for (const char* name : {"out", "err"}) {
        struct stat status
        {};
        QCOMPARE(::stat(QFile::encodeName(m_folder->filePath(name)).constData(), &status), 0);
        QCOMPARE(status.st_mode, S_IFREG | (everyones & ~mask));
    }
}

void TestFioCall::overwritesNoOutput()
{
    test::put(m_folder->filePath("out"), "mine");
    const SignalGuard guard;
    QCOMPARE(guard.run(shell("echo yours")).problem, QStringLiteral("File exists"));
    QCOMPARE(output(), QByteArray("mine"));
}

void TestFioCall::saysWhyItCannotStart()
{
    FioCall call = shell("");
    call.program = QStringLiteral("no-such-program");
    const SignalGuard guard;
    QCOMPARE(guard.run(call).problem, QStringLiteral("No such file or directory"));
    call.program = QStringLiteral("sh");
    QVERIFY(QFile::remove(m_folder->filePath("out")));
    QVERIFY(QFile::remove(m_folder->filePath("err")));
    call.folder = m_folder->filePath("none");
    QCOMPARE(guard.run(call).problem, QStringLiteral("No such file or directory"));
    // Nobody else would wait for what could not start.
    QCOMPARE(::waitpid(-1, nullptr, 0), -1);
    QCOMPARE(errno, ECHILD);
}

void TestFioCall::saysWhatTheSystemRefuses()
{
    QVERIFY(QFile::setPermissions(m_folder->path(), QFile::Permissions(0x7777)));
    const auto problemWith = [&](__rlimit_resource_t resource, rlim_t most) {
        const QString told = m_folder->filePath("told");
        // In a child, whose limits nobody else has. Root may have any number of processes.
        test::runWithoutRights([&] {
            const SignalGuard guard;
            rlimit limit{};
            ::getrlimit(resource, &limit);
            const rlim_t before = std::exchange(limit.rlim_cur, most);
            ::setrlimit(resource, &limit);
            const QString problem = guard.run(shell("exit 0")).problem;
            limit.rlim_cur = before;
            ::setrlimit(resource, &limit);
            test::put(told, problem.toUtf8());
        });
        return test::contentOf(told);
    };
    const int firstFree = ::dup(STDIN_FILENO);
    ::close(firstFree);
    QCOMPARE(problemWith(RLIMIT_NPROC, 0), QByteArray("Resource temporarily unavailable"));
    QCOMPARE(problemWith(RLIMIT_NOFILE, rlim_t(firstFree)), QByteArray("Too many open files"));
    QVERIFY(!QFile::exists(m_folder->filePath("out")));
    constexpr rlim_t plenty = 1000;
    QCOMPARE(problemWith(RLIMIT_NOFILE, plenty), QByteArray());
    QVERIFY(QFile::exists(m_folder->filePath("out")));
}

void TestFioCall::passesAnInterruptOn_data()
{
    QTest::addColumn<QString>("signal");
    QTest::addColumn<int>("reason");
    QTest::newRow("SIGINT") << "INT" << int(StopReason::Interrupt);
    QTest::newRow("SIGTERM") << "TERM" << int(StopReason::Terminate);
    QTest::newRow("SIGHUP") << "HUP" << int(StopReason::Terminate);
}

void TestFioCall::passesAnInterruptOn()
{
    QFETCH(QString, signal);
    QFETCH(int, reason);
    ::signal(SIGHUP, SIG_DFL);
    const SignalGuard guard;
    const FioExit exit = guard.run(shell(QString(waiting).arg(signal)));
    QCOMPARE(int(exit.stopped), reason);
    QVERIFY(!exit.wasKilled);
    QCOMPARE(output(), QByteArray("told\n"));
}

void TestFioCall::tellsEvenWhatIgnoresSignalsFromTheStart()
{
    // As a shell starts what runs in the background.
    ::signal(SIGINT, SIG_IGN);
    {
        const SignalGuard guard;
        const FioExit exit = guard.run(shell(QString(waiting).arg("INT")));
        QCOMPARE(exit.stopped, StopReason::Interrupt);
        QCOMPARE(output(), QByteArray("told\n"));
    }
    ::signal(SIGINT, SIG_DFL);
}

void TestFioCall::holdsSignalsThatWereIgnored_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGCHLD") << SIGCHLD;
}

void TestFioCall::holdsSignalsThatWereIgnored()
{
    QFETCH(int, signal);
    const auto actionOf = [&] {
        struct sigaction action
        {};
        ::sigaction(signal, nullptr, &action);
        return action.sa_handler;
    };
    ::signal(signal, SIG_IGN);
    {
        const SignalGuard guard;
        QVERIFY(actionOf() == SIG_DFL);
    }
    const bool isGivenBack = actionOf() == SIG_IGN;
    ::signal(signal, SIG_DFL);
    QVERIFY(isGivenBack);
}

/// The system tells nobody of the end of a child who ignores it.
void TestFioCall::knowsHowFioEndedEvenIfThatWasIgnored()
{
    ::signal(SIGCHLD, SIG_IGN);
    leavesNoJobOfAKilledFio();
    ::signal(SIGCHLD, SIG_DFL);
}

void TestFioCall::stopsAtTheTimeout()
{
    FioCall call = shell("trap 'echo told; exit 0' INT; while :; do sleep 0.05; done");
    call.timeoutMs = 300;
    const SignalGuard guard;
    const FioExit exit = guard.run(call);
    QCOMPARE(exit.stopped, StopReason::Timeout);
    QVERIFY(!exit.wasKilled);
    // A shell that had not come to its trap yet ends without a word.
    QVERIFY(output().isEmpty() || output() == "told\n");
}

void TestFioCall::killsOnceTheGraceIsOver()
{
    FioCall call = shell("trap '' INT; kill -INT $PPID; while kill -0 $PPID; do sleep 0.05; done");
    call.graceMs = 300;
    const SignalGuard guard;
    QElapsedTimer time;
    time.start();
    const FioExit exit = guard.run(call);
    QVERIFY(time.elapsed() >= call.graceMs);
    QCOMPARE(exit.stopped, StopReason::Interrupt);
    QVERIFY(exit.wasKilled);
}

void TestFioCall::killsAtTheSecondSignal()
{
    const SignalGuard guard;
    const FioExit exit = guard.run(shell(
        "trap 'kill -TERM $PPID' INT; kill -INT $PPID; while kill -0 $PPID; do sleep 0.05; done"));
    QCOMPARE(exit.stopped, StopReason::Interrupt);
    QVERIFY(exit.wasKilled);
}

void TestFioCall::leavesNoJobOfAKilledFio()
{
    const SignalGuard guard;
    // The job holds the pipe open for as long as it lives.
    std::array<int, 2> pipe{};
    QCOMPARE(::pipe(pipe.data()), 0);
    const FioExit exit = guard.run(shell("sleep 1000 & kill -KILL $$"));
    QVERIFY(exit.problem.isEmpty());
    ::close(pipe[1]);
    char byte = 0;
    QCOMPARE(::read(pipe[0], &byte, 1), ssize_t(0));
    ::close(pipe[0]);
}

void TestFioCall::endsWithItsParent()
{
    const QString told = m_folder->filePath("told");
    std::array<int, 2> pipe{};
    QCOMPARE(::pipe(pipe.data()), 0);
    const pid_t parent = test::startChild([&] {
        const SignalGuard guard;
        guard.run(shell("trap 'echo told > told; exit 0' INT; kill -KILL $PPID; "
                        "while kill -0 $PPID; do sleep 0.05; done"));
    });
    ::close(pipe[1]);
    QVERIFY(!test::endedWell(parent));
    // The end of the shell closes the last copy of the pipe.
    char byte = 0;
    QCOMPARE(::read(pipe[0], &byte, 1), ssize_t(0));
    ::close(pipe[0]);
    QCOMPARE(test::contentOf(told), QByteArray("told\n"));
}

void TestFioCall::leavesNothingOpen()
{
    const SignalGuard guard;
    const auto openFiles = [] { return QDir("/proc/self/fd").entryList(QDir::System).size(); };
    const int before = openFiles();
    QVERIFY(before > 0);
    QVERIFY(guard.run(shell("exit 0")).problem.isEmpty());
    QCOMPARE(openFiles(), before);
    // Now the outputs are there.
    QVERIFY(!guard.run(shell("exit 0")).problem.isEmpty());
    QCOMPARE(openFiles(), before);
}

void TestFioCall::ticksWhileItWaits_data()
{
    QTest::addColumn<int>("tickMs");
    QTest::addColumn<int>("count");
    QTest::newRow("many times a second") << 20 << 3;
    QTest::newRow("once a second") << 1000 << 1;
}

void TestFioCall::ticksWhileItWaits()
{
    QFETCH(int, tickMs);
    QFETCH(int, count);
    FioCall call = shell("while ! test -e ticked; do sleep 0.02; done");
    call.tickMs = tickMs;
    int ticks = 0;
    QElapsedTimer time;
    time.start();
    call.onTick = [&](pid_t process) {
        if (++ticks == count)
            test::put(m_folder->filePath("ticked"), "");
        QVERIFY(process > 0);
        QVERIFY(time.elapsed() >= qint64(ticks) * tickMs);
    };
    const SignalGuard guard;
    QCOMPARE(guard.run(call).stopped, StopReason::None);
    QVERIFY(ticks >= count);
}

void TestFioCall::countsNoBytesOfAProcessThatIsGone()
{
    FioCall call = shell("cat /bin/sh >copy; while ! test -e ticked; do sleep 0.02; done");
    call.tickMs = 20;
    pid_t gone = 0;
    call.onTick = [&](pid_t process) {
        const qint64 copied = QFile(m_folder->filePath("copy")).size();
        gone = process;
        if (copied > 0 && bytesMovedBy(process).value_or(0) >= 2 * copied)
            test::put(m_folder->filePath("ticked"), "");
    };
    const SignalGuard guard;
    QCOMPARE(guard.run(call).stopped, StopReason::None);
    QVERIFY(!bytesMovedBy(gone).has_value());
}

void TestFioCall::sleepsUntilItIsTold()
{
    constexpr int shortMs = 100;
    const SignalGuard guard;
    QElapsedTimer time;
    time.start();
    // The end of a child is nothing to wake up for.
    ::raise(SIGCHLD);
    QCOMPARE(guard.sleep(shortMs), StopReason::None);
    QVERIFY(time.elapsed() >= shortMs);
    ::raise(SIGTERM);
    // Without the signal this would last for days.
    QCOMPARE(guard.sleep(std::numeric_limits<int>::max()), StopReason::Terminate);
}

void TestFioCall::givesSignalsBack()
{
    {
        const SignalGuard guard;
        QCOMPARE(guard.pending(), StopReason::None);
        ::raise(SIGTERM);
        QCOMPARE(guard.pending(), StopReason::Terminate);
        QCOMPARE(guard.pending(), StopReason::None);
    }
    sigset_t mask{};
    ::sigprocmask(SIG_SETMASK, nullptr, &mask);
    QVERIFY(!::sigismember(&mask, SIGTERM));
    QVERIFY(!::sigismember(&mask, SIGINT));
}

/// A signal after the last call must not end the program before it has told its results.
void TestFioCall::holdsLateSignalsBack()
{
    const pid_t child = test::startChild([] {
        const SignalGuard guard;
        ::raise(SIGINT);
        ::raise(SIGTERM);
    });
    QVERIFY(test::endedWell(child));
}

/// The watchdog of Qt Test is a thread, and a signal that no other thread takes would reach it: it
/// starts with these blocked.
int main(int count, char** arguments)
{
    ::sigprocmask(SIG_BLOCK, &signalSet(), nullptr);
    TestFioCall tests;
    return QTest::qExec(&tests, count, arguments);
}
#include "tst_fiocall.moc"
