#include "tests/app/editor.h"
#include "tests/app/looks.h"
#include "tests/ui/cuttexts.h"
#include "tests/ui/formlooks.h"

#include <QScreen>

#include <algorithm>
#include <cmath>
#include <vector>

// The window in light and dark, in large letters, maximised. Scales are set from outside: the same
// tests run under several.

namespace {

/// Relative luminance, as the Web Content Accessibility Guidelines define it.
double luminance(QRgb color)
{
    const auto linear = [](int channel) {
        const double value = channel / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) +
           0.0722 * linear(qBlue(color));
}

double contrast(QRgb first, QRgb second)
{
    const double a = luminance(first) + 0.05;
    const double b = luminance(second) + 0.05;
    return a > b ? a / b : b / a;
}

/// Between the background that a widget really paints and the colour that stands out most from it.
double paintedContrast(QWidget& widget)
{
    const QImage image = widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
    const auto* first = reinterpret_cast<const QRgb*>(image.constBits());
    std::vector<QRgb> pixels(first, first + image.sizeInBytes() / qsizetype(sizeof(QRgb)));
    std::sort(pixels.begin(), pixels.end());
    QMap<QRgb, std::ptrdiff_t> counts;
    for (auto run = pixels.cbegin(); run != pixels.cend();) {
        const auto next = std::upper_bound(run, pixels.cend(), *run);
        counts[*run] = next - run;
        run = next;
    }
    const QRgb background = std::max_element(counts.cbegin(), counts.cend()).key();
    double highest = 1;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it)
        highest = std::max(highest, contrast(background, it.key()));
    return highest;
}

// The guidelines ask for 4.5, and for nothing of what is disabled; yet that shall be readable, too.
constexpr double enough = 4.5;
constexpr double enoughDisabled = 2.5;

} // namespace

class TestLooks : public QObject
{
    Q_OBJECT

    QFont m_font;

private slots:
    void initTestCase() { m_font = QApplication::font(); }
    void cleanup()
    {
        QApplication::setFont(m_font);
        QApplication::setPalette(lightPalette());
    }

    void contrastIsThatOfTheGuidelines()
    {
        QCOMPARE(qRound(contrast(qRgb(0, 0, 0), qRgb(255, 255, 255)) * 100), 2100);
        QCOMPARE(qRound(contrast(qRgb(119, 119, 119), qRgb(255, 255, 255)) * 100), 448);
        QLabel faint("text");
        faint.setStyleSheet("background: #777777; color: #888888");
        QVERIFY(paintedContrast(faint) < enoughDisabled);
    }

    void everyLabelIsReadable_data()
    {
        QTest::addColumn<QPalette>("palette");
        QTest::newRow("light") << lightPalette();
        QTest::newRow("dark") << darkPalette();
    }

    void everyLabelIsReadable()
    {
        QFETCH(QPalette, palette);
        QApplication::setPalette(palette);
        Editor editor;
        for (const char* kind : {"radioNewTest", "radioNextConfig"}) {
            editor.check(kind);
            for (QLabel* label : editor.window.findChildren<QLabel*>()) {
                // How grey a plain label gets is the style's affair; the boxes are ours.
                if (!label->isVisible() || !(label->isEnabled() || label->autoFillBackground()))
                    continue;
                const double found = paintedContrast(*label);
                const double needed = label->isEnabled() ? enough : enoughDisabled;
                QVERIFY2(found >= needed,
                         qPrintable(QString("%1: %2").arg(label->objectName()).arg(found)));
            }
        }
    }

    void colouredBoxesKeepTheirColours_data() { everyLabelIsReadable_data(); }
    void colouredBoxesKeepTheirColours()
    {
        QFETCH(QPalette, palette);
        QApplication::setPalette(palette);
        const Editor editor;
        const QHash<QString, Look> looks = expectedLooks();
        for (auto look = looks.cbegin(); look != looks.cend(); ++look) {
            const QPalette& shown = editor.find<QLabel>(qPrintable(look.key()))->palette();
            QCOMPARE(shown.color(QPalette::Active, QPalette::WindowText), look->windowText);
            QCOMPARE(shown.color(QPalette::Active, QPalette::Window), look->window);
            QCOMPARE(shown.color(QPalette::Disabled, QPalette::WindowText),
                     look->disabledWindowText);
            QCOMPARE(shown.color(QPalette::Disabled, QPalette::Window), look->disabledWindow);
        }
    }

    void largeLettersAreWhole()
    {
        QApplication::setFont(largerFont(m_font));
        const Editor editor;
        QCOMPARE(editor.window.size(), editor.window.size().boundedTo(available(editor.window)));
        QTRY_COMPARE(cutTexts(editor.window).join(", "), QString());
        QCOMPARE(unreachableEdges(editor.window).join(", "), QString());
    }

    // The screen has no window manager to maximise the window, so the test does what one would.
    void maximisedWindowShowsEveryText()
    {
        Editor editor;
        editor.window.resize(QGuiApplication::primaryScreen()->availableSize());
        QTRY_COMPARE(cutTexts(editor.window).join(", "), QString());
        QCOMPARE(unreachableEdges(editor.window).join(", "), QString());
    }
};

QTEST_MAIN(TestLooks)
#include "tst_looks.moc"
