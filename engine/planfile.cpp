#include "engine/planfile.h"

#include "check/ruletexts.h"
#include "engine/jsonnumbers.h"

#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

constexpr JobKind kinds[] = {JobKind::Create, JobKind::Write, JobKind::Read, JobKind::Copy};
constexpr FileState states[] = {FileState::Absent, FileState::Made, FileState::MaybeMade,
                                FileState::Readable, FileState::ReadWritable};

QJsonValue textOrNull(const QString& text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

QJsonValue fileAsJson(const PlanFile& file)
{
    if (file.path.isEmpty())
        return {};
    return QJsonObject{
        {"path", file.path},
        {"atJob", fileStateName(file.atJob)},
        {"proof", textOrNull(QString::fromUtf8(file.proof))},
        {"beforeRun", file.beforeRun ? QJsonValue(fileStateName(*file.beforeRun)) : QJsonValue()}};
}

QJsonArray sectionsAsJson(const PlanJob& job)
{
    QJsonArray sections;
    for (const PlanSection& section : job.sections)
        sections.append(QJsonObject{{"name", QString::fromLatin1(section.name)},
                                    {"bytes", section.bytes},
                                    {"offset", section.offset},
                                    {"chunkBytes", section.chunk}});
    return sections;
}

QJsonObject jobAsJson(const Plan& plan, const PlanJob& job)
{
    return {{"stage", job.stage},
            {"configFile", plan.stages[size_t(job.stage)].configFile},
            {"line", job.line},
            {"task", job.task},
            {"kind", jobKindName(job.kind)},
            {"machine", plan.machines[size_t(job.machine)].name},
            {"iteration", job.iteration},
            {"source", fileAsJson(job.source)},
            {"destination", fileAsJson(job.destination)},
            {"bytes", job.bytes},
            {"chunkBytes", job.chunk},
            {"waitMs", job.waitMs},
            {"flush", job.flush},
            {"preallocate", job.preallocate},
            {"adviseSequential", job.adviseSequential},
            {"dropCaches", job.dropCaches},
            {"log", job.log ? QJsonValue(QString::fromUtf8(job.log->file)) : QJsonValue()},
            {"sections", sectionsAsJson(job)}};
}

QJsonArray machinesAsJson(const Plan& plan)
{
    QJsonArray machines;
    for (const PlanMachine& machine : plan.machines)
        machines.append(QJsonObject{{"name", machine.name},
                                    {"address", textOrNull(QString::fromUtf8(machine.address))},
                                    {"temp", textOrNull(machine.tempFolder)}});
    return machines;
}

QJsonArray stagesAsJson(const Plan& plan)
{
    QJsonArray stages;
    for (const PlanStage& stage : plan.stages) {
        QJsonArray files;
        for (const PlanJobFile& file : stage.files)
            files.append(QJsonObject{{"machine", plan.machines[size_t(file.machine)].name},
                                     {"file", QString::fromLatin1(file.file)},
                                     {"jobs", int(file.endJob - file.firstJob)},
                                     {"sections", file.sections},
                                     {"logFolder", textOrNull(file.logFolder)}});
        stages.append(QJsonObject{{"stage", stages.size()},
                                  {"configFile", stage.configFile},
                                  {"shownFile", stage.shownFile},
                                  {"isInit", stage.isInit},
                                  {"files", files}});
    }
    return stages;
}

/// Reads a plan, and remembers whether everything was there and made sense.
class PlanReader
{
public:
    bool read(const QJsonObject& object)
    {
        m_plan.series = object["series"].toString();
        m_plan.date = object["date"].toString();
        m_plan.id = object["id"].toString();
        m_plan.startAtMinute = object["startAtMinute"].toBool();
        for (const QJsonValue value : object["info"].toArray())
            m_plan.info.push_back(value.toString().toStdString());
        for (const QJsonValue value : object["machines"].toArray())
            readMachine(value.toObject());
        m_jobs = object["jobs"].toArray();
        for (const QJsonValue value : object["stages"].toArray())
            readStage(value.toObject());
        return m_isGood && m_plan.jobs.size() == size_t(m_jobs.size()) && !m_plan.jobs.empty();
    }

    Plan take() { return std::move(m_plan); }

private:
    void expect(bool condition) { m_isGood = m_isGood && condition; }

    void readMachine(const QJsonObject& object)
    {
        PlanMachine machine;
        machine.name = object["name"].toString();
        machine.address = object["address"].toString().toUtf8();
        machine.tempFolder = object["temp"].toString();
        m_machines.insert(machine.name, int(m_plan.machines.size()));
        m_plan.machines.push_back(machine);
    }

    int machineNamed(const QJsonValue& name)
    {
        expect(m_machines.contains(name.toString()));
        return m_machines.value(name.toString());
    }

    qint64 wholeNumber(const QJsonValue& value)
    {
        const std::optional<qint64> number = wholeNumberOf(value);
        expect(number.has_value());
        return number.value_or(qint64());
    }

    void readStage(const QJsonObject& object)
    {
        if (m_plan.machines.empty())
            return;
        PlanStage stage;
        stage.configFile = object["configFile"].toString();
        stage.shownFile = object["shownFile"].toString();
        stage.isInit = object["isInit"].toBool();
        for (const QJsonValue value : object["files"].toArray()) {
            const QJsonObject entry = value.toObject();
            PlanJobFile file;
            file.machine = machineNamed(entry["machine"]);
            file.file = entry["file"].toString().toLatin1();
            file.sections = entry["sections"].toInt();
            file.logFolder = entry["logFolder"].toString();
            file.firstJob = m_plan.jobs.size();
            readJobs(file, entry["jobs"].toInt());
            file.endJob = m_plan.jobs.size();
            stage.files.push_back(file);
        }
        expect(!stage.files.empty());
        m_plan.stages.push_back(stage);
    }

    void readJobs(const PlanJobFile& file, int count)
    {
        expect(count > 0 && m_plan.jobs.size() + size_t(count) <= size_t(m_jobs.size()));
        for (int i = 0; m_isGood && i < count; ++i) {
            const QJsonObject object = m_jobs[int(m_plan.jobs.size())].toObject();
            PlanJob job = jobOf(object);
            expect(machineNamed(object["machine"]) == file.machine &&
                   object["stage"].toInt(-1) == int(m_plan.stages.size()));
            job.machine = file.machine;
            job.stage = int(m_plan.stages.size());
            m_plan.jobs.push_back(std::move(job));
        }
    }

    PlanJob jobOf(const QJsonObject& object)
    {
        PlanJob job;
        job.kind = named(kinds, jobKindName, object["kind"]);
        job.line = object["line"].toInt();
        job.task = object["task"].toInt();
        job.iteration = object["iteration"].toInt();
        job.source = fileOf(object["source"]);
        job.destination = fileOf(object["destination"]);
        job.bytes = wholeNumber(object["bytes"]);
        job.chunk = wholeNumber(object["chunkBytes"]);
        job.waitMs = object["waitMs"].toInt();
        job.flush = object["flush"].toBool();
        job.preallocate = object["preallocate"].toBool();
        job.adviseSequential = object["adviseSequential"].toBool();
        job.dropCaches = object["dropCaches"].toBool();
        if (object["log"].isString())
            job.log = PlanLog{object["log"].toString().toUtf8()};
        for (const QJsonValue value : object["sections"].toArray())
            job.sections.push_back(sectionOf(value.toObject()));
        expect(!job.sections.empty() && job.bytes > 0 && job.chunk > 0);
        return job;
    }

    PlanSection sectionOf(const QJsonObject& object)
    {
        PlanSection section;
        section.name = object["name"].toString().toLatin1();
        section.bytes = wholeNumber(object["bytes"]);
        section.offset = wholeNumber(object["offset"]);
        section.chunk = wholeNumber(object["chunkBytes"]);
        return section;
    }

    PlanFile fileOf(const QJsonValue& value)
    {
        PlanFile file;
        const QJsonObject object = value.toObject();
        file.path = object["path"].toString();
        if (file.path.isEmpty())
            return file;
        file.atJob = named(states, fileStateName, object["atJob"]);
        file.proof = object["proof"].toString().toUtf8();
        if (object["beforeRun"].isString())
            file.beforeRun = named(states, fileStateName, object["beforeRun"]);
        return file;
    }

    template <typename T, size_t N>
    T named(const T (&values)[N], const char* (*nameOf)(T), const QJsonValue& name)
    {
        const auto found = std::find_if(std::begin(values), std::end(values),
                                        [&](T value) { return name.toString() == nameOf(value); });
        expect(found != std::end(values));
        return found == std::end(values) ? values[0] : *found;
    }

    Plan m_plan;
    QJsonArray m_jobs;
    QHash<QString, int> m_machines;
    bool m_isGood = true;
};

} // namespace

