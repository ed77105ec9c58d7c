#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

/// Where a server of fio listens, in the notation of `fio --client=`: "ip:ADDR,PORT" or
/// "sock:PATH".
struct FioAddress
{
    QString host; ///< name or number of the machine; empty for a socket
    int port = 0;
    QString socket; ///< path of the socket; empty for a machine

    /// Nothing for a text that is neither.
    static std::optional<FioAddress> parse(const QByteArray& text);

    /// True if nobody but this machine reaches it: a socket, or an address of the loopback.
    bool isPrivate() const;
};

/// Tries to connect to all at the same time, and closes the connections again. For each address
/// empty if that worked, else the reason as the system gives it. One that does not answer within
/// the time (ms) is given up.
std::vector<QString> whyUnreachable(const std::vector<FioAddress>& addresses, int timeoutMs);
