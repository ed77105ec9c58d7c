#include "check/checker.h"
#include "check/rulesfile.h"
#include "check/text.h"
#include "check/units.h"
#include "dpc/commands.h"
#include "dpc/oneseries.h"
#include "dpc/planning.h"
#include "dpc/printer.h"
#include "dpc/runtext.h"
#include "engine/exporter.h"
#include "engine/fioaddress.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <fmt/format.h>
#include <limits>
#include <ostream>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr Option to{"--to", "RUN", ValueKind::Folder,
                    "the folder that the run makes for its results; it must not be there"};
constexpr Option dryRun{"--dry-run", nullptr, ValueKind::Flag,
                        "check the series and ask the machines, and run nothing"};
constexpr Option onlyStage{"--stage", "NUMBER", ValueKind::Number,
                           "run only this stage of the plan; the first is 0"};
constexpr Option overwrite{
    "--overwrite", "EARLIER_RUN", ValueKind::Folder,
    "write again what this earlier run of the series has made; only regular files of its manifest"};
constexpr Option keepGoing{"--keep-going", nullptr, ValueKind::Flag,
                           "go on with the next stage after one that failed"};
constexpr Option timeout{"--timeout", "SECONDS", ValueKind::Number,
                         "stop a stage that takes longer"};
constexpr Option startAtMinute{"--start-at-minute", nullptr, ValueKind::Flag,
                               "all machines begin each stage at the next minute of their clocks"};
constexpr Option trustNetwork{
    "--trust-network", nullptr, ValueKind::Flag,
    "use servers of fio that can be reached from outside, although they obey everybody"};

constexpr const Option* options[] = {
    &to,          &hostsOption, &hostsFileOption, &tempOption, &dateOption, &allowLossOption,
    &dryRun,      &onlyStage,   &overwrite,       &keepGoing,  &timeout,    &startAtMinute,
    &trustNetwork};
constexpr Operand operands[] = {{"PATH", ValueKind::ConfigFile}};

constexpr const char* description =
    R"(Runs the series that PATH belongs to, or the export in the folder PATH, on fio, and accounts for every job. This is not the speed test: what fio does otherwise is told, task by task, and what changes the measured work must be allowed by --allow-loss.

First the series is checked, every machine is connected to and asked whether sources are there, destinations are not, and the disk has space. Any "no" refuses the run before a byte is written. Then each config file is a stage: one call of fio for all machines.

Results go to standard output, all else to the error stream. The folder RUN keeps the export, the output of fio, results.csv, results.json, the state and a manifest of the files that were made. Nothing is deleted.

SIGINT, SIGTERM and the timeout end fio in order: what it has done until then is in the results.)";

constexpr const char* examples[] = {
    "dpc run --to /tmp/run1 mytest.dpc",
    "dpc run --to run2 --overwrite run1 mytest.dpc",
    "dpc run --to run3 --hosts-file hosts.txt --temp /scratch mytest.dpc",
    "dpc run --dry-run --hosts pc01,pc02 --trust-network mytest.dpc",
};

/// Of a terminal that does not tell.
constexpr int standardWidth = 80;

/// All that was typed, understood.
struct Request
{
    QString folder; ///< of the run, empty for a dry run
    QString path;
    PlanOptions plan;
    std::set<const Rule*> allowed;
    std::optional<EarlierRun> earlier;
    RunOptions run;
};

/// A plan that may run.
struct Planned
{
    Plan plan;
    QJsonArray losses;
};

/// Anyone who reaches a server of fio runs commands there.
void refuseOpenServers(const std::vector<PlanMachine>& machines, const Arguments& arguments)
{
    for (const PlanMachine& machine : machines) {
        const std::optional<FioAddress> address = FioAddress::parse(machine.address);
        if (!address.has_value() || address->isPrivate() || arguments.has(trustNetwork))
            continue;
        throw UsageError(
            trustNetwork,
            fmt::format("needed for {} at {}: a server of fio has no login and runs "
                        "any command for whoever reaches it; sock: through ssh is safe",
                        printable(machine.name), printable(QString::fromLatin1(machine.address))));
    }
}

/// The line of progress on a terminal, drawn again and again.
class ProgressLine
{
public:
    ProgressLine(const Plan& plan, std::ostream& err)
        : m_plan(plan)
        , m_err(err)
    {}
    ~ProgressLine()
    {
        if (m_isDrawn)
            m_err << "\r\x1B[K" << std::flush;
    }
    Q_DISABLE_COPY_MOVE(ProgressLine)

