#include "check/rulesfile.h"

#include "check/environment.h"
#include "check/rules/catalogue.h"
#include "check/text.h"
#include "check/textfile.h"

#include <fmt/format.h>

namespace {

/// Half a sentence if the line can't be used.
std::string takeLine(RulesFile& file, const QString& line)
{
    const std::string name = utf8(line.section(':', 0, 0).trimmed());
    const Rule* const rule = ruleNamed(name);
    if (rule == nullptr)
        return fmt::format("unknown rule {}{}", quoted(QString::fromStdString(name)),
                           didYouMean(closestRuleName(name)));
    if (line.section(':', 1).trimmed().isEmpty())
        return fmt::format("the reason is missing; write \"{}: reason\"", name);
    file.rulesOff.insert(rule);
    return {};
}

} // namespace

RulesFile readRulesFile(const QString& path, const QString& shownPath)
{
    RulesFile result;
    const PathStatus status = realEnvironment().look(path);
    if (status.kind == PathStatus::Kind::Nothing)
        return result;
    const TextFile text = readTextFile(path);
    if (!text.problem.empty()) {
        result.problems.push_back(
            fmt::format("{} can't be read: {}", quoted(shownPath), text.problem));
        return result;
    }
    int number = 0;
    for (const QString& whole : text.lines) {
        ++number;
        const QString line = withoutComment(whole);
        const std::string problem = line.isEmpty() ? std::string() : takeLine(result, line);
        if (!problem.empty())
            result.problems.push_back(
                fmt::format("{}, line {}: {}", quoted(shownPath), number, problem));
    }
    return result;
}
