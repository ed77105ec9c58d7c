#include "dpc/printer.h"

#include "check/rules/catalogue.h"
#include "check/ruletexts.h"
#include "check/text.h"
#include "dpc/json.h"

#include <QJsonArray>
#include <QJsonObject>

#include <fmt/color.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstring>

namespace {

Severity severityOf(const Finding& finding)
{
    return finding.severity;
}

fmt::text_style styleOf(Severity severity)
{
    switch (severity) {
    case Severity::Error:
        return fmt::emphasis::bold | fg(fmt::terminal_color::red);
    case Severity::Warning:
        return fmt::emphasis::bold | fg(fmt::terminal_color::magenta);
    case Severity::Note:
        break;
    }
    return fmt::emphasis::bold | fg(fmt::terminal_color::cyan);
}

std::string placeOf(const Finding& finding)
{
    return fmt::format("{}:{}:{}:", printable(finding.path), finding.line, finding.column);
}

QJsonObject jsonOf(const Finding& finding)
{
    const Rule& rule = *finding.rule;
    QJsonObject object{{"file", finding.path},     {"line", finding.line},
                       {"column", finding.column}, {"severity", severityName(finding.severity)},
                       {"rule", rule.name},        {"text", QString::fromStdString(finding.text)}};
    QJsonArray names;
    for (const std::string& name : finding.names)
        names.append(QString::fromStdString(name));
    if (!names.isEmpty())
        object.insert("names", names);
    if (finding.more > 0)
        object.insert("more", finding.more);
    return object;
}

QJsonObject jsonOf(const std::vector<Finding>& findings, const Remarks& remarks)
{
    QJsonArray list;
    for (const Finding& finding : findings)
        list.append(jsonOf(finding));
    QJsonObject all = jsonOutput(remarks);
    all.insert("findings", list);
    all.insert("errors", countOf(findings, Severity::Error));
    all.insert("warnings", countOf(findings, Severity::Warning));
    all.insert("notes", countOf(findings, Severity::Note));
    return all;
}

/// With the characters that end a part of a workflow command in its own notation.
std::string githubEscaped(const std::string& text, const char* characters)
{
    std::string result;
    for (const char c : text)
        result += std::strchr(characters, c) == nullptr
                      ? std::string(1, c)
                      : fmt::format("%{:02X}", static_cast<unsigned char>(c));
    return result;
}

std::string githubText(const std::string& text)
{
    return githubEscaped(text, "%\r\n");
}

std::string githubProperty(const std::string& text)
{
    return githubEscaped(text, "%\r\n:,");
}

} // namespace

std::string findingsAsText(const std::vector<Finding>& findings, bool colour)
{
    std::string text;
    for (const Finding& finding : findings) {
        const Rule& rule = *finding.rule;
        const std::string severity = fmt::format("{}:", severityName(finding.severity));
        if (colour)
            text += fmt::format(fmt::emphasis::bold, "{}", placeOf(finding)) + ' ' +
                    fmt::format(styleOf(finding.severity), "{}", severity);
        else
            text += placeOf(finding) + ' ' + severity;
        text += fmt::format(" {} [{}]\n", finding.text, rule.name);
    }
    return text;
}

std::string findingsAsJson(const std::vector<Finding>& findings, const Remarks& remarks)
{
    return jsonText(jsonOf(findings, remarks));
}

std::string checkAsJson(const CheckResult& result)
{
    QJsonObject all = jsonOf(result.findings, {result.problems, result.extent.notChecked});
    all.insert("files", result.extent.files);
    all.insert("tasks", result.extent.tasks);
    all.insert("machines", result.extent.machines);
    return jsonText(all);
}

std::string findingsForGithub(const std::vector<Finding>& findings)
{
    std::string text;
    for (const Finding& finding : findings) {
        const Severity severity = severityOf(finding);
        text += fmt::format("::{} file={},line={},col={},title={}::{}\n",
                            severity == Severity::Note ? "notice" : severityName(severity),
                            githubProperty(printable(finding.path)), finding.line, finding.column,
                            finding.rule->name, githubText(finding.text));
    }
    return text;
}

std::string rulesAsJson()
{
    QJsonArray list;
    for (const Rule* rule : allRules())
        list.append(QJsonObject{{"rule", rule->name},
                                {"severity", severityName(rule->severity)},
                                {"category", rule->category},
                                {"meaning", rule->meaning},
                                {"advice", rule->advice}});
    QJsonObject all = jsonOutput({});
    all.insert("rules", list);
    return jsonText(all);
}

std::string extentAsText(const CheckExtent& extent)
{
    std::string text =
        fmt::format("{}, {}", counted(extent.files, "file"), counted(extent.tasks, "task"));
    if (extent.machines > 1)
        text += ", " + counted(extent.machines, "machine");
    std::vector<std::string> rest;
    for (const NotChecked& item : extent.notChecked) {
        // A sentence by itself.
        if (item.what == "collisions" || item.what == "repeated-hosts")
            text += "; " + item.text;
        else
            rest.push_back(item.text);
    }
    return rest.empty() ? text : fmt::format("{}; not checked: {}", text, fmt::join(rest, ", "));
}

std::string summaryOf(const std::vector<Finding>& findings)
{
    return fmt::format("{}, {}, {}", counted(countOf(findings, Severity::Error), "error"),
                       counted(countOf(findings, Severity::Warning), "warning"),
                       counted(countOf(findings, Severity::Note), "note"));
}

int countOf(const std::vector<Finding>& findings, Severity severity)
{
    return int(std::count_if(findings.begin(), findings.end(), [&](const Finding& finding) {
        return severityOf(finding) == severity;
    }));
}
