#pragma once

#include "check/finding.h"
#include "check/seriesfacts.h"

#include <set>
#include <string>
#include <vector>

/// How many findings of a rule are listed for a file. One more says how many are not.
constexpr int maxFindingsPerRule = 100;

/// The message of a finding. Severity and advice are those of the rule unless it has its own.
struct Message
{
    /// A text alone, as most messages are.
    Message(std::string what) // NOLINT(google-explicit-constructor)
        : text(std::move(what))
    {}
    /// The same for a literal.
    Message(const char* what) // NOLINT(google-explicit-constructor)
        : text(what)
    {}
    /// With advice of its own; none if it is empty.
    Message(std::string what, std::string whatToDo)
        : text(std::move(what))
        , advice(std::move(whatToDo))
        , hasAdvice(true)
    {}

    /// The same with another severity.
    Message as(Severity other) &&
    {
        severity = other;
        hasSeverity = true;
        return std::move(*this);
    }
    /// The same about files that the text counts instead of naming each.
    Message about(std::vector<std::string> files) &&
    {
        names = std::move(files);
        return std::move(*this);
    }

    std::string text; ///< what is wrong, and why it matters
    std::string advice;
    bool hasAdvice = false;
    Severity severity = Severity::Error;
    bool hasSeverity = false;
    std::vector<std::string> names;
};

/// Collects what the rules find in one series.
class Findings
{
public:
    /// Both must outlive it.
    Findings(const SeriesFacts& facts, const std::set<const Rule*>& rulesOff);

    /// At a column of a line of a file, all but the file from 1.
    void add(const Rule& rule, int file, int line, int column, Message message);
    /// At a column of a line that holds something.
    void add(const Rule& rule, const LineFact& line, int column, Message message)
    {
        add(rule, line.file, line.line, column, std::move(message));
    }

    /// True if further findings of the rule in the file are only counted: their text is not needed.
    bool isFull(const Rule& rule, int file) const;

    /// How many there are by now, those that are only counted included.
    long long count() const { return m_count; }

    /// In the order of files, lines, columns and rules.
    std::vector<Finding> takeSorted();

private:
    size_t placeOf(const Rule& rule, int file) const;

    const SeriesFacts& m_facts;
    long long m_count = 0;
    std::vector<bool> m_isOff;  ///< of each rule
    std::vector<int> m_counts;  ///< of each rule in each file
    std::vector<int> m_endings; ///< the finding that says how many more there are, -1 if none
    std::vector<Finding> m_findings;
};
