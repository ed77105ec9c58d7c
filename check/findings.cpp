#include "check/findings.h"

#include "check/rules/catalogue.h"
#include "check/text.h"

#include <fmt/format.h>

#include <algorithm>
#include <tuple>

Findings::Findings(const SeriesFacts& facts, const std::set<const Rule*>& rulesOff)
    : m_facts(facts)
    , m_isOff(allRules().size())
    , m_counts(allRules().size() * facts.files.size())
    , m_endings(m_counts.size(), -1)
{
    for (const Rule* rule : rulesOff)
        m_isOff[size_t(orderOf(*rule))] = true;
}

size_t Findings::placeOf(const Rule& rule, int file) const
{
    return size_t(file) * allRules().size() + size_t(orderOf(rule));
}

bool Findings::isFull(const Rule& rule, int file) const
{
    return m_counts[placeOf(rule, file)] >= maxFindingsPerRule || m_isOff[size_t(orderOf(rule))];
}

void Findings::add(const Rule& rule, int file, int line, int column, Message message)
{
    if (m_isOff[size_t(orderOf(rule))])
        return;
    ++m_count;
    const size_t place = placeOf(rule, file);
    const int before = m_counts[place]++;
    const Severity severity = message.hasSeverity ? message.severity : rule.severity;
    if (before > maxFindingsPerRule) {
        Finding& ending = m_findings[size_t(m_endings[place])];
        ++ending.more;
        ending.severity = std::min(ending.severity, severity);
        return;
    }
    Finding finding{&rule, file, m_facts.files[size_t(file)].shown, line, column, {}, severity};
    if (before == maxFindingsPerRule) {
        m_endings[place] = int(m_findings.size());
        finding.more = 1;
    } else {
        const std::string advice = message.hasAdvice ? message.advice : rule.advice;
        finding.text = std::move(message.text) + (advice.empty() ? "" : "; " + advice);
        finding.names = std::move(message.names);
    }
    m_findings.push_back(std::move(finding));
}

std::vector<Finding> Findings::takeSorted()
{
    for (const int ending : m_endings) {
        if (ending < 0)
            continue;
        Finding& finding = m_findings[size_t(ending)];
        finding.text = fmt::format("{} of this rule in the file: only {} are listed",
                                   counted(finding.more, "more finding"), maxFindingsPerRule);
    }
    const auto place = [](const Finding& f) {
        return std::make_tuple(f.file, f.line, f.column, orderOf(*f.rule));
    };
    std::stable_sort(m_findings.begin(), m_findings.end(),
                     [&](const Finding& a, const Finding& b) { return place(a) < place(b); });
    return std::move(m_findings);
}
