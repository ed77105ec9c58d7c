// Input, all of it Latin-1: an archive of files and what is done with it.
//
//   chosen.dpc              the file that the user chooses; "+" before it: there is an info text
//   ==> chosen.dpc          a file of the folder, up to the next such line
//   (its content)
//   ==> _wait/chosen1.dpc   a file of the other folder
//   (its content)
//   ==> chosen2.dpc/        a folder of that name
//
// A file loses the line end before the next "==>", so that each can end with or without one. Names
// that lead elsewhere are passed over. The files are written to a folder of this process in memory,
// or among the temporary files where the system has no such place.

#include "configset/seriesloader.h"
#include "fuzz/check.h"
#include "fuzz/slowseries.h"

#include <QDir>
#include <QTemporaryDir>

namespace {

constexpr int mostFiles = 40;
constexpr int longestName = 60;

QString pattern()
{
    const QString memory = QStringLiteral("/dev/shm");
    const QString place = QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
    return place + "/twdp-fuzz-XXXXXX";
}

/// The two folders of a series, empty before each input.
class SeriesFolder
{
public:
    SeriesFolder()
        : m_folder(pattern())
    {
        if (!m_folder.isValid())
            qFatal("no folder for the files: %s", qPrintable(m_folder.errorString()));
    }

    [[nodiscard]] QString path() const { return m_folder.path() + '/'; }

    void clear() const
    {
        QDir(path() + "set").removeRecursively();
        QDir(path()).mkpath("set/_wait");
    }

private:
    QTemporaryDir m_folder;
};

bool leadsElsewhere(const QString& name)
{
    const QString last = name.startsWith("_wait/") ? name.mid(6) : name;
    return last.isEmpty() || last.contains('/') || last.contains(QChar(0)) || last == "." ||
           last == "..";
}

void unpackOne(const QString& folder, QByteArray entry)
{
    QString name = fuzz::latin1(fuzz::takeLine(entry).left(longestName));
    const bool isFolder = name.endsWith('/');
    if (isFolder)
        name.chop(1);
    if (leadsElsewhere(name))
        return;
    QFile file(folder + name);
    if (isFolder)
        QDir(folder).mkdir(name);
    else if (file.open(QIODevice::WriteOnly))
        file.write(entry);
}

QList<QByteArray> entriesOf(const QByteArray& archive)
{
    const QByteArray mark("\n==> ");
    QList<QByteArray> entries;
    int start = archive.indexOf(mark);
    while (start >= 0 && entries.size() < mostFiles) {
        const int end = archive.indexOf(mark, start + mark.size());
        entries += archive.mid(start + mark.size(), end < 0 ? -1 : end - start - mark.size());
        start = end;
    }
    return entries;
}

slow::Load load(const QString& chosen, const QString& infoText)
{
    slow::Load result;
    result.info += infoText;
    const LoadListener listener{
        [&] { return result.info.join('\n').isEmpty(); },
        [&](const QString& text) { result.info += text; },
        [&](const QString& line, const QString& file) { result.rejected << line << file; }};
    TaskList tasks;
    loadSeries(seriesNameForLoading(chosen), tasks, listener);
    for (const TestTask& task : qAsConst(tasks))
        result.tasks += describe(task);
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const SeriesFolder folder;
    folder.clear();
    const QString root = folder.path() + "set/";

    QByteArray input = fuzz::bytesOf(data, size);
    QString chosen = fuzz::latin1(input.split('\n').first().left(longestName));
    const QString infoText = chosen.startsWith('+') ? "info" : "";
    chosen.remove(0, infoText.isEmpty() ? 0 : 1);
    for (const QByteArray& entry : entriesOf(input))
        unpackOne(root, entry);

    slow::Load loaded;
    const QString date = slow::withinOneSecond([&] { loaded = load(root + chosen, infoText); });
    const slow::Load expected = slow::Loader(infoText, date).load(root + chosen);
    fuzz::same("tasks come from the files in order", loaded.tasks.join('\n'),
               expected.tasks.join('\n'));
    fuzz::same("comments become the info text", loaded.info.join('\n'), expected.info.join('\n'));
    fuzz::same("refused lines are told", loaded.rejected.join('\n'), expected.rejected.join('\n'));
    fuzz::same("a load gives what the files hold", loaded, expected);
    return 0;
}
