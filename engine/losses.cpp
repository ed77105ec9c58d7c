#include "engine/losses.h"

#include <algorithm>
#include <tuple>

void Losses::add(const Rule& rule, const SeriesFacts& facts, int file, int line, int column,
                 std::string text)
{
    const QString& shown = facts.files[size_t(file)].shown;
    const QString place =
        QString::fromLatin1(rule.name) + '\n' + shown + '\n' + QString::number(line);
    if (m_places.contains(place))
        return;
    m_places.insert(place);
    m_hasErrors = m_hasErrors || rule.severity == Severity::Error;
    constexpr int beforeAllFiles = -1;
    m_findings.push_back(
        {&rule, facts.isInit ? beforeAllFiles : file, shown, line, column, std::move(text)});
}

void Losses::addAtField(const Rule& rule, const SeriesFacts& facts, const LineFact& line, int field,
                        std::string text)
{
    add(rule, facts, line.file, line.line, line.columnOf(field), std::move(text));
}

std::vector<Finding> Losses::takeSorted()
{
    const auto place = [](const Finding& f) { return std::tie(f.file, f.line, f.column); };
    std::stable_sort(m_findings.begin(), m_findings.end(),
                     [&](const Finding& a, const Finding& b) { return place(a) < place(b); });
    return std::move(m_findings);
}
