#include "ui/centralscroller.h"

#include "tests/ui/cuttexts.h"

#include <QComboBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <qtestspontaneevent.h>

namespace {

/// A window of known size, with widgets at known places in its central widget.
class Window : public QMainWindow
{
public:
    Window()
    {
        setCentralWidget(new QWidget);
        resize(200, 100);
        show();
        if (!QTest::qWaitForWindowExposed(this))
            qFatal("the window was never shown");
        resize(200, 100);
        QCoreApplication::processEvents();
    }

    template <class Widget>
    Widget* add(const QRect& place)
    {
        auto* widget = new Widget;
        widget->setParent(centralWidget());
        widget->setGeometry(place);
        widget->setFocusPolicy(Qt::StrongFocus);
        widget->show();
        return widget;
    }

    QScrollBar* bar(Qt::Orientation orientation) const { return scrollBar(*this, orientation); }
    int value(Qt::Orientation orientation) const { return bar(orientation)->value(); }
};

void giveFocus(QWidget& widget, Qt::FocusReason reason)
{
    QFocusEvent event(QEvent::FocusIn, reason);
    QCoreApplication::sendEvent(&widget, &event);
}

/// Over the middle of a widget, to where the wheel of a mouse comes first.
void turnWheel(const QWidget& widget, QPoint angle)
{
    const QPoint place = widget.mapTo(widget.window(), widget.rect().center());
    QWheelEvent event(place, widget.window()->mapToGlobal(place), QPoint(), angle, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    // As from the system: only such a turn goes on to the parents of a widget that has no use for
    // it.
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(widget.window()->windowHandle(), &event);
}

} // namespace

class TestCentralScroller : public QObject
{
    Q_OBJECT

private slots:
    void barsExistOnlyInDirectionsThatNeedThem_data();
    void barsExistOnlyInDirectionsThatNeedThem();
    void barsLieBesideWhatIsSeen();
    void barsMoveTheContent();
    void contentThatTheWindowMovesComesBack();
    void focusBringsAWidgetIntoSight_data();
    void focusBringsAWidgetIntoSight();
    void focusMovesSideways();
    void startOfALargeWidgetIsSeen();
    void onlySomeReasonsForFocusMoveTheContent_data();
    void onlySomeReasonsForFocusMoveTheContent();
    void focusOutsideOfTheContentMovesNothing();
    void wheelMovesTheContentByItsDirection();
    void wheelOverAFieldWithoutFocusMovesTheContent();
    void wheelOverAFieldWithFocusIsTheFields();
    void wheelOverWhatScrollsItselfIsItsOwn();
    void wheelOverAnotherWindowIsThatWindows();
    void wheelIsTheFieldsIfNothingScrolls();
    void wheelAtTheEndOfABarDoesNothing();
};

void TestCentralScroller::barsExistOnlyInDirectionsThatNeedThem_data()
{
    QTest::addColumn<QSize>("content");
    QTest::addColumn<bool>("sideways");
    QTest::addColumn<bool>("down");
    QTest::newRow("smaller") << QSize(100, 50) << false << false;
    QTest::newRow("as large") << QSize(190, 90) << false << false;
    QTest::newRow("higher") << QSize(190, 91) << false << true;
    QTest::newRow("wider") << QSize(191, 90) << true << false;
    QTest::newRow("both") << QSize(191, 91) << true << true;
}

void TestCentralScroller::barsExistOnlyInDirectionsThatNeedThem()
{
    QFETCH(const QSize, content);
    Window window;
    CentralScroller scroller(window);
    for (int i = 0; i < 2; ++i) {
        scroller.show(content, {190, 90});
        QTEST(window.bar(Qt::Horizontal) != nullptr, "sideways");
        QTEST(window.bar(Qt::Vertical) != nullptr, "down");
        const bool scrolls = content.width() > 190 || content.height() > 90;
        QCOMPARE(window.centralWidget()->minimumSize(), scrolls ? content : QSize(0, 0));
        QCOMPARE(window.centralWidget()->size(), content);
        for (const auto orientation : {Qt::Horizontal, Qt::Vertical}) {
            const QScrollBar* bar = window.bar(orientation);
            if (bar == nullptr)
                continue;
            QVERIFY(bar->isVisible());
            QCOMPARE(bar->minimum(), 0);
            QCOMPARE(bar->maximum(), 1);
            QCOMPARE(bar->pageStep(), orientation == Qt::Horizontal ? 190 : 90);
            QCOMPARE(bar->singleStep(), window.fontMetrics().lineSpacing());
        }
    }
    scroller.show({10, 10}, {190, 90});
    QVERIFY(!window.bar(Qt::Horizontal) && !window.bar(Qt::Vertical));
    QCOMPARE(window.centralWidget()->minimumSize(), QSize(0, 0));
}

void TestCentralScroller::barsLieBesideWhatIsSeen()
{
    Window window;
    CentralScroller scroller(window);
    scroller.show({300, 400}, {185, 88});
    // The lower bar covers the corner between both.
    QCOMPARE(window.bar(Qt::Horizontal)->geometry(), QRect(0, 88, 200, 12));
    QCOMPARE(window.bar(Qt::Vertical)->geometry(), QRect(185, 0, 15, 88));
    // Both lie over the content.
    const QObjectList& children = window.children();
    const int content = children.indexOf(window.centralWidget());
    QVERIFY(children.indexOf(window.bar(Qt::Horizontal)) > content);
    QVERIFY(children.indexOf(window.bar(Qt::Vertical)) > content);
    window.centralWidget()->raise();
    window.bar(Qt::Vertical)->setValue(5);
    const int raised = children.indexOf(window.centralWidget());
    QVERIFY(children.indexOf(window.bar(Qt::Horizontal)) > raised);
    QVERIFY(children.indexOf(window.bar(Qt::Vertical)) > raised);
}

void TestCentralScroller::barsMoveTheContent()
{
    Window window;
    CentralScroller scroller(window);
    scroller.show({300, 400}, {190, 90});
    QCOMPARE(window.centralWidget()->pos(), QPoint(0, 0));
    window.bar(Qt::Horizontal)->setValue(7);
    window.bar(Qt::Vertical)->setValue(11);
    QCOMPARE(window.centralWidget()->pos(), QPoint(-7, -11));
    // One bar alone.
    scroller.show({300, 50}, {190, 90});
    QCOMPARE(window.centralWidget()->pos(), QPoint(-7, 0));
    scroller.show({100, 400}, {190, 90});
    QCOMPARE(window.centralWidget()->pos(), QPoint(0, 0));
    window.bar(Qt::Vertical)->setValue(3);
    QCOMPARE(window.centralWidget()->pos(), QPoint(0, -3));
}

void TestCentralScroller::contentThatTheWindowMovesComesBack()
{
    Window window;
    CentralScroller scroller(window);
    scroller.show({300, 400}, {190, 90});
    window.bar(Qt::Vertical)->setValue(11);
    window.centralWidget()->move(5, 6);
    QCOMPARE(window.centralWidget()->pos(), QPoint(0, -11));
    // Others stay where they are put.
    auto* button = window.add<QPushButton>({10, 20, 30, 10});
    button->move(40, 50);
    QCOMPARE(button->pos(), QPoint(40, 50));
}

void TestCentralScroller::focusBringsAWidgetIntoSight_data()
{
    QTest::addColumn<int>("top");
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("after");
    // Ten pixels high, with a margin of eight, in a view of 90.
    QTest::newRow("seen") << 40 << 0 << 0;
    QTest::newRow("just seen below") << 72 << 0 << 0;
    QTest::newRow("one pixel below") << 73 << 0 << 1;
    QTest::newRow("far below") << 300 << 0 << 228;
    QTest::newRow("just seen above") << 108 << 100 << 100;
    QTest::newRow("one pixel above") << 107 << 100 << 99;
    QTest::newRow("at the start") << 0 << 100 << 0;
    QTest::newRow("at the end") << 390 << 0 << 310;
}

void TestCentralScroller::focusBringsAWidgetIntoSight()
{
    QFETCH(const int, top);
    QFETCH(const int, before);
    Window window;
    CentralScroller scroller(window);
    scroller.show({190, 400}, {190, 90});
    auto* button = window.add<QPushButton>({20, top, 30, 10});
    window.bar(Qt::Vertical)->setValue(before);
    giveFocus(*button, Qt::TabFocusReason);
    QTEST(window.value(Qt::Vertical), "after");
    QCOMPARE(window.bar(Qt::Horizontal), nullptr);
}

void TestCentralScroller::focusMovesSideways()
{
    Window window;
    CentralScroller scroller(window);
    scroller.show({500, 400}, {190, 90});
    auto* button = window.add<QPushButton>({300, 200, 30, 10});
    giveFocus(*button, Qt::TabFocusReason);
    QCOMPARE(window.value(Qt::Horizontal), 300 + 30 + 8 - 190);
    QCOMPARE(window.value(Qt::Vertical), 200 + 10 + 8 - 90);
    // In another widget, the places add up.
    auto* box = window.add<QWidget>({100, 50, 100, 100});
    button->setParent(box);
    button->setGeometry(20, 30, 30, 10);
    button->show();
    giveFocus(*button, Qt::TabFocusReason);
    QCOMPARE(window.value(Qt::Horizontal), 100 + 20 - 8);
    QCOMPARE(window.value(Qt::Vertical), 50 + 30 - 8);
}

void TestCentralScroller::startOfALargeWidgetIsSeen()
{
    Window window;
    CentralScroller scroller(window);
    scroller.show({190, 400}, {190, 90});
    auto* button = window.add<QPushButton>({20, 100, 30, 200});
    giveFocus(*button, Qt::TabFocusReason);
    QCOMPARE(window.value(Qt::Vertical), 92);
    window.bar(Qt::Vertical)->setValue(300);
    giveFocus(*button, Qt::TabFocusReason);
    QCOMPARE(window.value(Qt::Vertical), 92);
}

void TestCentralScroller::onlySomeReasonsForFocusMoveTheContent_data()
{
    QTest::addColumn<Qt::FocusReason>("reason");
    QTest::addColumn<bool>("moves");
    QTest::newRow("click") << Qt::MouseFocusReason << false;
    QTest::newRow("tab") << Qt::TabFocusReason << true;
    QTest::newRow("back tab") << Qt::BacktabFocusReason << true;
    QTest::newRow("window") << Qt::ActiveWindowFocusReason << false;
    QTest::newRow("popup") << Qt::PopupFocusReason << false;
    QTest::newRow("shortcut") << Qt::ShortcutFocusReason << true;
    QTest::newRow("other") << Qt::OtherFocusReason << true;
}

void TestCentralScroller::onlySomeReasonsForFocusMoveTheContent()
{
    QFETCH(const Qt::FocusReason, reason);
    Window window;
    CentralScroller scroller(window);
    scroller.show({190, 400}, {190, 90});
    giveFocus(*window.add<QPushButton>({20, 300, 30, 10}), reason);
    QTEST(window.value(Qt::Vertical) != 0, "moves");
}

void TestCentralScroller::focusOutsideOfTheContentMovesNothing()
{
    Window window;
    CentralScroller scroller(window);
    scroller.show({190, 400}, {190, 90});
    QWidget other;
    QPushButton button(&other);
    button.move(0, 300);
    giveFocus(button, Qt::TabFocusReason);
    QCOMPARE(window.value(Qt::Vertical), 0);
}

void TestCentralScroller::wheelMovesTheContentByItsDirection()
{
    Window window;
    CentralScroller scroller(window);
    scroller.show({500, 400}, {190, 90});
    const auto moved = [&](QPoint angle) {
        window.bar(Qt::Horizontal)->setValue(100);
        window.bar(Qt::Vertical)->setValue(100);
        turnWheel(window, angle);
        const auto sign = [](int change) { return change < 0 ? -1 : int(change > 0); };
        return QPoint(sign(window.value(Qt::Horizontal) - 100),
                      sign(window.value(Qt::Vertical) - 100));
    };
    QCOMPARE(moved({0, -120}), QPoint(0, 1));
    QCOMPARE(moved({0, 120}), QPoint(0, -1));
    QCOMPARE(moved({-240, -120}), QPoint(1, 0));
    QCOMPARE(moved({240, 120}), QPoint(-1, 0));
    QCOMPARE(moved({-120, -120}), QPoint(0, 1));
}

void TestCentralScroller::wheelOverAFieldWithoutFocusMovesTheContent()
{
    Window window;
    auto* spin = window.add<QSpinBox>({10, 10, 80, 30});
    auto* combo = window.add<QComboBox>({100, 10, 80, 30});
    combo->addItems({"a", "b", "c"});
    spin->setValue(5);
    CentralScroller scroller(window);
    scroller.show({190, 400}, {190, 90});
    for (const QWidget* field : {static_cast<QWidget*>(spin), static_cast<QWidget*>(combo)}) {
        window.bar(Qt::Vertical)->setValue(0);
        turnWheel(*field, {0, -120});
        QVERIFY(window.value(Qt::Vertical) > 0);
    }
    QCOMPARE(spin->value(), 5);
    QCOMPARE(combo->currentIndex(), 0);
}

void TestCentralScroller::wheelOverAFieldWithFocusIsTheFields()
{
    Window window;
    auto* combo = window.add<QComboBox>({10, 10, 80, 30});
    combo->addItems({"a", "b"});
    auto* spin = window.add<QSpinBox>({100, 10, 80, 30});
    spin->setValue(5);
    CentralScroller scroller(window);
    scroller.show({190, 400}, {190, 90});
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    combo->setFocus(Qt::MouseFocusReason);
    QVERIFY(combo->hasFocus());
    turnWheel(*combo, {0, -120});
    QCOMPARE(combo->currentIndex(), 1);
    spin->setFocus(Qt::MouseFocusReason);
    turnWheel(*spin, {0, -120});
    QCOMPARE(spin->value(), 4);
    QCOMPARE(window.value(Qt::Vertical), 0);
}

void TestCentralScroller::wheelOverWhatScrollsItselfIsItsOwn()
{
    Window window;
    auto* edit = window.add<QPlainTextEdit>({10, 10, 150, 60});
    edit->setPlainText(QString("line\n").repeated(50));
    CentralScroller scroller(window);
    scroller.show({190, 400}, {190, 90});
    turnWheel(*edit->viewport(), {0, -120});
    QVERIFY(edit->verticalScrollBar()->value() > 0);
    QCOMPARE(window.value(Qt::Vertical), 0);
    // At its end it leaves the wheel to the form.
    edit->verticalScrollBar()->setValue(edit->verticalScrollBar()->maximum());
    turnWheel(*edit->viewport(), {0, -120});
    QVERIFY(window.value(Qt::Vertical) > 0);
    window.bar(Qt::Vertical)->setValue(0);
    // The form's own bar is moved once, as by the wheel over the form.
    turnWheel(*window.bar(Qt::Vertical), {0, -120});
    const int byBar = window.value(Qt::Vertical);
    edit->hide();
    window.bar(Qt::Vertical)->setValue(0);
    turnWheel(window, {0, -120});
    QCOMPARE(byBar, window.value(Qt::Vertical));
}

void TestCentralScroller::wheelOverAnotherWindowIsThatWindows()
{
    Window window;
    CentralScroller scroller(window);
    scroller.show({190, 400}, {190, 90});
    QComboBox combo;
    combo.addItems({"a", "b"});
    combo.show();
    QVERIFY(QTest::qWaitForWindowExposed(&combo));
    turnWheel(combo, {0, -120});
    QCOMPARE(combo.currentIndex(), 1);
    QWidget plain;
    plain.show();
    QVERIFY(QTest::qWaitForWindowExposed(&plain));
    turnWheel(plain, {0, -120});
    QCOMPARE(window.value(Qt::Vertical), 0);
}

void TestCentralScroller::wheelIsTheFieldsIfNothingScrolls()
{
    Window window;
    auto* combo = window.add<QComboBox>({10, 10, 80, 30});
    combo->addItems({"a", "b"});
    CentralScroller scroller(window);
    scroller.show({190, 400}, {190, 90});
    scroller.show({190, 90}, {190, 90});
    turnWheel(*combo, {0, -120});
    QCOMPARE(combo->currentIndex(), 1);
}

void TestCentralScroller::wheelAtTheEndOfABarDoesNothing()
{
    Window window;
    CentralScroller scroller(window);
    scroller.show({190, 400}, {190, 90});
    window.bar(Qt::Vertical)->setValue(window.bar(Qt::Vertical)->maximum());
    turnWheel(window, {0, -120});
    QCOMPARE(window.value(Qt::Vertical), 310);
    turnWheel(window, {-120, 0});
    QCOMPARE(window.value(Qt::Vertical), 310);
    turnWheel(window, {0, 120});
    QVERIFY(window.value(Qt::Vertical) < 310);
}

QTEST_MAIN(TestCentralScroller)

#include "tst_centralscroller.moc"
