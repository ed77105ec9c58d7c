#include "dpc/commandline.h"

#include "check/text.h"
#include "dpc/commands.h"
#include "dpc/help.h"
#include "dpc/options.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <ostream>

namespace {

CLI::Validator oneOf(const Option& option)
{
    const auto problem = [&option](const std::string& text) {
        const bool isChoice = std::any_of(option.choices.begin(), option.choices.end(),
                                          [&](const char* choice) { return text == choice; });
        return isChoice
                   ? std::string()
                   : fmt::format("{} is not one of {}", quoted(decoded(text)),
                                 fmt::join(option.choices.begin(), option.choices.end(), ", "));
    };
    return CLI::Validator(problem, "");
}

CLI::Validator wholeNumber()
{
    const auto problem = [](const std::string& text) {
        bool isNumber = false;
        const int number = QString::fromStdString(text).toInt(&isNumber);
        return isNumber && number >= 0
                   ? std::string()
                   : fmt::format("{} is not a whole number", quoted(decoded(text)));
    };
    return CLI::Validator(problem, "");
}

/// The parser of one subcommand, made from its tables.
class Parser
{
public:
    explicit Parser(const Command& command)
        : m_command(command)
        , m_app("", std::string("dpc ") + command.name)
    {
        m_app.set_help_flag(helpOption.names);
        for (const Option* option : command.options)
            m_options.emplace_back(option, addOption(*option));
        for (const Option* option : command.options) {
            if (option->needs != nullptr)
                m_app.get_option(option->longName())
                    ->needs(m_app.get_option(option->needs->longName()));
        }
        m_app.allow_extras();
    }

    /// Throws the parser's own errors.
    Arguments parse(const std::vector<std::string>& typed)
    {
        const auto end = std::find(typed.begin(), typed.end(), "--");
        std::vector<std::string> before = withEmptyValues({typed.begin(), end});
        // The parser takes them from the end.
        std::reverse(before.begin(), before.end());
        m_app.parse(before);
        Arguments arguments;
        bool needsOperands = true;
        for (const auto& [option, parser] : m_options) {
            if (parser->count() == 0)
                continue;
            arguments.add(*option, parser->results());
            if (option->replacesOperands)
                needsOperands = false;
        }
        std::vector<std::string> operands = m_app.remaining();
        for (const std::string& text : operands)
            refuseOption(text);
        if (end != typed.end())
            operands.insert(operands.end(), end + 1, typed.end());
        addOperands(arguments, operands, needsOperands);
        return arguments;
    }

private:
    /// "--hosts=" as "--hosts" and an empty text: the parser would take what follows as the value.
    std::vector<std::string> withEmptyValues(const std::vector<std::string>& typed) const
    {
        std::vector<std::string> result;
        for (const std::string& text : typed) {
            const bool isEmpty =
                std::any_of(m_options.begin(), m_options.end(), [&](const auto& known) {
                    return known.first->valueName != nullptr &&
                           text == known.first->longName() + '=';
                });
            result.push_back(isEmpty ? text.substr(0, text.size() - 1) : text);
            if (isEmpty)
                result.emplace_back();
        }
        return result;
    }

    CLI::Option* addOption(const Option& option)
    {
        if (option.kind == ValueKind::Flag)
            return m_app.add_flag(option.names)->disable_flag_override();
        CLI::Option* const parser = m_app.add_option(option.names);
        if (option.repeats)
            parser->take_all();
        if (option.kind == ValueKind::Choice)
            parser->check(oneOf(option));
        if (option.kind == ValueKind::Number)
            parser->check(wholeNumber());
        return parser;
    }

    void refuseOption(const std::string& text) const
    {
        if (text.size() < 2 || text[0] != '-')
            return;
        std::vector<std::string> names;
        names.reserve(m_options.size());
        for (const auto& known : m_options)
            names.push_back(known.first->longName());
        std::vector<const char*> candidates;
        candidates.reserve(names.size());
        for (const std::string& name : names)
            candidates.push_back(name.c_str());
        throw UsageError(
            fmt::format("unknown option {}{}", quoted(decoded(text)),
                        didYouMean(closest(text, candidates.data(), int(candidates.size())))));
    }

    /// Not left to the parser, which takes a name in brackets for a list.
    void addOperands(Arguments& arguments, std::vector<std::string> texts, bool needsOperands) const
    {
        size_t wanted = 0;
        bool repeats = false;
        for (const Operand& operand : m_command.operands) {
            if (needsOperands && texts.size() <= wanted)
                throw CLI::RequiredError(operand.name);
            ++wanted;
            repeats = operand.repeats;
        }
        if (!repeats && texts.size() > wanted)
            throw UsageError(fmt::format("unexpected argument {}", quoted(decoded(texts[wanted]))));
        for (const std::string& text : texts)
            arguments.addOperand(text);
    }

    const Command& m_command;
    CLI::App m_app;
    std::vector<std::pair<const Option*, CLI::Option*>> m_options;
};

int failInUse(const Output& output, const std::string& text, const std::string& command)
{
    return fail(output, fmt::format("{} (see {} --help)", printable(decoded(text)), command));
}

/// Of an option that has too many values or too few: "--format: 1 required TEXT missing".
std::string sentenceFor(const CLI::ArgumentMismatch& error)
{
    const std::string text = error.what();
    const size_t colon = text.find(':');
    if (colon == std::string::npos)
        return fmt::format("--{}: takes no value", text.substr(0, text.find(' ')));
    const bool isMissing = text.find("missing") != std::string::npos;
    return text.substr(0, colon) + (isMissing ? ": its value is missing" : ": may be given once");
}

int runTyped(const Command& command, const std::vector<std::string>& typed, const Output& output)
{
    const std::string name = std::string("dpc ") + command.name;
    try {
        return command.run(Parser(command).parse(typed), output);
    } catch (const CLI::CallForHelp&) {
        output.out << helpFor(command);
        return exitClean;
    } catch (const CLI::ArgumentMismatch& error) {
        return failInUse(output, sentenceFor(error), name);
    } catch (const CLI::Error& error) {
        return failInUse(output, error.what(), name);
    } catch (const UsageError& error) {
        return failInUse(output, error.text, name);
    }
}

/// Without a subcommand at the first place: options of dpc itself.
int runMain(const std::vector<std::string>& typed, const Output& output)
{
    const Command* command = nullptr;
    for (const std::string& text : typed) {
        if (text == versionOption.names) {
            output.out << "dpc " TWDP_VERSION "\n";
            return exitClean;
        }
        const bool isHelp = text == "-h" || text == helpOption.longName();
        command = command == nullptr ? commandNamed(text) : command;
        if (!isHelp && command == nullptr)
            return failInUse(output, fmt::format("unknown option {}", quoted(decoded(text))),
                             "dpc");
    }
    output.out << (command == nullptr ? mainHelp() : helpFor(*command));
    return exitClean;
}

} // namespace

int runDpc(const std::vector<std::string>& arguments, const Output& output)
{
    if (arguments.empty())
        return failInUse(output, "a command is missing", "dpc");
    const std::string& name = arguments.front();
    const Command* const command = commandNamed(name);
    if (command != nullptr)
        return runTyped(*command, {arguments.begin() + 1, arguments.end()}, output);
    if (!name.empty() && name.front() == '-')
        return runMain(arguments, output);
    return fail(output, fmt::format("unknown command {}{} (see dpc --help)", quoted(decoded(name)),
                                    didYouMean(closestCommandName(name))));
}
