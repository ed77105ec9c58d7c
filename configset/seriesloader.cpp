#include "configset/seriesloader.h"

#include "configset/configfilereader.h"
#include "model/tasklinereader.h"
#include "shared/kvfile.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"

namespace {

/// Reads the files of one series, and no more of them than a series may have.
class SeriesReader
{
public:
    SeriesReader(TaskList& tasks, const LoadListener& listener)
        : m_tasks(tasks)
        , m_listener(listener)
    {}

    void read(QString& file)
    {
        file = kvConvertPDToOS(file);
        if (!kvFileExists(kvToString16<maxPath>(file)))
            return;

        const bool takesComments = m_listener.infoIsEmpty();
        const auto path = kvToString8<maxPath>(file);
        ConfigFileReader reader(path);
        _kvString<maxLine> line;
        while (m_entries < maxSeriesEntries && reader.readLine(line)) {
            const ConfigLine kind = takeConfigLine(line);
            if (kind == ConfigLine::Comment && takesComments)
                takeComment(line);
            else if (kind == ConfigLine::Entry)
                takeEntry(line, path, file);
        }
    }

private:
    void takeComment(const _kvString<maxLine>& line)
    {
        if (m_comments == maxSeriesComments)
            return;
        ++m_comments;
        m_listener.infoLine(kvToQString(line));
    }

    void takeEntry(const _kvString<maxLine>& line, const _kvString8_allSize<maxPath>& path,
                   const QString& file)
    {
        ++m_entries;
        TestTask task;
        if (readTaskLine(task, line, path))
            m_tasks.append(task);
        else
            m_listener.lineRejected(kvToQString(line), file);
    }

    TaskList& m_tasks;
    const LoadListener& m_listener;
    int m_entries = 0;
    int m_comments = 0;
};

} // namespace

void loadConfigFile(QString& file, TaskList& tasks, const LoadListener& listener)
{
    SeriesReader(tasks, listener).read(file);
}

void loadSeries(const SeriesName& name, TaskList& tasks, const LoadListener& listener)
{
    SeriesReader reader(tasks, listener);
    QStringList files = candidateFiles(name);
    for (QString& file : files)
        reader.read(file);
}
