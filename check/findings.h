#pragma once

#include "check/finding.h"
#include "check/seriesfacts.h"

#include <set>
#include <string>
#include <vector>

/// Collects what the rules find in one series.
class Findings
{
public:
    /// Both must outlive it.
    Findings(const SeriesFacts& facts, const std::set<const Rule*>& rulesOff)
        : m_facts(facts)
        , m_rulesOff(rulesOff)
    {}

    /// At a column of a line of a file, all but the file from 1. If the text shortens a list of
    /// names, `names` has all of them.
    void add(const Rule& rule, int file, int line, int column, std::string text,
             std::vector<std::string> names = {});
    /// At a column of a line that holds something.
    void add(const Rule& rule, const LineFact& line, int column, std::string text,
             std::vector<std::string> names = {})
    {
        add(rule, line.file, line.line, column, std::move(text), std::move(names));
    }

    /// In the order of files, lines, columns and rules.
    std::vector<Finding> takeSorted();

private:
    const SeriesFacts& m_facts;
    const std::set<const Rule*>& m_rulesOff;
    std::vector<Finding> m_findings;
};
