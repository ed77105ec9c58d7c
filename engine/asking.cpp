#include "engine/asking.h"

#include "check/text.h"
#include "engine/guards.h"
#include "engine/jobfile.h"

#include <QFile>

#include <fmt/format.h>

#include <algorithm>

namespace {

/// Guards only look; a machine that needs longer hangs.
constexpr int guardTimeoutMs = 120000;

/// Each takes fio a second or two; of further files the size that they have is not told.
constexpr size_t maxSizesAsked = 16;

/// A question to one machine.
struct Question
{
    int machine;
    GuardTest test;
};

/// Asks in rounds: the calls of the machines run side by side.
class Asking
{
public:
    Asking(const Plan& plan, const FioMachines& machines, RunFolder& folder)
        : m_plan(plan)
        , m_machines(machines)
        , m_folder(folder)
        , m_nextNumber(plan.machines.size(), 0)
    {}

    Answers run();

private:
    std::vector<Question> ask(const std::vector<GuardCall>& calls);
    void askRound(const std::vector<const GuardCall*>& calls, std::vector<Question>& refused);
    std::vector<GuardCall> callsFor(const std::vector<Question>& questions);
    void tell(const Question& question);
    std::string placeOf(const Question& question) const;
    std::string whatIsWrong(const Question& question);
    std::string actualSize(const Question& question);
    void unanswered(const GuardCall& call, const QString& output);

