#include "tests/ui/cuttexts.h"
#include "ui/fittexts.h"

#include "ui_twdiskprobe.h"

#include <QTest>

#include <memory>

namespace {

const QSize firstSize(1200, 880);

QFont pixelFont(int pixels)
{
    QFont font = QApplication::font();
    font.setPixelSize(pixels);
    return font;
}

} // namespace

// The form, shown large enough for its texts: none is cut and nothing overlaps.
class TestFormFits : public QObject
{
    Q_OBJECT

    std::unique_ptr<QMainWindow> m_window;
    Ui::twDiskProbeClass m_form{};

private slots:
    void init();
    void cleanup();

    void formAsGivenCutsTexts();
    void formThatIsNotShownKeepsItsFirstSize();
    void firstSizeIsKeptWhereItIsEnough();
    void everyTextIsWholeAtFirstShow();
    void scrollBarExistsOnlyIfTheScreenIsTooSmall();
    void everyTextIsWholeAfterResizing_data();
    void everyTextIsWholeAfterResizing();
    void everyTextIsWholeWithALargerFont();
    void comboBoxesNeedTheRoomOfTheFontThatTheyHave();
    void everyTextIsWholeInEveryState();
    void formNeverGrowsBeyondTheScreen();
    void focusBringsEveryControlIntoSight();
    void clickLeavesWhatItHitsInItsPlace();
    void wheelMovesTheFormAndNoValue();

private:
    void verifyEveryTextIsWhole()
    {
        QCOMPARE(cutTexts(*m_window).join(", "), QString());
        QCOMPARE(unreachableEdges(*m_window).join(", "), QString());
    }
};

void TestFormFits::init()
{
    m_window = std::make_unique<QMainWindow>();
    m_form.setupUi(m_window.get());
    fitTexts(*m_window);
}

void TestFormFits::cleanup()
{
    m_window.reset();
}

// The fault that the other tests guard against, which also proves that the measuring finds every
// kind.
void TestFormFits::formAsGivenCutsTexts()
{
    QMainWindow window;
    Ui::twDiskProbeClass form{};
    form.setupUi(&window);
    window.show();
    window.resize(window.minimumSize());
    const QStringList faults = cutTexts(window);
    for (const char* fault : {"label_214 is cut", "label_219 is cut", "checkPreallocate is cut"})
        QVERIFY2(faults.contains(fault), fault);

    form.label_213->move(form.label_224->pos());
    form.label_222->move(form.label_222->x(), window.height() - 5);
    QVERIFY(!cutTexts(window).filter(" overlaps ").isEmpty());
    QVERIFY(cutTexts(window).contains("label_222 reaches out"));
}

void TestFormFits::formThatIsNotShownKeepsItsFirstSize()
{
    QCOMPARE(m_window->size(), firstSize);
    m_window->ensurePolished();
    m_window->layout()->activate();
    QCoreApplication::processEvents();
    QCOMPARE(m_window->size(), firstSize);
}

void TestFormFits::firstSizeIsKeptWhereItIsEnough()
{
    m_window->setFont(pixelFont(8));
    m_window->show();
    verifyEveryTextIsWhole();
    if (firstSize.boundedTo(available(*m_window)) == firstSize) {
        QCOMPARE(m_window->size(), firstSize);
        QVERIFY(!scrollBar(*m_window, Qt::Vertical) && !scrollBar(*m_window, Qt::Horizontal));
    }
}

void TestFormFits::everyTextIsWholeAtFirstShow()
{
    m_window->show();
    const QSize most = available(*m_window);
    QCOMPARE(m_window->size(), m_window->size().boundedTo(most));
    QCOMPARE(m_window->size(), m_window->size().expandedTo(firstSize.boundedTo(most)));
    verifyEveryTextIsWhole();
    QCoreApplication::processEvents();
    verifyEveryTextIsWhole();
}

// A scroll bar exists only if the screen is too small.
void TestFormFits::scrollBarExistsOnlyIfTheScreenIsTooSmall()
{
    m_window->show();
    const QSize needed = m_window->centralWidget()->size();
    QCOMPARE(scrollBar(*m_window, Qt::Vertical) == nullptr,
             needed.height() <= viewOf(*m_window).height());
    QCOMPARE(scrollBar(*m_window, Qt::Vertical) == nullptr &&
                 scrollBar(*m_window, Qt::Horizontal) == nullptr,
             needed.boundedTo(available(*m_window)) == needed);
}

void TestFormFits::everyTextIsWholeAfterResizing_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("smaller") << QSize(1000, 700);
    QTest::newRow("tiny") << QSize(100, 10);
    QTest::newRow("lower") << QSize(1500, 600);
    QTest::newRow("wider and lower") << QSize(1900, 100);
    QTest::newRow("narrower and higher") << QSize(900, 1070);
    QTest::newRow("larger") << QSize(1800, 1070);
    for (int width = 1360; width < 1440; width += 10)
        QTest::newRow(qPrintable(QString::number(width))) << QSize(width, 900);
}

void TestFormFits::everyTextIsWholeAfterResizing()
{
    QFETCH(QSize, size);
    m_window->show();
    m_window->resize(size);
    QCOMPARE(m_window->width(), size.width());
    QCOMPARE(m_window->size(), m_window->size().boundedTo(available(*m_window).expandedTo(size)));
    verifyEveryTextIsWhole();
    QCoreApplication::processEvents();
    verifyEveryTextIsWhole();
}

