#pragma once

#include "engine/fiooutput.h"

#include <QHash>
#include <QSet>

/// The name of a machine in the output of fio.
struct FioHost
{
    QString name; ///< empty for this machine without a server
    int port = 0; ///< 0: a socket, whose port means nothing
};

/// The report of one call of fio, by machine and section.
class SectionIndex
{
public:
    /// `hosts` belong to the machines of the plan. All must outlive it.
    SectionIndex(const FioOutput& output, const std::vector<FioHost>& hosts);

    /// All reports of one section; good output has one.
    std::vector<const SectionReport*> of(int machine, const QByteArray& section) const;

private:
    QByteArray keyOf(const QString& host, int port, const QByteArray& section) const;

    const std::vector<FioHost>& m_hosts;
    QSet<QString> m_sockets; ///< names of hosts without a port
    QHash<QByteArray, std::vector<const SectionReport*>> m_reports;
};
