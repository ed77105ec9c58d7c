#include "model/taskcells.h"

#include "model/methods.h"
#include "shared/kvtext.h"

namespace {

QString methodCell(IoMethod method)
{
    return methodInfo(method) != nullptr ? QString::fromLatin1(methodName(method)) : QString();
}

} // namespace

QStringList taskCells(const TestTask& task, int configFileNumber)
{
    QStringList cells{QString::number(configFileNumber)};
    if (task.waitForNextConfig) {
        while (cells.size() < taskCellCount)
            cells += QStringLiteral("next file");
        return cells;
    }
    cells += methodCell(task.method);
    cells += QString::fromLatin1(testTypeName(task.testType()));
    for (const int number :
         {kibFromBytes(task.io.fileSize), task.iterations, kibFromBytes(task.io.chunkSize),
          task.io.chunkWait, task.io.sysBufferMode})
        cells += QString::number(number);
    for (const auto* path : {&task.sourcePath, &task.destPath, &task.logPath})
        cells += kvToQString(*path);
    return cells;
}
