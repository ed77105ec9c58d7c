#include "engine/fioprogress.h"

#include <QByteArray>
#include <QFile>

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Of the process and of all children that it has waited for.
std::optional<long long> ownBytes(const QString& folder)
{
    long long sum = 0;
    int found = 0;
    for (const QByteArray& line : contentOf(folder + QStringLiteral("/io")).split('\n')) {
        if (!line.startsWith("rchar: ") && !line.startsWith("wchar: "))
            continue;
        sum += line.mid(line.indexOf(' ') + 1).toLongLong();
        ++found;
    }
    return found == 2 ? std::optional<long long>(sum) : std::nullopt;
}

} // namespace

std::optional<long long> bytesMovedBy(pid_t process)
{
    const QString folder = QStringLiteral("/proc/%1").arg(process);
    std::optional<long long> sum = ownBytes(folder);
    if (!sum.has_value())
        return std::nullopt;
    const QString children = folder + QStringLiteral("/task/%1/children").arg(process);
    for (const QByteArray& child : contentOf(children).split(' ')) {
        if (!child.trimmed().isEmpty())
            *sum += ownBytes(QStringLiteral("/proc/") + child.trimmed()).value_or(0);
    }
    return sum;
}
