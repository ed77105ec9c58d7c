#include "check/extent.h"

#include "check/filekeys.h"
#include "check/foreignpaths.h"
#include "check/nameexpander.h"
#include "check/text.h"

#include <fmt/format.h>

void ExtentCounter::add(const SeriesFacts& facts, const std::set<const Rule*>& rulesOff)
{
    m_rulesOff.insert(rulesOff.begin(), rulesOff.end());
    for (const FileFact& file : facts.files)
        m_files += file.readable ? 1 : 0;
    const ForeignPaths foreign(facts);
    for (const LineFact& line : facts.lines) {
        if (isMarker(line) && isForeignPath(line.text))
            addForeign(line.text);
        if (!isTask(line))
            continue;
        ++m_tasks;
        bool hasMore = false;
        for (const TaskPath which : {SourcePath, DestPath, LogPath, CsvPath}) {
            const QByteArray& path = line.path(which);
            if (foreign.contains(path))
                addForeign(path);
            hasMore = hasMore || iterationsOf(line, path) > facts.iterationLimit;
        }
        m_tasksOfManyIterations += hasMore ? 1 : 0;
    }
}

void ExtentCounter::addForeign(const QByteArray& path)
{
    (isSharePath(path) ? m_sharePaths : m_windowsPaths).insert(path);
}

CheckExtent ExtentCounter::extent(const CheckOptions& options) const
{
    CheckExtent extent{m_files, m_tasks, options.hosts.size(), {}};
    const auto add = [&](const char* what, long long count, const std::string& text) {
        if (count > 0)
            extent.notChecked.push_back({what, count, text});
    };
    if (options.hosts.isEmpty())
        add("collisions", 1, "no machines given: collisions not checked");
    else if (options.hosts.size() == 1)
        add("collisions", 1, "1 machine given: collisions not checked");
    add("repeated-hosts", options.repeatedHostCount, options.repeatedHosts);
    add("windows-paths", m_windowsPaths.size(), counted(m_windowsPaths.size(), "Windows path"));
    add("share-paths", m_sharePaths.size(),
        counted(m_sharePaths.size(), "path") + " on file servers");
    add("iterations", m_tasksOfManyIterations,
        "all iterations but the first of " + counted(m_tasksOfManyIterations, "task"));
    add("rules", int(m_rulesOff.size()), counted(int(m_rulesOff.size()), "rule"));
    return extent;
}
