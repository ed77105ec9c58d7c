#include "benchmarks/firstpaint.h"
#include "ui_twdiskprobe.h"

#include <QLayout>

#include <cstdlib>

// The bare form up to its first paint: the same description, shown without any behaviour. Its
// layout makes the window larger than the form says. With a width and a height it has that size, so
// that it paints as much as the editor does, which fits itself to the screen.
int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    auto* window = new QMainWindow;
    Ui::twDiskProbeClass form;
    form.setupUi(window);
    if (argc > 2) {
        window->layout()->setSizeConstraint(QLayout::SetNoConstraint);
        window->resize(std::atoi(argv[1]), std::atoi(argv[2]));
    }
    new FirstPaint(*window);
    window->show();
    return QApplication::exec();
}
