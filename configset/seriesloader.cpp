#include "configset/seriesloader.h"

#include "configset/configfilereader.h"
#include "model/tasklinereader.h"
#include "shared/kvfile.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"

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
        const ConfigLine kind = takeConfigLine(line);
        if (kind == ConfigLine::Comment && takesComments)
            listener.infoLine(kvToQString(line));
        if (kind != ConfigLine::Entry)
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
