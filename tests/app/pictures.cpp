#include "tests/app/guideplayer.h"
#include "tests/support/files.h"
#include "tests/support/ownmounts.h"

#include <QDir>

// Takes the pictures of the documents from the real window. usage: docPictures FOLDER

namespace {

void save(const QPixmap& picture, const QString& file)
{
    if (!picture.save(file))
        qFatal("can't write %s", qPrintable(file));
}

/// Saves the dialog, then presses Enter.
DialogAnswers::Answer pictureOf(const QString& file)
{
    return [file](QDialog& dialog) {
        save(dialog.grab(), file);
        pressKey(dialog, Qt::Key_Return);
    };
}

void composeSeries(Editor& editor)
{
    editor.typeInfo("Which chunk size suits the new file server?");
    editor.choose("comboTestType", 1);
    editor.enter("spinChunkSize", 64);
    editor.click("buttonCreateNew");
    editor.enter("spinChunkSize", 1024);
    editor.click("buttonCreateNew");
    editor.addMarker();
    editor.choose("comboTestType", 2);
    editor.click("buttonCreateNew");
    editor.selectRow(1);
}

void takeWindow(const QString& folder)
{
    Editor editor;
    composeSeries(editor);
    save(editor.window.grab(), folder + "window.png");
}

/// In a font for which the window's initial size is enough.
void takeSmallWindow(const QString& folder)
{
    const QFont before = QApplication::font();
    QFont small = before;
    small.setPointSizeF(6.5);
    QApplication::setFont(small);
    Editor editor;
    composeSeries(editor);
    if (editor.window.size() != QSize(1200, 880))
        qFatal("the window is not 1200 x 880");
    save(editor.window.grab(), folder + "window-1200x880.png");
    QApplication::setFont(before);
}

void takeDialogs(const QString& folder)
{
    const QString series = "/mnt/nas/test/";
    Editor editor;
    composeSeries(editor);
    {
        DialogAnswers answers;
        answers.answerNext(chooseFile(series + "mytest.dpc"));
        answers.answerNext(pictureOf(folder + "information.png"));
        editor.click("buttonSave");
    }
    test::put(series + "damaged.dpc", "Strem;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;\n");
    DialogAnswers answers;
    answers.answerNext(pictureOf(folder + "question.png"));
    answers.answerNext(chooseFile(series + "damaged.dpc"));
    answers.answerNext(pictureOf(folder + "warning.png"));
    editor.click("buttonLoad");
}

void takeGuide(const QString& guide, const QString& folder)
{
    GuidePlayer player;
    for (const GuidePart& part : guideParts(guide)) {
        if (part.kind == GuidePart::Kind::Action)
            player.act(part);
        else if (part.kind == GuidePart::Kind::Picture && !isOfReport(part))
            save(player.picture(part.name), folder + part.name + ".png");
    }
}

void takeGuides(const QString& folder)
{
    QDir::setCurrent("/mnt/disk"); // where the first file dialog opens
    const QByteArray page = test::contentOf(TWDP_SOURCE_DIR "/docs/user-guide.md");
    for (const GuideSection& guide : guideSections(QString::fromUtf8(page)))
        takeGuide(guide.text, folder);
    QDir::setCurrent("/");
}

} // namespace

int main(int argc, char* argv[])
{
    // The disk and the share of which the guides speak, and a home folder whose name is nobody's:
    // file dialogs show them all, and write their settings to the last.
    test::allowMounts();
    const test::SmallDisk disks("/mnt", "size=1m");
    for (const char* path : {"/mnt/disk/test", "/mnt/nas/test", "/mnt/home"})
        QDir().mkpath(path);
    qputenv("HOME", "/mnt/home");
    QApplication application(argc, argv);
    if (argc != 2 || !QDir(argv[1]).exists())
        qFatal("usage: docPictures FOLDER");
    const QString folder = QDir(argv[1]).absolutePath() + '/';
    takeGuides(folder);
    takeWindow(folder);
    takeSmallWindow(folder);
    takeDialogs(folder);
    return 0;
}