void TestFormFits::everyTextIsWholeWithALargerFont()
{
    m_window->show();
    m_window->setFont(pixelFont(13));
    QTRY_COMPARE(cutTexts(*m_window).join(", "), QString());
    QCOMPARE(unreachableEdges(*m_window).join(", "), QString());
    QCOMPARE(m_window->size(), m_window->size().boundedTo(available(*m_window)));
}

// By themselves they keep to the least size that they were first asked for.
void TestFormFits::comboBoxesNeedTheRoomOfTheFontThatTheyHave()
{
    const auto needs = [this] {
        QVector<QSize> sizes;
        for (const QComboBox* combo : m_window->findChildren<QComboBox*>())
            sizes += combo->minimumSizeHint();
        return sizes;
    };
    m_window->show();
    const QVector<QSize> before = needs();
    m_window->setFont(pixelFont(22));
    const QVector<QSize> after = needs();
    QVERIFY(after != before);

    cleanup();
    init();
    m_window->setFont(pixelFont(22));
    m_window->show();
    QCOMPARE(after, needs());
}

// As the window's rules show and fill it: a notice that is hidden and back, and long choices.
void TestFormFits::everyTextIsWholeInEveryState()
{
    m_form.label_FileSizeNotice->hide();
    m_window->show();
    m_window->resize(100, 10);
    m_form.label_FileSizeNotice->show();
    m_form.comboSystemBuffer->addItem(" FILE_FLAG_WRITE_THROUGH + FILE_FLAG_SEQUENTIAL_SCAN");
    m_form.labelFileSizeMB->setText("1024.0 MiB");
    m_form.labelChunkSizeMB->setText("10.000 MiB");
    m_form.spinFileSize->setValue(1048576);
    QTRY_COMPARE(cutTexts(*m_window).join(", "), QString());
    QCOMPARE(unreachableEdges(*m_window).join(", "), QString());
}

void TestFormFits::formNeverGrowsBeyondTheScreen()
{
    m_window->setFont(pixelFont(40));
    m_window->show();
    QCOMPARE(m_window->size(), available(*m_window));
    QCOMPARE(unreachableEdges(*m_window).join(", "), QString());
    m_window->resize(1, 1);
    QCOMPARE(m_window->size(), m_window->size().boundedTo(available(*m_window)));
}

void TestFormFits::focusBringsEveryControlIntoSight()
{
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_window->resize(700, 300); // grows to the least height, which the screen bounds
    m_window->focusWidget()->clearFocus();
    for (QWidget* control : m_form.centralWidget->findChildren<QWidget*>()) {
        if (control->focusPolicy() == Qt::NoFocus || !control->isEnabled() ||
            control->objectName().startsWith("qt_") || control->objectName().isEmpty())
            continue;
        control->setFocus(Qt::TabFocusReason);
        const QRect shown =
            viewOf(*m_window) & QRect(control->mapTo(m_window.get(), QPoint()), control->size());
        QVERIFY2(shown.height() == control->height() &&
                     shown.width() >= qMin(control->width(), viewOf(*m_window).width() - 20),
                 qPrintable(control->objectName()));
    }
}

void TestFormFits::clickLeavesWhatItHitsInItsPlace()
{
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_window->resize(700, 300);
    const QPoint before = m_form.centralWidget->pos();
    m_form.buttonCreateOverwrite->setFocus(Qt::MouseFocusReason);
    QCOMPARE(m_form.centralWidget->pos(), before);
}

void TestFormFits::wheelMovesTheFormAndNoValue()
{
    m_window->setFont(pixelFont(22)); // too large for every screen of the tests
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QScrollBar* down = scrollBar(*m_window, Qt::Vertical);
    QVERIFY(down != nullptr);
    const auto wheel = [this](const QWidget& widget, int steps) {
        const QPoint place = widget.mapTo(m_window.get(), widget.rect().center());
        QWheelEvent event(place, m_window->mapToGlobal(place), QPoint(), QPoint(0, 120 * steps),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(m_window->windowHandle(), &event);
    };
    int last = down->value();
    wheel(*m_form.label_224, -1);
    QVERIFY(down->value() > last);

    m_form.comboMethod->setFocus(Qt::TabFocusReason); // brings it into sight
    m_form.radioNewTest->setFocus(Qt::MouseFocusReason);
    last = down->value();
    wheel(*m_form.comboMethod, -1);
    QVERIFY(down->value() > last);
    QCOMPARE(m_form.comboMethod->currentIndex(), 0);
    QVERIFY(!m_form.comboMethod->hasFocus());

    for (int i = 0; i < 100; ++i)
        wheel(*m_form.centralWidget, -1);
    QCOMPARE(down->value(), down->maximum());

    // Who works in a field changes it as ever.
    m_form.comboMethod->setFocus(Qt::TabFocusReason);
    last = down->value();
    wheel(*m_form.comboMethod, -1);
    QCOMPARE(m_form.comboMethod->currentIndex(), 1);
    QCOMPARE(down->value(), last);
}

QTEST_MAIN(TestFormFits)

#include "tst_formfits.moc"
