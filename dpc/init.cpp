#include "check/environment.h"
#include "check/text.h"
#include "configset/filestocreate.h"
#include "dpc/commands.h"
#include "dpc/oneseries.h"
#include "dpc/resave.h"
#include "model/limits.h"
#include "model/tasklinereader.h"
#include "shared/kvfile.h"
#include "shared/kvtext.h"

#include <QFile>
#include <QFileInfo>

#include <fmt/format.h>

#include <ostream>

namespace {

constexpr Option write{"--write", nullptr, ValueKind::Flag,
                       "put the file in place, whole or not at all, in place of printing it"};
constexpr const Option* options[] = {&write};
constexpr Operand operands[] = {{"SERIES", ValueKind::ConfigFile}};

constexpr const char* description =
    R"(Prints the _init file of a series as a load and a save in the editor write it: a line for each source file and each folder that the series needs, and a comment for what is there already. Run that file first, on one machine.

A file that would do harm is refused: if one of its lines would make a file anew that is there already, or if a line of the series does not load, so that the file would lack what that line needs.)";

constexpr const char* examples[] = {"dpc init mytest.dpc", "dpc init --write mytest.dpc"};

using Reasons = std::vector<std::string>;

std::string placeOf(const SeriesFacts& facts, const LineFact& line)
{
    return fmt::format("{}:{}", printable(facts.fileOf(line).shown), line.line);
}

void addRejectedLines(const SeriesFacts& facts, Reasons& reasons)
{
    for (const LineFact& line : facts.lines) {
        if (line.kind == LineFact::Kind::Rejected)
            reasons.push_back(
                placeOf(facts, line) +
                " does not load; dpc check tells why, and a save would lose the line");
    }
}

void addUnreadableFiles(const SeriesFacts& facts, Reasons& reasons)
{
    for (const FileFact& file : facts.files) {
        if (file.isRead() && !file.readable)
            reasons.push_back(
                fmt::format("{} does not load: {}", printable(file.shown), file.whyUnreadable));
    }
}

/// The file that a line of an _init file writes when the series runs; empty for a comment.
QString fileMadeBy(const QByteArray& line, const SeriesFacts& facts)
{
    TestTask task;
    _kvString<maxLine> text;
    text.add(line.constData(), line.size());
    const QString initPath = initFile({facts.runFolder, facts.name.baseName});
    if (line.startsWith('#') || !readTaskLine(task, text, kvToString8<maxPath>(initPath)))
        return {};
    QString path = kvToQString(task.destPath);
    path.replace(QLatin1String("[cfgPath]/"), facts.runFolder);
    path.replace(QLatin1String("[cfgPath]"), facts.runFolder);
    return path;
}

/// True for a file that only keeps its folder: it has no bytes to lose.
bool isDummy(const QFileInfo& file)
{
    return file.fileName() == QLatin1String(dummyFileName) && file.size() <= 1;
}

void addDestroyedFiles(const SeriesFacts& facts, const ResavedFile& file, Reasons& reasons)
{
    const QList<QByteArray> lines = file.content.split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        const QFileInfo made(fileMadeBy(lines[i], facts));
        if (!made.filePath().isEmpty() && made.exists() && !made.isDir() && !isDummy(made))
            reasons.push_back(
                fmt::format("line {} would make {} anew, which is there already, with {}", i + 1,
                            quoted(made.filePath()), counted(made.size(), "byte")));
    }
}

/// Why the file must not be used.
Reasons reasonsAgainst(const SeriesFacts& facts, const std::vector<ResavedFile>& saved)
{
    Reasons reasons;
    if (saved.empty())
        return {"the series holds no task"};
    const ResavedFile& file = saved.back();
    addUnreadableFiles(facts, reasons);
    addRejectedLines(facts, reasons);
    addDestroyedFiles(facts, file, reasons);
    if (!file.obstacle.empty())
        reasons.push_back(fmt::format("{} can't be written: {}",
                                      printable(shownPath(facts, file.path)), file.obstacle));
    return reasons;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(maxConfigFile + 1) : QByteArray();
}

std::string whyNotWritten(const QString& path)
{
    const PathStatus folder = realEnvironment().look(QFileInfo(path).path());
    return folder.isWritable ? "the disk is full, or the file can't be replaced"
                             : "you have no right to write into its folder";
}

int writeFile(const SeriesFacts& facts, const ResavedFile& file, const Output& output)
{
    const std::string shown = printable(shownPath(facts, file.path));
    const bool wasThere = QFileInfo(file.path).isFile() && contentOf(file.path) == file.content;
    if (!wasThere)
        writeToLogFile(kvToString8<maxFileName>(file.path),
                       kvToString8<maxConfigFile>(QString::fromLatin1(file.content)), true, false);
    if (contentOf(file.path) != file.content || !QFileInfo(file.path).isFile())
        return fail(output,
                    fmt::format("{} can't be written: {}", shown, whyNotWritten(file.path)));
    output.out << (wasThere ? fmt::format("{}: is up to date\n", shown)
                            : fmt::format("{}: is written, with {}\n", shown,
                                          counted(file.content.count('\n'), "line")));
    return exitClean;
}

/// Its very bytes, unless a terminal would show them.
void print(const ResavedFile& file, const Output& output)
{
    if (!output.isTerminal) {
        output.out.write(file.content.constData(), file.content.size());
        return;
    }
    const QList<QByteArray> lines = file.content.split('\n');
    for (const QByteArray& line : lines) {
        if (!line.isEmpty())
            output.out << printable(QString::fromLatin1(line)) << '\n';
    }
}

/// The file lies beside "_wait", also if the series is picked inside of it.
std::optional<SeriesFacts> readBesideWait(const QString& path, Remarks& remarks)
{
    auto facts = readOneSeries(path, remarks);
    if (!facts || facts->isInit || facts->runFolder == facts->name.folder)
        return facts;
    return readOneSeries({{facts->runFolder, facts->name.baseName}, facts->runFolder}, path,
                         remarks);
}

int run(const Arguments& arguments, const Output& output)
{
    Remarks remarks;
    const auto facts = readBesideWait(arguments.operands().front(), remarks);
    remarks.notChecked.clear();
    std::vector<ResavedFile> saved;
    if (facts && facts->isInit)
        remarks.problems.push_back(fmt::format("{} is an _init file: name a file of its series",
                                               quoted(arguments.operands().front())));
    else if (facts)
        saved = resave(*facts);
    if (printRemarks(remarks, output))
        return exitUsage;
    const Reasons reasons = reasonsAgainst(*facts, saved);
    for (const std::string& reason : reasons)
        fail(output, reason);
    if (!reasons.empty())
        return exitFindings;
    const ResavedFile& file = saved.back();
    if (file.isCut)
        output.err << fmt::format("dpc: the file is cut at {} characters, as a save cuts it\n",
                                  maxConfigFile);
    if (arguments.has(write))
        return writeFile(*facts, file, output);
    print(file, output);
    return exitClean;
}

} // namespace

const Command initCommand{
    "init",
    "print or write the _init file of a series",
    options,
    operands,
    description,
    "printed or written",
    "refused, with the reason; nothing is written",
    examples,
    run,
};
