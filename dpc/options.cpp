#include "dpc/options.h"

#include <set>

namespace {

/// Adds the machines that are not there yet, and refuses a list that can't be used.
void add(MachineList& list, const MachineList& more, const Option& option)
{
    if (!more.problem.empty())
        throw UsageError(option, more.problem);
    std::set<QString> known;
    for (const Machine& machine : list.machines)
        known.insert(machine.name);
    for (const Machine& machine : more.machines) {
        if (known.insert(machine.name).second)
            list.machines.push_back(machine);
    }
    if (list.repeatedCount == 0)
        list.repeated = more.repeated;
    list.repeatedCount += more.repeatedCount;
}

} // namespace

MachineList machinesOf(const Arguments& arguments)
{
    MachineList list;
    if (arguments.has(machinesOption)) {
        if (arguments.has(hostsOption) || arguments.has(hostsFileOption))
            throw UsageError(machinesOption, "can't stand beside --hosts or --hosts-file");
        add(list, numberedMachines(arguments.number(machinesOption)), machinesOption);
    }
    // The file first: it may tell more about a machine than its name.
    if (arguments.has(hostsFileOption))
        add(list, machinesInFile(decoded(arguments.value(hostsFileOption))), hostsFileOption);
    if (arguments.has(hostsOption)) {
        QStringList texts;
        for (const std::string& text : arguments.values(hostsOption))
            texts += decoded(text);
        add(list, machinesNamed(texts), hostsOption);
    }
    return list;
}