    void draw(const RunProgress& progress)
    {
        winsize size{};
        const bool isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
        const int width = isKnown ? size.ws_col - 1 : standardWidth;
        m_err << "\r\x1B[K" << progressText(m_plan, progress, width) << std::flush;
        m_isDrawn = true;
    }

private:
    const Plan& m_plan;
    std::ostream& m_err;
    bool m_isDrawn = false;
};

/// Refuses a run before any machine is asked: tells the reasons, and keeps them in the folder of
/// the run.
int refuse(const Request& request, const std::vector<std::string>& reasons, const Output& output)
{
    for (const std::string& reason : reasons)
        output.err << reason << '\n';
    output.err << "refused: nothing was run\n";
    RunFolder folder;
    std::string problem;
    if (request.folder.isEmpty())
        return exitFindings;
    if (!folder.create(request.folder, problem))
        return fail(output, fmt::format("{} can't be made: {}", quoted(request.folder), problem));
    RunStatus status;
    status.state = RunState::Refused;
    status.reasons = reasons;
    status.startedMs = QDateTime::currentMSecsSinceEpoch();
    status.endedMs = status.startedMs;
    folder.writeState(status);
    return exitFindings;
}

std::vector<std::string> linesOf(const std::vector<Finding>& findings)
{
    std::vector<std::string> lines;
    for (const Finding& finding : findings) {
        std::string line = findingsAsText({finding}, false);
        line.erase(line.find_last_not_of('\n') + 1);
        lines.push_back(std::move(line));
    }
    return lines;
}

/// The errors that dpc check finds, on the machines of the plan, without those of rules that are
/// turned off for the series.
std::vector<Finding> checkErrors(const SeriesFacts& facts, const PlanOptions& plan,
                                 const RulesFile& rules)
{
    CheckOptions check;
    check.rulesOff = rules.rulesOff;
    for (const PlanMachine& machine : plan.machines)
        check.hosts += machine.name;
    std::vector<Finding> findings = checkSeries(facts, check);
    findings.erase(std::remove_if(findings.begin(), findings.end(),
                                  [](const Finding& f) { return f.severity != Severity::Error; }),
                   findings.end());
    return findings;
}

/// The warnings that could be allowed, with commas between.
std::string namesToAllow(const std::vector<Finding>& forbidden)
{
    std::set<std::string> names;
    for (const Finding& loss : forbidden) {
        if (loss.rule->severity == Severity::Warning)
            names.insert(loss.rule->name);
    }
    return fmt::format("{}", fmt::join(names, ","));
}

/// Plans the series; nothing, and the exit status, if it does not run.
std::optional<Planned> planOf(Request& request, const Output& output, int& status)
{
    const std::optional<SeriesFacts> facts = readOneSeries(request.path, output);
    status = exitUsage;
    if (!facts)
        return std::nullopt;
    PlanResult result = planSeries(*facts, request.plan);
    const QString rulesPath = facts->runFolder + rulesFileName;
    const RulesFile rules = readRulesFile(rulesPath, shownPath(*facts, rulesPath));
    result.misuse.insert(result.misuse.end(), rules.problems.begin(), rules.problems.end());
    for (const std::string& sentence : result.misuse)
        fail(output, sentence);
    if (!result.misuse.empty())
        return std::nullopt;
    if (request.earlier && request.earlier->series() != result.plan.series) {
        fail(output, fmt::format("--overwrite: that is a run of {}, not of {}",
                                 quoted(request.earlier->series()), quoted(result.plan.series)));
        return std::nullopt;
    }
    const std::vector<Finding> forbidden = forbiddenLosses(result.losses, request.allowed);
    std::vector<std::string> reasons = linesOf(checkErrors(*facts, request.plan, rules));
    for (std::string& line : linesOf(forbidden))
        reasons.push_back(std::move(line));
    const std::string names = namesToAllow(forbidden);
    if (!names.empty())
        reasons.push_back("what changes the measured work must be allowed: --allow-loss " + names);
    reasons.insert(reasons.end(), result.problems.begin(), result.problems.end());
    if (!reasons.empty()) {
        status = refuse(request, reasons, output);
        return std::nullopt;
    }
    output.err << findingsAsText(result.losses, false);
    return Planned{std::move(result.plan), lossesAsJson(result.losses)};
}

/// Takes the plan of an export, which settles all that the options of a series settle.
std::optional<Planned> planOfExport(const Request& request, const Output& output)
{
    std::string problem;
    std::optional<PlanFileContent> content = readExport(request.path, problem);
    if (!content) {
        fail(output, problem);
        return std::nullopt;
    }
    return Planned{std::move(content->plan), content->losses};
}

bool isExport(const QString& path)
{
    return QFileInfo(path).isDir() && QFileInfo(path + '/' + planFileName).isFile();
}

