#include "tests/check/randomseries.h"

#include "configset/seriesloader.h"
#include "configset/seriessaver.h"
#include "tests/support/files.h"
#include "tests/support/tasks.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>

#include <algorithm>

namespace {

constexpr int kib = 1024;

QByteArray textOf(const _kvString8_allSize<500>& path)
{
    return {path.text, path.length};
}

/// A fault may be in the way of it.
void makeFile(const QString& path, qint64 size)
{
    QFile file(path);
    if (QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly))
        file.resize(size);
}

/// Not that of an earlier series.
QString firstTempFolder()
{
    static const QString folder = QDir::tempPath();
    return folder;
}

} // namespace

RandomSeries::RandomSeries(unsigned seed)
    : m_root(firstTempFolder() + "/series-XXXXXX")
    , m_random(seed)
{
    if (!QDir().mkpath(folder() + "_wait") || !QDir().mkpath(temp()) ||
        !QFile::link(folder(), m_root.path() + "/link"))
        qFatal("can't make a folder for the test");
    qputenv("TMPDIR", QFile::encodeName(temp()));
    m_files = 1 + draw(4);
    for (int file = 0; file < m_files; ++file) {
        const int count = 2 + draw(4);
        for (int number = 0; number < count; ++number) {
            Task task;
            task.file = file;
            task.number = number;
            drawTask(task);
            m_tasks.push_back(task);
        }
    }
    const int machines = draw(3) == 0 ? 0 : 2 + draw(19);
    for (int i = 0; i < machines; ++i)
        m_hosts += QStringLiteral("machine%1").arg(i + 1, 2, 10, QLatin1Char('0'));
}

void RandomSeries::drawTask(Task& task)
{
    TestTask& record = task.record;
    record.setDefaults();
    record.io.fileSize = (draw(2) == 0 ? 1024 : 4096) * kib;
    record.setChunkSize((draw(2) == 0 ? 64 : 1024) * kib);
    record.iterations = 1 + draw(3);
    record.sourcePath.clear();
    record.destPath.clear();
    const int type = draw(3);
    if (type != 0)
        drawSource(task);
    if (type != 1)
        drawDestination(task);
    const IoMethod methods[] = {IoMethod::Posix, IoMethod::Stream, IoMethod::AnsiC,
                                IoMethod::System};
    record.method = methods[draw(type == 2 ? 4 : 3)];
    record.logPath =
        path(draw(2) == 0 ? "[cfgPath]/[cfgName]/[host].txt" : "[cfgPath]/log/[host]-[cfgID].txt");
    record.csvPath = path(draw(2) == 0 ? "[cfgPath]/[cfgName]/[host]-[cfgID].csv"
                                       : "[cfgPath]/[host]-[cfgID]-[cfgTaskID].csv");
}

void RandomSeries::drawSource(Task& task)
{
    TestTask& record = task.record;
    std::vector<int> written;
    for (int i = 0; i < int(m_tasks.size()); ++i) {
        if (m_tasks[size_t(i)].record.destPath.hasData())
            written.push_back(i);
    }
    const int kind = draw(written.empty() ? 3 : 4);
    if (kind == 0) {
        record.sourcePath = path("[cfgPath]/common.dat");
        record.io.fileSize = 1024 * kib;
    } else if (kind == 1) {
        // By its full path: below [cfgPath] the editor looks for it in "_wait".
        record.sourcePath = path((folder() + "data.bin").toLatin1());
        task.readsExisting = true;
    } else if (kind == 2) {
        record.sourcePath = path(draw(2) == 0 ? "[cfgPath]/s[cfgID]-[cfgTaskID].dat"
                                              : "[cfgPath]/src/[cfgID]-[cfgTaskID]_[iter].dat");
        task.readsOwn = true;
    } else {
        task.readsBack = written[size_t(draw(int(written.size())))];
        const Task& writer = m_tasks[size_t(task.readsBack)];
        record.iterations = writer.record.iterations;
        record.sourcePath = path(asSeenByOthers(textOf(writer.record.destPath), writer));
    }
}

