#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <sys/types.h>

// Series that tests run with dpc, and what they leave behind.

namespace test {

/// Ends the program as left out if fio is not installed.
void needFio();

/// The output of a program, and how it ended.
struct Printed
{
    QByteArray out;
    QByteArray err;
    int status = 0;
};

/// Everything below a folder: names, kinds, rights, sizes, link targets, contents.
using Snapshot = QMap<QString, QByteArray>;
Snapshot snapshotOf(const QString& folder);

/// A folder with a series and its runs.
class SeriesRun
{
public:
    /// Paths in tasks may begin with "[cfgPath]", the folder.
    SeriesRun();

    /// The folder, without "/" at the end.
    const QString& folder() const { return m_folder; }
    QString file(const QString& name) const { return m_folder + '/' + name; }

    /// Makes the series "mytest": lines of its files, which are chained.
    void putSeries(const QList<QByteArrayList>& files) const;
    /// A task line: method Posix, sizes in KiB, one iteration, empty paths for memory.
    static QByteArray line(const QByteArray& source, const QByteArray& destination, int sizeKib,
                           int chunkKib = 64, int waitMs = 0, int iterations = 1);
    /// A write of "slow.dat" that takes long enough to be interrupted: twenty chunks, 200 ms apart.
    static QByteArray slowWrite();

    /// Puts something of a kind ("smaller", "FIFO", "dangling link" ...) in the place of a file.
    void putKind(const QString& kind, const QString& name) const;
    /// All files, except for those of runs that are named "run...".
    Snapshot canaries() const;
    QByteArray content(const QString& name) const;

    /// Runs "dpc run mytest.dpc" with more arguments, in this process.
    Printed run(const QStringList& arguments) const;
    /// The same in a child process, its output in the files "out" and "err".
    pid_t start(const QStringList& arguments) const;
    /// Waits for it, and tells its status; -1 if a signal ended it.
    static int statusOf(pid_t child);

    /// A file of a run as JSON.
    QJsonObject json(const QString& run, const QString& name) const;
    QString state(const QString& run) const;
    /// Why it did not start, or ended.
    QStringList reasons(const QString& run) const;
    QJsonArray jobs(const QString& run) const;

private:
    QTemporaryDir m_temporary;
    QString m_folder;
};

/// Waits until something holds; aborts the test program if it does not within a minute.
void waitUntil(const std::function<bool()>& holds);

} // namespace test
