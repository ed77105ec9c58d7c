#pragma once

#include "tests/support/files.h"

#include <QDir>
#include <QMap>
#include <QRegularExpression>
#include <QStringList>

/// The calls on files that the processes of a traced program made, as strace saw them.
class FioTrace
{
public:
    /// Options of strace that this reads; each process writes a file `prefix`.PID.
    static QStringList options(const QString& prefix)
    {
        return {"-ff",
                "-ttt",
                "-y",
                "-s",
                "0",
                "-o",
                prefix,
                "-e",
                "trace=read,write,pread64,pwrite64,fsync,fdatasync,clock_nanosleep,nanosleep"};
    }

    /// Reads the files; only calls on files below the folder count, and what came between them.
    FioTrace(const QString& prefix, const QString& folder)
    {
        const QFileInfo info(prefix);
        const QStringList names =
            info.dir().entryList({info.fileName() + ".*"}, QDir::Files, QDir::Name);
        for (const QString& name : names)
            readProcess(test::contentOf(info.dir().filePath(name)), folder);
    }

    /// A call on a file: "read FILE 100", "write FILE 100" or "sync FILE"; the name is relative to
    /// the folder.
    struct Call
    {
        QString text;
        double beforeMs = 0; ///< since the call before it in its process; 0 for the first
        bool slept = false;  ///< the process slept between the two
    };

    /// All calls, process by process, in the order of their first ones.
    QList<Call> calls() const
    {
        QList<Call> all;
        for (const QList<Call>& process : m_processes)
            all += process;
        return all;
    }

private:
    void readProcess(const QByteArray& text, const QString& folder)
    {
        static const QRegularExpression line(
            "^([0-9.]+) (\\w+)\\((?:\\d+<(.*?)>)?.*\\) = (-?\\d+)");
        constexpr double msPerSecond = 1000;
        QList<Call> calls;
        double first = 0;
        double last = 0;
        bool slept = false;
        for (const QByteArray& bytes : text.split('\n')) {
            const auto match = line.match(QString::fromUtf8(bytes));
            const QString path = match.captured(3);
            slept = slept || match.captured(2).contains("sleep");
            if (!match.hasMatch() || !path.startsWith(folder))
                continue;
            const double now = match.captured(1).toDouble() * msPerSecond;
            first = calls.isEmpty() ? now : first;
            calls += {textOf(match.captured(2), path.mid(folder.size()), match.captured(4)),
                      calls.isEmpty() ? 0 : now - last, slept && !calls.isEmpty()};
            last = now;
            slept = false;
        }
        if (!calls.isEmpty())
            m_processes.insert(first, calls);
    }

    static QString textOf(const QString& name, const QString& file, const QString& result)
    {
        if (name.contains("sync"))
            return "sync " + file;
        return (name.contains("read") ? "read " : "write ") + file + ' ' + result;
    }

    QMap<double, QList<Call>> m_processes;
};
