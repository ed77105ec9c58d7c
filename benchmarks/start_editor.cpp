#include "app/startup.h"
#include "app/twdiskprobe.h"
#include "benchmarks/firstpaint.h"

// The editor up to its first paint; but for that end as its main() starts it.
int main(int argc, char* argv[])
{
    prepareApplication();
    QApplication application(argc, argv);
    auto* window = new twDiskProbe;
    new FirstPaint(*window);
    window->show();
    return QApplication::exec();
}
