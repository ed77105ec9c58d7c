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
        // The parser takes them from the end.
        m_app.parse(std::vector<std::string>(std::make_reverse_iterator(end), typed.rend()));
        Arguments arguments;
        bool needsOperands = true;
        for (const auto& [option, parser] : m_options) {
            if (parser->count() == 0)
                continue;
            arguments.add(*option, parser->results());
            needsOperands = needsOperands && !option->replacesOperands;
        }
        std::vector<std::string> operands = m_app.remaining();
        refuse(operands, [](const std::string& text) { return text.size() > 1 && text[0] == '-'; });
        if (end != typed.end())
            operands.insert(operands.end(), end + 1, typed.end());
        addOperands(arguments, operands, needsOperands);
        return arguments;
    }

private:
    CLI::Option* addOption(const Option& option)
    {
        if (option.kind == ValueKind::Flag)
            return m_app.add_flag(option.names)->disable_flag_override();
        CLI::Option* const parser = m_app.add_option(option.names);
        if (option.repeats)
            parser->take_all();
        if (option.kind == ValueKind::Choice)
            parser->check(CLI::IsMember(
                std::vector<std::string>(option.choices.begin(), option.choices.end())));
        if (option.kind == ValueKind::Number)
            parser->check(wholeNumber());
        return parser;
    }

    template <typename Predicate>
    static void refuse(const std::vector<std::string>& texts, Predicate isUnexpected)
    {
        std::vector<std::string> unexpected;
        std::copy_if(texts.rbegin(), texts.rend(), std::back_inserter(unexpected), isUnexpected);
        if (!unexpected.empty())
            throw CLI::ExtrasError(unexpected);
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
            refuse({texts.begin() + std::ptrdiff_t(wanted), texts.end()},
                   [](const std::string&) { return true; });
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

int runCommand(const Command& command, const std::vector<std::string>& typed, const Output& output)
{
    const std::string name = std::string("dpc ") + command.name;
    try {
        return command.run(Parser(command).parse(typed), output);
    } catch (const CLI::CallForHelp&) {
        output.out << helpFor(command);
        return exitClean;
    } catch (const CLI::ArgumentMismatch& error) {
        const std::string text = error.what();
        const size_t colon = text.find(':');
        return failInUse(
            output,
            colon == std::string::npos ? text : text.substr(0, colon) + ": takes one value, once",
            name);
    } catch (const CLI::Error& error) {
        return failInUse(output, error.what(), name);
    } catch (const UsageError& error) {
        return failInUse(output, error.text, name);
    }
}

/// Without a subcommand at the first place: options of dpc itself.
int runMain(const std::vector<std::string>& typed, const Output& output)
{
    CLI::App app("", "dpc");
    app.set_help_flag(helpOption.names);
    app.set_version_flag(versionOption.names, "dpc " TWDP_VERSION);
    std::string name;
    app.add_option("COMMAND", name);
    try {
        app.parse(std::vector<std::string>(typed.rbegin(), typed.rend()));
    } catch (const CLI::CallForHelp&) {
        const Command* const command = commandNamed(name);
        output.out << (command == nullptr ? mainHelp() : helpFor(*command));
        return exitClean;
    } catch (const CLI::CallForVersion& version) {
        output.out << version.what() << '\n';
        return exitClean;
    } catch (const CLI::Error& error) {
        return failInUse(output, error.what(), "dpc");
    }
    return failInUse(output, "a command is missing", "dpc");
}

} // namespace

int runDpc(const std::vector<std::string>& arguments, const Output& output)
{
    if (arguments.empty())
        return failInUse(output, "a command is missing", "dpc");
    const std::string& name = arguments.front();
    const Command* const command = commandNamed(name);
    if (command != nullptr)
        return runCommand(*command, {arguments.begin() + 1, arguments.end()}, output);
    if (!name.empty() && name.front() == '-')
        return runMain(arguments, output);
    return fail(output, fmt::format("unknown command {}{} (see dpc --help)", quoted(decoded(name)),
                                    didYouMean(closestCommandName(name))));
}