    const Plan& m_plan;
    const FioMachines& m_machines;
    RunFolder& m_folder;
    std::vector<int> m_nextNumber; ///< of the next call, by machine
    int m_rounds = 0;
    size_t m_sizesAsked = 0;
    Answers m_answers;
};

Answers Asking::run()
{
    const std::vector<Question> suspects = ask(allGuardCalls(m_plan));
    const auto isOver = [this] {
        return m_answers.stopped != StopReason::None || !m_answers.reasons.empty();
    };
    if (suspects.empty() || isOver())
        return m_answers;
    const std::vector<Question> refused = ask(callsFor(suspects));
    if (isOver())
        return m_answers;
    for (const Question& question : refused)
        tell(question);
    if (refused.empty())
        m_answers.reasons.emplace_back("a machine changed its answer while it was asked");
    return m_answers;
}

/// The questions of all sections that were not answered with yes.
std::vector<Question> Asking::ask(const std::vector<GuardCall>& calls)
{
    std::vector<std::vector<const GuardCall*>> rounds;
    std::vector<size_t> used(m_plan.machines.size(), 0);
    for (const GuardCall& call : calls) {
        const size_t round = used[size_t(call.machine)]++;
        if (round == rounds.size())
            rounds.emplace_back();
        rounds[round].push_back(&call);
        ++m_nextNumber[size_t(call.machine)];
    }
    std::vector<Question> refused;
    for (const std::vector<const GuardCall*>& round : rounds) {
        if (m_answers.stopped == StopReason::None)
            askRound(round, refused);
    }
    return refused;
}

void Asking::askRound(const std::vector<const GuardCall*>& calls, std::vector<Question>& refused)
{
    const FioMachines::Output output = {
        QStringLiteral("guard-%1").arg(m_rounds++), guardTimeoutMs, {}};
    std::vector<FioMachines::JobFile> files;
    files.reserve(calls.size());
    for (const GuardCall* call : calls)
        files.push_back({call->machine, call->file});
    const FioExit exit = m_machines.call(files, output);
    if (!exit.problem.isEmpty())
        m_answers.reasons.push_back(fmt::format("fio can't be run: {}", printable(exit.problem)));
    if (exit.stopped != StopReason::Timeout)
        m_answers.stopped = exit.stopped;
    if (!exit.problem.isEmpty() || m_answers.stopped != StopReason::None)
        return;
    const FioOutput reported = m_machines.read(output.name);
    const SectionIndex index(reported, m_machines.hosts());
    for (const GuardCall* call : calls) {
        bool isAnswered = true;
        for (const GuardSection& section : call->sections) {
            const auto reports = index.of(call->machine, section.name);
            isAnswered = isAnswered && reports.size() == 1;
            const bool isYes = reports.size() == 1 && reports.front()->error == 0 &&
                               reports.front()->bytes() == preparationBytes;
            for (const GuardTest& test : section.tests) {
                if (!isYes)
                    refused.push_back({call->machine, test});
            }
        }
        if (!isAnswered)
            unanswered(*call, output.name);
    }
}

/// fio's status says nothing of a machine that is missing.
void Asking::unanswered(const GuardCall& call, const QString& output)
{
    const std::string complaint = m_machines.complaint(output);
    m_answers.reasons.push_back(fmt::format("{} did not answer what it was asked{}{}",
                                            printable(m_plan.machines[size_t(call.machine)].name),
                                            complaint.empty() ? "" : ": ", complaint));
}

/// One question a section, written beside the guards of the export.
std::vector<GuardCall> Asking::callsFor(const std::vector<Question>& questions)
{
    std::vector<GuardCall> calls;
    for (size_t machine = 0; machine < m_plan.machines.size(); ++machine) {
        std::vector<GuardTest> tests;
        for (const Question& question : questions) {
            if (question.machine == int(machine))
                tests.push_back(question.test);
        }
        for (GuardCall& call :
             guardCalls(m_plan, int(machine), tests, GuardGrain::One, m_nextNumber[machine])) {
            m_folder.write(QFile::decodeName(call.file), call.text());
            calls.push_back(std::move(call));
        }
    }
    return calls;
}

void Asking::tell(const Question& question)
{
    const PlanMachine& machine = m_plan.machines[size_t(question.machine)];
    m_answers.reasons.push_back(placeOf(question) + printable(machine.name) + ": " +
                                whatIsWrong(question));
}

/// The first task of the machine that uses the file, "FILE:LINE: ".
std::string Asking::placeOf(const Question& question) const
{
    if (question.test.kind != GuardTest::Kind::File)
        return {};
    const auto usesIt = [&](const PlanJob& job) {
        return job.machine == question.machine && (job.source.path == question.test.path ||
                                                   job.destination.path == question.test.path);
    };
    const auto job = std::find_if(m_plan.jobs.begin(), m_plan.jobs.end(), usesIt);
    return job == m_plan.jobs.end()
               ? std::string()
               : fmt::format("{}:{}: ", printable(m_plan.stages[size_t(job->stage)].shownFile),
                             job->line);
}

std::string Asking::whatIsWrong(const Question& question)
{
    const GuardTest& test = question.test;
    const std::string path = quoted(test.path);
    switch (test.kind) {
    case GuardTest::Kind::File:
    case GuardTest::Kind::SizeBit: // a bit that is not set is nothing wrong
        break;
    case GuardTest::Kind::NewFolder:
        return fmt::format("the folder {} can't be made: it is there, or the one above it is not",
                           path);
    case GuardTest::Kind::Space: {
        qint64 bytes = 0;
        for (const SpaceNeed& need : test.needs)
            bytes += need.bytes;
        return fmt::format("not enough disk space: {} bytes are needed in {}{}", bytes,
                           quoted(test.needs.front().folder),
                           test.needs.size() > 1 ? " and other folders" : "");
    }
    case GuardTest::Kind::Caches:
        return "only root may drop the caches of the system, as cache mode 3 asks";
    }
    switch (test.state) {
    case FileState::Absent:
        return fmt::format("{} is there already", path);
    case FileState::Made:
    case FileState::MaybeMade:
        return fmt::format("{} is there, and is not a regular file", path);
    case FileState::Readable:
        return fmt::format("{} is not a readable file of {} bytes{}", path, test.bytes,
                           actualSize(question));
    case FileState::ReadWritable:
        break;
    }
    return fmt::format("{} is not a file of {} bytes that can be read and written, as fio opens "
                       "the source of a copy{}",
                       path, test.bytes, actualSize(question));
}

/// "; it has N bytes", if the machine can tell.
std::string Asking::actualSize(const Question& question)
{
    if (m_sizesAsked++ >= maxSizesAsked)
        return {};
    std::vector<Question> bits;
    for (const GuardTest& test : sizeTests(question.test.path))
        bits.push_back({question.machine, test});
    const size_t reasons = m_answers.reasons.size();
    qint64 size = (qint64(1) << sizeBits) - 1;
    for (const Question& no : ask(callsFor(bits)))
        size &= ~(qint64(1) << no.test.bytes);
    const bool isKnown =
        size != 0 && m_answers.reasons.size() == reasons && m_answers.stopped == StopReason::None;
    m_answers.reasons.resize(reasons);
    return isKnown ? fmt::format("; it has {} bytes", size) : std::string();
}

} // namespace

Answers askMachines(const Plan& plan, const FioMachines& machines, RunFolder& folder)
{
    return Asking(plan, machines, folder).run();
}
