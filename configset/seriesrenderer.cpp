#include "configset/seriesrenderer.h"

#include "model/tasklinewriter.h"
#include "shared/kvtext.h"

namespace {

const QString commentStart = QStringLiteral("# ");

QString header(const QString& infoText)
{
    return commentStart + QString(infoText).replace(QLatin1Char('\n'), "\n" + commentStart) +
           "\n\n";
}

QString taskLine(const TestTask& task)
{
    _kvString<maxLine> line;
    return kvToQString(writePreparedTaskLine(line, task)) + QLatin1Char('\n');
}

} // namespace

void prepareTasks(TaskList& tasks)
{
    int configId = 0;
    for (TestTask& task : tasks) {
        if (task.waitForNextConfig) {
            ++configId;
            continue;
        }
        task.configId = configId;
        task.normalise();
    }
}

RenderedSeries renderSeries(const TaskList& tasks, const QString& infoText, const SeriesName& name,
                            FollowUpFiles place, const MachineValues& machine)
{
    const QString followUpFolder =
        name.folder + (place == FollowUpFiles::InWaitFolder ? waitFolder() : QString());
    RenderedSeries series;
    series.filesToCreate = FileToCreateList(maxConfigFile);
    int taskNumber = 0;
    ConfigFile current{seriesFile(name.folder + waitFolder(), name.baseName, 0), header(infoText)};
    for (const TestTask& task : tasks) {
        if (!task.waitForNextConfig) {
            current.content += taskLine(task);
            collectFilesOfTask(series.filesToCreate, task, taskNumber, machine);
            ++taskNumber;
            continue;
        }
        taskNumber = 0;
        const QString next = seriesFile(followUpFolder, name.baseName, series.files.size() + 1);
        current.content += next + QLatin1Char('\n');
        series.files.append(current);
        current = {next, QString()};
    }
    series.files.append(current);
    return series;
}

ConfigFile renderInitFile(const FileToCreateList& list, const SeriesName& name,
                          const std::function<bool(const QString& resolved)>& exists)
{
    ConfigFile file{initFile(name), QString()};
    for (const FileToCreate& needed : list.files()) {
        if (file.content.size() >= maxConfigFile)
            break;
        if (exists(needed.resolved))
            file.content += commentStart;
        file.content += creatingLine(needed);
    }
    return file;
}
