#include "dpc/help.h"

#include "check/rulesfile.h"
#include "dpc/commands.h"
#include "dpc/options.h"

#include <fmt/format.h>

#include <sstream>

namespace {

/// Paragraphs, and lines that are shown as they are.
std::string paragraphs(const std::string& text)
{
    const std::string indent(4, ' ');
    std::istringstream lines(text);
    std::string result;
    for (std::string line; std::getline(lines, line);) {
        if (line.empty())
            result += '\n';
        else if (line.compare(0, indent.size(), indent) == 0)
            result += indent + line + '\n';
        else
            result += wrapped(line, indent);
    }
    return result;
}

std::string optionText(const Option& option)
{
    std::string names = option.names;
    const size_t comma = names.find(',');
    if (comma != std::string::npos)
        names.insert(comma + 1, " ");
    const std::string value = valueText(option);
    return fmt::format("    {}{}{}\n", names, value.empty() ? "" : " ", value) +
           wrapped(meaningOf(option), std::string(8, ' '));
}

std::string statusText(const char* success, const char* findings)
{
    std::string text = fmt::format("\nEXIT STATUS\n    0   {}\n", success);
    if (findings != nullptr)
        text += fmt::format("    1   {}\n", findings);
    return text + fmt::format("    2   {}\n", usageStatus);
}

} // namespace

std::string wrapped(const std::string& text, const std::string& indent, size_t width)
{
    std::istringstream words(text);
    std::string result;
    std::string line = indent;
    for (std::string word; words >> word;) {
        if (line.size() > indent.size() && line.size() + 1 + word.size() > width) {
            result += line + '\n';
            line = indent;
        }
        line += (line.size() > indent.size() ? " " : "") + word;
    }
    return result + line + '\n';
}

std::vector<std::string> synopsisOf(const Command& command)
{
    std::string line = fmt::format("dpc {}", command.name);
    if (!command.options.empty())
        line += " [OPTIONS]";
    for (const Operand& operand : command.operands)
        line += fmt::format(" {}{}", operand.name, operand.repeats ? "..." : "");
    std::vector<std::string> lines{line};
    for (const Option* option : command.options) {
        if (option->replacesOperands)
            lines.push_back(fmt::format("dpc {} {}", command.name, option->longName()));
    }
    return lines;
}

std::string valueText(const Option& option)
{
    if (option.valueName == nullptr)
        return {};
    if (option.choices.empty())
        return option.valueName;
    return fmt::format("{}:{{{}}}", option.valueName,
                       fmt::join(option.choices.begin(), option.choices.end(), ","));
}

std::string meaningOf(const Option& option)
{
    return option.choices.empty()
               ? std::string(option.meaning)
               : fmt::format("{}; default: {}", option.meaning, *option.choices.begin());
}

std::string helpFor(const Command& command)
{
    std::string text =
        fmt::format("NAME\n    dpc {} - {}\n\nSYNOPSIS\n", command.name, command.title);
    for (const std::string& line : synopsisOf(command))
        text += fmt::format("    {}\n", line);
    text += "\nDESCRIPTION\n" + paragraphs(command.description) + "\nOPTIONS\n";
    for (const Option* option : command.options)
        text += optionText(*option);
    text +=
        optionText(helpOption) + statusText(command.onSuccess, command.onFindings) + "\nEXAMPLES\n";
    for (const char* example : command.examples)
        text += fmt::format("    {}\n", example);
    return text;
}

std::string mainHelp()
{
    std::string text = fmt::format(
        "NAME\n    dpc - {}\n\nSYNOPSIS\n    dpc COMMAND [OPTIONS] PATH...\n\n", mainTitle);
    text += "DESCRIPTION\n" + paragraphs(mainDescription) + "\nCOMMANDS\n";
    for (const Command* command : allCommands())
        text += fmt::format("    {:<10} {}\n", command->name, command->title);
    text += "\nOPTIONS\n" + optionText(versionOption) + optionText(helpOption) +
            statusText(mainSuccess, mainFindings);
    text += fmt::format("\nFILES\n    {}\n", rulesFileName) +
            wrapped(rulesFileMeaning, std::string(8, ' '));
    return text + fmt::format("\nENVIRONMENT\n    NO_COLOR   {}\n\nEXAMPLES\n", noColorMeaning) +
           "    dpc check mytest.dpc\n    dpc show --expand --host pc07 mytest.dpc\n"
           "    dpc check --help\n";
}