QJsonArray lossesAsJson(const std::vector<Finding>& findings)
{
    QJsonArray list;
    for (const Finding& finding : findings)
        list.append(QJsonObject{{"file", finding.path},
                                {"line", finding.line},
                                {"column", finding.column},
                                {"severity", severityName(finding.rule->severity)},
                                {"rule", finding.rule->name},
                                {"text", QString::fromStdString(finding.text)}});
    return list;
}

QByteArray planAsJson(const Plan& plan, const QJsonArray& losses)
{
    QJsonArray info;
    for (const std::string& line : plan.info)
        info.append(QString::fromStdString(line));
    QJsonArray jobs;
    for (const PlanJob& job : plan.jobs)
        jobs.append(jobAsJson(plan, job));
    const QJsonObject object{{"version", planFileVersion},
                             {"series", plan.series},
                             {"date", plan.date},
                             {"id", plan.id},
                             {"startAtMinute", plan.startAtMinute},
                             {"info", info},
                             {"machines", machinesAsJson(plan)},
                             {"stages", stagesAsJson(plan)},
                             {"jobs", jobs},
                             {"losses", losses}};
    return QJsonDocument(object).toJson();
}

std::optional<PlanFileContent> planFromJson(const QByteArray& json, std::string& problem)
{
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    if (object["version"].toInt() != planFileVersion) {
        problem =
            object.isEmpty() ? "does not hold a plan" : "holds a plan of another version of dpc";
        return std::nullopt;
    }
    PlanReader reader;
    if (!reader.read(object)) {
        problem = "holds a plan that was changed or is not whole";
        return std::nullopt;
    }
    return PlanFileContent{reader.take(), object["losses"].toArray()};
}
