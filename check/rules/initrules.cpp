#include "check/nameexpander.h"
#include "check/rules/exampletasks.h"
#include "check/rules/families.h"
#include "check/text.h"
#include "configset/filestocreate.h"

#include <QSet>

#include <fmt/format.h>

#include <algorithm>

// Whether the "_init" file makes what the series needs.

namespace {

/// Compares what the series needs with what the "_init" file makes. Names that are others on each
/// machine, or at each save, can't be compared.
class InitComparison
{
public:
    explicit InitComparison(const SeriesFacts& facts)
        : m_facts(facts)
        , m_names(facts, noMachine())
    {
        for (const LineFact& line : facts.lines) {
            if (isTask(line))
                compareTask(line);
        }
        lookForNameless();
        findUnneeded();
    }

    bool needsAnything() const { return !m_needed.files().isEmpty(); }
    int lacking() const { return int(m_lacks.size()); }
    /// All names that the series needs and the file does not make.
    std::vector<std::string> lackingNames() const
    {
        std::vector<std::string> names;
        for (const Lack& lack : m_lacks)
            names.push_back(utf8(lack.name));
        return names;
    }

    std::string firstLack;      ///< a name that the series needs and the file does not make
    std::string firstWrongSize; ///< a name that it makes in another size
    std::string firstUnneeded;  ///< a name that it makes for nobody
    std::string firstNameless;  ///< a name without the name of the series
    std::string nameInstead;    ///< what the series looks for instead

private:
    struct Lack
    {
        const LineFact* line;
        QString name;
    };

    void compareTask(const LineFact& line)
    {
        const int known = m_needed.files().size();
        collectFilesOfTask(m_needed, m_names.record(line), line.taskNumber, m_noMachine);
        const QVector<FileToCreate>& files = m_needed.files();
        for (int i = known; i < files.size(); ++i)
            compareFile(files[i], line);
    }

    void compareFile(const FileToCreate& file, const LineFact& line)
    {
        const QByteArray name = file.text.toLatin1().left(maxPath);
        m_neededNames.insert(name);
        if (dependsOnMachine(file.text)) {
            m_dependsOnMachine = true;
            return;
        }
        const auto made = m_facts.init.constFind(name);
        if (made == m_facts.init.cend()) {
            m_lacks.push_back({&line, file.text});
            keepFirst(firstLack, file.text);
        } else if (made->size / 1024 != std::min<qint64>(file.size, largestSavedFile) / 1024) {
            keepFirst(firstWrongSize, file.text);
        }
    }

    /// Whether the file makes what a task without a config file would need. What any task needs by
    /// its full name is known by now.
    void lookForNameless()
    {
        const LineFact* last = nullptr;
        for (const Lack& lack : m_lacks) {
            // All names of a task are compared at once, and it may lack one for each iteration.
            if (lack.line == last)
                continue;
            last = lack.line;
            TestTask task = m_names.record(*lack.line);
            task.configPath.clear();
            FileToCreateList nameless;
            collectFilesOfTask(nameless, task, lack.line->taskNumber, m_noMachine);
            for (const FileToCreate& file : nameless.files()) {
                const QByteArray name = file.text.toLatin1().left(maxPath);
                if (!m_facts.init.contains(name) || m_neededNames.contains(name))
                    continue;
                firstNameless = quoted(file.text);
                nameInstead = quoted(lack.name);
                return;
            }
        }
    }

    void findUnneeded()
    {
        int firstLine = INT32_MAX;
        for (auto it = m_facts.init.cbegin(); it != m_facts.init.cend() && !m_dependsOnMachine;
             ++it) {
            if (m_neededNames.contains(it.key()) || it->line >= firstLine)
                continue;
            firstLine = it->line;
            firstUnneeded = quoted(it.key());
        }
    }

    static void keepFirst(std::string& first, const QString& name)
    {
        if (first.empty())
            first = quoted(name);
    }

    static constexpr qint64 largestSavedFile =
        1073741824; // 1 GiB: what a line of a save can ask for

