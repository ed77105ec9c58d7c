#include "dpc/planning.h"

#include "check/text.h"
#include "dpc/oneseries.h"
#include "dpc/options.h"
#include "dpc/printer.h"
#include "engine/lossrules.h"

#include <QHash>
#include <QSet>

#include <fmt/format.h>
#include <ostream>
#include <set>

namespace {

/// Where the server of fio listens on a machine of which nothing else is told.
constexpr int usualPort = 8765;

QByteArray addressOf(const Machine& machine)
{
    if (!machine.address.isEmpty())
        return machine.address.toUtf8();
    return fmt::format("ip:{},{}", machine.name.toStdString(), usualPort).c_str();
}

/// Two names for one server would run two jobs there at once, on the same files.
void refuseSameAddress(const std::vector<PlanMachine>& machines)
{
    QHash<QByteArray, QString> nameOf;
    for (const PlanMachine& machine : machines) {
        const auto known = nameOf.constFind(machine.address);
        if (known != nameOf.constEnd())
            throw UsageError(hostsOption,
                             fmt::format("{} and {} have the same address, {}", quoted(*known),
                                         quoted(machine.name), quoted(machine.address)));
        nameOf.insert(machine.address, machine.name);
    }
}

/// The rules whose losses the user allows.
std::set<const Rule*> allowedRules(const Arguments& arguments)
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

/// Names of the rules of warnings that are not allowed, each once.
std::vector<std::string> refusedRules(const PlanResult& result,
                                      const std::set<const Rule*>& allowed)
{
    std::vector<std::string> names;
    std::set<const Rule*> said;
    for (const Finding& loss : result.losses) {
        const Rule& rule = *loss.rule;
        if (rule.severity == Severity::Warning && allowed.count(&rule) == 0 &&
            said.insert(&rule).second)
            names.emplace_back(rule.name);
    }
    return names;
}

} // namespace

PlanOptions planOptions(const Arguments& arguments)
{
    PlanOptions options;
    const QString temp = decoded(arguments.value(tempOption));
    if (arguments.has(tempOption) && !temp.startsWith('/'))
        throw UsageError(tempOption, fmt::format("{} is not an absolute path", quoted(temp)));
    for (const Machine& machine : machinesOf(arguments))
        options.machines.push_back(
            {machine.name, addressOf(machine), machine.temp.isEmpty() ? temp : machine.temp});
    refuseSameAddress(options.machines);
    options.localTempFolder = temp;
    options.date = decoded(arguments.value(dateOption));
    if (options.date.contains('/'))
        throw UsageError(dateOption, "a \"/\" would make folders of the names that hold [date]");
    return options;
}

std::optional<PlanResult> planOf(const QString& path, const PlanOptions& options,
                                 const Output& output)
{
    const auto facts = readOneSeries(path, output);
    if (!facts)
        return std::nullopt;
    PlanResult result = planSeries(*facts, options);
    if (result.misuse.empty())
        return result;
    for (const std::string& sentence : result.misuse)
        fail(output, sentence);
    return std::nullopt;
}

bool isAllowed(const PlanResult& result, const Arguments& arguments, const Output& output)
{
    const std::vector<std::string> refused = refusedRules(result, allowedRules(arguments));
    const int errors = countOf(result.losses, Severity::Error);
    for (const std::string& problem : result.problems)
        fail(output, problem);
    if (errors > 0)
        fail(output, fmt::format("fio can't do what the series says: {}, which nothing allows",
                                 counted(errors, "error")));
    if (!refused.empty())
        fail(output, fmt::format("the measured work would change: correct it, or allow it with "
                                 "--allow-loss {}",
                                 fmt::join(refused, ",")));
    return result.problems.empty() && errors == 0 && refused.empty();
}
