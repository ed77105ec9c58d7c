#include "app/twdiskprobe.h"
#include "tests/support/files.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDir>
#include <QIcon>
#include <QImage>
#include <QLocale>
#include <QLoggingCategory>
#include <QPointer>
#include <QProcess>
#include <QPushButton>
#include <QResource>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

/// The main() of the editor, which the build gives this name here.
int editorMain(int count, char* arguments[]);

namespace {

/// One run of the editor, for the function that comes in between.
class Run final : public QObject
{
public:
    std::function<void()> work; ///< done as soon as the application waits for events
    QString iconTheme = "none";

protected:
    void timerEvent(QTimerEvent* event) override
    {
        killTimer(event->timerId());
        work();
    }
};

Run& theRun()
{
    static Run run;
    return run;
}

/// Comes when the application is made, before main() does more with it.
void planWork()
{
    QIcon::setThemeName(theRun().iconTheme);
    theRun().startTimer(0);
}
Q_COREAPP_STARTUP_FUNCTION(planWork)

/// Runs the editor from its start to its end.
int runEditor(const std::function<void()>& work)
{
    theRun().work = work;
    char name[] = "twDiskProbe";
    char* arguments[] = {name, nullptr};
    return editorMain(1, arguments);
}

twDiskProbe* theWindow()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* window = qobject_cast<twDiskProbe*>(widget))
            return window;
    }
    qFatal("the program has no window");
}

/// A tool has to do its work.
void call(const char* tool, const QStringList& arguments)
{
    if (QProcess::execute(tool, arguments) != 0)
        qFatal("%s failed", tool);
}

} // namespace

/// The program from its start to its end.
class TestProgram : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_folder.isValid()); }

    void showsItsWindowUntilThatIsClosed()
    {
        QPointer<twDiskProbe> window;
        bool isThere = false;
        const int code = runEditor([&] {
            window = theWindow();
            isThere = window->isVisible();
            connect(window, &QObject::destroyed, qApp, [&] { isThere = false; });
            window->close();
        });
        QCOMPARE(code, 0);
        QVERIFY2(!isThere, "the window outlived the application");
        QVERIFY(window.isNull());
    }

    void endsWithTheStatusThatItIsGiven()
    {
        QCOMPARE(runEditor([] { QCoreApplication::exit(3); }), 3);
    }

    void desktopKnowsItByItsName()
    {
        QString name;
        runEditor([&] {
            name = QGuiApplication::desktopFileName();
            qApp->quit();
        });
        QCOMPARE(name, "twdiskprobe");
    }

    void hasItsOwnIconInFourSizes() { QCOMPARE(iconSizes(), (QList<int>{16, 32, 48, 128})); }

    void takesTheIconThatIsInstalled()
    {
        QVERIFY(QDir(m_folder.path()).mkpath("own/22x22/apps"));
        test::put(m_folder.filePath("own/index.theme"),
                  "[Icon Theme]\nName=own\nDirectories=22x22/apps\n"
                  "[22x22/apps]\nSize=22\nType=Fixed\n");
        QImage picture(22, 22, QImage::Format_ARGB32);
        picture.fill(Qt::red);
        QVERIFY(picture.save(m_folder.filePath("own/22x22/apps/twdiskprobe.png")));
        QIcon::setThemeSearchPaths({m_folder.path()});
        theRun().iconTheme = "own";
        QCOMPARE(iconSizes(), QList<int>{22});
    }

    void speaksTheLanguageOfTheUser()
    {
        const QString ts = m_folder.filePath("twdiskprobe_de.ts");
        const QString qrc = m_folder.filePath("translations.qrc");
        const QString resource = m_folder.filePath("translations.rcc");
        test::put(ts, "<!DOCTYPE TS><TS version=\"2.1\" language=\"de\"><context>"
                      "<name>twDiskProbeClass</name><message><source>Create new task line</source>"
                      "<translation>Neue Zeile</translation></message></context></TS>");
        test::put(qrc, "<RCC><qresource prefix=\"/translations\"><file>twdiskprobe_de.qm</file>"
                       "</qresource></RCC>");
        call(TWDP_LRELEASE, {"-silent", ts});
        call(TWDP_RCC, {"-binary", qrc, "-o", resource});
        QVERIFY(QResource::registerResource(resource));
        for (const auto language : {QLocale::German, QLocale::English}) {
            QLocale::setDefault(QLocale(language));
            QString text;
            runEditor([&] {
                text = theWindow()->findChild<QPushButton*>("buttonCreateNew")->text();
                qApp->quit();
            });
            QCOMPARE(text, language == QLocale::German ? "Neue Zeile" : "Create new task line");
        }
        QVERIFY(QResource::unregisterResource(resource));
    }

    void loadsNoOpenGlUnlessItIsAskedTo_data()
    {
        QTest::addColumn<QByteArray>("variable");
        QTest::addColumn<QByteArray>("chosen");
        QTest::newRow("X11") << QByteArray("QT_XCB_GL_INTEGRATION") << QByteArray("xcb_egl");
        QTest::newRow("Wayland") << QByteArray("QT_WAYLAND_CLIENT_BUFFER_INTEGRATION")
                                 << QByteArray("wayland-egl");
    }

    void loadsNoOpenGlUnlessItIsAskedTo()
    {
        QFETCH(QByteArray, variable);
        QFETCH(QByteArray, chosen);
        const auto seen = [&] {
            QByteArray value;
            runEditor([&] {
                value = qgetenv(variable);
                qApp->quit();
            });
            return value;
        };
        qunsetenv(variable);
        QCOMPARE(seen(), QByteArray("none"));
        qputenv(variable, chosen);
        QCOMPARE(seen(), chosen);
        qputenv(variable, "none");
    }

    void waylandsComplaintAboutThatIsNotShown()
    {
        runEditor([] { qApp->quit(); });
        const QLoggingCategory wayland("qt.qpa.wayland");
        QVERIFY(!wayland.isWarningEnabled());
        QVERIFY(wayland.isCriticalEnabled());
        QVERIFY(QLoggingCategory::defaultCategory()->isWarningEnabled());
    }

private:
    static QList<int> iconSizes()
    {
        QList<int> sizes;
        runEditor([&] {
            for (const QSize& size : theWindow()->windowIcon().availableSizes())
                sizes += size.width();
            qApp->quit();
        });
        return sizes;
    }

    QTemporaryDir m_folder;
};

QTEST_APPLESS_MAIN(TestProgram)
#include "tst_program.moc"
