#include "engine/fiomachines.h"

#include "check/text.h"
#include "engine/fioaddress.h"

#include <QFile>

#include <fmt/format.h>

namespace {

/// Messages of one call; fio repeats some of them without end.
constexpr qint64 maxComplaint = 64 << 10;

QString outputFile(const QString& name, const char* ending)
{
    return QLatin1String(outputFolderName) + QLatin1Char('/') + name + QLatin1String(ending);
}

} // namespace

FioMachines::FioMachines(const Plan& plan, const RunFolder& folder, const SignalGuard& heldSignals,
                         QString program)
    : m_plan(plan)
    , m_folder(folder)
    , m_signals(heldSignals)
    , m_program(std::move(program))
{
    for (size_t i = 0; i < plan.machines.size(); ++i) {
        const std::optional<FioAddress> address = FioAddress::parse(plan.machines[i].address);
        FioHost host;
        if (address.has_value() && address->socket.isEmpty())
            host = {address->host, address->port};
        // fio puts the name of a host into the names of logs, which can't hold the "/" of a path. A
        // link in its working folder stands for the socket.
        else if (address.has_value() && !folder.path().isEmpty()) {
            host.name = QStringLiteral("machine%1.sock").arg(i);
            QFile::link(address->socket, folder.file(host.name));
        }
        m_hosts.push_back(host);
        m_clients << (host.port != 0
                          ? QStringLiteral("--client=ip:%1,%2").arg(host.name).arg(host.port)
                          : QStringLiteral("--client=sock:") + host.name);
    }
}

std::vector<std::string> FioMachines::reach(int timeoutMs) const
{
    std::vector<FioAddress> addresses;
    std::vector<const PlanMachine*> machines;
    for (const PlanMachine& machine : m_plan.machines) {
        if (const std::optional<FioAddress> address = FioAddress::parse(machine.address)) {
            addresses.push_back(*address);
            machines.push_back(&machine);
        }
    }
    std::vector<std::string> sentences;
    const std::vector<QString> reasons = whyUnreachable(addresses, timeoutMs);
    for (size_t i = 0; i < reasons.size(); ++i) {
        if (!reasons[i].isEmpty())
            sentences.push_back(fmt::format(
                "{} does not answer at {}: {}", printable(machines[i]->name),
                printable(QFile::decodeName(machines[i]->address)), printable(reasons[i])));
    }
    return sentences;
}

FioExit FioMachines::call(const std::vector<JobFile>& files, const Output& output) const
{
    FioCall call;
    call.program = m_program;
    call.folder = m_folder.path();
    call.outputFile = outputFile(output.name, ".txt");
    call.errorFile = outputFile(output.name, ".err");
    call.timeoutMs = output.timeoutMs;
    call.onTick = output.onTick;
    call.arguments << QStringLiteral("--output-format=json");
    for (const JobFile& file : files) {
        if (!m_plan.isLocal())
            call.arguments << m_clients[file.machine];
        call.arguments << QFile::decodeName(file.file);
    }
    return m_signals.run(call);
}

FioOutput FioMachines::read(const QString& name) const
{
    QFile file(m_folder.file(outputFile(name, ".txt")));
    return file.open(QIODevice::ReadOnly) ? readFioOutput(file.readAll()) : FioOutput();
}

std::string FioMachines::complaint(const QString& name) const
{
    QFile file(m_folder.file(outputFile(name, ".err")));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    for (const QByteArray& line : file.read(maxComplaint).split('\n')) {
        if (!line.trimmed().isEmpty())
            return printable(QString::fromLocal8Bit(line.trimmed()));
    }
    return {};
}
