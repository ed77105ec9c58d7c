#include "engine/guards.h"

#include "engine/jobfile.h"
#include "engine/names.h"

#include <QByteArrayList>
#include <QHash>
#include <QSet>

namespace {

QByteArray number(qint64 n)
{
    return QByteArray::number(n);
}

QByteArray fileCondition(const QByteArray& file, FileState state, qint64 bytes)
{
    const QByteArray size = " && test \"$(stat -L -c %s " + file + ")\" = " + number(bytes);
    switch (state) {
    case FileState::Absent:
        // A dangling link is not there for -e, and a write would make its target.
        return "test ! -e " + file + " -a ! -L " + file;
    case FileState::Made:
        return "test -f " + file + " -a ! -L " + file;
    case FileState::MaybeMade:
        return "test ! -L " + file + " && ( test ! -e " + file + " || test -f " + file + " )";
    case FileState::Readable:
        return "test -f " + file + " -a -r " + file + size;
    case FileState::ReadWritable:
        break;
    }
    return "test -f " + file + " -a -r " + file + " -a -w " + file + size;
}

QByteArray newFolderCondition(const QString& path)
{
    const QByteArray folder = shellWord(encodedName(path));
    const QByteArray above = shellWord(encodedName(path.left(path.lastIndexOf('/') + 1)));
    return "test ! -e " + folder + " -a ! -L " + folder + " -a -d " + above + " -a -w " + above;
}

/// A script in a form that a job file can hold: printf gives back what fio would cut or replace.
QByteArray scriptCommand(const QByteArray& script, const QByteArray& arguments)
{
    QByteArray format;
    for (const char c : script) {
        if (c == '%')
            format += "%%";
        else if (c == ';' || c == '#' || c == '\'' || c == '\n' || c == '\\')
            format += "\\0" + QByteArray::number(int(c), 8).rightJustified(2, '0');
        else
            format += c;
    }
    return "printf '" + format + "' | sh -s -- " + arguments;
}

QByteArray sizeBitCondition(const QByteArray& file, qint64 bit)
{
    return "test -f " + file + " && test $(( $(stat -L -c %s " + file + ") >> " + number(bit) +
           " & 1 )) = 1";
}

/// The folders with the KiB that they need, summed by the file system of the nearest folder that
/// exists.
QByteArray spaceCondition(const std::vector<SpaceNeed>& needs)
{
    constexpr const char* script = R"(while test $# -gt 0
do folder=$2
until test -e "$folder"
do folder=$(dirname "$folder")
done
echo $(stat -L -c %d "$folder") $(df -k --output=avail "$folder" | tail -n 1) $1
shift 2
done | awk '{free[$1] = $2; need[$1] += $3} END {for (d in need) if (need[d] > free[d]) exit 1}'
)";
    constexpr qint64 kib = 1024;
    QByteArray arguments;
    for (const SpaceNeed& need : needs)
        arguments +=
            number((need.bytes + kib - 1) / kib) + ' ' + shellWord(encodedName(need.folder)) + ' ';
    return scriptCommand(script, arguments.chopped(1));
}

/// Collects the questions to one machine, each once.
class Questions
{
public:
    void ask(const PlanFile& file, qint64 bytes)
    {
        if (file.path.isEmpty() || !file.beforeRun || m_files.contains(file.path))
            return;
        m_files.insert(file.path);
        GuardTest test;
        test.path = file.path;
        test.state = *file.beforeRun;
        test.bytes = bytes;
        m_tests.push_back(test);
    }

    void askSpace(const PlanJob& job)
    {
        const QString& file = job.made();
        // A file that is written again has its space already.
        if (file.isEmpty() || job.destination.beforeRun != FileState::Absent)
            return;
        const QString folder = file.left(qMax(file.lastIndexOf('/'), 1));
        if (!m_space.contains(folder))
            m_folders += folder;
        m_space[folder] += job.bytes;
    }

    void askNewFolder(const QString& path)
    {
        GuardTest test;
        test.kind = GuardTest::Kind::NewFolder;
        test.path = path;
        m_tests.push_back(test);
    }

    void askCaches() { m_needsCaches = true; }

    std::vector<GuardTest> take()
    {
        if (m_needsCaches)
            m_tests.push_back(ofKind(GuardTest::Kind::Caches));
        addSpace();
        return std::move(m_tests);
    }

private:
    static GuardTest ofKind(GuardTest::Kind kind)
    {
        GuardTest test;
        test.kind = kind;
        return test;
    }

    /// One question for all folders, as long as a line can hold them.
    void addSpace()
    {
        GuardTest test = ofKind(GuardTest::Kind::Space);
        for (const QString& folder : m_folders) {
            test.needs.push_back({folder, m_space[folder]});
            if (guardCondition(test).size() <= maxNameLine)
                continue;
            test.needs.pop_back();
            m_tests.push_back(test);
            test.needs = {{folder, m_space[folder]}};
        }
        if (!test.needs.empty())
            m_tests.push_back(test);
    }

