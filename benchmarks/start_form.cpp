#include "benchmarks/firstpaint.h"
#include "ui_twdiskprobe.h"

#include <QLayout>

#include <cstring>

// The bare form up to its first paint: the same description, shown without any behaviour. Its
// layout makes the window larger than the form says. With "small" it is kept from that, so that it
// paints as much as the editor does, which fits itself to the screen.
int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    auto* window = new QMainWindow;
    Ui::twDiskProbeClass form;
    form.setupUi(window);
    if (argc > 1 && std::strcmp(argv[1], "small") == 0)
        window->layout()->setSizeConstraint(QLayout::SetNoConstraint);
    new FirstPaint(*window);
    window->show();
    return QApplication::exec();
}
