#include "engine/fioaddress.h"

#include <QDeadlineTimer>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr int maxPort = 65535;

QString reason(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

using AddressList = std::unique_ptr<addrinfo, decltype(&freeaddrinfo)>;

/// The addresses of a machine. fio talks IPv4 if it is told "ip:".
AddressList lookUp(const FioAddress& address, int& error)
{
    addrinfo hints{};
    hints.ai_family = AF_INET;
    addrinfo* found = nullptr;
    error = ::getaddrinfo(address.host.toLatin1().constData(),
                          QByteArray::number(address.port).constData(), &hints, &found);
    return {error == 0 ? found : nullptr, &freeaddrinfo};
}

/// A connection that is being made.
class Attempt
{
public:
    explicit Attempt(const FioAddress& address)
    {
        if (address.socket.isEmpty())
            begin(address);
        else
            begin(QFile::encodeName(address.socket));
    }
    ~Attempt()
    {
        if (m_number != -1)
            ::close(m_number);
    }
    Q_DISABLE_COPY_MOVE(Attempt)

    bool isOpen() const { return m_isOpen; }
    int number() const { return m_number; }
    const QString& problem() const { return m_problem; }

    /// The system has decided.
    void finish()
    {
        int error = 0;
        socklen_t size = sizeof error;
        const bool isKnown = ::getsockopt(m_number, SOL_SOCKET, SO_ERROR, &error, &size) == 0;
        fail(isKnown ? error : errno);
    }

    /// Ends the attempt; 0 means that it worked.
    void fail(int error)
    {
        m_isOpen = false;
        m_problem = error == 0 ? QString() : reason(error);
    }

private:
    void begin(const FioAddress& address)
    {
        int error = 0;
        const AddressList list = lookUp(address, error);
        // fio takes the first address, too.
        if (list == nullptr)
            m_problem = QString::fromLocal8Bit(::gai_strerror(error));
        else
            connectTo(AF_INET, list->ai_addr, list->ai_addrlen);
    }

    void begin(const QByteArray& path)
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        if (size_t(path.size()) >= sizeof address.sun_path) {
            fail(ENAMETOOLONG);
            return;
        }
        std::memcpy(address.sun_path, path.constData(), size_t(path.size()));
        connectTo(AF_UNIX, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    }

    void connectTo(int family, const sockaddr* address, socklen_t length)
    {
        m_number = ::socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        if (m_number != -1 && ::connect(m_number, address, length) == 0)
            return;
        m_isOpen = errno == EINPROGRESS;
        if (!m_isOpen)
            fail(errno);
    }

    int m_number = -1;
    bool m_isOpen = false; ///< neither made nor refused
    QString m_problem;
};

/// Waits until something happens to one of them; false once the time is over.
bool step(std::vector<std::unique_ptr<Attempt>>& attempts, const QDeadlineTimer& end)
{
    std::vector<pollfd> waits;
    std::vector<Attempt*> waiting;
    for (const std::unique_ptr<Attempt>& attempt : attempts) {
        if (!attempt->isOpen())
            continue;
        waits.push_back({attempt->number(), POLLOUT, 0});
        waiting.push_back(attempt.get());
    }
    if (waits.empty() || ::poll(waits.data(), waits.size(), int(end.remainingTime())) == 0)
        return false;
    for (size_t i = 0; i < waits.size(); ++i) {
        if (waits[i].revents != 0)
            waiting[i]->finish();
    }
    return true;
}

} // namespace

std::optional<FioAddress> FioAddress::parse(const QByteArray& text)
{
    FioAddress address;
    if (text.startsWith("sock:")) {
        address.socket = QFile::decodeName(text.mid(5));
        return address.socket.isEmpty() ? std::nullopt : std::optional<FioAddress>(address);
    }
    const int comma = text.lastIndexOf(',');
    if (!text.startsWith("ip:"))
        return std::nullopt;
    bool isNumber = false;
    address.host = QString::fromLatin1(text.mid(3, comma - 3));
    address.port = text.mid(comma + 1).toInt(&isNumber);
    if (address.host.isEmpty() || !isNumber || address.port < 1 || address.port > maxPort)
        return std::nullopt;
    return address;
}

bool FioAddress::isPrivate() const
{
    if (!socket.isEmpty())
        return true;
    int error = 0;
    const AddressList list = lookUp(*this, error);
    if (list == nullptr)
        return false;
    for (const addrinfo* entry = list.get(); entry != nullptr; entry = entry->ai_next) {
        const auto* const ip = reinterpret_cast<const sockaddr_in*>(entry->ai_addr);
        constexpr unsigned loopback = 127;
        if (ntohl(ip->sin_addr.s_addr) >> 24U != loopback)
            return false;
    }
    return true;
}

std::vector<QString> whyUnreachable(const std::vector<FioAddress>& addresses, int timeoutMs)
{
    const QDeadlineTimer end(timeoutMs);
    std::vector<std::unique_ptr<Attempt>> attempts;
    attempts.reserve(addresses.size());
    for (const FioAddress& address : addresses)
        attempts.push_back(std::make_unique<Attempt>(address));
    while (step(attempts, end)) {
    }
    std::vector<QString> reasons;
    for (const std::unique_ptr<Attempt>& attempt : attempts) {
        if (attempt->isOpen())
            attempt->fail(ETIMEDOUT);
        reasons.push_back(attempt->problem());
    }
    return reasons;
}
