#pragma once

#include "model/tasklinewriter.h"
#include "model/tasklist.h"

// The input of the measurements.

namespace samples {

/// The task that everybody starts from.
inline TestTask defaultTask()
{
    TestTask task;
    task.setDefaults();
    return task;
}

inline _kvString<maxLine> lineOf(TestTask task)
{
    _kvString<maxLine> line;
    writeTaskLine(line, task);
    return line;
}

/// Tasks of which each needs files of its own in every iteration.
inline TaskList distinctTasks(int count, int iterations)
{
    TaskList tasks;
    for (int number = 0; number < count; ++number) {
        TestTask task = defaultTask();
        task.iterations = iterations;
        task.sourcePath = _kvString8_allSize<maxPath>("[cfgPath]/testfile_");
        task.sourcePath.addNr(number);
        task.sourcePath.add("-[iter].dat");
        tasks.append(task);
    }
    return tasks;
}

/// A task whose line has about this many characters (at least 100), spread over its four paths.
inline TestTask taskWithLine(int characters)
{
    constexpr int withoutPaths = 80;
    TestTask task = defaultTask();
    for (auto* path : {&task.sourcePath, &task.destPath, &task.logPath, &task.csvPath}) {
        *path = _kvString8_allSize<maxPath>("/");
        while (path->length < (characters - withoutPaths) / 4)
            path->add("folder/");
    }
    return task;
}

} // namespace samples