void RandomSeries::drawDestination(Task& task)
{
    const char* const names[] = {"[cfgPath]/[cfgName]/w[cfgID]-[cfgTaskID]_[host].dat",
                                 "[cfgPath]/[cfgName]/w[cfgID]-[cfgTaskID]_[host]_[iter].dat",
                                 "[cfgPath]/w[cfgTaskID]-[host]-[cfgID].dat",
                                 "[temp]/w[cfgID]-[cfgTaskID]_[host].dat"};
    task.record.destPath = path(names[draw(4)]);
}

QByteArray RandomSeries::asSeenByOthers(QByteArray path, const Task& task)
{
    return path.replace("[cfgID]", QByteArray::number(task.file))
        .replace("[cfgTaskID]", QByteArray::number(task.number));
}

QByteArray RandomSeries::expanded(const QByteArray& path, const Task& task, const QString& host,
                                  int iteration) const
{
    return asSeenByOthers(path, task)
        .replace("[host]", host.toLatin1())
        .replace("[iter]", QByteArray::number(iteration))
        .replace("[cfgName]", "m")
        .replace("[cfgPath]/", folder().toLatin1())
        .replace("[temp]", temp().toLatin1());
}

QString RandomSeries::fileName(int number)
{
    return QStringLiteral("_wait/m%1.dpc").arg(number > 0 ? QString::number(number) : QString());
}

QString RandomSeries::placeOf(const Task& task)
{
    // The first file begins with the info text and an empty line.
    const int line = task.number + (task.file == 0 ? 3 : 1);
    return fileName(task.file) + ':' + QString::number(line);
}

void RandomSeries::save()
{
    TaskList list;
    int file = 0;
    for (const Task& task : m_tasks) {
        if (task.file != file)
            list.append(marker());
        file = task.file;
        list.append(task.record);
        if (task.readsExisting)
            makeFile(folder() + "data.bin", 12345);
    }
    saveSeries(list, "info", {folder(), "m"});
    list.clear();
    loadSeries(
        {folder(), "m"}, list,
        {[] { return false; }, [](const QString&) {}, [](const QString&, const QString&) {}});
    saveSeries(list, "info", {folder(), "m"});
}

void RandomSeries::comeTo(State state)
{
    if (state >= State::InitRun)
        makeInitFiles();
    if (state >= State::Finished)
        makeDestinations();
}

void RandomSeries::makeInitFiles() const
{
    for (const QByteArray& line : test::contentOf(folder() + "m_init.dpc").split('\n')) {
        const QList<QByteArray> fields = line.split(';');
        if (line.startsWith('#') || fields.size() < 11)
            continue;
        const QByteArray name = fields[10].trimmed().replace("[cfgPath]/", folder().toLatin1());
        // Names of Windows are relative ones here.
        if (name.startsWith('/'))
            makeFile(QString::fromLatin1(name), fields[6].toLongLong() * kib);
    }
}

void RandomSeries::makeDestinations() const
{
    const QStringList hosts =
        m_hosts.isEmpty() ? QStringList(QSysInfo::machineHostName().section('.', 0, 0)) : m_hosts;
    for (const Task& task : m_tasks) {
        const TestTask& record = task.record;
        if (record.destPath.isEmpty())
            continue;
        for (const QString& host : hosts) {
            for (int i = 0; i < record.iterations; ++i) {
                const QByteArray source = expanded(textOf(record.sourcePath), task, host, i);
                const QByteArray dest = expanded(textOf(record.destPath), task, host, i);
                makeFile(QString::fromLatin1(dest),
                         source.isEmpty() ? record.io.fileSize
                                          : QFileInfo(QString::fromLatin1(source)).size());
            }
        }
    }
}
