#include "app/twdiskprobe.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    auto* window = new twDiskProbe;
    window->show();
    const int exitCode = QApplication::exec();
    delete window;
    return exitCode;
}
