#include "configset/seriesloader.h"

#include "configset/configfilereader.h"
#include "model/tasklinereader.h"
#include "shared/kvfile.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"

namespace {

constexpr unsigned short commentMark = '#';

QString commentText(_kvString<1000> line)
{
    line.remove(0, 1);
    line.trim();
    return kvToQString(line);
}

} // namespace

void loadConfigFile(QString& file, TaskList& tasks, const LoadListener& listener)
{
    file = kvConvertPDToOS(file);
    if (!kvFileExists(kvToString16<500>(file)))
        return;

    const bool takesComments = listener.infoIsEmpty();
    const auto path = kvToString8<500>(file);
    ConfigFileReader reader(path);
    _kvString<1000> line;
    while (reader.readLine(line)) {
        if (line.startsWith(commentMark)) {
            if (takesComments)
                listener.infoLine(commentText(line));
            continue;
        }
        line.trim();
        if (line.isEmpty())
            continue;
        TestTask task;
        if (readTaskLine(task, line, path))
            tasks.append(task);
        else
            listener.lineRejected(kvToQString(line), file);
    }
}

void loadSeries(const SeriesName& name, TaskList& tasks, const LoadListener& listener)
{
    QStringList files = candidateFiles(name);
    for (QString& file : files)
        loadConfigFile(file, tasks, listener);
}
