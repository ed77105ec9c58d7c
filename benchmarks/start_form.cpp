#include "benchmarks/firstpaint.h"
#include "ui_twdiskprobe.h"

// The bare form up to its first paint: the same description, shown without any behaviour.
int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    auto* window = new QMainWindow;
    Ui::twDiskProbeClass form;
    form.setupUi(window);
    new FirstPaint(*window);
    window->show();
    return QApplication::exec();
}
