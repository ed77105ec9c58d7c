#include "engine/sectionindex.h"

SectionIndex::SectionIndex(const FioOutput& output, const std::vector<FioHost>& hosts)
    : m_hosts(hosts)
{
    for (const FioHost& host : hosts) {
        if (host.port == 0)
            m_sockets.insert(host.name);
    }
    for (const SectionReport& report : output.sections)
        m_reports[keyOf(report.host, report.port, report.name)].push_back(&report);
}

std::vector<const SectionReport*> SectionIndex::of(int machine, const QByteArray& section) const
{
    const FioHost& host = m_hosts[size_t(machine)];
    return m_reports.value(keyOf(host.name, host.port, section));
}

QByteArray SectionIndex::keyOf(const QString& host, int port, const QByteArray& section) const
{
    // A local run has no host, and of a socket fio reports some port.
    const QByteArray known = m_sockets.contains(host) ? QByteArray() : QByteArray::number(port);
    return host.toUtf8() + '\n' + known + '\n' + section;
}
