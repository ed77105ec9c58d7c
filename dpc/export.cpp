#include "check/text.h"
#include "dpc/commands.h"
#include "dpc/oneseries.h"
#include "dpc/planning.h"
#include "dpc/printer.h"
#include "engine/exporter.h"

#include <QFileInfo>

#include <fmt/format.h>
#include <ostream>
#include <set>

namespace {

constexpr const char* formats[] = {"text", "json"};
constexpr Option format{"--format", "FORMAT", ValueKind::Choice, "how to print what is lost",
                        formats};

constexpr const Option* options[] = {&format,     &hostsOption, &hostsFileOption,
                                     &tempOption, &dateOption,  &allowLossOption};
constexpr Operand operands[] = {{"SERIES", ValueKind::ConfigFile}, {"DIR", ValueKind::Folder}};

constexpr const char* description =
    R"(Writes what dpc run would give to fio into the new folder DIR, and runs nothing: a job file for each config file and machine, logs of the calls of copies, guards that only look, plan.json, which tells for each job the line of the series, its kind, bytes, files and machine, and a README with the plain commands of fio.

Findings in the style of dpc check say what fio can't do as a task says. An error is a task that fio can't do at all. A warning changes the work that is measured, and must be allowed by the name of its rule. A note changes nothing of it. If a loss is not allowed, nothing is written.

Without --hosts and --hosts-file the jobs are for this machine, without a server of fio. A line of the file of machines is NAME, NAME=ip:ADDRESS,PORT or NAME=sock:PATH, with temp=PATH behind it if the series names [temp]. A name alone is that of its server, at port 8765.)";

constexpr const char* examples[] = {
    "dpc export mytest.dpc mytest.fio",
    "dpc export --hosts pc01,pc02 --temp /var/tmp mytest.dpc mytest.fio",
    "dpc export --allow-loss fio-flush,fio-preallocate mytest.dpc mytest.fio",
};

void printLosses(const std::vector<Finding>& losses, const std::string& as, const Output& output)
{
    if (as == "json") {
        output.out << findingsAsJson(losses);
        return;
    }
    output.out << findingsAsText(losses, output.colour);
    if (!losses.empty())
        output.err << summaryOf(losses) << '\n';
}

/// Says what is in the way of a plan, and how to go on; false if anything is.
bool isAllowed(const PlanResult& result, const Arguments& arguments, const Output& output)
{
    const std::vector<Finding> forbidden =
        forbiddenLosses(result.losses, allowedLossesOf(arguments));
    for (const std::string& problem : result.problems)
        fail(output, problem);
    const int errors = countOf(forbidden, Severity::Error);
    if (errors > 0)
        fail(output, fmt::format("nothing was written: {}, which no option allows",
                                 counted(errors, "error")));
    std::set<std::string> names;
    for (const Finding& loss : forbidden) {
        if (loss.rule->severity == Severity::Warning)
            names.insert(loss.rule->name);
    }
    if (!names.empty())
        fail(output, fmt::format("nothing was written: correct what changes the measured work, or "
                                 "allow it with --allow-loss {}",
                                 fmt::join(names, ",")));
    return result.problems.empty() && forbidden.empty();
}

int run(const Arguments& arguments, const Output& output)
{
    const QString folder = arguments.operands().at(1);
    const QFileInfo target(folder);
    if (target.exists() || target.isSymLink())
        return fail(output, fmt::format("{} is there already: an export makes a new folder",
                                        quoted(folder)));
    const PlanOptions planOptions = planOptionsOf(arguments);
    const auto facts = readOneSeries(arguments.operands().at(0), output);
    if (!facts)
        return exitUsage;
    const PlanResult result = planSeries(*facts, planOptions);
    for (const std::string& sentence : result.misuse)
        fail(output, sentence);
    if (!result.misuse.empty())
        return exitUsage;
    printLosses(result.losses, arguments.value(format), output);
    if (!isAllowed(result, arguments, output))
        return exitFindings;
    std::string problem;
    if (!createExport(folder, result.plan, lossesAsJson(result.losses), problem))
        return fail(output, problem);
    return exitClean;
}

} // namespace

const Command exportCommand{
    "export",
    "write the jobs of fio that a series stands for",
    options,
    operands,
    description,
    "exported",
    "fio can't do a task, or a loss is not allowed; nothing was written",
    examples,
    run,
};
