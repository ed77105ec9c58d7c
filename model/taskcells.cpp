#include "model/taskcells.h"

#include "shared/kvtext.h"

namespace {

QString methodName(IoMethod method)
{
    switch (method) {
    case IoMethod::Posix:
        return QStringLiteral("Posix");
    case IoMethod::System:
        return QStringLiteral("System");
    case IoMethod::Stream:
        return QStringLiteral("Stream");
    case IoMethod::AnsiC:
        return QStringLiteral("AnsiC");
    case IoMethod::WinApi:
        return QStringLiteral("WinApi");
    }
    return {};
}

QString typeName(TestType type)
{
    switch (type) {
    case TestType::Copy:
        return QStringLiteral("Copy");
    case TestType::Write:
        return QStringLiteral("Write");
    case TestType::Read:
        break;
    }
    return QStringLiteral("Read");
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
    cells += methodName(task.method);
    cells += typeName(task.testType());
    for (const int number :
         {kibFromBytes(task.io.fileSize), task.iterations, kibFromBytes(task.io.chunkSize),
          task.io.chunkWait, task.io.sysBufferMode})
        cells += QString::number(number);
    for (const auto* path : {&task.sourcePath, &task.destPath, &task.logPath})
        cells += kvToQString(*path);
    return cells;
}
