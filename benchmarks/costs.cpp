#include "benchmarks/costs.h"
#include "benchmarks/counting.h"

#include <QApplication>

// usage: costs lines|series|table LARGEST
// Growth is followed up to the largest number of tasks. To be run by callgrind with
// --collect-atstart=no, which writes one file for each count. Figures of another kind go to
// standard output, one in a line: name, tab, figure.
int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    counting::require(argc == 3, "two arguments");
    const QByteArray group(argv[1]);
    const int largest = QByteArray(argv[2]).toInt();
    if (group == "lines")
        countLines();
    else if (group == "series")
        countSeries(largest);
    else if (group == "table")
        countTable(largest);
    else
        counting::require(false, "unknown group");
    return 0;
}
