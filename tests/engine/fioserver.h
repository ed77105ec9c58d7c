#pragma once

#include <QByteArray>
#include <QString>

#include <sys/types.h>

namespace test {

/// Must come right after allowMounts(): from then on the program has a loopback of its own, so that
/// servers of other tests are not met. Leaves the program out if that is not permitted.
void useOwnNetwork();

/// A server of fio that does not see a folder of this machine: in its place it has an empty one,
/// in memory. The folder is also where it works.
class FioServer
{
public:
    /// `address` as fio takes it: "ip:127.0.0.11,8765" or "sock:PATH". `options` are those of the
    /// tmpfs. Returns once it can be connected to.
    FioServer(const QByteArray& address, QString folder, const QByteArray& options = "size=64m");
    ~FioServer();
    Q_DISABLE_COPY_MOVE(FioServer)

    /// A path in the folder as this program can reach it, while the server lives.
    QString seen(const QString& name) const;
    /// Ends it and all its jobs at once.
    void kill();
    /// True while a client is connected.
    bool isBusy() const;

private:
    QString m_folder;
    pid_t m_process = 0;
};

} // namespace test