    std::vector<GuardTest> m_tests;
    QSet<QString> m_files;
    QStringList m_folders;
    QHash<QString, qint64> m_space;
    bool m_needsCaches = false;
};

QByteArray machineSuffix(const Plan& plan, int machine)
{
    return plan.isLocal() ? QByteArray() : '-' + machineKey(plan, machine);
}

GuardCall emptyCall(const Plan& plan, int machine, int callNumber)
{
    GuardCall call;
    call.machine = machine;
    call.file = QByteArray(guardFolderName) + "/guard-" + number(callNumber) +
                machineSuffix(plan, machine) + ".fio";
    return call;
}

/// Fills the sections of calls with questions.
class CallFiller
{
public:
    CallFiller(const Plan& plan, int machine, GuardGrain grain, int firstNumber)
        : m_plan(plan)
        , m_machine(machine)
        , m_grain(grain)
        , m_number(firstNumber)
    {}

    void add(const GuardTest& test)
    {
        const int length = guardCondition(test).size() + 4;
        const bool fits = m_grain == GuardGrain::Many && m_length + length <= maxNameLine;
        if (m_calls.empty() || !fits)
            beginSection();
        m_calls.back().sections.back().tests.push_back(test);
        m_length += length;
    }

    std::vector<GuardCall> take() { return std::move(m_calls); }

private:
    void beginSection()
    {
        if (m_calls.empty() || m_calls.back().sections.size() >= maxGuardSections)
            m_calls.push_back(emptyCall(m_plan, m_machine, m_number++));
        std::vector<GuardSection>& sections = m_calls.back().sections;
        sections.push_back({"guard-" + number(qint64(sections.size())), {}});
        m_length = 0;
    }

    const Plan& m_plan;
    int m_machine;
    GuardGrain m_grain;
    int m_number;
    int m_length = 0;
    std::vector<GuardCall> m_calls;
};

} // namespace

QByteArray guardCondition(const GuardTest& test)
{
    switch (test.kind) {
    case GuardTest::Kind::File:
        return fileCondition(shellWord(encodedName(test.path)), test.state, test.bytes);
    case GuardTest::Kind::NewFolder:
        return newFolderCondition(test.path);
    case GuardTest::Kind::Space:
        return spaceCondition(test.needs);
    case GuardTest::Kind::Caches:
        return "test -w /proc/sys/vm/drop_caches";
    case GuardTest::Kind::SizeBit:
        break;
    }
    return sizeBitCondition(shellWord(encodedName(test.path)), test.bytes);
}

std::vector<GuardTest> guardTests(const Plan& plan, int machine)
{
    Questions questions;
    for (const PlanStage& stage : plan.stages) {
        for (const PlanJobFile& file : stage.files) {
            if (file.machine != machine)
                continue;
            if (!file.logFolder.isEmpty())
                questions.askNewFolder(file.logFolder);
            for (size_t i = file.firstJob; i < file.endJob; ++i) {
                const PlanJob& job = plan.jobs[i];
                questions.ask(job.source, job.bytes);
                questions.ask(job.destination, job.bytes);
                questions.askSpace(job);
                if (job.dropCaches)
                    questions.askCaches();
            }
        }
    }
    return questions.take();
}

QByteArray GuardCall::text() const
{
    QByteArray text;
    for (const GuardSection& section : sections) {
        QByteArrayList conditions;
        for (const GuardTest& test : section.tests)
            conditions += guardCondition(test);
        text += preparationSection(section.name, conditions.join(" && "), false) + '\n';
    }
    text.chop(1);
    return text;
}

std::vector<GuardCall> guardCalls(const Plan& plan, int machine,
                                  const std::vector<GuardTest>& tests, GuardGrain grain,
                                  int firstNumber)
{
    CallFiller filler(plan, machine, grain, firstNumber);
    for (const GuardTest& test : tests)
        filler.add(test);
    return filler.take();
}

std::vector<GuardCall> allGuardCalls(const Plan& plan)
{
    std::vector<GuardCall> calls;
    for (size_t machine = 0; machine < plan.machines.size(); ++machine) {
        std::vector<GuardCall> more =
            guardCalls(plan, int(machine), guardTests(plan, int(machine)), GuardGrain::Many);
        calls.insert(calls.end(), std::make_move_iterator(more.begin()),
                     std::make_move_iterator(more.end()));
    }
    return calls;
}

std::vector<GuardTest> sizeTests(const QString& path)
{
    std::vector<GuardTest> tests;
    for (int bit = 0; bit < sizeBits; ++bit) {
        GuardTest test;
        test.kind = GuardTest::Kind::SizeBit;
        test.path = path;
        test.bytes = bit;
        tests.push_back(test);
    }
    return tests;
}
