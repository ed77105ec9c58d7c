#include "engine/fioaddress.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <arpa/inet.h>
#include <memory>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

/// Addresses of fio's servers: how they are written, who reaches them, and whether they answer.
class TestFioAddress : public QObject
{
    Q_OBJECT

private slots:
    void writtenAddressesAreRead_data();
    void writtenAddressesAreRead();
    void onlyLoopbackIsPrivate_data();
    void onlyLoopbackIsPrivate();
    void allAreTriedAtTheSameTime();
    void silenceIsGivenUp();
    void nothingStaysOpen();
    void tellsThatTooMuchIsOpen();

private:
    QTemporaryDir m_folder;
};

namespace {

/// A socket that listens and accepts nothing.
class Listener
{
public:
    Listener(int family, const sockaddr* address, socklen_t length, int backlog)
        : m_number(::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        if (::bind(m_number, address, length) != 0 || ::listen(m_number, backlog) != 0)
            qFatal("can't listen at a socket");
    }
    ~Listener() { ::close(m_number); }
    Q_DISABLE_COPY_MOVE(Listener)

    int port() const
    {
        sockaddr_in address{};
        socklen_t length = sizeof address;
        ::getsockname(m_number, reinterpret_cast<sockaddr*>(&address), &length);
        return ntohs(address.sin_port);
    }

private:
    int m_number;
};

constexpr int someBacklog = 16;
constexpr int someMs = 60000;

std::unique_ptr<Listener> listenAtLoopback(int backlog)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return std::make_unique<Listener>(AF_INET, reinterpret_cast<const sockaddr*>(&address),
                                      sizeof address, backlog);
}

std::unique_ptr<Listener> listenAt(const QString& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray name = QFile::encodeName(path);
    std::copy(name.begin(), name.end(), address.sun_path);
    return std::make_unique<Listener>(AF_UNIX, reinterpret_cast<const sockaddr*>(&address),
                                      sizeof address, someBacklog);
}

FioAddress parsed(const QString& text)
{
    const std::optional<FioAddress> address = FioAddress::parse(text.toUtf8());
    if (!address)
        qFatal("an address can't be read");
    return *address;
}

FioAddress loopback(int port)
{
    return parsed(QStringLiteral("ip:127.0.0.1,%1").arg(port));
}

} // namespace

void TestFioAddress::writtenAddressesAreRead_data()
{
    QTest::addColumn<QString>("read"); // host,port or path; empty if it is not an address
    const auto row = [](const char* text, const char* read) { QTest::newRow(text) << read; };
    row("ip:pc01,8765", "pc01,8765");
    row("ip:10.0.0.1,1", "10.0.0.1,1");
    row("ip:a,65535", "a,65535");
    row("ip:a,b,8765", "a,b,8765");
    row("sock:/run/fio", "/run/fio");
    row("sock:x", "x");
    for (const char* text :
         {"", "ip:", "ip:a", "ip:,8765", "ip:a,", "ip:a,0", "ip:a,-1", "ip:a,65536", "ip:a,x",
          "ip:a,8765 x", "a,8765", "ip6:a,8765", "sock:", "sock", "IP:a,8765"})
        row(text, "");
}

void TestFioAddress::writtenAddressesAreRead()
{
    QFETCH(QString, read);
    const std::optional<FioAddress> address = FioAddress::parse(QTest::currentDataTag());
    QCOMPARE(address.has_value(), !read.isEmpty());
    if (!address)
        return;
    const QString shown = address->socket.isEmpty()
                              ? address->host + ',' + QString::number(address->port)
                              : address->socket;
    QCOMPARE(shown, read);
    QCOMPARE(address->socket.isEmpty(), !address->host.isEmpty());
}

void TestFioAddress::onlyLoopbackIsPrivate_data()
{
    QTest::addColumn<bool>("isPrivate");
    QTest::newRow("sock:/run/fio") << true;
    QTest::newRow("ip:127.0.0.1,1") << true;
    QTest::newRow("ip:127.255.255.255,1") << true;
    QTest::newRow("ip:126.255.255.255,1") << false;
    QTest::newRow("ip:128.0.0.0,1") << false;
    QTest::newRow("ip:192.0.2.1,1") << false;
    QTest::newRow("ip:0.0.0.127,1") << false;
    // RFC 6761 keeps the name unknown.
    QTest::newRow("ip:pc01.invalid,1") << false;
}