    const SeriesFacts& m_facts;
    const MachineValues m_noMachine = noMachine();
    NameExpander m_names;
    FileToCreateList m_needed;
    QSet<QByteArray> m_neededNames;
    std::vector<Lack> m_lacks;
    bool m_dependsOnMachine = false;
};

constexpr Rule initOutdated = {
    "init-outdated",
    Severity::Warning,
    "series",
    "The _init file does not make what the series needs now.",
    "Load and save the series.",
    series({"mytest.dpc",
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  [cfgPath]/new.dat;  "
            "MEMORY;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"},
           {"mytest_init.dpc", "Stream;NOflush;NOprealloc;  0;    0; -1; 102400;1;0;  MEMORY;  "
                               "[cfgPath]/old.dat;  ;  ;  true;\n"
                               "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  "
                               "[cfgPath]/dummyFile;  ;  ;  true;\n"}),
    series({"mytest.dpc",
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  [cfgPath]/new.dat;  "
            "MEMORY;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"},
           {"mytest_init.dpc", "Stream;NOflush;NOprealloc;  0;    0; -1; 102400;1;0;  MEMORY;  "
                               "[cfgPath]/new.dat;  ;  ;  true;\n"
                               "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  "
                               "[cfgPath]/dummyFile;  ;  ;  true;\n"})};

std::string differences(const InitComparison& comparison)
{
    std::string text;
    const auto add = [&](const std::string& name, const char* format) {
        if (!name.empty())
            text += (text.empty() ? "" : ", ") + fmt::format(fmt::runtime(format), name);
    };
    add(comparison.firstLack, "lacks {}");
    if (comparison.lacking() > 1)
        text += fmt::format(" and {} more", comparison.lacking() - 1);
    add(comparison.firstWrongSize, "makes {} in another size");
    add(comparison.firstUnneeded, "makes {} for no task");
    return text;
}

constexpr Rule initMissing = {
    "init-missing",
    Severity::Warning,
    "series",
    "The series needs files or folders, and there is no _init file that makes them.",
    "Load and save the series.",
    oneFile(plainTask),
    series({"mytest.dpc", plainTask}, plainInit)};

constexpr Rule initNames = {
    "init-names",
    Severity::Warning,
    "series",
    "The names in the _init file lack the name of the series: it was made in the form and saved "
    "once.",
    "Load and save the series once more.",
    series({"mytest.dpc",
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  [cfgPath]/src_[cfgName].dat;  "
            "MEMORY;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"},
           {"mytest_init.dpc", "Stream;NOflush;NOprealloc;  0;    0; -1; 102400;1;0;  MEMORY;  "
                               "[cfgPath]/src_.dat;  ;  ;  true;\n"
                               "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  "
                               "[cfgPath]/dummyFile;  ;  ;  true;\n"}),
    series({"mytest.dpc",
            "Stream;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;  [cfgPath]/src_[cfgName].dat;  "
            "MEMORY;  [cfgPath]/[host].txt;  [cfgPath]/[host].csv;  true;\n"},
           {"mytest_init.dpc", "Stream;NOflush;NOprealloc;  0;    0; -1; 102400;1;0;  MEMORY;  "
                               "[cfgPath]/src_mytest.dat;  ;  ;  true;\n"
                               "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  "
                               "[cfgPath]/dummyFile;  ;  ;  true;\n"})};

} // namespace

void checkInit(const SeriesFacts& facts, Findings& findings)
{
    if (facts.isInit || facts.limitReached)
        return;
    const InitComparison comparison(facts);
    if (facts.initFile < 0) {
        if (comparison.needsAnything())
            findings.add(
                initMissing, 0, 1, 1,
                fmt::format("there is no {}_init.dpc that makes the sources and folders of the "
                            "series: load and save it again",
                            printable(facts.name.baseName)));
        return;
    }
    if (!facts.files[size_t(facts.initFile)].readable)
        return;
    if (!comparison.firstNameless.empty()) {
        findings.add(
            initNames, facts.initFile, 1, 1,
            fmt::format("makes {} where the series looks for {}: the tasks had no config file "
                        "yet when they were saved; load and save the series once more",
                        comparison.firstNameless, comparison.nameInstead));
        return;
    }
    const std::string text = differences(comparison);
    if (!text.empty())
        findings.add(initOutdated, facts.initFile, 1, 1, text + ": load and save the series again",
                     comparison.lackingNames());
}

RuleList initRules()
{
    return {&initMissing, &initOutdated, &initNames};
}
