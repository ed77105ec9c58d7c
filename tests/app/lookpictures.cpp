#include "tests/app/editor.h"
#include "tests/app/looks.h"

#include <QScreen>

// Takes pictures of the window as desktops may show it, to be looked at.
// usage: lookPictures PREFIX

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

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    if (argc != 2)
        qFatal("usage: lookPictures PREFIX");
    const QString prefix = QString::fromLocal8Bit(argv[1]);
    const QFont font = QApplication::font();
    for (const bool dark : {false, true}) {
        QApplication::setPalette(dark ? darkPalette() : lightPalette());
        const QString name = prefix + (dark ? "dark" : "light");
        {
            Editor editor;
            compose(editor);
            take(editor, name + ".png");
            editor.check("radioNextConfig");
            take(editor, name + "-disabled.png");
            editor.window.resize(QGuiApplication::primaryScreen()->availableSize());
            take(editor, name + "-maximised.png");
        }
        QApplication::setFont(largerFont(font));
        Editor editor;
        compose(editor);
        take(editor, name + "-large.png");
        QApplication::setFont(font);
    }
    return 0;
}
