#include "check/ruletexts.h"

#include "check/rules/catalogue.h"
#include "check/text.h"

#include <QChar>
#include <QList>

#include <fmt/format.h>

#include <algorithm>

namespace {

/// The circumstances of an example, besides its files.
std::string circumstances(const RuleExample& example)
{
    std::string text;
    if (!example.machines.empty())
        text += fmt::format("machines: {}\n", example.machines);
    if (!example.existing.empty() && example.existing.back() == '/')
        text += fmt::format("on the disk: the folder {}\n", example.existing);
    else if (!example.existing.empty() && example.existing.back() == '|')
        text += fmt::format("on the disk: the pipe {}\n",
                            example.existing.substr(0, example.existing.size() - 1));
    else if (!example.existing.empty())
        text += fmt::format("on the disk: {} ({} KiB)\n", example.existing, example.existingKib);
    if (example.freeMib < RuleExample().freeMib)
        text += fmt::format("free on the disk: {} MiB\n", example.freeMib);
    return text;
}

std::string fileAsText(const ExampleFile& file)
{
    if (file.name.back() == '/')
        return fmt::format("{} (a folder)\n", file.name);
    std::string text = fmt::format("{}{}:\n", file.name,
                                   file.times > 1 ? fmt::format(", {} times", file.times) : "");
    const QByteArray content(file.content.data(), int(file.content.size()));
    for (const QByteArray& line : content.split('\n'))
        text +=
            line.isEmpty()
                ? ""
                : fmt::format("  {}\n", printable(QString::fromLatin1(line.data(), line.size())));
    return text;
}

std::string exampleAsText(const RuleExample& example)
{
    std::string text;
    for (const ExampleFile& file : example.files)
        text += file.name.empty() ? "" : fileAsText(file);
    return text + circumstances(example);
}

std::string indented(const std::string& text)
{
    std::string result = "    ";
    for (size_t i = 0; i < text.size(); ++i) {
        result += text[i];
        if (text[i] == '\n' && i + 1 < text.size())
            result += "    ";
    }
    return result;
}

std::string sentence(std::string clause)
{
    clause[0] = QChar(clause[0]).toUpper().toLatin1();
    return clause + '.';
}

std::string head(const Rule& rule)
{
    return fmt::format("{} ({}, {})\n    {}\n    {}\n", rule.name, severityName(rule.severity),
                       rule.category, rule.meaning, sentence(rule.advice));
}

std::string anchorTable()
{
    std::string text = "| rule | severity | about | meaning |\n|---|---|---|---|\n";
    for (const Rule* rule : allRules())
        text += fmt::format("| [`{0}`](#{0}) | {1} | {2} | {3} |\n", rule->name,
                            severityName(rule->severity), rule->category, rule->meaning);
    return text;
}

} // namespace

const char* severityName(Severity severity)
{
    switch (severity) {
    case Severity::Error:
        return "error";
    case Severity::Warning:
        return "warning";
    case Severity::Note:
        break;
    }
    return "note";
}

std::string ruleAsText(const Rule& rule)
{
    return fmt::format("{}\nfinds something in\n\n{}\nfinds nothing in\n\n{}", head(rule),
                       indented(exampleAsText(rule.hit)), indented(exampleAsText(rule.miss)));
}

std::string rulesAsText()
{
    std::string text;
    for (const Rule* rule : allRules())
        text += (text.empty() ? "" : "\n") + head(*rule);
    return text;
}

std::string rulesAsMarkdown()
{
    std::string text = "# Rules of dpc check\n\n"
                       "Made from the catalogue of the program, as `dpc explain RULE` shows it: "
                       "`TWDP_UPDATE_GOLDEN=1 ctest --preset dev -R tst_dpcdocument` renews it.\n"
                       "In the examples `x{500}` stands for 500 times \"x\".\n\n" +
                       anchorTable();
    for (const Rule* rule : allRules())
        text += fmt::format("\n## {}\n\n{} {}\n\nThe rule finds something in\n\n```text\n{}```\n\n"
                            "and nothing in\n\n```text\n{}```\n",
                            rule->name, rule->meaning, sentence(rule->advice),
                            exampleAsText(rule->hit), exampleAsText(rule->miss));
    return text;
}
