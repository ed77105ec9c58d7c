#include "check/findings.h"

#include "check/rules/catalogue.h"

#include <algorithm>
#include <tuple>

void Findings::add(const Rule& rule, int file, int line, int column, std::string text,
                   std::vector<std::string> names)
{
    if (m_rulesOff.count(&rule) > 0)
        return;
    const QString& shown = m_facts.files[size_t(file)].shown;
    m_findings.push_back({&rule, file, shown, line, column, std::move(text), std::move(names)});
}

std::vector<Finding> Findings::takeSorted()
{
    const auto place = [](const Finding& f) {
        return std::make_tuple(f.file, f.line, f.column, orderOf(*f.rule));
    };
    std::stable_sort(m_findings.begin(), m_findings.end(),
                     [&](const Finding& a, const Finding& b) { return place(a) < place(b); });
    return std::move(m_findings);
}
