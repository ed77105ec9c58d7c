#include "dpc/roundtrip.h"

#include "check/nameexpander.h"
#include "check/text.h"
#include "configset/configfilereader.h"
#include "configset/infotext.h"
#include "configset/seriesloader.h"
#include "configset/seriesrenderer.h"
#include "dpc/alignment.h"
#include "dpc/commands.h"
#include "dpc/oneseries.h"
#include "shared/kvfile.h"
#include "shared/kvtext.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <fmt/format.h>

#include <algorithm>
#include <ostream>

namespace {

/// Where the editor puts the files after the first.
FollowUpFiles followUpFiles(const SeriesName& name)
{
    const QFileInfo folder(name.folder + waitFolder().chopped(1));
    const bool isUsable = !folder.exists() || folder.isDir();
    return isUsable ? FollowUpFiles::InWaitFolder : FollowUpFiles::InSeriesFolder;
}

/// What keeps a save from writing a file; null where nothing does.
const char* obstacleTo(const QString& path)
{
    const QFileInfo file(path);
    const QFileInfo folder(file.path());
    if (file.exists() && !file.isFile())
        return "what is there is no file";
    return folder.exists() && !folder.isDir() ? "the folder is a file" : nullptr;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    const bool isFile = QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly);
    return isFile ? file.read(ConfigFileReader::largestFile) : QByteArray();
}

/// The last line has a line end in a file that is whole.
std::vector<std::string> linesOf(const QByteArray& content)
{
    std::vector<std::string> lines;
    int start = 0;
    while (start < content.size()) {
        const int end = content.indexOf('\n', start);
        const int next = end < 0 ? content.size() : end + 1;
        lines.push_back(content.mid(start, next - start).toStdString());
        start = next;
    }
    return lines;
}

std::string printableLine(const std::string& line)
{
    QByteArray text = QByteArray::fromStdString(line);
    const bool isWhole = text.endsWith('\n');
    if (isWhole)
        text.chop(1);
    return printable(QString::fromLatin1(text)) + (isWhole ? "" : " (no line end)");
}

std::string lineChanges(const QByteArray& before, const QByteArray& after)
{
    const std::vector<std::string> old = linesOf(before);
    const std::vector<std::string> now = linesOf(after);
    std::string text;
    for (const AlignedPair& pair : align(old, now)) {
        const bool same = pair.first >= 0 && pair.second >= 0 &&
                          old[size_t(pair.first)] == now[size_t(pair.second)];
        if (!same && pair.first >= 0)
            text +=
                fmt::format("{:5} - {}\n", pair.first + 1, printableLine(old[size_t(pair.first)]));
        if (!same && pair.second >= 0)
            text += fmt::format("{:5} + {}\n", pair.second + 1,
                                printableLine(now[size_t(pair.second)]));
    }
    return text;
}

QString writtenPath(const ConfigFile& file)
{
    return kvToQString(kvToString8<maxFileName>(file.path));
}

class Comparison
{
public:
    explicit Comparison(const SeriesFacts& facts)
        : m_facts(facts)
    {}

    void compareInit(const ConfigFile& file)
    {
        compare(file);
        // It is not rendered any further.
        if (file.content.size() > maxConfigFile)
            m_text += fmt::format("{}: is cut at {} characters\n", shown(writtenPath(file)),
                                  maxConfigFile);
    }

    void compareSeriesFile(const ConfigFile& file)
    {
        compare(file);
        if (file.content.size() > maxConfigFile)
            m_text += fmt::format("{}: is cut at {} of {} characters\n", shown(writtenPath(file)),
                                  maxConfigFile, file.content.size());
    }

    void addUntouched()
    {
        for (const FileFact& file : m_facts.files) {
            if (file.isRead && !m_written.contains(file.path))
                m_text += fmt::format("{}: stays as it is, and is loaded again next time\n",
                                      shown(file.path));
        }
    }

    /// The files of the series are there before their companion is made.
    bool writes(const QString& path) const { return m_written.contains(path); }

    std::string text() const { return m_text; }

private:
    void compare(const ConfigFile& file)
    {
        const QString path = writtenPath(file);
        const QByteArray content = kvToQString(kvToString8<maxConfigFile>(file.content)).toLatin1();
        const QByteArray before = contentOf(path);
        const char* const obstacle = obstacleTo(path);
        if (obstacle == nullptr)
            m_written.insert(path);
        if (obstacle != nullptr)
            m_text += fmt::format("{}: can't be written: {}\n", shown(path), obstacle);
        else if (!QFileInfo::exists(path))
            m_text += fmt::format("{}: is created, with {}\n", shown(path),
                                  counted(content.count('\n'), "line"));
        else if (before != content)
            m_text += fmt::format("{}: changes\n", shown(path)) + lineChanges(before, content);
    }

    std::string shown(const QString& path) const
    {
        const QString& folder = m_facts.name.folder;
        return printable(path.startsWith(folder) ? m_facts.shownFolder + path.mid(folder.size())
                                                 : path);
    }

    const SeriesFacts& m_facts;
    QSet<QString> m_written;
    std::string m_text;
};

} // namespace

RoundTrip roundTrip(const SeriesFacts& facts)
{
    if (facts.limitReached)
        return {{}, fmt::format("the series has more than {}", counted(maxSeriesEntries, "line"))};
    InfoText info;
    TaskList tasks;
    loadSeries(facts.name, tasks, silentListener(info));
    // The editor does not save an empty list.
    if (tasks.isEmpty())
        return {};
    prepareTasks(tasks);
    const SeriesName name = seriesNameForSaving(facts.name.folder + facts.name.baseName + ".dpc");
    const RenderedSeries series =
        renderSeries(tasks, info.text(), name, followUpFiles(name), thisMachine());
    Comparison comparison(facts);
    for (const ConfigFile& file : series.files)
        comparison.compareSeriesFile(file);
    comparison.compareInit(renderInitFile(series.filesToCreate, name, [&](const QString& resolved) {
        return comparison.writes(resolved) || kvFileExists(kvToString16<maxPath>(resolved));
    }));
    comparison.addUntouched();
    return {comparison.text(), {}};
}

namespace {

constexpr Operand operands[] = {{"PATH", ValueKind::ConfigFile}};

constexpr const char* description =
    R"(Loads the series as the editor does, renders in memory what the editor would save under the same name, and compares it with the disk, file by file and line by line: "-" is what is there now, "+" what would be there. Also tells of files that would be made, cut, or left over, and of what is in the way of a file. Nothing is written.)";

constexpr const char* examples[] = {"dpc roundtrip mytest.dpc"};

int run(const Arguments& arguments, const Output& output)
{
    const auto facts = readOneSeries(arguments.operands().front(), output);
    if (!facts)
        return exitUsage;
    const RoundTrip result = roundTrip(*facts);
    if (!result.problem.empty())
        return fail(output, result.problem);
    output.out << result.changes;
    return result.changes.empty() ? exitClean : exitFindings;
}

} // namespace

const Command roundTripCommand{
    "roundtrip",
    "tell what a load and a save in the editor would change",
    {},
    operands,
    description,
    "a load and a save change nothing",
    "they change something",
    examples,
    run,
};
