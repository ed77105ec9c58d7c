#include "dpc/planning.h"

#include "check/text.h"
#include "engine/fioaddress.h"
#include "engine/lossrules.h"

#include <QDir>
#include <QFile>
#include <QHash>

#include <fmt/format.h>

namespace {

/// Where fio listens if it is not told otherwise.
constexpr int standardPort = 8765;

/// fio is called from another folder than this one.
QByteArray absoluteAddress(const Machine& machine)
{
    const QString socket = QStringLiteral("sock:");
    if (machine.address.isEmpty())
        return "ip:" + machine.name.toLatin1() + ',' + QByteArray::number(standardPort);
    if (machine.address.startsWith(socket))
        return QFile::encodeName(socket +
                                 QDir().absoluteFilePath(machine.address.mid(socket.size())));
    return machine.address.toLatin1();
}

const Option& optionOfMachines(const Arguments& arguments)
{
    return arguments.has(hostsFileOption) ? hostsFileOption : hostsOption;
}

} // namespace

std::vector<PlanMachine> planMachinesOf(const Arguments& arguments)
{
    std::vector<PlanMachine> machines;
    QHash<QByteArray, QString> users;
    for (const Machine& machine : machinesOf(arguments).machines) {
        PlanMachine planned;
        planned.name = machine.name;
        planned.address = absoluteAddress(machine);
        planned.tempFolder =
            machine.temp.isEmpty() ? decoded(arguments.value(tempOption)) : machine.temp;
        if (!FioAddress::parse(planned.address).has_value())
            throw UsageError(optionOfMachines(arguments),
                             fmt::format("{} is not ip:ADDRESS,PORT or sock:PATH",
                                         quoted(QFile::decodeName(planned.address))));
        if (users.contains(planned.address))
            throw UsageError(optionOfMachines(arguments),
                             fmt::format("{} and {} have one address, {}",
                                         printable(users.value(planned.address)),
                                         printable(planned.name),
                                         printable(QFile::decodeName(planned.address))));
        users.insert(planned.address, planned.name);
        machines.push_back(planned);
    }
    return machines;
}

PlanOptions planOptionsOf(const Arguments& arguments)
{
    PlanOptions options;
    options.machines = planMachinesOf(arguments);
    options.localTempFolder = decoded(arguments.value(tempOption));
    if (arguments.has(tempOption) && !options.localTempFolder.startsWith('/'))
        throw UsageError(tempOption, quoted(options.localTempFolder) + " is not an absolute path");
    options.date = decoded(arguments.value(dateOption));
    if (options.date.contains('/'))
        throw UsageError(dateOption, "a \"/\" would make folders of the names that hold [date]");
    return options;
}

std::set<const Rule*> allowedLossesOf(const Arguments& arguments)
{
    std::set<const Rule*> rules;
    for (const std::string& name : arguments.list(allowLossOption)) {
        const Rule* const rule = lossRuleNamed(name);
        if (rule == nullptr)
            throw UsageError(allowLossOption,
                             fmt::format("unknown rule {}{}", quoted(decoded(name)),
                                         didYouMean(closestLossRuleName(name))));
        rules.insert(rule);
    }
    return rules;
}

std::vector<Finding> forbiddenLosses(const std::vector<Finding>& losses,
                                     const std::set<const Rule*>& allowed)
{
    std::vector<Finding> forbidden;
    for (const Finding& loss : losses) {
        const bool isAllowed =
            loss.rule->severity == Severity::Note ||
            (loss.rule->severity == Severity::Warning && allowed.count(loss.rule) > 0);
        if (!isAllowed)
            forbidden.push_back(loss);
    }
    return forbidden;
}
