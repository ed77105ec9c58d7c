#pragma once

#include "check/finding.h"
#include "check/seriesfacts.h"

#include <QSet>

#include <string>
#include <vector>

/// Collects what is lost of a series and of its _init file, each rule once for a place: all
/// iterations and machines lose the same.
class Losses
{
public:
    /// At a column of a line of a file, all but the file from 1.
    void add(const Rule& rule, const SeriesFacts& facts, int file, int line, int column,
             std::string text);
    /// At a field of a line, from 1.
    void addAtField(const Rule& rule, const SeriesFacts& facts, const LineFact& line, int field,
                    std::string text);

    /// True if there is an error among them.
    bool hasErrors() const { return m_hasErrors; }

    /// The _init file first, then in the order of files, lines and columns.
    std::vector<Finding> takeSorted();

private:
    std::vector<Finding> m_findings;
    QSet<QString> m_places;
    bool m_hasErrors = false;
};
