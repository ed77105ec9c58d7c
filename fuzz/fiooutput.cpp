// Input: what fio printed, text and a JSON document, in any encoding.

#include "engine/fiooutput.h"
#include "engine/results.h"
#include "fuzz/check.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <cstdint>

namespace {

/// A section as the library for JSON reads it in the whole document.
struct PlainSection
{
    QString name;
    double error;
    double bytes;
};

bool isCount(const QJsonValue& value)
{
    constexpr double largest = 9007199254740992.0;
    return value.isDouble() && value.toDouble() >= 0 && value.toDouble() <= largest;
}

/// The sections of a document that is whole and has each list once; nothing of others.
std::optional<std::vector<PlainSection>> plainSections(const QByteArray& text)
{
    const int begin = text.startsWith('{') ? 0 : text.indexOf("\n{");
    if (begin < 0 || text.count("jobs") + text.count("client_stats") != 1 || text.contains('\\'))
        return std::nullopt;
    const QJsonDocument document =
        QJsonDocument::fromJson(QString::fromLatin1(text.mid(begin)).toUtf8());
    if (!document.isObject())
        return std::nullopt;
    std::vector<PlainSection> sections;
    for (const char* list : {"jobs", "client_stats"}) {
        for (const QJsonValue section : document.object().value(list).toArray()) {
            const QJsonValue read = section["read"];
            const QJsonValue write = section["write"];
            const QString name = section["jobname"].toString();
            const bool isComplete = isCount(section["error"]) && isCount(read["io_bytes"]) &&
                                    isCount(read["total_ios"]) && isCount(write["io_bytes"]) &&
                                    isCount(write["total_ios"]) && !name.isEmpty() &&
                                    name != "All clients";
            if (isComplete)
                sections.push_back({name, section["error"].toDouble(),
                                    std::trunc(read["io_bytes"].toDouble()) +
                                        std::trunc(write["io_bytes"].toDouble())});
        }
    }
    return sections;
}

void checkSections(const QByteArray& text, const FioOutput& output)
{
    const std::optional<std::vector<PlainSection>> plain = plainSections(text);
    if (!plain)
        return;
    fuzz::same("as many sections as the document has", output.sections.size(), plain->size());
    for (size_t i = 0; i < plain->size(); ++i) {
        const SectionReport& section = output.sections[i];
        fuzz::same("the name of a section", section.name, (*plain)[i].name.toLatin1());
        fuzz::same("an error is told", section.error != 0, std::trunc((*plain)[i].error) != 0);
        fuzz::same("the bytes of a section", double(section.bytes()), (*plain)[i].bytes);
    }
}

Plan planOfOneWrite()
{
    Plan plan;
    plan.machines.resize(1);
    plan.stages.resize(1);
    PlanJob job;
    job.bytes = 4096;
    job.destination.path = "/a";
    job.sections.push_back({"s1", 4096, 0, 4096});
    plan.jobs.push_back(job);
    return plan;
}

/// Whatever is printed, a job is good only if it was reported once, without an error, with its
/// bytes.
void checkAccounting(const FioOutput& output)
{
    static const Plan plan = planOfOneWrite();
    static const std::vector<FioHost> hosts(1);
    const JobResult result = accountStage(plan, 0, hosts, output, FioLogs()).front();
    int reports = 0;
    bool isDone = false;
    for (const SectionReport& section : output.sections) {
        if (section.name != "s1" || !section.host.isEmpty())
            continue;
        ++reports;
        isDone = section.error == 0 && section.write.bytes == 4096;
    }
    // A job that reports no call has not begun, whatever else it reports.
    const bool mayBeGood = reports == 1 && isDone;
    fuzz::same("only a job that did its bytes is good", result.isGood && !mayBeGood, false);
    fuzz::same("a reason is given for each other", result.reason.empty(), result.isGood);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char*>(data), int(size));
    const FioOutput output = readFioOutput(text);
    checkSections(text, output);
    checkAccounting(output);
    return 0;
}
