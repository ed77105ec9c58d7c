#include "dpc/commands.h"
#include "dpc/comparison.h"
#include "dpc/json.h"
#include "dpc/oneseries.h"

#include <QJsonArray>

#include <ostream>

namespace {

constexpr const char* formats[] = {"text", "json"};
constexpr Option format{"--format", "FORMAT", ValueKind::Choice, "how to print the differences",
                        formats};
constexpr const Option* options[] = {&format};
constexpr Operand operands[] = {{"A", ValueKind::ConfigFile}, {"B", ValueKind::ConfigFile}};

constexpr const char* description =
    R"(Compares the tasks of two series in their order, not the lines of their files: blanks, comments and the names of files don't count. Settings are compared as the editor loads them, paths as they are written, and the info text as a whole. Prints one line per difference:

    fileA:line, fileB:line: field: value in A -> value in B
    fileB:line: only in the second series: task)";

constexpr const char* examples[] = {"dpc diff old/mytest.dpc mytest.dpc"};

const char* wordFor(Difference::Kind kind)
{
    switch (kind) {
    case Difference::Kind::Field:
        return "field";
    case Difference::Kind::OnlyInFirst:
        return "only-in-first";
    case Difference::Kind::OnlyInSecond:
        return "only-in-second";
    case Difference::Kind::InfoText:
        break;
    }
    return "info-text";
}

QJsonObject jsonOf(const Difference& difference)
{
    QJsonObject object{{"kind", wordFor(difference.kind)}};
    const auto addPlace = [&](const char* key, const EntryPlace& place) {
        if (place.line > 0)
            object.insert(key, QJsonObject{{"file", place.file}, {"line", place.line}});
    };
    const auto addText = [&](const char* key, const std::string& text) {
        if (!text.empty())
            object.insert(key, QString::fromStdString(text));
    };
    addPlace("first", difference.first);
    addPlace("second", difference.second);
    addText("field", difference.field);
    addText("before", difference.before);
    addText("after", difference.after);
    addText("entry", difference.entry);
    return object;
}

std::string asJson(const std::vector<Difference>& differences, const Remarks& remarks)
{
    QJsonArray list;
    for (const Difference& difference : differences)
        list.append(jsonOf(difference));
    QJsonObject all = jsonOutput(remarks);
    all.insert("differences", list);
    return jsonText(all);
}

int run(const Arguments& arguments, const Output& output)
{
    Remarks remarks;
    const auto first = readOneSeries(arguments.operands()[0], remarks);
    const auto second = readOneSeries(arguments.operands()[1], remarks);
    std::vector<Difference> differences;
    if (first && second)
        differences = differencesOf(*first, *second);
    const bool json = arguments.value(format) == "json";
    output.out << (json ? asJson(differences, remarks) : differencesAsText(differences));
    if (printRemarks(remarks, output))
        return exitUsage;
    return differences.empty() ? exitClean : exitFindings;
}

} // namespace

const Command diffCommand{
    "diff",        "compare two series by task and field",
    options,       operands,
    description,   "the same tasks",
    "differences", examples,
    run,
};
