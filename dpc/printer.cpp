#include "dpc/printer.h"

#include "check/ruletexts.h"
#include "check/text.h"
#include "dpc/json.h"

#include <QJsonArray>
#include <QJsonObject>

#include <fmt/color.h>
#include <fmt/format.h>

#include <algorithm>

namespace {

Severity severityOf(const Finding& finding)
{
    return finding.rule->severity;
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

} // namespace

std::string findingsAsText(const std::vector<Finding>& findings, bool colour)
{
    std::string text;
    for (const Finding& finding : findings) {
        const Rule& rule = *finding.rule;
        const std::string severity = fmt::format("{}:", severityName(rule.severity));
        if (colour)
            text += fmt::format(fmt::emphasis::bold, "{}", placeOf(finding)) + ' ' +
                    fmt::format(styleOf(rule.severity), "{}", severity);
        else
            text += placeOf(finding) + ' ' + severity;
        text += fmt::format(" {} [{}]\n", finding.text, rule.name);
    }
    return text;
}

std::string findingsAsJson(const std::vector<Finding>& findings, const Remarks& remarks)
{
    QJsonArray list;
    for (const Finding& finding : findings) {
        const Rule& rule = *finding.rule;
        list.append(QJsonObject{{"file", finding.path},
                                {"line", finding.line},
                                {"column", finding.column},
                                {"severity", severityName(rule.severity)},
                                {"rule", rule.name},
                                {"text", QString::fromStdString(finding.text)}});
    }
    QJsonObject all = jsonOutput(remarks);
    all.insert("findings", list);
    all.insert("errors", countOf(findings, Severity::Error));
    all.insert("warnings", countOf(findings, Severity::Warning));
    all.insert("notes", countOf(findings, Severity::Note));
    return jsonText(all);
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
