#include "model/taskcells.h"

#include "model/methods.h"
#include "shared/kvtext.h"

namespace {

using Path = _kvString8_allSize<maxPath> TestTask::*;

template <Path path>
TaskColumn pathColumn(const char* title)
{
    return {title, false, [](const TestTask& task, int) { return kvToQString(task.*path); }, path};
}

QString methodCell(const TestTask& task, int /*configFileNumber*/)
{
    return methodInfo(task.method) != nullptr ? QString::fromLatin1(methodName(task.method))
                                              : QString();
}

QString typeCell(const TestTask& task, int /*configFileNumber*/)
{
    return QString::fromLatin1(testTypeName(task.testType()));
}

} // namespace

const std::vector<TaskColumn>& taskColumns()
{
    using Task = const TestTask&;
    static const std::vector<TaskColumn> columns = {
        {"Config File ID", true, [](Task, int file) { return QString::number(file); }},
        {"Type", false, methodCell},
        {"Method", false, typeCell},
        {"Size", true,
         [](Task task, int) { return QString::number(kibFromBytes(task.io.fileSize)); }},
        {"Interations", true, [](Task task, int) { return QString::number(task.iterations); }},
        {"Chunk Size", true,
         [](Task task, int) { return QString::number(kibFromBytes(task.io.chunkSize)); }},
        {"Chunk Wait", true, [](Task task, int) { return QString::number(task.io.chunkWait); }},
        {"SysBuffer", true, [](Task task, int) { return QString::number(task.io.sysBufferMode); }},
        pathColumn<&TestTask::sourcePath>("Source"),
        pathColumn<&TestTask::destPath>("Dest"),
        pathColumn<&TestTask::logPath>("Log"),
    };
    return columns;
}

QStringList taskCells(const TestTask& task, int configFileNumber)
{
    QStringList cells;
    for (const TaskColumn& column : taskColumns()) {
        const bool saysNextFile = task.waitForNextConfig && !cells.isEmpty();
        cells += saysNextFile ? QStringLiteral("next file") : column.cell(task, configFileNumber);
    }
    return cells;
}
