#include "dpc/commands.h"
#include "dpc/options.h"
#include "dpc/pages/pages.h"
#include "engine/lossrules.h"

#include <fmt/format.h>

namespace {

constexpr const char* note =
    "# Made from the options of the program, see CONTRIBUTING.md; not to be edited.\n";

std::string commandNames(const char* separator)
{
    std::vector<const char*> names;
    for (const Command* command : allCommands())
        names.push_back(command->name);
    return fmt::format("{}", fmt::join(names, separator));
}

/// The part of a meaning that fits on a line of a shell: its first half.
std::string shortMeaning(const char* meaning)
{
    const std::string text = meaning;
    return text.substr(0, text.find(';'));
}

std::string choicesOf(const Option& option)
{
    return fmt::format("{}", fmt::join(option.choices.begin(), option.choices.end(), " "));
}

std::string withBackslashBefore(const std::string& characters, const std::string& text)
{
    std::string result;
    for (const char c : text)
        result += (characters.find(c) == std::string::npos ? "" : "\\") + std::string(1, c);
    return result;
}

/// Between single quotes, in every shell.
std::string withoutQuotes(std::string text)
{
    for (size_t at = text.find('\''); at != std::string::npos; at = text.find('\'', at + 4))
        text.replace(at, 1, "'\\''");
    return text;
}

/// The names of an option as patterns or words: "-q", "--quiet".
std::vector<std::string> namesOf(const Option& option)
{
    const std::string names = option.names;
    const size_t comma = names.find(',');
    if (comma == std::string::npos)
        return {names};
    return {names.substr(0, comma), names.substr(comma + 1)};
}

/// Names of the rules that --allow-loss takes to any effect.
std::string lossNames()
{
    std::vector<std::string> names;
    for (const Rule* rule : lossRules()) {
        if (rule->severity == Severity::Warning)
            names.emplace_back(rule->name);
    }
    return fmt::format("{}", fmt::join(names, " "));
}

// bash

std::string bashValue(ValueKind kind, const std::string& choices)
{
    switch (kind) {
    case ValueKind::Choice:
        return fmt::format("COMPREPLY=($(compgen -W '{}' -- \"$cur\"))", choices);
    case ValueKind::File:
        return "_filedir";
    case ValueKind::Folder:
        return "_filedir -d";
    case ValueKind::ConfigFile:
        return "_filedir dpc";
    case ValueKind::Machine:
        return "_known_hosts_real -- \"$cur\"";
    case ValueKind::Rule:
        return "_dpc_rules";
    case ValueKind::Loss:
        return fmt::format("COMPREPLY=($(compgen -W '{}' -- \"$cur\"))", lossNames());
    case ValueKind::Flag:
    case ValueKind::Text:
    case ValueKind::Number:
        break;
    }
    return ":";
}

std::string bashValues(const Command& command)
{
    std::string text;
    for (const Option* option : command.options) {
        if (option->kind != ValueKind::Flag)
            text += fmt::format("        {}:{}) {}; return ;;\n", command.name, option->longName(),
                                bashValue(option->kind, choicesOf(*option)));
    }
    return text;
}

std::string bashCommand(const Command& command)
{
    std::string options;
    for (const Option* option : command.options)
        options += fmt::format(" {}", fmt::join(namesOf(*option), " "));
    return fmt::format("        {}) options+='{}' operand='{}' ;;\n", command.name, options,
                       bashValue(command.operands.begin()->kind, {}));
}

// zsh

std::string zshAction(const char* name, ValueKind kind, const std::string& choices)
{
    switch (kind) {
    case ValueKind::Flag:
        return {};
    case ValueKind::Choice:
        return fmt::format(":{}:({})", name, choices);
    case ValueKind::File:
        return fmt::format(":{}:_files", name);
    case ValueKind::Folder:
        return fmt::format(":{}:_files -/", name);
    case ValueKind::ConfigFile:
        return fmt::format(":{}:_files -g \"*.dpc(-.)\"", name);
    case ValueKind::Machine:
        return fmt::format(":{}:_sequence _hosts", name);
    case ValueKind::Rule:
        return fmt::format(":{}:_values -s , rule $rules", name);
    case ValueKind::Loss:
        return fmt::format(":{}:_values -s , rule {}", name, lossNames());
    case ValueKind::Text:
    case ValueKind::Number:
        break;
    }
    return fmt::format(":{}: ", name);
}

std::string zshOption(const Option& option)
{
    const std::vector<std::string> names = namesOf(option);
    const std::string meaning =
        withoutQuotes(withBackslashBefore("[]:", shortMeaning(option.meaning)));
    const std::string value = zshAction(option.valueName, option.kind, choicesOf(option));
    if (names.size() == 1)
        return fmt::format("'{}{}[{}]{}'", option.repeats ? "*" : "", names[0], meaning, value);
    return fmt::format("'({0} {1})'{{{0},{1}}}'[{2}]{3}'", names[0], names[1], meaning, value);
}

std::string zshCommand(const Command& command)
{
    std::string text = fmt::format("    {})\n        _arguments", command.name);
    for (const Option* option : command.options)
        text += " \\\n            " + zshOption(*option);
    text += " \\\n            " + zshOption(helpOption);
    for (const Operand& operand : command.operands)
        text += fmt::format(" \\\n            '{}{}'", operand.repeats ? "*" : "",
                            zshAction(operand.name, operand.kind, {}));
    return text + "\n        ;;\n";
}

// fish

constexpr const char* fishRules =
    "(dpc check --list-rules 2>/dev/null | string match -rg \"^([^ ]+) \\(\")";

std::string fishValue(ValueKind kind, const std::string& choices)
{
    switch (kind) {
    case ValueKind::Flag:
        return {};
    case ValueKind::Choice:
        return fmt::format(" -x -a '{}'", choices);
    case ValueKind::File:
        return " -r -F";
    case ValueKind::Folder:
        return " -x -a '(__fish_complete_directories)'";
    case ValueKind::ConfigFile:
        return " -x -k -a '(__fish_complete_suffix .dpc)'";
    case ValueKind::Machine:
        return " -x -a '(__fish_print_hostnames)'";
    case ValueKind::Rule:
        return fmt::format(" -x -a '{}'", fishRules);
    case ValueKind::Loss:
        return fmt::format(" -x -a '{}'", lossNames());
    case ValueKind::Text:
    case ValueKind::Number:
        break;
    }
    return " -x";
}

std::string fishOption(const std::string& condition, const Option& option)
{
    std::string text = "complete -c dpc" + condition;
    for (const std::string& name : namesOf(option))
        text += name[1] == '-' ? " -l " + name.substr(2) : " -s " + name.substr(1);
    return text + fishValue(option.kind, choicesOf(option)) +
           fmt::format(" -d '{}'\n", withBackslashBefore("'", shortMeaning(option.meaning)));
}

} // namespace

