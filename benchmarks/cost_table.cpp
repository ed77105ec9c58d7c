#include "benchmarks/costs.h"
#include "benchmarks/counting.h"
#include "benchmarks/samples.h"
#include "configset/seriesname.h"
#include "model/taskcells.h"
#include "shared/kvtext.h"
#include "tests/app/editor.h"

#include <QFile>
#include <QTemporaryDir>

using counting::count;
using counting::require;

namespace {

void writeSeriesFile(const QString& path, int taskCount)
{
    QFile file(path);
    require(file.open(QIODevice::WriteOnly), "config file");
    const TaskList tasks = samples::distinctTasks(taskCount, 1);
    for (const TestTask& task : tasks)
        file.write(kvToQString(samples::lineOf(task)).toLatin1() + '\n');
}

/// Moving a row up swaps two records and refreshes the whole table, which the load did before.
void countRefresh(const QString& folder, int size)
{
    writeSeriesFile(folder + "tasks.dpc", size);
    Editor editor;
    editor.load(folder + "tasks.dpc");
    require(editor.table()->rowCount() == size, "loading into the window");
    editor.table()->setCurrentCell(2, 0);
    auto* const button = editor.find<QPushButton>("buttonMoveUp");
    counting::countOnce("refresh " + QByteArray::number(size), [&] { button->click(); });
}

/// A table with the same rows, filled by the shortest code there is.
void countPlainTable(int size)
{
    const TestTask task = samples::defaultTask();
    QMainWindow window;
    QTableWidget table(&window);
    window.setCentralWidget(&table);
    window.show();
    table.setColumnCount(int(taskColumns().size()));
    count("refresh QTableWidget " + QByteArray::number(size), [&] {
        table.setRowCount(size);
        for (int row = 0; row < size; ++row) {
            const QStringList cells = taskCells(task, 0);
            for (int column = 0; column < int(taskColumns().size()); ++column)
                table.setItem(row, column, new QTableWidgetItem(cells[column]));
        }
        table.resizeColumnsToContents();
    });
}

/// The first refresh adds the rows, and so would a second one with more of them.
void countRefreshesOfALoad(const QString& folder)
{
    for (int number = 0; number < seriesFileCount; ++number)
        writeSeriesFile(seriesFile(folder, "twenty", number), 10);
    Editor editor;
    int refreshes = 0;
    QObject::connect(editor.table()->model(), &QAbstractItemModel::rowsInserted,
                     [&] { ++refreshes; });
    editor.load(folder + "twenty.dpc");
    counting::print("refreshes of a load", refreshes);
}

} // namespace

void countTable(int largest)
{
    const QTemporaryDir temporary;
    require(temporary.isValid(), "temporary folder");
    const QString folder = temporary.path() + '/';
    for (const int size : growthSizes(largest))
        countRefresh(folder, size);
    countPlainTable(1000);
    countRefreshesOfALoad(folder);
}
