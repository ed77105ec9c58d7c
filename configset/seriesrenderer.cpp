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
    int fileNumber = 0;
    for (TestTask& task : tasks) {
        if (task.waitForNextConfig) {
            ++fileNumber;
            continue;
        }
        task.configId = fileNumber;
        task.normalise();
    }
}

ConfigFilesRenderer::ConfigFilesRenderer(const QString& infoText, const SeriesName& name,
                                         FollowUpFiles place)
    : m_name(name)
    , m_followUpFolder(name.folder +
                       (place == FollowUpFiles::InWaitFolder ? waitFolder() : QString()))
    , m_files{{seriesFile(name.folder + waitFolder(), name.baseName, 0), header(infoText)}}
{}

void ConfigFilesRenderer::add(const TestTask& task)
{
    QString& content = m_files.last().content;
    if (!task.waitForNextConfig) {
        content += taskLine(task);
        return;
    }
    const QString next = seriesFile(m_followUpFolder, m_name.baseName, m_files.size());
    content += next + QLatin1Char('\n');
    m_files.append({next, QString()});
}

RenderedSeries renderSeries(const TaskList& tasks, const QString& infoText, const SeriesName& name,
                            FollowUpFiles place, const MachineValues& machine)
{
    ConfigFilesRenderer renderer(infoText, name, place);
    FileToCreateList filesToCreate(maxConfigFile);
    int taskNumber = 0;
    for (const TestTask& task : tasks) {
        renderer.add(task);
        if (task.waitForNextConfig) {
            taskNumber = 0;
            continue;
        }
        collectFilesOfTask(filesToCreate, task, taskNumber, machine);
        ++taskNumber;
    }
    return {renderer.files(), filesToCreate};
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
