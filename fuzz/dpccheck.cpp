// Input, all of it Latin-1: what dpc is given, and an archive of files.
//
//   chosen.dpc              the path; empty: the folder itself; "!" before it: warnings count
//   pc01,pc02               the machines
//   ==> ...                 as archive.h says

#include "configset/infotext.h"
#include "configset/seriesloader.h"
#include "configset/seriessaver.h"
#include "dpc/check.h"
#include "dpc/commandline.h"
#include "fuzz/archive.h"
#include "fuzz/dpcoutput.h"
#include "fuzz/slowseries.h"

#include <algorithm>

namespace {

/// One run of a command.
struct Run
{
    QByteArray out;
    QByteArray err;
    int code = 0;
};

template <class Command>
Run run(const Command& command)
{
    std::ostringstream out;
    std::ostringstream err;
    const int code = command(Output{out, err});
    return {QByteArray::fromStdString(out.str()), QByteArray::fromStdString(err.str()), code};
}

void checkFailure(const Run& failed)
{
    fuzz::same("a failure is one sentence", failed.err.count('\n'), 1);
    fuzz::same("the sentence is of dpc", failed.err.startsWith("dpc: "), true);
    fuzz::same("a failure prints no result", failed.out.size(), 0);
}

CheckRequest requestFor(const QString& path, const QString& root, const QByteArray& hosts)
{
    CheckRequest request;
    request.paths = QStringList{path};
    for (const QByteArray& host : hosts.split(','))
        request.options.hosts += fuzz::latin1(host);
    // Files outside of the folder must not matter.
    const Environment real = realEnvironment();
    request.options.environment.look = [root, real](const QString& file) {
        return file.startsWith(root) ? real.look(file) : PathStatus();
    };
    request.options.environment.space = [](const QString& file) {
        return std::optional<DiskSpace>({file.size() % 2 == 0 ? 1U : 2U, 1 << 30});
    };
    request.options.limits.names = 500;
    return request;
}

int expectedCode(const QJsonObject& all, bool warningsAreErrors)
{
    const bool isBad =
        all["errors"].toInt() > 0 || (warningsAreErrors && all["warnings"].toInt() > 0);
    return isBad ? exitFindings : exitClean;
}

/// True if the findings tell each line that a load rejects: not those of a copy, which are told
/// once, nor those beyond the number that is listed, nor the rest of a task that is split.
bool tellEachLine(const QJsonArray& findings)
{
    return std::none_of(findings.begin(), findings.end(), [](const QJsonValue& value) {
        const QJsonObject finding = value.toObject();
        return finding.contains("more") || finding["rule"] == "split-line" ||
               (finding["rule"] == "both-folders" && finding["severity"] == "note");
    });
}

/// Lines that a load of a series rejects, as the findings tell. A load does not read the "_init"
/// file, unless that is the series.
QStringList rejectedBy(const QJsonArray& findings, bool isInitFile)
{
    QStringList rejected;
    for (const auto& value : findings) {
        const QJsonObject finding = value.toObject();
        const QString rule = finding["rule"].toString();
        const QString file = finding["file"].toString();
        const bool isLoaded = isInitFile || !file.endsWith("_init.dpc");
        const int line = finding["line"].toInt();
        if (isLoaded && (rule == "bad-line" || rule == "winapi")) {
            const QByteArray text = dpc::linesOf(file)[line - 1];
            rejected << slow::lineText(line == 1 ? slow::withoutMark(text) : text) << file;
        }
    }
    return rejected;
}

/// Checks a path in every format and returns the JSON; nothing if it failed.
std::optional<QJsonArray> check(CheckRequest request)
{
    Run text;
    Run json;
    Run quiet;
    slow::withinOneSecond([&] {
        // It is called again if the machine was busy.
        request.format = "text";
        request.quiet = false;
        text = run([&](const Output& output) { return runCheck(request, output); });
        request.format = "json";
        json = run([&](const Output& output) { return runCheck(request, output); });
        request.quiet = true;
        quiet = run([&](const Output& output) { return runCheck(request, output); });
    });
    fuzz::same("the format does not matter", text.code, json.code);
    fuzz::same("quiet is as bad", quiet.code, json.code);
    fuzz::same("quiet is quiet", quiet.out.size(), 0);
    if (quiet.code == exitUsage) {
        checkFailure(quiet);
        return std::nullopt;
    }
    fuzz::same("quiet says nothing", quiet.err.size(), 0);
    const QJsonObject all = dpc::parsed(json.out);
    const QJsonArray findings = all["findings"].toArray();
    fuzz::same("the status follows from the findings", json.code,
               expectedCode(all, request.warningsAreErrors));
    dpc::checkCounts(all);
    dpc::checkText(text.out, findings);
    for (const auto& finding : findings)
        dpc::checkFinding(finding.toObject());
    return findings;
}

Run runWith(const std::vector<std::string>& arguments)
{
    return run([&](const Output& output) { return runDpc(arguments, output); });
}

std::string typed(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

Run show(const QString& path, const std::string& format, bool expands)
{
    std::vector<std::string> arguments = {"show", "--format=" + format};
    if (expands)
        arguments.emplace_back("--expand");
    arguments.insert(arguments.end(), {"--", typed(path)});
    return runWith(arguments);
}

/// Lists the tasks in every format and returns them; nothing if that failed.
std::optional<QJsonArray> list(const QString& path)
{
    const Run json = show(path, "json", false);
    const Run same = runWith({"diff", "--", typed(path), typed(path)});
    fuzz::same("what can be shown can be compared", same.code, json.code);
    if (json.code == exitUsage) {
        checkFailure(json);
        return std::nullopt;
    }
    fuzz::same("a series is the same as itself", same.out, QByteArray());
    const QJsonArray tasks = dpc::parsed(json.out)["tasks"].toArray();
    dpc::parsed(show(path, "json", true).out);
    show(path, "text", true);
    dpc::checkPrintable(show(path, "text", false).out);
    for (const bool expands : {false, true})
        fuzz::same("each task has its line", show(path, "csv", expands).out.count("\r\n"),
                   tasks.size() + 1);
    return tasks;
}

/// A load and a save under the same name, as the editor does them.
void loadAndSave(const QString& chosen)
{
    InfoText info;
    TaskList tasks;
    const SeriesName name = seriesNameForLoading(chosen);
    loadSeries(name, tasks, silentListener(info));
    if (!tasks.isEmpty())
        saveSeries(tasks, info.text(), seriesNameForSaving(name.folder + name.baseName + ".dpc"));
}

/// Checks that `dpc roundtrip` reports exactly the files that change.
void checkRoundTrip(const fuzz::ArchiveFolder& folder, const QByteArray& input,
                    const QString& chosen)
{
    Run told;
    QMap<QString, QByteArray> before;
    QMap<QString, QByteArray> after;
    slow::withinOneSecond([&] {
        folder.unpack(input);
        before = dpc::contentsOf(folder.path());
        told = runWith({"roundtrip", "--", typed(chosen)});
        fuzz::same("roundtrip writes nothing", dpc::contentsOf(folder.path()), before);
        if (told.code != exitUsage)
            loadAndSave(chosen);
        after = dpc::contentsOf(folder.path());
    });
    if (told.code == exitUsage)
        return checkFailure(told);
    fuzz::same("the status of a roundtrip follows from its output", told.code,
               int(told.out.isEmpty() ? exitClean : exitFindings));
    fuzz::same("a roundtrip tells of every change", dpc::changesTold(told.out).join('\n'),
               dpc::changedFiles(before, after).join('\n'));
}

/// Neither many nor so many that it is refused.
bool takesLong(const QJsonArray& tasks)
{
    double iterations = 0;
    for (const auto& task : tasks)
        iterations += std::max(task.toObject()["iterations"].toDouble(), 0.0);
    return iterations > 500 && iterations <= 1000000;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const fuzz::ArchiveFolder folder;
    const QByteArray input = fuzz::bytesOf(data, size);
    QByteArray rest = input;
    QString name = fuzz::latin1(fuzz::takeLine(rest).left(fuzz::maxNameLength));
    const bool warningsAreErrors = name.startsWith('!');
    name.remove(0, warningsAreErrors ? 1 : 0);
    if (fuzz::leadsElsewhere(name))
        name.clear();
    const QString path = folder.path() + name;

    folder.unpack(input);
    const auto before = dpc::contentsOf(folder.path());
    CheckRequest request = requestFor(path, folder.path(), fuzz::takeLine(rest).left(60));
    request.warningsAreErrors = warningsAreErrors;
    const auto findings = check(request);
    const auto tasks = list(path);
    fuzz::same("check and show write nothing", dpc::contentsOf(folder.path()), before);
    if (!tasks || QFileInfo(path).isDir())
        return 0;

    slow::Load loaded;
    const auto load = [&] { loaded = slow::Loader("", slow::now()).load(path); };
    slow::withinOneSecond(load);
    fuzz::same("the tasks are those of a load", tasks->size(), loaded.tasks.size());
    if (findings && tellEachLine(*findings))
        fuzz::same("what a load rejects is found, and nothing else",
                   rejectedBy(*findings, path.contains("_init")).join('\n'),
                   loaded.rejected.join('\n'));
    if (!takesLong(*tasks))
        checkRoundTrip(folder, input, path);
    return 0;
}
