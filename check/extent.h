#pragma once

#include "check/checkoptions.h"
#include "check/remarks.h"
#include "check/seriesfacts.h"

#include <QByteArray>
#include <QSet>

#include <set>
#include <vector>

/// The things that a check looked at, and those that it left out: silence about the latter means
/// nothing.
struct CheckExtent
{
    int files = 0; ///< that were read, _init files as well
    int tasks = 0;
    int machines = 0; ///< that were given
    std::vector<NotChecked> notChecked;
};

/// Adds up the extent of a check of several series.
class ExtentCounter
{
public:
    /// A series that was checked, and the rules that were turned off for it.
    void add(const SeriesFacts& facts, const std::set<const Rule*>& rulesOff);

    /// Of all series that were added.
    CheckExtent extent(const CheckOptions& options) const;

private:
    void addForeign(const QByteArray& path);

    int m_files = 0;
    int m_tasks = 0;
    long long m_tasksOfManyIterations = 0;
    QSet<QByteArray> m_windowsPaths;
    QSet<QByteArray> m_sharePaths;
    std::set<const Rule*> m_rulesOff;
};
