#pragma once

#include "engine/fiooutput.h"
#include "tests/support/leaveout.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>

// fio itself, for tests of what it makes of job files.

namespace test {

/// Ends the test program as left out if this machine lacks one of the programs.
inline void requirePrograms(const QStringList& names)
{
    for (const QString& name : names) {
        if (QStandardPaths::findExecutable(name).isEmpty())
            leaveOut(qPrintable(name + " is not installed"));
    }
}

/// What a program printed, run to its end in a folder.
struct Printed
{
    int status = 0;
    QByteArray out;
    QByteArray err;
};

inline Printed run(const QString& folder, const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    process.closeWriteChannel();
    if (!process.waitForFinished(-1))
        qFatal("%s does not run", qPrintable(program));
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

/// What fio reports of the sections of a job file in a folder.
inline std::vector<SectionReport> runJobFile(const QString& folder, const QString& file)
{
    return readFioOutput(run(folder, "fio", {"--output-format=json", file}).out).sections;
}

/// True if fio can read the job file.
inline bool parses(const QString& folder, const QString& file)
{
    const Printed printed = run(folder, "fio", {"--parse-only", file});
    return printed.status == 0 && printed.err.isEmpty();
}

} // namespace test
