#pragma once

#include "engine/fiooutput.h"
#include "tests/engine/seriesrun.h"

#include <QProcess>

// fio itself, for tests of what it makes of job files.

namespace test {

/// The output of a program, run to its end in a folder.
inline Printed printedBy(const QString& folder, const QString& program,
                         const QStringList& arguments)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    process.closeWriteChannel();
    if (!process.waitForFinished(-1))
        qFatal("%s does not run", qPrintable(program));
    return {process.readAllStandardOutput(), process.readAllStandardError(), process.exitCode()};
}

/// The reports of fio about the sections of a job file in a folder.
inline std::vector<SectionReport> runJobFile(const QString& folder, const QString& file)
{
    return readFioOutput(printedBy(folder, "fio", {"--output-format=json", file}).out).sections;
}

/// True if fio can read the job file.
inline bool parses(const QString& folder, const QString& file)
{
    const Printed printed = printedBy(folder, "fio", {"--parse-only", file});
    return printed.status == 0 && printed.err.isEmpty();
}

} // namespace test
