#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/rules/usetexts.h"
#include "check/text.h"
#include "check/units.h"
#include "configset/filestocreate.h"

#include <fmt/format.h>

// Sources that are wanted or made in two sizes.

namespace {

constexpr Rule sourceSize = {
    "source-size",
    Severity::Warning,
    "paths",
    "Two tasks want the same source in two sizes, or two lines of the _init file make it in two: "
    "it has one of them only.",
    "give one of the tasks a source of its own; [cfgID] tells the config files apart",
    series(
        {"mytest.dpc",
         "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  [cfgPath]/src.dat;  MEMORY;  "
         "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"
         "Stream;NOflush;NOprealloc; 50; 1024; -1; 2048;1;0;  [cfgPath]/src.dat;  MEMORY;  "
         "[cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"},
        {"mytest_init.dpc",
         "Stream;NOflush;NOprealloc;  0;    0; -1; 102400;1;0;  MEMORY;  [cfgPath]/src.dat;  ;  ;  "
         "true;\n"
         "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  [cfgPath]/dummyFile;  ;  ;  "
         "true;\n"}),
    oneFile(plainTask)};

/// Only what the "_init" file makes: of any other file the size is a matter of the disk. Its lines
/// are checked after the tasks.
class SourceSizes
{
public:
    SourceSizes(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
        : m_facts(facts)
        , m_uses(uses)
        , m_findings(findings)
        , m_firstReader(uses.files().size(), -1)
        , m_isWritten(uses.files().size(), false)
        , m_isSaid(uses.files().size(), false)
    {}

    void check(int line)
    {
        bool isSaid = false;
        for (int i = 0; i < m_uses.useCount(line, SourcePath); ++i) {
            const FileUse& use = m_uses.use(line, SourcePath, i);
            if (!m_uses.nameOf(use).byDate)
                isSaid = checkSource(line, m_uses.fileOf(use, 0), isSaid);
        }
        for (int i = 0; i < m_uses.useCount(line, DestPath); ++i)
            m_isWritten[size_t(m_uses.fileOf(m_uses.use(line, DestPath, i), 0))] = true;
    }

    /// A file that only keeps its folder may have any size.
    void checkInit()
    {
        std::vector<const InitEntry*> firstOf(m_uses.files().size(), nullptr);
        for (const InitUse& made : m_uses.init()) {
            const InitEntry& entry = made.entry;
            if (!entry.isActive || made.name.endsWith(dummyFileName) || m_isSaid[size_t(made.file)])
                continue;
            const InitEntry*& first = firstOf[size_t(made.file)];
            if (entry.otherLine > 0)
                sayInit(made, entry.otherLine, entry.otherSize);
            else if (first != nullptr && first->size != entry.size)
                sayInit(made, first->line, first->size);
            first = first == nullptr ? &entry : first;
        }
    }

private:
    /// Also if the line is still to be written: a save takes every source that does not exist.
    bool isMadeByInit(const UsedFile& file) const
    {
        if (file.init < 0)
            return !file.exists() && file.path.isSeen && !file.path.namesFolder;
        const InitEntry& entry = m_uses.init()[size_t(file.init)].entry;
        return file.exists() ? file.isFile() && file.path.size == entry.size : entry.isActive;
    }

    bool checkSource(int line, int place, bool isSaid)
    {
        const UsedFile& file = m_uses.files()[size_t(place)];
        if (m_isWritten[size_t(place)] || !isMadeByInit(file))
            return isSaid;
        int& first = m_firstReader[size_t(place)];
        if (first < 0)
            first = line;
        const LineFact& one = m_facts.lines[size_t(first)];
        const LineFact& other = m_facts.lines[size_t(line)];
        if (one.used.fileSize == other.used.fileSize || isSaid)
            return isSaid;
        m_findings.add(
            sourceSize, other, other.columnOf(FileSizeField),
            fmt::format("the source {} is wanted with {} KiB here and with {} KiB in {}: the _init "
                        "file makes one of them only",
                        quoted(other.path(SourcePath)), other.used.fileSize / bytesPerKib,
                        one.used.fileSize / bytesPerKib, placeOf(m_facts, first)));
        m_isSaid[size_t(place)] = true;
        return true;
    }

    void sayInit(const InitUse& made, int otherLine, qint64 otherSize)
    {
        m_isSaid[size_t(made.file)] = true;
        m_findings.add(
            sourceSize, made.entry.file, made.entry.line, 1,
            {fmt::format("the line makes {} with {} KiB, and line {} with {} KiB: the file has the "
                         "size of the last line",
                         quoted(made.name), made.entry.size / bytesPerKib, otherLine,
                         otherSize / bytesPerKib),
             "remove the line that is not meant"});
    }

    const SeriesFacts& m_facts;
    const FileUses& m_uses;
    Findings& m_findings;
    std::vector<int> m_firstReader; ///< of each file, its line
    std::vector<bool> m_isWritten;
    std::vector<bool> m_isSaid; ///< of each file: that it is wanted in two sizes
};

} // namespace

void checkSizes(const SeriesFacts& facts, const FileUses& uses, Findings& findings)
{
    SourceSizes sizes(facts, uses, findings);
    for (int line = 0; line < int(facts.lines.size()); ++line)
        sizes.check(line);
    sizes.checkInit();
}

RuleList sizeRules()
{
    return {&sourceSize};
}