/// How the run ended, as a status of the command.
int statusOf(const RunResults& results, bool isDryRun)
{
    const RunState state = results.status.state;
    return state == RunState::Complete || (isDryRun && state == RunState::Running) ? exitClean
                                                                                   : exitFindings;
}

int runPlan(const Request& request, const Planned& planned, const QString& version,
            const Output& output)
{
    RunFolder folder;
    const QTemporaryDir temporary;
    const QString path =
        request.folder.isEmpty() ? temporary.filePath(QStringLiteral("run")) : request.folder;
    std::string problem;
    if (!folder.create(path, problem))
        return fail(output, fmt::format("{} can't be made: {}", quoted(path), problem));
    if (!fillExport(folder.path(), planned.plan, planned.losses, problem))
        return fail(output, problem);
    output.err << forecastText(planned.plan) << std::flush;
    RunOptions run = request.run;
    run.losses = planned.losses;
    RunResults results;
    {
        ProgressLine line(planned.plan, output.err);
        if (::isatty(STDERR_FILENO) == 1)
            run.onProgress = [&](const RunProgress& progress) { line.draw(progress); };
        results = Runner(planned.plan, folder, run).run(version);
    }
    output.out << resultsText(results) << std::flush;
    output.err << outcomeText(results, folder.path());
    if (!folder.problem().empty())
        return fail(output, folder.problem());
    return statusOf(results, run.dryRun);
}

Request requestOf(const Arguments& arguments)
{
    Request request;
    request.path = arguments.operands().front();
    request.folder = decoded(arguments.value(to));
    request.run.dryRun = arguments.has(dryRun);
    request.run.keepGoing = arguments.has(keepGoing);
    constexpr int longest = std::numeric_limits<int>::max() / msPerSecond;
    if (arguments.number(timeout) > longest)
        throw UsageError(timeout, fmt::format("at most {} seconds", longest));
    request.run.stageTimeoutMs = arguments.number(timeout) * msPerSecond;
    if (request.folder.isEmpty() && !request.run.dryRun)
        throw UsageError(to, "name the folder for the results of the run");
    if (request.run.dryRun)
        request.folder.clear();
    request.plan = planOptionsOf(arguments);
    request.plan.startAtMinute = arguments.has(startAtMinute);
    if (arguments.has(onlyStage))
        request.plan.onlyStage = arguments.number(onlyStage);
    request.allowed = allowedLossesOf(arguments);
    return request;
}

/// An earlier run whose files may be written again.
void takeEarlierRun(Request& request, const Arguments& arguments)
{
    if (!arguments.has(overwrite))
        return;
    std::string problem;
    request.earlier = EarlierRun::read(decoded(arguments.value(overwrite)), problem);
    if (!request.earlier)
        throw UsageError(overwrite, problem);
    request.plan.mayOverwrite = [&request](const QString& machine, const QString& path) {
        return request.earlier->made(machine, path);
    };
}

/// An export has settled these.
void refusePlanOptions(const Arguments& arguments)
{
    for (const Option* option : {&hostsOption, &hostsFileOption, &tempOption, &dateOption,
                                 &allowLossOption, &onlyStage, &overwrite, &startAtMinute}) {
        if (arguments.has(*option))
            throw UsageError(*option, "an export has settled it; name the series instead");
    }
}

int run(const Arguments& arguments, const Output& output)
{
    Request request = requestOf(arguments);
    takeEarlierRun(request, arguments);
    const bool runsExport = isExport(request.path);
    if (runsExport)
        refusePlanOptions(arguments);
    refuseOpenServers(request.plan.machines, arguments);
    const std::string taken =
        request.folder.isEmpty() ? std::string() : RunFolder::whyTaken(request.folder);
    if (!taken.empty())
        return fail(output, taken + "; name a folder that does not exist yet");
    std::string problem;
    const QString version = fioVersion(request.run.program, problem);
    if (!problem.empty())
        return fail(output, "fio can't be run: " + problem);
    if (!triedFioVersions().contains(version))
        return fail(output,
                    fmt::format("{} was not tried with this program, but {}", quoted(version),
                                triedFioVersions().join(" and ").toStdString()));
    int status = exitUsage;
    const std::optional<Planned> planned =
        runsExport ? planOfExport(request, output) : planOf(request, output, status);
    if (!planned)
        return status;
    refuseOpenServers(planned->plan.machines, arguments);
    return runPlan(request, *planned, version, output);
}

} // namespace

const Command runCommand{
    "run",
    "run a series on fio, and account for every job",
    options,
    operands,
    description,
    "every job did its bytes (with --dry-run: the series could run)",
    "refused, failed or incomplete; state.json in the folder of the run says which",
    examples,
    run,
};
