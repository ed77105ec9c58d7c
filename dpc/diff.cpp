#include "dpc/commands.h"
#include "dpc/comparison.h"
#include "dpc/oneseries.h"

#include <ostream>

namespace {

constexpr Operand operands[] = {{"A", ValueKind::ConfigFile}, {"B", ValueKind::ConfigFile}};

constexpr const char* description =
    R"(Compares the tasks of two series in their order, not the lines of their files: blanks, comments and the names of files don't count. Settings are compared as the editor loads them, paths as they are written, and the info text as a whole. Prints one line per difference:

    fileA:line, fileB:line: field: value in A -> value in B
    fileB:line: only in the second series: task)";

constexpr const char* examples[] = {"dpc diff old/mytest.dpc mytest.dpc"};

int run(const Arguments& arguments, const Output& output)
{
    const auto first = readOneSeries(arguments.operands()[0], output);
    const auto second = first ? readOneSeries(arguments.operands()[1], output) : std::nullopt;
    if (!second)
        return exitUsage;
    const std::string differences = differencesOf(*first, *second);
    output.out << differences;
    warnOfLostLines(*first, output);
    warnOfLostLines(*second, output);
    return differences.empty() ? exitClean : exitFindings;
}

} // namespace

const Command diffCommand{
    "diff",
    "compare two series by task and field",
    {},
    operands,
    description,
    "the same tasks",
    "differences",
    examples,
    run,
};
