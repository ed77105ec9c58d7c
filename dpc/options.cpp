#include "dpc/options.h"

#include "check/text.h"

#include <QFile>

#include <fmt/format.h>

namespace {

void addHost(QStringList& hosts, const QString& name)
{
    const QString trimmed = name.trimmed();
    if (!trimmed.isEmpty() && !hosts.contains(trimmed))
        hosts += trimmed;
}

void readHosts(QStringList& hosts, const std::string& path)
{
    constexpr qint64 largestFile = 1024LL * 1024;
    QFile file(decoded(path));
    if (!file.open(QIODevice::ReadOnly))
        throw UsageError(hostsFileOption, fmt::format("{} can't be read", quoted(decoded(path))));
    const QStringList lines = QString::fromUtf8(file.read(largestFile)).split('\n');
    for (const QString& line : lines)
        addHost(hosts, line.section('#', 0, 0));
}

} // namespace

QStringList hostsOf(const Arguments& arguments)
{
    QStringList hosts;
    for (const std::string& host : arguments.list(hostsOption))
        addHost(hosts, QString::fromStdString(host));
    if (arguments.has(hostsFileOption))
        readHosts(hosts, arguments.value(hostsFileOption));
    return hosts;
}
