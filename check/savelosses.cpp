#include "check/savelosses.h"

#include "check/text.h"
#include "configset/seriesrenderer.h"
#include "model/tasklinereader.h"
#include "shared/kvtext.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace {

std::string nameOf(const QString& path)
{
    return printable(path.mid(path.lastIndexOf('/') + 1));
}

std::string nameOf(const FileFact& file)
{
    return nameOf(file.path);
}

bool isCutPath(const LineFact& line)
{
    for (const TaskPath which : {SourcePath, DestPath, LogPath, CsvPath}) {
        if (line.fields.fields[size_t(firstPathField + which - 1)].length > maxPath)
            return true;
    }
    return false;
}

/// Why a line does not survive; null if it does.
const char* lossOfLine(const LineFact& line)
{
    if (line.kind == LineFact::Kind::Rejected)
        return "does not load";
    if (line.splitEnd > 0)
        return "loads in part";
    if (line.kind == LineFact::Kind::Comment)
        return nullptr;
    const bool isCut = line.length > maxLine || line.hasZero || line.fields.beyond.length > 0;
    return isCut || (isTask(line) && isCutPath(line)) ? "is cut when it is loaded" : nullptr;
}

std::string lossOfFiles(const SeriesFacts& facts)
{
    std::array<bool, seriesFileCount> hasMarker{};
    for (const FileFact& file : facts.files)
        hasMarker[size_t(std::min(file.number, seriesFileCount - 1))] |=
            file.isRead() && file.markers > 0;
    for (size_t i = 0; i < facts.files.size(); ++i) {
        const FileFact& file = facts.files[i];
        if (file.role == FileRole::WaitFolder || (file.isRead() && !file.readable))
            return nameOf(file) + " can't be read";
        if (!file.isRead())
            continue;
        // Those that a load reads come first, by their numbers.
        if (i > 0 && facts.files[i - 1].number == file.number)
            return nameOf(file) + " is there twice";
        if (file.number > 0 && !hasMarker[size_t(file.number - 1)])
            return nameOf(file) + " is left over";
    }
    return {};
}

/// Of the content that a save writes.
std::string lossOf(const ConfigFile& saved)
{
    if (saved.content.size() <= maxConfigFile)
        return {};
    return fmt::format("{} would be cut at {} characters", nameOf(saved.path), maxConfigFile);
}

/// Renders the tasks and markers as a load gives them to a save, one by one: all their records
/// together would take too much memory.
std::string lossOfLength(const SeriesFacts& facts)
{
    QStringList info;
    for (const std::string& line : facts.info)
        info += QString::fromStdString(line);
    ConfigFilesRenderer renderer(info.join('\n'), {facts.runFolder, facts.name.baseName},
                                 FollowUpFiles::InWaitFolder);
    std::string loss = lossOf(renderer.files().last());
    for (const LineFact& line : facts.lines) {
        const FileFact& file = facts.fileOf(line);
        if (!file.isRead() || (!isTask(line) && !isMarker(line)))
            continue;
        TestTask task;
        _kvString<maxLine> text;
        text.addSignExtended(line.text.constData(), line.text.size());
        readTaskLine(task, text, kvToString8<maxPath>(file.path)); // the facts say that it is one
        const int number = renderer.files().size() - 1;
        renderer.add(task);
        loss = lossOf(renderer.files()[number]);
        if (!loss.empty())
            break;
    }
    return loss;
}

/// A source that exists, and that a save takes for missing: out of "_wait" it looks for the file
/// there. Empty if there is none.
QByteArray sourceMadeAnew(const SeriesFacts& facts, const FileUses& uses)
{
    for (const UsedName& name : uses.names()) {
        const int first = name.firstUse[SourcePath];
        if (first < 0 || !holds(name.text, configPathVariable))
            continue;
        const FileUse& use = uses.uses()[size_t(first)];
        const FileFact& file = facts.fileOf(facts.lines[size_t(use.line)]);
        const bool waits = file.path.indexOf('/', facts.runFolder.size()) != -1;
        if (waits && uses.file(use, 0).isFile())
            return name.text;
    }
    return {};
}

} // namespace

std::string lossOfSave(const SeriesFacts& facts)
{
    if (facts.limitReached)
        return "the series is too long to load";
    for (const LineFact& line : facts.lines) {
        const char* const loss = lossOfLine(line);
        if (loss != nullptr)
            return fmt::format("{}:{} {}", nameOf(facts.fileOf(line)), line.line, loss);
    }
    const std::string loss = lossOfFiles(facts);
    return loss.empty() ? lossOfLength(facts) : loss;
}

std::string adviceToRenewInit(const SeriesFacts& facts, const FileUses& uses)
{
    const std::string loss = lossOfSave(facts);
    if (!loss.empty())
        return fmt::format("first correct the series, which a save would not keep as it is ({}); "
                           "then run dpc init --write",
                           loss);
    const QByteArray destroyed = sourceMadeAnew(facts, uses);
    if (!destroyed.isEmpty())
        return fmt::format("write the line into the _init file by hand: after a save the _init "
                           "file would make {} anew, which is there already",
                           quoted(destroyed));
    return "run dpc init --write, or load and save the series again";
}
