#pragma once

#include "model/tasklinewriter.h"
#include "model/tasklist.h"
#include "shared/kvtext.h"

// Records that tests of series are made of.

inline _kvString8_allSize<500> path(const char* text)
{
    return _kvString8_allSize<500>(text);
}

/// A Write task that needs no file but its destination.
inline TestTask taskTo(const char* dest)
{
    TestTask task;
    task.setFileCreation(path(dest), 1048576);
    return task;
}

inline TestTask marker()
{
    TestTask task;
    task.waitForNextConfig = true;
    return task;
}

/// The line of a record, with its line end.
inline QString lineOf(TestTask task)
{
    _kvString<1000> line;
    return kvToQString(writeTaskLine(line, task)) + '\n';
}

inline QString lineTo(const char* dest)
{
    return lineOf(taskTo(dest));
}
