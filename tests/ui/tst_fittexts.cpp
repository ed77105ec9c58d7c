#include "tests/ui/smallwindow.h"

#include <QTest>

class TestFitTexts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { useSmallLetters(); }
    void windowNeverGrowsBeyondTheScreen();
    void windowHasNoLeastWidth();
    void windowCanBecomeNarrowAgainAfterALargerFont();
    void everyTextIsWholeInAnySize();
    void leastHeightFallsAsTheWindowWidens();
    void leastHeightFollowsTheFont();
    void leastHeightFollowsTheTexts();
    void spacersGiveWayToTexts();
    void maximizedWindowStaysMaximized();
    void windowBecomesSmallerOnASmallerScreen();
    void windowDoesNotFollowAScreenThatItLeft();
    void windowMovesIntoItsScreen_data();
    void windowMovesIntoItsScreen();
    void windowThatFillsTheScreenStaysWhereItIs();
    void windowFitsWithAnotherFrame();
    void windowOfAChosenSizeKeepsItWithAnotherFrame();
};

void TestFitTexts::windowNeverGrowsBeyondTheScreen()
{
    SmallWindow window;
    window.left().setText(SmallWindow::words(4000));
    window.check().setText(SmallWindow::words(400));
    window.show();
    QCOMPARE(window.size(), available(window));
    QCoreApplication::processEvents();
    QCOMPARE(window.size(), available(window));
    QCOMPARE(cutTexts(window), QStringList());
    QCOMPARE(unreachableEdges(window), QStringList());
    QVERIFY(scrollBar(window, Qt::Vertical) && scrollBar(window, Qt::Horizontal));
}

void TestFitTexts::windowHasNoLeastWidth()
{
    SmallWindow window;
    window.show();
    // X tells of the first size when it has time to: only then may another be asked for.
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.resize(60, 300);
    QCoreApplication::processEvents();
    QCOMPARE(window.width(), 60);
    QCOMPARE(unreachableEdges(window), QStringList());
    QCOMPARE(cutTexts(window), QStringList());
    QVERIFY(scrollBar(window, Qt::Horizontal) != nullptr);
    window.resize(600, 300);
    QCOMPARE(scrollBar(window, Qt::Horizontal), nullptr);
    QCOMPARE(window.centralWidget()->geometry(), window.rect());
    QCOMPARE(window.centralWidget()->minimumSize(), QSize(0, 0));
}

void TestFitTexts::windowCanBecomeNarrowAgainAfterALargerFont()
{
    SmallWindow window;
    window.show();
    const QSize before = window.size();
    QFont larger = window.font();
    larger.setPixelSize(14);
    window.setFont(larger);
    QCoreApplication::processEvents();
    window.resize(before.width(), 1);
    QCOMPARE(window.width(), before.width());
    QCOMPARE(cutTexts(window), QStringList());
    QCOMPARE(unreachableEdges(window), QStringList());
}

void TestFitTexts::everyTextIsWholeInAnySize()
{
    SmallWindow window;
    window.show();
    for (const QSize size :
         {QSize(1, 1), QSize(600, 1), QSize(1, 600), QSize(350, 120), QSize(270, 120)}) {
        window.resize(size);
        QCOMPARE(window.size(), window.size().expandedTo(size));
        QCOMPARE(cutTexts(window), QStringList());
        QCOMPARE(scrollBar(window, Qt::Vertical), nullptr);
        QCoreApplication::processEvents();
        QCOMPARE(cutTexts(window), QStringList());
    }
}

void TestFitTexts::leastHeightFallsAsTheWindowWidens()
{
    SmallWindow window;
    window.left().setText(SmallWindow::words(60));
    window.show();
    const int preferred = window.centralWidget()->sizeHint().width();
    window.resize(preferred, 1);
    const int narrow = window.minimumHeight();
    QCOMPARE(window.height(), narrow);
    window.resize(screenSize().width() - 50, narrow);
    const int wide = window.minimumHeight();
    QVERIFY(wide < narrow);
    window.resize(window.width(), 1);
    QCOMPARE(window.height(), wide);
    window.resize(preferred, 1);
    QCOMPARE(window.height(), narrow);
}

void TestFitTexts::leastHeightFollowsTheFont()
{
    SmallWindow window;
    window.show();
    window.resize(300, 1);
    const QSize before = window.size();
    const QFont font = window.font();
    QFont larger = font;
    larger.setPixelSize(10);
    window.setFont(larger);
    QTRY_VERIFY(window.height() > before.height());
    QTRY_COMPARE(cutTexts(window), QStringList());
    window.setFont(font);
    QTRY_COMPARE(window.minimumHeight(), before.height());
    window.resize(300, 1);
    QCOMPARE(window.size(), before);
}

void TestFitTexts::leastHeightFollowsTheTexts()
{
    SmallWindow window;
    window.show();
    window.resize(300, 1);
    const QSize before = window.size();
    window.right().setText(SmallWindow::words(5).replace(' ', '\n').repeated(3));
    QTRY_VERIFY(window.height() > before.height());
    QTRY_COMPARE(cutTexts(window), QStringList());
    window.check().setText(SmallWindow::words(9));
    QTRY_VERIFY(scrollBar(window, Qt::Horizontal) != nullptr);
    QTRY_COMPARE(cutTexts(window), QStringList());
    QCOMPARE(unreachableEdges(window), QStringList());
}

