#include "dpc/commands.h"
#include "dpc/help.h"
#include "dpc/pages/pages.h"

#include <fmt/format.h>

namespace {

/// A cell of a table; a bar would end it.
std::string cell(std::string text)
{
    for (size_t at = text.find('|'); at != std::string::npos; at = text.find('|', at + 2))
        text.insert(at, "\\");
    return text;
}

} // namespace

std::string optionsAsMarkdown(const Command& command)
{
    std::string text = "| option | effect |\n|---|---|\n";
    for (const Option* option : command.options) {
        std::string names = option->names;
        const size_t comma = names.find(',');
        if (comma != std::string::npos)
            names.replace(comma, 1, "`, `");
        const std::string value =
            option->choices.empty()
                ? valueText(*option)
                : fmt::format("{}", fmt::join(option->choices.begin(), option->choices.end(), "|"));
        text += fmt::format("| `{}{}{}` | {} |\n", names, value.empty() ? "" : " ", cell(value),
                            cell(meaningOf(*option)));
    }
    return text;
}

std::string statusAsMarkdown()
{
    std::string text = "| command | 0 | 1 |\n|---|---|---|\n";
    for (const Command* command : allCommands())
        text += fmt::format("| `{}` | {} | {} |\n", command->name, command->onSuccess,
                            command->onFindings == nullptr ? "" : command->onFindings);
    return text;
}
