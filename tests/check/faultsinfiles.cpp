#include "tests/check/plantedfaults.h"
#include "tests/support/files.h"
#include "tests/support/tasks.h"

#include <QFileInfo>

#include <algorithm>

namespace {

using Task = RandomSeries::Task;

/// The lines of a file of the series.
QList<QByteArray> linesOf(const RandomSeries& series, const QString& file)
{
    return test::contentOf(series.folder() + file).split('\n');
}

void put(const RandomSeries& series, const QString& file, const QList<QByteArray>& lines)
{
    test::put(series.folder() + file, lines.join('\n'));
}

bool plantUnmadeSource(RandomSeries& series, Planted& planted)
{
    Task* task = nullptr;
    if (!isDrawn(series, task, [](const Task& t) { return t.readsOwn; }))
        return false;
    const QByteArray name =
        RandomSeries::asSeenByOthers(textOf(task->record.sourcePath), *task).replace("[iter]", "0");
    QList<QByteArray> lines = linesOf(series, "m_init.dpc");
    const auto line = std::find_if(lines.begin(), lines.end(),
                                   [&](const QByteArray& l) { return l.contains(name + ';'); });
    if (line == lines.end() ||
        QFile::exists(QString::fromLatin1(series.expanded(name, *task, QString(), 0))))
        return false;
    lines.erase(line);
    put(series, "m_init.dpc", lines);
    planted.wanted = {{findingAt("source-missing", *task)}};
    return true;
}

bool plantLineThatDestroys(RandomSeries& series, Planted& planted)
{
    QList<QByteArray> lines = linesOf(series, "m_init.dpc");
    for (int i = 0; i < lines.size(); ++i) {
        if (!lines[i].startsWith("# ") || !lines[i].contains("data.bin"))
            continue;
        lines[i].remove(0, 2);
        put(series, "m_init.dpc", lines);
        planted.wanted = {{QStringLiteral("init-overwrites m_init.dpc:%1").arg(i + 1)}};
        return true;
    }
    return false;
}

bool plantLineOverTheSeries(RandomSeries& series, Planted& planted)
{
    QList<QByteArray> lines = linesOf(series, "m_init.dpc");
    lines.insert(lines.size() - 1, lineTo("[cfgPath]/m1.dpc").trimmed().toLatin1());
    put(series, "m_init.dpc", lines);
    planted.wanted = {{QStringLiteral("overwrites-series m_init.dpc:%1").arg(lines.size() - 1)}};
    return true;
}

bool plantMissingInit(RandomSeries& series, Planted& planted)
{
    // Once it has run, all that it makes is there: each task has a log in one of these folders.
    if (QFileInfo::exists(series.folder() + "m") || QFileInfo::exists(series.folder() + "log"))
        return false;
    QFile::remove(series.folder() + "m_init.dpc");
    planted.wanted = {{"init-missing"}};
    // Nothing tells any more that it made the files that tasks write.
    planted.alsoTrue = QStringList{"source-missing", "overwrites-source"};
    return true;
}

/// Changes the last line of a task in a file.
bool changeLastTask(RandomSeries& series, const QByteArray& from, const QByteArray& to,
                    const char* rule, Planted& planted)
{
    const Task& task = series.tasks().back();
    const QString file = RandomSeries::fileName(task.file);
    QList<QByteArray> lines = linesOf(series, file);
    QByteArray& line = lines[lines.size() - 2];
    const int place = line.indexOf(from);
    if (place < 0)
        return false;
    line.replace(place, from.size(), to);
    put(series, file, lines);
    planted.wanted = {{findingAt(rule, task)}};
    return true;
}

bool plantMisspelledMethod(RandomSeries& series, Planted& planted)
{
    planted.alsoTrue = QStringList{"init-outdated"};
    return changeLastTask(series, "Stream", "Straem", "bad-line", planted);
}

bool plantMisspelledVariable(RandomSeries& series, Planted& planted)
{
    planted.alsoTrue = QStringList{"shared-results", "shared-output",   "init-outdated",
                                   "init-unneeded",  "folder-variable", "source-missing"};
    return changeLastTask(series, "/[host]", "/[Host]", "unknown-variable", planted);
}

bool plantMissingLastFile(RandomSeries& series, Planted& planted)
{
    if (series.files() < 2)
        return false;
    QFile::remove(series.folder() + RandomSeries::fileName(series.files() - 1));
    planted.wanted = {{"last-marker"}};
    planted.alsoTrue = QStringList{"init-outdated"};
    return true;
}

bool plantLeftover(RandomSeries& series, Planted& planted)
{
    const QString name = RandomSeries::fileName(series.files());
    test::put(series.folder() + name,
              "Stream;NOflush;NOprealloc; 50; 1024; -1; 1024;1;0;  MEMORY;  "
              "[cfgPath]/left_[host].dat;  [cfgPath]/m_[host].txt;  [cfgPath]/m_[host].csv;  "
              "true;\n");
    planted.wanted = {{"leftover " + name + ":1"}};
    planted.alsoTrue = QStringList{"init-outdated"};
    return true;
}

} // namespace

const std::vector<NamedFault>& faultsInFiles()
{
    static const std::vector<NamedFault> faults = {
        {"unmade source", plantUnmadeSource},
        {"line that destroys", plantLineThatDestroys},
        {"line over the series", plantLineOverTheSeries},
        {"missing init", plantMissingInit},
        {"misspelled method", plantMisspelledMethod},
        {"misspelled variable", plantMisspelledVariable},
        {"missing last file", plantMissingLastFile},
        {"leftover", plantLeftover},
    };
    return faults;
}