void TestFioAddress::onlyLoopbackIsPrivate()
{
    QFETCH(bool, isPrivate);
    QCOMPARE(parsed(QTest::currentDataTag()).isPrivate(), isPrivate);
}

void TestFioAddress::allAreTriedAtTheSameTime()
{
    const QString path = m_folder.filePath("there");
    const auto there = listenAt(path);
    const auto server = listenAtLoopback(someBacklog);
    const int closed = listenAtLoopback(someBacklog)->port();
    const std::vector<FioAddress> addresses = {
        loopback(server->port()),
        loopback(closed),
        parsed("sock:" + path),
        parsed("sock:" + m_folder.filePath("none")),
        parsed("sock:/" + QString(107, 'x')),
        parsed("sock:/" + QString(106, 'x')),
        parsed("ip:pc01.invalid,1"),
        loopback(server->port()),
        parsed("ip:::1,1"),
    };
    const std::vector<QString> reasons = whyUnreachable(addresses, someMs);
    QCOMPARE(reasons.size(), addresses.size());
    QCOMPARE(reasons[0], QString());
    QCOMPARE(reasons[1], QStringLiteral("Connection refused"));
    QCOMPARE(reasons[2], QString());
    QCOMPARE(reasons[3], QStringLiteral("No such file or directory"));
    QCOMPARE(reasons[4], QStringLiteral("File name too long"));
    QCOMPARE(reasons[5], QStringLiteral("No such file or directory"));
    QVERIFY(!reasons[6].isEmpty());
    QCOMPARE(reasons[7], QString());
    // fio would not connect to it, either.
    QCOMPARE(reasons[8], QStringLiteral("Address family for hostname not supported"));
}

/// The system answers nobody once the queue of those who wait for an answer is full.
void TestFioAddress::silenceIsGivenUp()
{
    const auto silent = listenAtLoopback(0);
    const auto server = listenAtLoopback(someBacklog);
    std::vector<int> waiting;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(uint16_t(silent->port()));
    for (int i = 0; i < 4; ++i) {
        waiting.push_back(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        static_cast<void>(
            ::connect(waiting.back(), reinterpret_cast<const sockaddr*>(&address), sizeof address));
    }
    constexpr int shortMs = 300;
    QElapsedTimer time;
    time.start();
    const std::vector<QString> reasons =
        whyUnreachable({loopback(silent->port()), loopback(server->port())}, shortMs);
    QVERIFY(time.elapsed() >= shortMs);
    QCOMPARE(reasons[0], QStringLiteral("Connection timed out"));
    QCOMPARE(reasons[1], QString());
    for (const int number : waiting)
        ::close(number);
}

void TestFioAddress::nothingStaysOpen()
{
    const auto server = listenAtLoopback(someBacklog);
    const auto openFiles = [] { return QDir("/proc/self/fd").entryList(QDir::System); };
    const QStringList before = openFiles();
    QVERIFY(!before.isEmpty());
    const std::vector<QString> reasons = whyUnreachable(
        {loopback(server->port()), parsed("ip:pc01.invalid,1"), parsed("sock:none")}, someMs);
    QCOMPARE(reasons.size(), size_t(3));
    QCOMPARE(openFiles(), before);
}

void TestFioAddress::tellsThatTooMuchIsOpen()
{
    const int firstFree = ::dup(STDIN_FILENO);
    ::close(firstFree);
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    const rlim_t before = std::exchange(limit.rlim_cur, rlim_t(firstFree));
    ::setrlimit(RLIMIT_NOFILE, &limit);
    const std::vector<QString> reasons = whyUnreachable({parsed("sock:none")}, someMs);
    limit.rlim_cur = before;
    ::setrlimit(RLIMIT_NOFILE, &limit);
    QCOMPARE(reasons.front(), QStringLiteral("Too many open files"));
}

QTEST_APPLESS_MAIN(TestFioAddress)
#include "tst_fioaddress.moc"
