#include "check/rulesfile.h"
#include "dpc/commands.h"
#include "dpc/help.h"
#include "dpc/options.h"
#include "dpc/pages/pages.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <sstream>

namespace {

std::string replaced(std::string text, const std::string& what, const std::string& by)
{
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size()))
        text.replace(at, what.size(), by);
    return text;
}

/// One line of text that the formatter shows as it is.
std::string escaped(const std::string& line)
{
    const std::string text = replaced(replaced(line, "\\", "\\e"), "-", "\\-");
    const bool isRequest = !text.empty() && (text[0] == '.' || text[0] == '\'');
    return (isRequest ? "\\&" : "") + text;
}

/// A sentence in lines of moderate length.
std::string escapedLines(const std::string& sentence)
{
    std::istringstream lines(wrapped(sentence, {}, 72));
    std::string text;
    for (std::string line; std::getline(lines, line);)
        text += escaped(line) + '\n';
    return text;
}

/// The manual's language wants each sentence on a line of its own.
std::string sentences(const std::string& paragraph)
{
    std::string text;
    size_t start = 0;
    for (size_t end = paragraph.find(". "); end != std::string::npos;
         end = paragraph.find(". ", end + 2)) {
        const char next = paragraph[end + 2];
        if (std::isupper(static_cast<unsigned char>(next)) == 0 && next != '[')
            continue;
        text += escapedLines(paragraph.substr(start, end + 1 - start));
        start = end + 2;
    }
    return text + escapedLines(paragraph.substr(start));
}

std::string asSentence(std::string phrase)
{
    phrase[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(phrase[0])));
    return sentences(phrase + '.');
}

std::string literal(const std::vector<std::string>& lines)
{
    std::string text = ".Bd -literal -offset indent\n";
    for (const std::string& line : lines)
        text += escaped(line) + '\n';
    return text + ".Ed\n";
}

std::string paragraphs(const std::string& text)
{
    std::istringstream lines(text);
    std::vector<std::string> shown;
    std::string result;
    bool isFirst = true;
    const auto endLiteral = [&] {
        if (!shown.empty())
            result += literal(shown);
        shown.clear();
    };
    for (std::string line; std::getline(lines, line);) {
        if (line.compare(0, 4, "    ") == 0) {
            shown.push_back(line.substr(4));
            continue;
        }
        endLiteral();
        if (line.empty())
            continue;
        result += (isFirst ? "" : ".Pp\n") + sentences(line);
        isFirst = false;
    }
    endLiteral();
    return result;
}

std::string lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

/// "Fl q , Fl Fl quiet Ar value".
std::string flags(const Option& option)
{
    std::string names = option.names;
    names = replaced(names, ",", " , ");
    names = replaced(names, "--", "Fl Fl ");
    if (names[0] == '-')
        names = "Fl " + names.substr(1);
    return option.valueName == nullptr ? names : names + " Ar " + lowered(option.valueName);
}

std::string longFlag(const Option& option)
{
    const std::string name = "Fl Fl " + option.longName().substr(2);
    return option.valueName == nullptr ? name : name + " Ar " + lowered(option.valueName);
}

std::string synopsis(const Command& command)
{
    std::string text = fmt::format(".Nm\n.Cm {}\n", command.name);
    for (const Option* option : command.options)
        text += option->replacesOperands ? "" : fmt::format(".Op {}\n", longFlag(*option));
    text += ".Ar";
    for (const Operand& operand : command.operands)
        text += ' ' + lowered(operand.name) + (operand.repeats ? " ..." : "");
    text += '\n';
    for (const Option* option : command.options) {
        if (option->replacesOperands)
            text += fmt::format(".Nm\n.Cm {}\n.{}\n", command.name, longFlag(*option));
    }
    return text;
}

std::string optionItem(const Option& option)
{
    std::string text = fmt::format(".It {}\n", flags(option));
    if (option.choices.empty())
        return text + asSentence(option.meaning);
    std::string choices = fmt::format(
        "{}: {}", option.meaning, fmt::join(option.choices.begin(), option.choices.end(), ", "));
    return text + asSentence(choices) +
           fmt::format("The default is {}.\n", *option.choices.begin());
}

std::string optionList(const std::string& title, const std::vector<const Option*>& options)
{
    std::string text = fmt::format(".Ss {}\n.Bl -tag -width Ds\n", title);
    for (const Option* option : options)
        text += optionItem(*option);
    return text + ".El\n";
}

std::string statuses()
{
    std::string text = ".Bl -tag -width Ds\n";
    const auto item = [](int status, const char* all) {
        return fmt::format(".It {}\n{}", status, asSentence(all));
    };
    text += item(exitClean, mainSuccess) + item(exitFindings, mainFindings);
    for (const Command* command : allCommands()) {
        if (command->onFindings != nullptr)
            text += fmt::format(".Cm {} :\n{}", command->name,
                                sentences(std::string(command->onFindings) + '.'));
    }
    return text + item(exitUsage, usageStatus) + ".El\n";
}

/// The documents that explain more than this page, and the examples, at their installed place.
std::string documents()
{
    std::string text;
    for (const char* name : {"dpc.md", "rules.md", "running.md", "report.md", "results.md"})
        text += fmt::format(".Pa /usr/share/doc/dpc/docs/{} ,\n", name);
    return text + ".Pa /usr/share/doc/dpc/examples/README.md\n";
}

} // namespace

std::string manualPage()
{
    std::string text =
        ".\\\" Made from the options of the program, see CONTRIBUTING.md; not to be edited.\n"
        ".Dd November 21, 2026\n.Dt DPC 1\n.Os\n.Sh NAME\n.Nm dpc\n";
    text += fmt::format(".Nd {}\n.Sh SYNOPSIS\n", mainTitle);
    for (const Command* command : allCommands())
        text += synopsis(*command);
    text += ".Nm\n.Op Ar command\n.Fl Fl help\n.Nm\n.Fl Fl version\n.Sh DESCRIPTION\n";
    text += paragraphs(mainDescription);
    for (const Command* command : allCommands())
        text += fmt::format(".Ss {}\n", command->name) + asSentence(command->title) + ".Pp\n" +
                paragraphs(command->description);
    text += ".Sh OPTIONS\n" + optionList("Every command", {&helpOption, &versionOption});
    for (const Command* command : allCommands()) {
        if (!command->options.empty())
            text += optionList(command->name, {command->options.begin(), command->options.end()});
    }
    text += fmt::format(".Sh ENVIRONMENT\n.Bl -tag -width NO_COLOR\n.It Ev NO_COLOR\n{}.El\n",
                        asSentence(noColorMeaning));
    text += fmt::format(".Sh FILES\n.Bl -tag -width {0}\n.It Pa {0}\n{1}.El\n", rulesFileName,
                        asSentence(rulesFileMeaning));
    text += ".Sh EXIT STATUS\n" + statuses() + ".Sh EXAMPLES\n";
    for (const Command* command : allCommands())
        text += literal({command->examples.begin(), command->examples.end()});
    return text + ".Sh SEE ALSO\n.Xr twDiskProbe 1 ,\n.Xr dpc 5\n.Pp\n" + documents();
}
