#pragma once

#include "check/nameexpander.h"

#include <QHash>

/// Expands the names of tasks as an "_init" file has them: the variables of a task are replaced,
/// those of a machine and "[cfgPath]" stay. Most tasks of a config file have the same paths and
/// differ in their numbers, so each path is expanded once for each config file.
class NameTemplates
{
public:
    /// The facts must outlive it.
    explicit NameTemplates(const SeriesFacts& facts)
        : m_expander(facts, noMachine())
    {}

    /// The name that a path stands for, in Latin-1. Fastest if lines come in their order.
    QByteArray expand(const LineFact& line, const QByteArray& path, int iteration);

    /// Gives the memory back.
    void clear() { m_templates.clear(); }

private:
    NameExpander m_expander;
    int m_file = -1;
    QHash<QByteArray, QByteArray> m_templates; ///< of the paths of this file
};
