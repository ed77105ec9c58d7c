#include "dpc/commands.h"
#include "dpc/listing.h"
#include "dpc/oneseries.h"

#include <algorithm>
#include <ostream>

namespace {

constexpr Option format{"--format", "FORMAT", ValueKind::Choice, "how to print the tasks",
                        listFormats};
constexpr Option expand{"--expand", nullptr, ValueKind::Flag,
                        "resolve every path as one machine does"};
constexpr Option host{"--host", "NAME", ValueKind::Machine, "the machine; default: this one", {},
                      false,    &expand};
constexpr Option date{
    "--date", "TEXT", ValueKind::Text, "the text that [date] stands for; default: now",
    {},       false,  &expand};
constexpr Option iteration{
    "--iteration", "NUMBER", ValueKind::Number, "the number that [iter] stands for; default: 0", {},
    false,         &expand};

constexpr const Option* options[] = {&format, &expand, &host, &date, &iteration};
constexpr Operand operands[] = {{"PATH", ValueKind::ConfigFile}};

constexpr const char* description =
    R"(Prints one line per task and per "next file", and totals: tasks and config files, bytes written and read, and the least waiting time, which is chunks x chunk wait x iterations. Sizes are KiB, waits ms.

With --expand every path is resolved as on one machine, and the .csv files have a column. [cfgPath] is the folder outside _wait, where files run.)";

constexpr const char* examples[] = {
    "dpc show mytest.dpc",
    "dpc show --format=csv mytest.dpc > mytest.csv",
    "dpc show --expand --host pc07 --iteration 2 mytest.dpc",
};

std::optional<Expansion> expansionOf(const Arguments& arguments)
{
    if (!arguments.has(expand))
        return std::nullopt;
    Expansion expansion;
    expansion.iteration = arguments.number(iteration);
    if (arguments.has(host))
        expansion.machine.computerName =
            computerNameFrom(decoded(arguments.value(host)).toLatin1().constData());
    if (arguments.has(date))
        expansion.machine.date = decoded(arguments.value(date));
    return expansion;
}

ListFormat formatOf(const Arguments& arguments)
{
    const auto* const name =
        std::find(std::begin(listFormats), std::end(listFormats), arguments.value(format));
    return static_cast<ListFormat>(name - std::begin(listFormats));
}

int run(const Arguments& arguments, const Output& output)
{
    Remarks remarks;
    const auto facts = readOneSeries(arguments.operands().front(), remarks);
    if (facts)
        output.out << listSeries(*facts, formatOf(arguments), expansionOf(arguments), remarks);
    return printRemarks(remarks, output) ? exitUsage : exitClean;
}

} // namespace

const Command showCommand{
    "show",      "show a series as the editor's table shows it",
    options,     operands,
    description, "shown",
    nullptr,     examples,
    run,
};
