#include "tests/engine/seriesrun.h"

#include "dpc/commandline.h"
#include "tests/support/childprocess.h"
#include "tests/support/files.h"
#include "tests/support/leaveout.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonDocument>
#include <QStandardPaths>

#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace test {

namespace {

constexpr qint64 kib = 1024;

std::vector<std::string> typed(const SeriesRun& series, const QStringList& arguments)
{
    std::vector<std::string> list = {"run", series.file("mytest.dpc").toStdString()};
    for (const QString& argument : arguments)
        list.push_back(argument.toStdString());
    return list;
}

QByteArray describe(const QString& path)
{
    const struct stat status = statusOf(path);
    // On some file systems a folder grows with what is in it.
    const qint64 size = S_ISDIR(status.st_mode) ? 0 : qint64(status.st_size);
    const QByteArray kind = QByteArray::number(uint(status.st_mode), 8) + ' ' +
                            QByteArray::number(size) + ' ' + linkOf(path);
    return S_ISREG(status.st_mode) ? kind + contentOf(path) : kind;
}

} // namespace

void needFio()
{
    if (QStandardPaths::findExecutable("fio").isEmpty())
        leaveOut("fio is not installed (script/bootstrap installs it)");
}

Snapshot snapshotOf(const QString& folder)
{
    Snapshot all;
    for (const QString& name : entriesOf(folder))
        all[name] = describe(folder + '/' + name);
    return all;
}

SeriesRun::SeriesRun()
    : m_folder(QFileInfo(m_temporary.path()).canonicalFilePath())
{}

void SeriesRun::putSeries(const QList<QByteArrayList>& files) const
{
    QDir(m_folder).mkpath("_wait");
    const auto name = [this](int number) {
        return file(QStringLiteral("_wait/mytest%1.dpc")
                        .arg(number > 0 ? QString::number(number) : QString()));
    };
    for (int i = 0; i < files.size(); ++i) {
        QByteArrayList lines = files[i];
        if (i + 1 < files.size())
            lines += name(i + 1).toUtf8();
        put(name(i), lines.join('\n') + '\n');
    }
}

QByteArray SeriesRun::line(const QByteArray& source, const QByteArray& destination, int sizeKib,
                           int chunkKib, int waitMs, int iterations)
{
    const auto number = [](int n) { return QByteArray::number(n); };
    const auto path = [](const QByteArray& name) { return name.isEmpty() ? "MEMORY" : name; };
    return "Posix;NOflush;NOprealloc;" + number(waitMs) + ';' + number(chunkKib) + ";0;" +
           number(sizeKib) + ';' + number(iterations) + ";0;" + path(source) + ';' +
           path(destination) + ";;;false;";
}

QByteArray SeriesRun::slowWrite()
{
    return line("", "[cfgPath]/slow.dat", 640, 32, 200);
}

void SeriesRun::putKind(const QString& kind, const QString& name) const
{
    const QString path = file(name);
    const QByteArray bytes = path.toUtf8();
    bool made = true;
    QDir().mkpath(path.left(path.lastIndexOf('/')));
    if (kind == "smaller")
        put(path, "canary");
    else if (kind == "larger")
        put(path, textOf(300 * kib));
    else if (kind == "same size")
        put(path, textOf(128 * kib));
    else if (kind == "empty")
        put(path, "");
    else if (kind == "read-only")
        put(path, "canary", 0400);
    else if (kind == "folder")
        QDir().mkpath(path + "/inside");
    else if (kind == "FIFO")
        made = ::mkfifo(bytes.constData(), 0600) == 0;
    else if (kind == "link") {
        put(file("target"), "canary");
        made = ::symlink(file("target").toUtf8().constData(), bytes.constData()) == 0;
    } else if (kind == "dangling link")
        made = ::symlink(file("nowhere").toUtf8().constData(), bytes.constData()) == 0;
    else
        made = false;
    if (!made)
        qFatal("can't put a file of the kind '%s'", qPrintable(kind));
}

Snapshot SeriesRun::canaries() const
{
    Snapshot all = snapshotOf(m_folder);
    for (const QString& name : all.keys()) {
        if (name.startsWith("run") || name == "out" || name == "err")
            all.remove(name);
    }
    return all;
}

QByteArray SeriesRun::content(const QString& name) const
{
    return contentOf(file(name));
}

Printed SeriesRun::run(const QStringList& arguments) const
{
    std::ostringstream out;
    std::ostringstream err;
    const int status = runDpc(typed(*this, arguments), {out, err, false});
    return {QByteArray::fromStdString(out.str()), QByteArray::fromStdString(err.str()), status};
}

pid_t SeriesRun::start(const QStringList& arguments) const
{
    return startChild([&] {
        std::ofstream out(file("out").toStdString());
        std::ofstream err(file("err").toStdString());
        const int status = runDpc(typed(*this, arguments), {out, err, false});
        out.flush();
        err.flush();
        endChild(status);
    });
}

int SeriesRun::statusOf(pid_t child)
{
    int status = 0;
    if (::waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

QJsonObject SeriesRun::json(const QString& run, const QString& name) const
{
    return QJsonDocument::fromJson(contentOf(file(run + '/' + name))).object();
}

QString SeriesRun::state(const QString& run) const
{
    return json(run, "state.json").value("state").toString();
}

QStringList SeriesRun::reasons(const QString& run) const
{
    QStringList reasons;
    for (const QJsonValue reason : json(run, "state.json").value("reasons").toArray())
        reasons += reason.toString();
    return reasons;
}

QJsonArray SeriesRun::jobs(const QString& run) const
{
    return json(run, "results.json").value("jobs").toArray();
}

void waitUntil(const std::function<bool()>& holds)
{
    constexpr int minute = 60000;
    constexpr int pauseUs = 5000;
    QElapsedTimer time;
    time.start();
    while (!holds()) {
        if (time.elapsed() > minute)
            qFatal("nothing came of it within a minute");
        ::usleep(pauseUs);
    }
}

} // namespace test