std::string bashCompletion()
{
    std::string text = fmt::format("# Completion of dpc(1) for bash.\n{}", note);
    text += R"sh(_dpc_rules() {
    local prefix=
    [[ $cur == *,* ]] && prefix=${cur%,*},
    COMPREPLY=($(compgen -P "$prefix" -W "$(dpc check --list-rules 2>/dev/null |
        sed -n 's/^\([^ ]\+\) (.*/\1/p')" -- "${cur##*,}"))
}

_dpc() {
    local cur prev words cword split command='' word options='--help -h' operand=:
    _init_completion -s || return

    for word in "${words[@]:1:cword-1}"; do
)sh";
    text += fmt::format("        [[ $word == @({}) ]] && {{ command=$word; break; }}\n    done\n",
                        commandNames("|"));
    text += "    case $command:$prev in\n";
    for (const Command* command : allCommands())
        text += bashValues(*command);
    text += "    esac\n    $split && return\n    case $command in\n";
    text +=
        fmt::format("        '') COMPREPLY=($(compgen -W \"{} $options --version\" -- \"$cur\"))\n"
                    "            return ;;\n",
                    commandNames(" "));
    for (const Command* command : allCommands())
        text += bashCommand(*command);
    return text + R"sh(    esac
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
    else
        $operand
    fi
} &&
    complete -F _dpc dpc
)sh";
}

std::string zshCompletion()
{
    std::string text = fmt::format("#compdef dpc\n# Completion of dpc(1) for zsh.\n{}", note);
    text += R"sh(
local curcontext=$curcontext state line
local -A opt_args
local -a rules
_arguments -C \
)sh";
    text += "    " + zshOption(helpOption) + " \\\n    " + zshOption(versionOption) + " \\\n";
    std::string commands;
    for (const Command* command : allCommands())
        commands += fmt::format("{}{}\\:\"{}\"", commands.empty() ? "" : " ", command->name,
                                withoutQuotes(command->title));
    text += fmt::format("    '1:command:(({}))' \\\n", commands);
    text += R"sh(    '*::argument:->arguments' && return 0

[[ $state == arguments ]] || return 1
curcontext=${curcontext%:*:*}:dpc-$words[1]:
[[ $words[1] == (check|explain) ]] &&
    rules=(${(f)"$(dpc check --list-rules 2>/dev/null | sed -n 's/^\([^ ]\+\) (.*/\1/p')"})
case $words[1] in
)sh";
    for (const Command* command : allCommands())
        text += zshCommand(*command);
    return text + "esac\n";
}

std::string fishCompletion()
{
    std::string text = fmt::format("# Completion of dpc(1) for fish.\n{}", note);
    text += fmt::format("set -l commands {}\n", commandNames(" "));
    text += R"sh(set -l none "not __fish_seen_subcommand_from $commands"

complete -c dpc -f
)sh";
    text += fishOption({}, helpOption) + fishOption(" -n $none", versionOption);
    for (const Command* command : allCommands())
        text += fmt::format("complete -c dpc -n $none -a {} -d '{}'\n", command->name,
                            withBackslashBefore("'", command->title));
    for (const Command* command : allCommands()) {
        const std::string condition =
            fmt::format(" -n '__fish_seen_subcommand_from {}'", command->name);
        text +=
            "\ncomplete -c dpc" + condition + fishValue(command->operands.begin()->kind, {}) + '\n';
        for (const Option* option : command->options)
            text += fishOption(condition, *option);
    }
    return text;
}
