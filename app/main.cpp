#include "app/startup.h"
#include "app/twdiskprobe.h"

#include <QApplication>
#include <QIcon>

namespace {

/// The desktop's own icon for the program, or the one that came with it if none is installed.
QIcon programIcon()
{
    QIcon icon;
    for (const char* file : {"16.png", "32.png", "48.png", "128.png"})
        icon.addFile(QStringLiteral(":/icons/") + file);
    return QIcon::fromTheme(QStringLiteral("twdiskprobe"), icon);
}

} // namespace

int main(int argc, char* argv[])
{
    prepareApplication();
    QApplication application(argc, argv);
    QApplication::setWindowIcon(programIcon());
    // Under Wayland the desktop finds icon and name of a window by this.
    QApplication::setDesktopFileName(QStringLiteral("twdiskprobe"));
    installTranslation(QLocale(), QStringLiteral(":/translations"));
    auto* window = new twDiskProbe;
    window->show();
    const int exitCode = QApplication::exec();
    delete window;
    return exitCode;
}
