#include "tests/engine/fioserver.h"

#include "engine/fioaddress.h"
#include "tests/engine/seriesrun.h"
#include "tests/support/files.h"
#include "tests/support/leaveout.h"

#include <QFile>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace test {

void useOwnNetwork()
{
    ifreq loopback{};
    std::strcpy(loopback.ifr_name, "lo");
    loopback.ifr_flags = IFF_UP | IFF_RUNNING;
    if (::unshare(CLONE_NEWNET) != 0)
        leaveOut("can't make a network namespace; run this test as root");
    const int any = ::socket(AF_INET, SOCK_DGRAM, 0);
    if (any < 0 || ::ioctl(any, SIOCSIFFLAGS, &loopback) != 0)
        leaveOut("can't set up a loopback in a network namespace");
    ::close(any);
}

FioServer::FioServer(const QByteArray& address, QString folder, const QByteArray& options)
    : m_folder(std::move(folder))
    , m_process(::fork())
{
    if (m_process == 0) {
        const QByteArray folderName = QFile::encodeName(m_folder);
        const QByteArray argument = "--server=" + address;
        ::setsid();
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int nothing = ::open("/dev/null", O_RDWR);
        ::dup2(nothing, STDOUT_FILENO);
        ::dup2(nothing, STDERR_FILENO);
        const bool isApart =
            ::unshare(CLONE_NEWNS) == 0 &&
            ::mount("tmpfs", folderName.constData(), "tmpfs", 0, options.constData()) == 0 &&
            ::chdir(folderName.constData()) == 0;
        if (isApart)
            ::execlp("fio", "fio", argument.constData(), nullptr);
        ::_exit(EXIT_FAILURE);
    }
    const std::optional<FioAddress> parsed = FioAddress::parse(address);
    constexpr int timeoutMs = 1000;
    waitUntil([&] { return whyUnreachable({*parsed}, timeoutMs).front().isEmpty(); });
    waitUntil([&] { return !isBusy(); });
}

FioServer::~FioServer()
{
    kill();
}

QString FioServer::seen(const QString& name) const
{
    return QStringLiteral("/proc/%1/root%2/%3").arg(m_process).arg(m_folder, name);
}

void FioServer::kill()
{
    if (m_process <= 0)
        return;
    ::kill(-m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
    m_process = 0;
}

bool FioServer::isBusy() const
{
    const QByteArray children =
        contentOf(QStringLiteral("/proc/%1/task/%1/children").arg(m_process));
    return !children.trimmed().isEmpty();
}

} // namespace test
