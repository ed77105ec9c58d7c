#include "tests/app/editor.h"
#include "tests/app/looks.h"

#include <QScreen>

// Takes pictures of the window as desktops may show it.
// usage: lookPictures looks|screen PREFIX
// looks: in several states and sizes of letters, to be looked at; screen: as large as the screen.

namespace {

void compose(Editor& editor)
{
    editor.typeInfo("Which chunk size suits the new file server?");
    editor.addWriteTask("/share/test/a.dat");
    editor.addMarker();
    editor.addWriteTask("/share/test/b.dat");
    editor.selectRow(0);
}

void take(Editor& editor, const QString& file)
{
    QTest::qWait(200);
    if (!editor.window.grab().save(file))
        qFatal("can't write %s", qPrintable(file));
}

void takeMaximised(Editor& editor, const QString& file)
{
    editor.window.resize(QGuiApplication::primaryScreen()->availableSize());
    take(editor, file);
}

void takeScreen(const QString& name)
{
    Editor editor;
    compose(editor);
    takeMaximised(editor, name + ".png");
}

void takeLooks(const QString& name)
{
    {
        Editor editor;
        compose(editor);
        take(editor, name + ".png");
        editor.check("radioNextConfig");
        take(editor, name + "-disabled.png");
        takeMaximised(editor, name + "-maximised.png");
    }
    const QFont font = QApplication::font();
    QApplication::setFont(largerFont(font));
    Editor editor;
    compose(editor);
    take(editor, name + "-large.png");
    QApplication::setFont(font);
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 3 || !QStringList{"looks", "screen"}.contains(arguments[1]))
        qFatal("usage: lookPictures looks|screen PREFIX");
    for (const bool dark : {false, true}) {
        QApplication::setPalette(dark ? darkPalette() : lightPalette());
        const QString name = arguments[2] + (dark ? "dark" : "light");
        if (arguments[1] == "looks")
            takeLooks(name);
        else
            takeScreen(name);
    }
    return 0;
}
