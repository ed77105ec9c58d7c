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

QString taskLine(TestTask& task)
{
    _kvString<1000> line;
    return kvToQString(writeTaskLine(line, task)) + QLatin1Char('\n');
}

} // namespace

RenderedSeries renderSeries(TaskList& tasks, const QString& infoText, const SeriesName& name,
                            const QString& followUpFolder, const MachineValues& machine)
{
    RenderedSeries series;
    int configId = 0;
    int taskNumber = 0;
    ConfigFile current{seriesFile(name.folder + waitFolder(), name.baseName, configId),
                       header(infoText)};
    for (TestTask& task : tasks) {
        if (!task.waitForNextConfig) {
            task.configId = configId;
            current.content += taskLine(task);
            collectFilesOfTask(series.filesToCreate, task, taskNumber, machine);
            ++taskNumber;
            continue;
        }
        ++configId;
        taskNumber = 0;
        const QString next = seriesFile(name.folder + followUpFolder, name.baseName, configId);
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
    TestTask task;
    for (const FileToCreate& needed : list.files()) {
        task.setFileCreation(kvToString8<500>(needed.text), needed.size);
        if (exists(needed.resolved))
            file.content += commentStart;
        file.content += taskLine(task);
    }
    return file;
}
