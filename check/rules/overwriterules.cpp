#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/rules/usetexts.h"
#include "check/text.h"
#include "check/units.h"
#include "configset/filestocreate.h"

#include <QSet>

#include <fmt/format.h>

#include <algorithm>

// Which bytes are lost that somebody wants.

namespace {

constexpr Rule overwritesSource = {
    "overwrites-source",
    Severity::Warning,
    "paths",
    "The destination overwrites a source that is there before the series runs, and its bytes are "
    "lost. A file that a task writes and a later one reads back is none.",
    "name another destination",
    withExisting("/data/a.dat", 3,
                 oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
                         "/data/a.dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"
                         "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  /data/a.dat;  "
                         "MEMORY;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n")),
    withExisting("/data/", 0,
                 oneFile("Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  MEMORY;  "
                         "/data/a.dat;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"
                         "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  /data/a.dat;  "
                         "MEMORY;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"))};

/// Follows the content of all files from task to task.
class ContentHistory
{
public:
    ContentHistory(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
        : m_facts(facts)
        , m_uses(uses)
        , m_findings(findings)
        , m_files(uses.files().size())
    {
        for (size_t i = 0; i < m_files.size(); ++i) {
            m_files[i].content = originalOf(int(i));
            m_files[i].size = originalSize(uses.files()[i]);
        }
        for (const UsedName& name : uses.names()) {
            const int machines = name.byHost ? int(uses.machines().size()) : 1;
            for (int machine = 0; machine < machines && name.firstUse[SourcePath] >= 0; ++machine) {
                const FileUse& source = uses.uses()[size_t(name.firstUse[SourcePath])];
                m_files[size_t(uses.fileOf(source, machine))].isSource = true;
            }
        }
    }

    void run(int line)
    {
        m_isSaid = false;
        const int sources = m_uses.useCount(line, SourcePath);
        const int dests = m_uses.useCount(line, DestPath);
        for (int iteration = 0; iteration < std::max(sources, dests); ++iteration) {
            const FileUse* source =
                sources > 0 ? &m_uses.use(line, SourcePath, iteration) : nullptr;
            const FileUse* dest = dests > 0 ? &m_uses.use(line, DestPath, iteration) : nullptr;
            const bool byHost = (source != nullptr && m_uses.nameOf(*source).byHost) ||
                                (dest != nullptr && m_uses.nameOf(*dest).byHost);
            const int machines = byHost ? int(m_uses.machines().size()) : 1;
            for (int machine = 0; machine < machines; ++machine)
                run(line, source == nullptr ? -1 : m_uses.fileOf(*source, machine),
                    dest == nullptr ? -1 : m_uses.fileOf(*dest, machine));
        }
    }

    /// Reports files that were there before, are read after they were overwritten, and never held
    /// what a task is meant to write.
    void finish()
    {
        for (const File& file : m_files) {
            const int writer = file.firstWriter;
            if (writer < 0 || file.isOwnSize || m_said.contains(writer))
                continue;
            m_said.insert(writer);
            say(writer, file.firstReader);
        }
    }

private:
    struct File
    {
        int content = 0;      ///< the line that wrote it; below 0 what was there
        qint64 size = 0;      ///< of the content, below 0 if nobody knows
        int firstReader = -1; ///< the first line that reads it
        int firstWriter = -1; ///< the first line that overwrites what nobody read
        bool isReadFirst = false;
        bool isOwnSize = false; ///< of the size that a task writes, or the "_init" file makes
        bool isSource = false;
    };

    static int originalOf(int file) { return -1 - file; }

    qint64 originalSize(const UsedFile& file) const
    {
        if (file.isFile())
            return file.path.size;
        return file.init >= 0 ? m_uses.init()[size_t(file.init)].entry.size : -1;
    }

    void run(int line, int source, int dest)
    {
        // That is a finding of its own.
        if (source == dest || (dest >= 0 && m_uses.files()[size_t(dest)].isDevice()))
            return;
        if (source >= 0) {
            File& read = m_files[size_t(source)];
            read.isReadFirst =
                read.isReadFirst || (read.content == originalOf(source) && isThere(source));
            read.firstReader = read.firstReader < 0 ? line : read.firstReader;
        }
        if (dest < 0 || !m_files[size_t(dest)].isSource)
            return;
        File& written = m_files[size_t(dest)];
        const int content = source >= 0 ? m_files[size_t(source)].content : line;
        // A copy is as large as its source.
        const qint64 size = source >= 0 ? m_files[size_t(source)].size
                                        : qint64(m_facts.lines[size_t(line)].used.fileSize);
        if (written.content == originalOf(dest) && content != originalOf(dest)) {
            if (written.isReadFirst)
                sayOnce(line, written.firstReader);
            else if (m_uses.files()[size_t(dest)].isFile() && written.firstWriter < 0)
                written.firstWriter = line;
        }
        written.isOwnSize = written.isOwnSize || isSizeOf(dest, size);
        written.content = content;
        written.size = size;
    }

    /// True unless there is nothing to be lost.
    bool isThere(int place) const
    {
        const UsedFile& file = m_uses.files()[size_t(place)];
        const bool isMade = file.init >= 0 && m_uses.init()[size_t(file.init)].entry.isActive;
        return file.exists() || isMade || !file.path.isSeen;
    }

    /// True if the file on the disk may be what a task left there, or the "_init" file.
    bool isSizeOf(int place, qint64 size) const
    {
        const UsedFile& file = m_uses.files()[size_t(place)];
        return size < 0 || file.path.size == size ||
               (file.init >= 0 && file.path.size == m_uses.init()[size_t(file.init)].entry.size);
    }

    void sayOnce(int writer, int reader)
    {
        if (!m_isSaid)
            say(writer, reader);
        m_isSaid = true;
    }

    void say(int writer, int reader)
    {
        const LineFact& line = m_facts.lines[size_t(writer)];
        m_findings.add(overwritesSource, line, line.columnOf(DestPath),
                       fmt::format("the destination overwrites {}, and what it held before is "
                                   "lost",
                                   "the source of " + placeOf(m_facts, reader)));
    }

    const SeriesFacts& m_facts;
    const FileUses& m_uses;
    Findings& m_findings;
    std::vector<File> m_files;
    bool m_isSaid = false;
    QSet<int> m_said; ///< lines
};

constexpr Rule initOverwrites = {
    "init-overwrites",
    Severity::Error,
    "series",
    "The _init file makes a file anew that exists in another size: its bytes are lost when the "
    "_init file is run. A load out of _wait looks for the files there, and takes them for missing.",
    "put # before the line, or name the source by its full path",
    withExisting(
        "/data/src.dat", 3,
        series({"mytest.dpc",
                "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  /data/src.dat;  MEMORY;  "
                "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"},
               {"mytest_init.dpc",
                "Stream;NOflush;NOprealloc;  0;    0; -1; 102400;1;0;  MEMORY;  /data/src.dat;  ;  "
                ";  true;\n"
                "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  [cfgPath]/dummyFile;  "
                ";  ;  true;\n"})),
    withExisting(
        "/data/src.dat", 3,
        series({"mytest.dpc",
                "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  /data/src.dat;  MEMORY;  "
                "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"},
               {"mytest_init.dpc",
                "# Stream;NOflush;NOprealloc;  0;    0; -1; 102400;1;0;  MEMORY;  /data/src.dat;  "
                ";  ;  true;\n"
                "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  [cfgPath]/dummyFile;  "
                ";  ;  true;\n"}))};

/// True if a task of the series leaves the file in the size that it has: an earlier run did.
bool isSizeOfTask(const SeriesFacts& facts, const FileUses& uses, const UsedFile& file)
{
    for (const FileWay& way : file.ways) {
        const int use = uses.names()[size_t(way.name)].firstUse[DestPath];
        if (use < 0)
            continue;
        const LineFact& writer = facts.lines[size_t(uses.uses()[size_t(use)].line)];
        // A copy is as large as its source.
        if (!writer.fromMemory || writer.used.fileSize == file.path.size)
            return true;
    }
    return false;
}

void checkInitLine(const SeriesFacts& facts, const FileUses& uses, const InitUse& made,
                   Findings& findings)
{
    const UsedFile& file = uses.files()[size_t(made.file)];
    const qint64 sizeAfterwards = uses.init()[size_t(file.init)].entry.size;
    const bool makesAnew = made.entry.isActive && file.isFile() && file.path.size != sizeAfterwards;
    // A file that only keeps its folder has no bytes to lose.
    if (!makesAnew || made.name.endsWith(dummyFileName) || isSizeOfTask(facts, uses, file))
        return;
    findings.add(initOverwrites, made.entry.file, made.entry.line, 1,
                 fmt::format("makes {} anew, which exists with {} bytes, in {} KiB: what it holds "
                             "is lost when the _init file is run",
                             quoted(made.name), file.path.size, made.entry.size / bytesPerKib));
}

} // namespace

void checkOverwrites(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
{
    ContentHistory history(facts, uses, findings);
    for (int line = 0; line < int(facts.lines.size()); ++line)
        history.run(line);
    history.finish();
    for (const InitUse& made : uses.init())
        checkInitLine(facts, uses, made, findings);
}

RuleList overwriteRules()
{
    return {&overwritesSource, &initOverwrites};
}