void TestFitTexts::spacersGiveWayToTexts()
{
    SmallWindow window;
    window.left().hide();
    window.show();
    window.resize(300, window.height());
    window.resize(300, 1);
    QLayoutItem& column = *window.centralWidget()->layout()->itemAt(1);
    const QMargins margins = window.centralWidget()->layout()->contentsMargins();
    QCOMPARE(window.height(), margins.top() +
                                  column.minimumHeightForWidth(column.geometry().width()) +
                                  margins.bottom());
}

void TestFitTexts::maximizedWindowStaysMaximized()
{
    SmallWindow window;
    window.left().setText(SmallWindow::words(4000));
    window.showMaximized();
    QVERIFY(window.isMaximized());
    QCOMPARE(cutTexts(window), QStringList());
    QCOMPARE(unreachableEdges(window), QStringList());
}

// The window has grown beyond its screen, as if it had come from a larger one; there is only one
// here, so the test says itself that it is another.
void TestFitTexts::windowBecomesSmallerOnASmallerScreen()
{
    SmallWindow window;
    window.show();
    const QSize most = available(window);
    QScreen* screen = window.screen();
    window.resize(most + QSize(300, 200));
    Q_EMIT window.windowHandle()->screenChanged(screen);
    QCOMPARE(window.size(), most);
    window.resize(most + QSize(300, 200));
    Q_EMIT screen->availableGeometryChanged(screen->availableGeometry());
    QCOMPARE(window.size(), most);
    QVERIFY(screen->availableGeometry().contains(window.frameGeometry()));
}

void TestFitTexts::windowDoesNotFollowAScreenThatItLeft()
{
    SmallWindow window;
    window.show();
    QScreen* screen = window.screen();
    Q_EMIT window.windowHandle()->screenChanged(nullptr);
    const QSize chosen = available(window) + QSize(300, 200);
    window.resize(chosen);
    Q_EMIT screen->availableGeometryChanged(screen->availableGeometry());
    QCOMPARE(window.size(), chosen);
}

void TestFitTexts::windowMovesIntoItsScreen_data()
{
    QTest::addColumn<QPoint>("place"); // of the frame, in hundreds of the screen
    QTest::newRow("within") << QPoint(20, 20);
    QTest::newRow("beyond the right") << QPoint(95, 20);
    QTest::newRow("beyond the bottom") << QPoint(20, 95);
    QTest::newRow("beyond the left") << QPoint(-10, 20);
    QTest::newRow("beyond the top") << QPoint(20, -10);
    QTest::newRow("beyond both") << QPoint(95, 95);
}

void TestFitTexts::windowMovesIntoItsScreen()
{
    QFETCH(QPoint, place);
    SmallWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QScreen* screen = window.screen();
    const QRect space = screen->availableGeometry();
    const QPoint asked(space.width() * place.x() / 100, space.height() * place.y() / 100);
    window.move(asked);
    QTRY_COMPARE(window.pos(), asked);
    Q_EMIT screen->availableGeometryChanged(space);
    const QSize frame = window.frameGeometry().size();
    const QPoint last = space.bottomRight() - QPoint(frame.width() - 1, frame.height() - 1);
    const QPoint expected(qBound(space.left(), asked.x(), last.x()),
                          qBound(space.top(), asked.y(), last.y()));
    QTRY_COMPARE(window.pos(), expected);
}

void TestFitTexts::windowThatFillsTheScreenStaysWhereItIs()
{
    SmallWindow window;
    window.showFullScreen();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QRect before = window.geometry();
    Q_EMIT window.screen()->availableGeometryChanged(window.screen()->availableGeometry());
    QCOMPARE(window.geometry(), before);
    QVERIFY(window.isFullScreen());
}

// A window manager puts its frame around a window some time after that was shown, or takes it off.
void TestFitTexts::windowFitsWithAnotherFrame()
{
    SmallWindow window;
    window.left().setText(SmallWindow::words(4000));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const int before = available(window).height();
    QCOMPARE(window.height(), before);
    QWindow* handle = window.windowHandle();
    handle->setFlags(handle->flags() | Qt::FramelessWindowHint);
    window.move(window.pos() + QPoint(1, 1));
    QTRY_COMPARE(window.height(), available(window).height());
    QVERIFY(window.height() >= before);
    handle->setFlags(handle->flags() & ~Qt::FramelessWindowHint);
    window.resize(window.size() - QSize(1, 0));
    QTRY_COMPARE(window.height(), before);
    const bool hasFrames = !handle->frameMargins().isNull(); // not without a window manager
    QVERIFY(!hasFrames || window.screen()->availableGeometry().contains(window.frameGeometry()));
}

void TestFitTexts::windowOfAChosenSizeKeepsItWithAnotherFrame()
{
    SmallWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QSize chosen = window.size() + QSize(30, 20);
    window.resize(chosen);
    QWindow* handle = window.windowHandle();
    handle->setFlags(handle->flags() | Qt::FramelessWindowHint);
    window.move(window.pos() + QPoint(1, 1));
    QCOMPARE(window.size(), chosen);
}

QTEST_MAIN(TestFitTexts)

#include "tst_fittexts.moc"
