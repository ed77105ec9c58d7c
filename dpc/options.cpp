#include "dpc/options.h"

#include <set>

namespace {

/// Adds the machines that are not there yet, and refuses a list that can't be used.
void add(std::vector<Machine>& machines, const MachineList& more, const Option& option)
{
    if (!more.problem.empty())
        throw UsageError(option, more.problem);
    std::set<QString> known;
    for (const Machine& machine : machines)
        known.insert(machine.name);
    for (const Machine& machine : more.machines) {
        if (known.insert(machine.name).second)
            machines.push_back(machine);
    }
}

} // namespace

std::vector<Machine> machinesOf(const Arguments& arguments)
{
    std::vector<Machine> machines;
    if (arguments.has(machinesOption)) {
        if (arguments.has(hostsOption) || arguments.has(hostsFileOption))
            throw UsageError(machinesOption, "can't stand beside --hosts or --hosts-file");
        add(machines, numberedMachines(arguments.number(machinesOption)), machinesOption);
    }
    // The file first: it may tell more about a machine than its name.
    if (arguments.has(hostsFileOption))
        add(machines, machinesInFile(decoded(arguments.value(hostsFileOption))), hostsFileOption);
    if (arguments.has(hostsOption)) {
        QStringList texts;
        for (const std::string& text : arguments.values(hostsOption))
            texts += decoded(text);
        add(machines, machinesNamed(texts), hostsOption);
    }
    return machines;
}

QStringList namesOf(const std::vector<Machine>& machines)
{
    return MachineList{machines, {}}.names();
}
