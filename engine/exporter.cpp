#include "engine/exporter.h"

#include "check/text.h"
#include "engine/calllog.h"
#include "engine/guards.h"
#include "engine/jobfile.h"
#include "engine/names.h"
#include "engine/writeall.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <fmt/format.h>
#include <functional>
#include <sys/stat.h>

namespace {

std::string cannot(const QString& path, const QString& reason)
{
    return fmt::format("{} can't be written: {}", quoted(path), printable(reason));
}

/// A file of an export and what it holds, which may be too much for one text.
struct ExportFile
{
    QByteArray name;
    std::function<bool(const std::function<bool(const QByteArray&)>&)> give;
};

ExportFile textFile(const QByteArray& name, const QByteArray& text)
{
    return {name, [text](const auto& take) { return take(text); }};
}

/// The logs of jobs that run on this machine, each once.
void addLogs(const Plan& plan, std::vector<ExportFile>& files)
{
    QSet<QByteArray> known;
    for (const PlanJob& job : plan.jobs) {
        const bool isHere = job.log && plan.machines[size_t(job.machine)].address.isEmpty();
        if (!isHere || known.contains(job.log->file))
            continue;
        known.insert(job.log->file);
        files.push_back({job.log->file, [&job](const auto& take) { return writeLog(job, take); }});
    }
}

/// The files that fio reads.
std::vector<ExportFile> fioFiles(const Plan& plan)
{
    std::vector<ExportFile> files;
    for (size_t stage = 0; stage < plan.stages.size(); ++stage) {
        for (const PlanJobFile& file : plan.stages[stage].files)
            files.push_back(textFile(file.file, jobFileText(plan, stage, file)));
    }
    for (const GuardCall& call : allGuardCalls(plan))
        files.push_back(textFile(call.file, call.text()));
    addLogs(plan, files);
    return files;
}

bool writeFile(const QString& folder, const ExportFile& content, std::string& problem)
{
    QFile file(folder + '/' + QString::fromLatin1(content.name));
    const bool isWritten =
        file.open(QIODevice::WriteOnly | QIODevice::NewOnly) &&
        content.give([&](const QByteArray& text) { return writeAll(file, text); }) && file.flush();
    if (!isWritten)
        problem = cannot(file.fileName(), file.errorString());
    return isWritten;
}

/// True if a file holds this and nothing else.
bool holds(const QString& folder, const ExportFile& content)
{
    QFile file(folder + '/' + QString::fromLatin1(content.name));
    return file.open(QIODevice::ReadOnly) &&
           content.give([&](const QByteArray& text) { return file.read(text.size()) == text; }) &&
           file.atEnd();
}

QByteArray clientCommand(const Plan& plan, const std::vector<std::pair<int, QByteArray>>& files)
{
    QByteArray command = "fio --output-format=json";
    for (const auto& [machine, file] : files) {
        const QByteArray& address = plan.machines[size_t(machine)].address;
        if (!address.isEmpty())
            command += " --client=" + shellWord(address);
        command += ' ' + file;
    }
    return command + '\n';
}

/// mkdtemp() keeps others out; a folder that a user makes has the rights of the umask.
void giveUsualRights(const QString& folder)
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    constexpr mode_t all = 0777;
    ::chmod(QFile::encodeName(folder).constData(), all & ~mask);
}

/// Renames to a name under which nothing is. Some file systems can't ask and rename in one step.
bool renameToNew(const QByteArray& from, const QByteArray& to)
{
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return true;
    struct stat status = {};
    if (errno != EINVAL || ::lstat(to.constData(), &status) == 0)
        return false;
    return ::rename(from.constData(), to.constData()) == 0;
}

} // namespace

QByteArray readmeText(const Plan& plan)
{
    QByteArray text = "Jobs of fio for the series " + encodedName(plan.series) +
                      "\n\n"
                      "dpc export wrote this folder, and dpc run runs it. Without dpc, run the "
                      "commands below in\nthis folder, with fio 3.33 or 3.39, one after the "
                      "other. The results are those of fio, and not\nthose of the speed test that "
                      "the series was made for. plan.json tells for each job the line of\nthe "
                      "series, its kind, its bytes, its files and its machine.\n\n"
                      "First, ask every machine. Each job of these must report ";
    text += QByteArray::number(preparationBytes) +
            " bytes read; one that\nreports 0 says that a file is there which the run would write, "
            "that a source is missing or has\nanother size, or that there is too little space:\n\n";
    for (const GuardCall& call : allGuardCalls(plan))
        text += "    " + clientCommand(plan, {{call.machine, call.file}});
    text +=
        "\nThen run the stages. Wait for the end of each. fio's exit status says nothing: check "
        "in the output\nthat every job of plan.json is there for its machine, without an error "
        "and with its bytes:\n\n";
    for (size_t stage = 0; stage < plan.stages.size(); ++stage) {
        std::vector<std::pair<int, QByteArray>> files;
        for (const PlanJobFile& file : plan.stages[stage].files)
            files.emplace_back(file.machine, file.file);
        text += "    " + clientCommand(plan, files).trimmed() + " > " + outputFolderName +
                "/stage-" + QByteArray::number(qint64(stage)) + ".txt\n";
    }
    return text;
}

bool fillExport(const QString& folder, const Plan& plan, const QJsonArray& losses,
                std::string& problem)
{
    for (const char* name : {logFolderName, proofFolderName, guardFolderName, outputFolderName}) {
        if (!QDir(folder).mkdir(QString::fromLatin1(name))) {
            problem = cannot(folder + '/' + name, QStringLiteral("the folder can't be made"));
            return false;
        }
    }
    std::vector<ExportFile> files = fioFiles(plan);
    files.push_back(textFile(readmeFileName, readmeText(plan)));
    files.push_back(textFile(planFileName, planAsJson(plan, losses)));
    return std::all_of(files.begin(), files.end(),
                       [&](const ExportFile& file) { return writeFile(folder, file, problem); });
}

bool createExport(const QString& folder, const Plan& plan, const QJsonArray& losses,
                  std::string& problem)
{
    const QString path = QDir::cleanPath(folder);
    QTemporaryDir beside(path + QStringLiteral(".XXXXXX"));
    if (!beside.isValid()) {
        problem = cannot(path, beside.errorString());
        return false;
    }
    if (!fillExport(beside.path(), plan, losses, problem))
        return false;
    giveUsualRights(beside.path());
    if (!renameToNew(QFile::encodeName(beside.path()), QFile::encodeName(path))) {
        problem = cannot(path, qt_error_string());
        return false;
    }
    beside.setAutoRemove(false);
    return true;
}

std::optional<PlanFileContent> readExport(const QString& folder, std::string& problem)
{
    constexpr qint64 largest = 64LL * 1024 * 1024;
    const QString path = folder + '/' + planFileName;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        problem = fmt::format("{} can't be read: {}", quoted(path), printable(file.errorString()));
        return std::nullopt;
    }
    auto content = planFromJson(file.read(largest), problem);
    if (!content) {
        problem = quoted(path) + ' ' + problem;
        return std::nullopt;
    }
    for (const ExportFile& part : fioFiles(content->plan)) {
        const QString name = QString::fromLatin1(part.name);
        if (holds(folder, part))
            continue;
        problem = fmt::format("{} is not what this version of dpc writes for the plan beside it: "
                              "export the series again",
                              quoted(folder + '/' + name));
        return std::nullopt;
    }
    return content;
}
