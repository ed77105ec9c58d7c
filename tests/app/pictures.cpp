#include "tests/app/editor.h"
#include "tests/support/files.h"

#include <QDir>
#include <QTemporaryDir>

// Takes the pictures of the documents from the real window. usage: docPictures FOLDER

namespace {

void save(QWidget& widget, const QString& file)
{
    if (!widget.grab().save(file))
        qFatal("can't write %s", qPrintable(file));
}

/// Saves the dialog, then presses Enter.
DialogAnswers::Answer pictureOf(const QString& file)
{
    return [file](QDialog& dialog) {
        save(dialog, file);
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
    save(editor.window, folder + "window.png");
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
    save(editor.window, folder + "window-1200x880.png");
    QApplication::setFont(before);
}

void takeDialogs(const QString& folder)
{
    const QTemporaryDir series;
    Editor editor;
    composeSeries(editor);
    {
        DialogAnswers answers;
        answers.answerNext(chooseFile(series.path() + "/mytest.dpc"));
        answers.answerNext(pictureOf(folder + "information.png"));
        editor.click("buttonSave");
    }
    test::put(series.path() + "/damaged.dpc",
              "Strem;NOflush;NOprealloc; 50; 1024; -1; 102400;1;0;\n");
    DialogAnswers answers;
    answers.answerNext(pictureOf(folder + "question.png"));
    answers.answerNext(chooseFile(series.path() + "/damaged.dpc"));
    answers.answerNext(pictureOf(folder + "warning.png"));
    editor.click("buttonLoad");
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    if (argc != 2 || !QDir(argv[1]).exists())
        qFatal("usage: docPictures FOLDER");
    const QString folder = QString::fromLocal8Bit(argv[1]) + '/';
    takeWindow(folder);
    takeSmallWindow(folder);
    takeDialogs(folder);
    return 0;
}
