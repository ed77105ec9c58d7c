#include "dpc/commandline.h"

#include "check/text.h"
#include "dpc/help.h"

#include <QFile>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <ostream>

namespace {

QString decoded(const std::string& text)
{
    return QFile::decodeName(QByteArray::fromStdString(text));
}

std::string optionLine(const CLI::Option& option)
{
    std::string names = option.get_name(false, true);
    for (size_t comma = names.find(','); comma != std::string::npos;
         comma = names.find(',', comma + 2))
        names.replace(comma, 1, ", ");
    const std::string value = option.get_type_name();
    return fmt::format("    {}{}{}\n        {}\n", names, value.empty() ? "" : " ", value,
                       option.get_description());
}

/// Help like a manual page; what the options say comes from the options themselves.
class ManualPage : public CLI::Formatter
{
public:
    std::string make_help(const CLI::App* app, std::string /*name*/,
                          CLI::AppFormatMode /*mode*/) const override
    {
        const HelpPage& page = helpPage(app->get_name());
        const bool isMain = app->get_parent() == nullptr;
        std::string text = fmt::format(
            "NAME\n    {}{} - {}\n\nSYNOPSIS\n    {}\n\nDESCRIPTION{}\n\n", isMain ? "" : "dpc ",
            page.command, page.title, page.synopsis, page.description);
        if (isMain)
            text += commands(*app);
        text += "OPTIONS\n";
        for (const CLI::Option* option : app->get_options()) {
            if (option->nonpositional())
                text += optionLine(*option);
        }
        return text + '\n' + page.end;
    }

private:
    static std::string commands(const CLI::App& app)
    {
        std::string text = "COMMANDS\n";
        for (const CLI::App* command : app.get_subcommands(nullptr))
            text += fmt::format("    {:<10} {}\n", command->get_name(),
                                helpPage(command->get_name()).title);
        return text + '\n';
    }
};

/// Every option as it was typed.
struct Arguments
{
    std::vector<std::string> paths;
    std::string path;
    std::string second;
    std::string format = "text";
    std::vector<std::string> rulesOff;
    std::vector<std::string> hosts;
    std::string hostsFile;
    std::string host;
    std::string date;
    int iteration = 0;
    bool quiet = false;
    bool warningsAreErrors = false;
    bool listRules = false;
    bool expand = false;
};

/// Why a value is no good. Thrown inside of this file only, as the parser throws its own.
CLI::ValidationError wrong(const std::string& option, const std::string& reason)
{
    return CLI::ValidationError(option, reason);
}

CLI::Validator wholeNumber()
{
    const auto problem = [](const std::string& text) {
        bool isNumber = false;
        const int number = QString::fromStdString(text).toInt(&isNumber);
        return isNumber && number >= 0
                   ? std::string()
                   : fmt::format("{} is no whole number", quoted(decoded(text)));
    };
    return CLI::Validator(problem, "");
}

void addCheck(CLI::App& app, Arguments& arguments)
{
    CLI::App& check = *app.add_subcommand("check");
    check.add_option("PATH", arguments.paths);
    check.add_option("--format", arguments.format, "text (the default) or json")
        ->check(CLI::IsMember({"text", "json"}))
        ->type_name("FORMAT");
    check.add_flag("-q,--quiet", arguments.quiet, "print nothing; the exit status tells");
    check
        .add_option("--no-rule", arguments.rulesOff,
                    "leave out the findings of a rule; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false);
    check.add_flag("--werror", arguments.warningsAreErrors,
                   "warnings count as errors for the exit status");
    check
        .add_option("--hosts", arguments.hosts,
                    "the machines that run the series, with commas between")
        ->delimiter(',')
        ->type_name("NAMES")
        ->allow_extra_args(false);
    check
        .add_option("--hosts-file", arguments.hostsFile,
                    "the same from a file, one name per line; \"#\" begins a comment")
        ->type_name("FILE");
    check.add_flag("--list-rules", arguments.listRules, "print all rules with examples, and end");
}

void addShow(CLI::App& app, Arguments& arguments)
{
    CLI::App& show = *app.add_subcommand("show");
    show.add_option("PATH", arguments.path)->required();
    show.add_option("--format", arguments.format, "text (the default), csv or json")
        ->check(CLI::IsMember({"text", "csv", "json"}))
        ->type_name("FORMAT");
    CLI::Option* const expand =
        show.add_flag("--expand", arguments.expand, "resolve every path as one machine does");
    show.add_option("--host", arguments.host, "the machine; default: this one")
        ->type_name("NAME")
        ->needs(expand);
    show.add_option("--date", arguments.date, "what [date] stands for; default: now")
        ->type_name("TEXT")
        ->needs(expand);
    show.add_option("--iteration", arguments.iteration, "what [iter] stands for; default: 0")
        ->type_name("NUMBER")
        ->check(wholeNumber())
        ->needs(expand);
}

void addOthers(CLI::App& app, Arguments& arguments)
{
    CLI::App& diff = *app.add_subcommand("diff");
    diff.add_option("A", arguments.path)->required();
    diff.add_option("B", arguments.second)->required();
    CLI::App& roundTrip = *app.add_subcommand("roundtrip");
    roundTrip.add_option("PATH", arguments.path)->required();
}

void addHost(QStringList& hosts, const QString& name)
{
    const QString trimmed = name.trimmed();
    if (!trimmed.isEmpty() && !hosts.contains(trimmed))
        hosts += trimmed;
}

void readHosts(QStringList& hosts, const std::string& path)
{
    constexpr qint64 largestFile = 1024LL * 1024;
    QFile file(decoded(path));
    if (!file.open(QIODevice::ReadOnly))
        throw wrong("--hosts-file", fmt::format("{} can't be read", quoted(decoded(path))));
    const QStringList lines = QString::fromUtf8(file.read(largestFile)).split('\n');
    for (const QString& line : lines)
        addHost(hosts, line.section('#', 0, 0));
}

QStringList hostsOf(const Arguments& arguments)
{
    QStringList hosts;
    for (const std::string& host : arguments.hosts)
        addHost(hosts, QString::fromStdString(host));
    if (!arguments.hostsFile.empty())
        readHosts(hosts, arguments.hostsFile);
    return hosts;
}

std::set<Rule> rulesNamed(const std::vector<std::string>& names)
{
    std::set<Rule> rules;
    for (const std::string& name : names) {
        const RuleInfo* const rule = ruleNamed(name);
        if (rule == nullptr)
            throw wrong("--no-rule", fmt::format("there is no rule {}{}", quoted(decoded(name)),
                                                 didYouMean(closestRuleName(name))));
        rules.insert(rule->rule);
    }
    return rules;
}

int check(const Arguments& arguments, const Output& output)
{
    if (arguments.listRules) {
        output.out << rulesAsText();
        return exitClean;
    }
    if (arguments.paths.empty())
        throw CLI::RequiredError("PATH");
    CheckCommand command;
    for (const std::string& path : arguments.paths)
        command.paths += decoded(path);
    command.options.hosts = hostsOf(arguments);
    command.options.rulesOff = rulesNamed(arguments.rulesOff);
    command.json = arguments.format == "json";
    command.quiet = arguments.quiet;
    command.warningsAreErrors = arguments.warningsAreErrors;
    return runCheck(command, output);
}

int show(const Arguments& arguments, const Output& output)
{
    ShowCommand command;
    command.path = decoded(arguments.path);
    command.format = arguments.format == "csv"    ? ListFormat::Csv
                     : arguments.format == "json" ? ListFormat::Json
                                                  : ListFormat::Text;
    if (arguments.expand) {
        command.expansion.emplace();
        command.expansion->iteration = arguments.iteration;
        if (!arguments.host.empty())
            command.expansion->machine.computerName =
                computerNameFrom(QString::fromStdString(arguments.host).toLatin1().constData());
        if (!arguments.date.empty())
            command.expansion->machine.date = QString::fromStdString(arguments.date);
    }
    return runShow(command, output);
}

/// Why there is no command in what was typed; empty where there is one, or an option that comes
/// first.
std::string unknownCommand(const std::vector<std::string>& arguments)
{
    constexpr const char* commands[] = {"check", "show", "diff", "roundtrip"};
    if (arguments.empty())
        return "a command is missing (see dpc --help)";
    const std::string& name = arguments.front();
    const bool isKnown = std::any_of(std::begin(commands), std::end(commands),
                                     [&](const char* command) { return name == command; });
    if (isKnown || (!name.empty() && name.front() == '-'))
        return {};
    return fmt::format("there is no command {}{} (see dpc --help)", quoted(decoded(name)),
                       didYouMean(closest(name, commands)));
}

int run(const CLI::App& app, const Arguments& arguments, const Output& output)
{
    if (app.got_subcommand("check"))
        return check(arguments, output);
    if (app.got_subcommand("show"))
        return show(arguments, output);
    if (app.got_subcommand("diff"))
        return runDiff(decoded(arguments.path), decoded(arguments.second), output);
    if (app.got_subcommand("roundtrip"))
        return runRoundTrip(decoded(arguments.path), output);
    throw CLI::RequiredError("a command");
}

/// Of the subcommand that was named, or of dpc.
std::string helpFor(const CLI::App& app)
{
    const std::vector<CLI::App*> named = app.get_subcommands();
    return named.empty() ? app.help() : named.front()->help();
}

std::string commandName(const CLI::App& app)
{
    const std::vector<CLI::App*> named = app.get_subcommands();
    return named.empty() ? "dpc" : "dpc " + named.front()->get_name();
}

std::string oneSentence(const CLI::App& app, const CLI::Error& error)
{
    return fmt::format("{} (see {} --help)", printable(decoded(error.what())), commandName(app));
}

} // namespace

int runDpc(const std::vector<std::string>& arguments, const Output& output)
{
    CLI::App app("", "dpc");
    app.formatter(std::make_shared<ManualPage>());
    app.set_version_flag("--version", "dpc " TWDP_VERSION, "print the version, and end");
    app.set_help_flag("-h,--help", "print this page, and end");
    Arguments typed;
    addCheck(app, typed);
    addShow(app, typed);
    addOthers(app, typed);
    try {
        const std::string unknown = unknownCommand(arguments);
        if (!unknown.empty())
            return fail(output, unknown);
        // The parser takes them from the end.
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        return run(app, typed, output);
    } catch (const CLI::CallForHelp&) {
        output.out << helpFor(app);
        return exitClean;
    } catch (const CLI::CallForVersion& version) {
        output.out << version.what() << '\n';
        return exitClean;
    } catch (const CLI::Error& error) {
        return fail(output, oneSentence(app, error));
    }
}
