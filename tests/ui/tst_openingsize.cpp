#include "tests/ui/smallwindow.h"

#include <QTest>

namespace {

/// With too much text for the screen's height, in a column that is as wide as the label prefers.
void fillScreen(QLabel& label)
{
    while (label.heightForWidth(label.sizeHint().width()) < screenSize().height())
        label.setText(label.text() + ' ' + SmallWindow::words(10));
}

} // namespace

class TestOpeningSize : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { useSmallLetters(); }
    void windowThatIsNotShownKeepsItsSize();
    void windowOpensWithEveryTextWhole();
    void windowThatIsLargeEnoughKeepsItsSize();
    void windowLargerThanTheScreenOpensWithinIt();
    void windowOnALowScreenOpensWider();
    void windowOnALowScreenOpensNoHigherThanItsTextsNeed();
    void windowThatFitsExactlyInItsGreatestWidthOpensNoWiderThanItNeeds();
    void windowOnAScreenThatIsFarTooLowOpensNoWiderThanItHelps();
    void windowOnAScreenThatIsTooLowOpensNoWiderThanTheScreensWidthHelps();
    void windowIsFittedOnlyAtItsFirstShow();
};

void TestOpeningSize::windowThatIsNotShownKeepsItsSize()
{
    SmallWindow window;
    window.ensurePolished();
    window.layout()->activate();
    QCoreApplication::processEvents();
    QCOMPARE(window.size(), SmallWindow::firstSize());
}

void TestOpeningSize::windowOpensWithEveryTextWhole()
{
    SmallWindow window;
    window.show();
    QCOMPARE(cutTexts(window), QStringList());
    QVERIFY(window.width() > SmallWindow::firstSize().width());
    QVERIFY(window.height() > SmallWindow::firstSize().height());
}

void TestOpeningSize::windowThatIsLargeEnoughKeepsItsSize()
{
    SmallWindow window;
    window.resize(700, 500);
    window.show();
    QCoreApplication::processEvents();
    QCOMPARE(window.size(), QSize(700, 500));
    QCOMPARE(cutTexts(window), QStringList());
    // And can't be made smaller than its texts are.
    QVERIFY(window.minimumHeight() > SmallWindow::firstSize().height());
}

void TestOpeningSize::windowLargerThanTheScreenOpensWithinIt()
{
    SmallWindow window;
    window.resize(screenSize() + QSize(300, 200));
    window.show();
    QCOMPARE(window.size(), available(window));
    QCoreApplication::processEvents();
    QCOMPARE(window.size(), available(window));
}

void TestOpeningSize::windowOnALowScreenOpensWider()
{
    SmallWindow window;
    fillScreen(window.left());
    const int preferred = window.centralWidget()->sizeHint().width();
    window.show();
    QVERIFY(window.width() > preferred);
    QVERIFY(window.width() < available(window).width());
    QCOMPARE(window.size(), window.size().boundedTo(available(window)));
    QCOMPARE(cutTexts(window), QStringList());
    QCOMPARE(scrollBar(window, Qt::Vertical), nullptr);
    // No wider than it needs to be.
    window.resize(window.width() - 1, available(window).height());
    QVERIFY(scrollBar(window, Qt::Vertical) != nullptr);
}

void TestOpeningSize::windowOnALowScreenOpensNoHigherThanItsTextsNeed()
{
    // In one of them, lines of text leave a rest of the height.
    for (const int top : {0, 1}) {
        SmallWindow window;
        fillScreen(window.left());
        window.centralWidget()->layout()->setContentsMargins(0, top, 0, 0);
        window.show();
        const int opened = window.height();
        window.setMinimumHeight(0);
        window.resize(window.width(), opened - 1);
        QCOMPARE(window.height(), opened);
    }
}

// One column is as high as the screen in any width, the other one only if it is narrow.
void TestOpeningSize::windowThatFitsExactlyInItsGreatestWidthOpensNoWiderThanItNeeds()
{
    constexpr int low = 100;
    SmallWindow sample;
    sample.right().setFixedHeight(low);
    sample.show();
    SmallWindow window;
    window.right().setFixedHeight(low + available(sample).height() - sample.minimumHeight());
    fillScreen(window.left());
    window.show();
    QCOMPARE(window.minimumHeight(), available(window).height());
    QCOMPARE(scrollBar(window, Qt::Vertical), nullptr);
    QVERIFY(window.width() < available(window).width());
    window.resize(window.width() - 1, available(window).height());
    QVERIFY(scrollBar(window, Qt::Vertical) != nullptr);
}

// If no width is enough, the window is as narrow as the least height allows that any width gives.
void TestOpeningSize::windowOnAScreenThatIsFarTooLowOpensNoWiderThanItHelps()
{
    SmallWindow window;
    // Higher than the screen in one line for each word, and wide by a text that does not wrap.
    window.right().setText(QString("word\n").repeated(400));
    window.left().setText(SmallWindow::words(30));
    window.show();
    QVERIFY(window.width() < available(window).width());
    const int height = window.centralWidget()->height();
    const int bar = scrollBar(window, Qt::Vertical)->width();
    QCOMPARE(window.height(), available(window).height());
    window.resize(available(window));
    QCOMPARE(window.centralWidget()->height(), height);
    QCOMPARE(scrollBar(window, Qt::Vertical)->width(), bar);
}

// One pixel less than the screen's width gives as low a form, and some more would give a lower one.
void TestOpeningSize::windowOnAScreenThatIsTooLowOpensNoWiderThanTheScreensWidthHelps()
{
    SmallWindow sample;
    sample.left().setText(SmallWindow::words(4000));
    sample.show();
    const QSize most = available(sample);
    const int bar = scrollBar(sample, Qt::Vertical)->width();
    const auto heightAt = [&](int width) {
        sample.resize(width, most.height());
        return sample.centralWidget()->height();
    };
    const auto isAsLow = [&](int less, int more) { return heightAt(less) == heightAt(more); };
    while (!isAsLow(most.width() - 1, most.width()) ||
           isAsLow(most.width(), most.width() + 2 * bar))
        sample.left().setText(sample.left().text() + QStringLiteral(" word"));

    SmallWindow window;
    window.left().setText(sample.left().text());
    window.show();
    QVERIFY(window.width() < most.width());
    QCOMPARE(window.centralWidget()->height(), heightAt(most.width()));
}

void TestOpeningSize::windowIsFittedOnlyAtItsFirstShow()
{
    SmallWindow window;
    window.show();
    window.resize(1, 1);
    const QSize chosen = window.size();
    window.hide();
    window.show();
    QCOMPARE(window.size(), chosen);
}

QTEST_MAIN(TestOpeningSize)

#include "tst_openingsize.moc"
