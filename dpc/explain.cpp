#include "check/rules/catalogue.h"
#include "check/ruletexts.h"
#include "check/text.h"
#include "dpc/commands.h"

#include <fmt/format.h>

#include <ostream>

namespace {

constexpr Operand operands[] = {{"RULE", ValueKind::Rule, true}};

constexpr const char* description =
    R"(Prints for each RULE its meaning, what to do about a finding, and two small series: one in which the rule finds something, and one in which it finds nothing. The name of a rule stands in brackets at the end of a finding; dpc check --list-rules prints all names.)";

constexpr const char* examples[] = {"dpc explain bad-line"};

int run(const Arguments& arguments, const Output& output)
{
    std::string text;
    for (const QString& name : arguments.operands()) {
        const Rule* const rule = ruleNamed(utf8(name));
        if (rule == nullptr)
            throw UsageError(fmt::format("unknown rule {}{}", quoted(name),
                                         didYouMean(closestRuleName(utf8(name)))));
        text += (text.empty() ? "" : "\n") + ruleAsText(*rule);
    }
    output.out << text;
    return exitClean;
}

} // namespace

const Command explainCommand{
    "explain",   "explain a rule of dpc check by examples",
    {},          operands,
    description, "explained",
    nullptr,     examples,
    run,
};
