#pragma once

#include "model/testtask.h"
#include "shared/kvtext.h"
#include "tests/model/slowreading.h"

#include <QString>
#include <QStringList>

/// Everything that a line carries, as text that a failed comparison shows.
inline QString describe(const TestTask& t)
{
    QStringList parts;
    for (const int number :
         {int(t.method), int(t.io.flush), int(t.io.preallocate), t.io.chunkWait,
          int(t.io.ioChunkWait), t.io.chunkSize, t.io.ioBufferSize, t.io.sysBufferMode,
          t.io.fileSize, t.iterations, t.io.cacheMode, int(t.writeDone), int(t.waitForNextConfig)})
        parts += QString::number(number);
    for (const auto* path : {&t.sourcePath, &t.destPath, &t.logPath, &t.csvPath})
        parts += kvToQString(*path);
    return parts.join('|');
}

inline QString describe(const SlowReading& r)
{
    TestTask task;
    task.method = static_cast<IoMethod>(r.method);
    task.io.flush = r.flush;
    task.io.preallocate = r.preallocate;
    task.setChunkWait(r.chunkWait);
    task.setChunkSize(r.chunkSize);
    task.io.sysBufferMode = r.sysBufferMode;
    task.io.fileSize = r.fileSize;
    task.iterations = r.iterations;
    task.io.cacheMode = r.cacheMode;
    task.sourcePath = kvToString8<500>(r.source);
    task.destPath = kvToString8<500>(r.dest);
    task.logPath = kvToString8<500>(r.log);
    task.csvPath = kvToString8<500>(r.csv);
    task.writeDone = r.writeDone;
    return describe(task);
}
