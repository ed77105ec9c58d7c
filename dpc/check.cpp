#include "dpc/check.h"

#include "check/rules/catalogue.h"
#include "check/ruletexts.h"
#include "check/text.h"
#include "dpc/commands.h"
#include "dpc/options.h"
#include "dpc/printer.h"

#include <fmt/format.h>

#include <ostream>

namespace {

constexpr const char* formats[] = {"text", "json", "github"};
constexpr Option format{"--format", "FORMAT", ValueKind::Choice, "how to print the findings",
                        formats};
constexpr Option quiet{"-q,--quiet", nullptr, ValueKind::Flag,
                       "print nothing; the exit status tells"};
constexpr Option noRule{
    "--no-rule",
    "NAMES",
    ValueKind::Rule,
    "leave out the findings of these rules, with commas between; may be repeated; a file dpc.rules "
    "beside a series does the same for it",
    {},
    true};
constexpr Option warningsAsErrors{"--werror", nullptr, ValueKind::Flag,
                                  "count warnings as errors for the exit status"};
constexpr Option summary{"--summary", nullptr, ValueKind::Flag,
                         "tell at the end, on the error stream, how much was checked and what was "
                         "not; a terminal is always told"};
constexpr Option listRules{
    "--list-rules", nullptr, ValueKind::Flag, "print all rules, and end", {}, false, nullptr, true};

constexpr const Option* options[] = {
    &format,         &quiet,           &noRule,  &warningsAsErrors, &hostsOption,
    &machinesOption, &hostsFileOption, &summary, &colorOption,      &listRules};
constexpr Operand operands[] = {{"PATH", ValueKind::ConfigFile, true}};

constexpr const char* description =
    R"(Checks the series that each PATH belongs to, or all series in a folder, and prints one line per finding, as compilers do. A series that several PATHs belong to is checked once, and its _init file with it:

    file:line:column: error|warning|note: text [rule]

An error means that the series does not run, or not as it was meant; a warning that there is probably a mistake; a note is good to know. The counts follow on the error stream.

Silence means that nothing was found in what was looked at. With --summary, and on a terminal, one line tells how many files, tasks and machines that are, and what was not checked.

Findings about several machines need their names: --hosts or --hosts-file. If the names do not matter, --machines tells how many there are.)";

constexpr const char* examples[] = {
    "dpc check mytest.dpc",
    "dpc check --hosts pc01,pc02,pc03 --werror /srv/speedtests",
    "dpc check --format=json mytest.dpc > findings.json",
    "dpc check --no-rule chunk-remainder,beyond-form mytest.dpc",
};

std::set<const Rule*> rulesOff(const Arguments& arguments)
{
    std::set<const Rule*> rules;
    for (const std::string& name : arguments.list(noRule)) {
        const Rule* const rule = ruleNamed(name);
        if (rule == nullptr)
            throw UsageError(noRule, fmt::format("unknown rule {}{}", quoted(decoded(name)),
                                                 didYouMean(closestRuleName(name))));
        rules.insert(rule);
    }
    return rules;
}

bool isFailure(const std::vector<Finding>& findings, bool warningsAreErrors)
{
    return countOf(findings, Severity::Error) > 0 ||
           (warningsAreErrors && countOf(findings, Severity::Warning) > 0);
}

/// Does not let a single name pass for a list of machines, nor one name for two.
bool isRemark(const CheckRequest& request, const NotChecked& item)
{
    return item.what == "repeated-hosts" ||
           (item.what == "collisions" && request.options.hosts.size() == 1);
}

void printSummary(const CheckRequest& request, const CheckExtent& extent, const Output& output)
{
    if (request.summary || output.isErrTerminal) {
        output.err << extentAsText(extent) << '\n';
        return;
    }
    for (const NotChecked& item : extent.notChecked) {
        if (isRemark(request, item))
            output.err << "dpc: " << item.text << '\n';
    }
}

void print(const CheckRequest& request, const CheckResult& result, const Output& output)
{
    if (request.quiet)
        return;
    if (request.format == "json") {
        output.out << checkAsJson(result);
        return;
    }
    output.out << (request.format == "github" ? findingsForGithub(result.findings)
                                              : findingsAsText(result.findings, output.colour));
    if (!result.findings.empty())
        output.err << summaryOf(result.findings) << '\n';
    printSummary(request, result.extent, output);
}

Output withColor(const Arguments& arguments, const Output& output)
{
    const std::string when = arguments.value(colorOption);
    Output result = output;
    result.colour = when == "always" || (when == "auto" && output.colour);
    return result;
}

int run(const Arguments& arguments, const Output& output)
{
    if (arguments.has(listRules)) {
        output.out << (arguments.value(format) == "json" ? rulesAsJson() : rulesAsText());
        return exitClean;
    }
    CheckRequest request;
    request.paths = arguments.operands();
    const MachineList machines = machinesOf(arguments);
    request.options.hosts = machines.names();
    request.options.repeatedHosts = machines.repeated;
    request.options.repeatedHostCount = machines.repeatedCount;
    request.options.rulesOff = rulesOff(arguments);
    request.format = arguments.value(format);
    request.quiet = arguments.has(quiet);
    request.summary = arguments.has(summary);
    request.warningsAreErrors = arguments.has(warningsAsErrors);
    return runCheck(request, withColor(arguments, output));
}

} // namespace

int runCheck(const CheckRequest& request, const Output& output)
{
    const CheckResult result = checkAll(request.paths, request.options);
    for (const std::string& problem : result.problems)
        fail(output, problem);
    print(request, result, output);
    if (!result.problems.empty())
        return exitUsage;
    return isFailure(result.findings, request.warningsAreErrors) ? exitFindings : exitClean;
}

const Command checkCommand{
    "check",
    "report every mistake in a series, before machines run it",
    options,
    operands,
    description,
    "no errors (with --werror: and no warnings)",
    "errors (with --werror: or warnings)",
    examples,
    run,
};
