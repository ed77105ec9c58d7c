#include "tests/ui/cuttexts.h"
#include "ui/fittexts.h"

#include "ui_twdiskprobe.h"

#include <QTest>

#include <memory>

namespace {

const QSize firstSize(1200, 880);

QSize screenSize()
{
    return QGuiApplication::primaryScreen()->availableSize();
}

// The offscreen platform's screen is smaller than the form itself: there it must not grow at all.
bool screenHasRoomToGrow()
{
    return screenSize().width() > firstSize.width() && screenSize().height() > firstSize.height();
}

QFont pixelFont(int pixels)
{
    QFont font = QApplication::font();
    font.setPixelSize(pixels);
    return font;
}

} // namespace

// The form, shown with room for its texts: none is cut and nothing overlaps.
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
    void everyTextIsWholeAfterResizing_data();
    void everyTextIsWholeAfterResizing();
    void everyTextIsWholeWithALargerFont();
    void everyTextIsWholeInEveryState();
    void formNeverGrowsBeyondTheScreen();
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

// What this is all about, and the proof that the measuring finds every kind of fault.
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
    m_window->setFont(pixelFont(9));
    m_window->show();
    QCOMPARE(m_window->size(), firstSize);
    QCOMPARE(cutTexts(*m_window), QStringList());
}

void TestFormFits::everyTextIsWholeAtFirstShow()
{
    m_window->show();
    if (!screenHasRoomToGrow()) {
        QCOMPARE(m_window->size(), firstSize);
        return;
    }
    QCOMPARE(cutTexts(*m_window), QStringList());
    QCoreApplication::processEvents();
    QCOMPARE(cutTexts(*m_window), QStringList());
}

void TestFormFits::everyTextIsWholeAfterResizing_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("smaller") << QSize(1000, 700);
    QTest::newRow("tiny") << QSize(10, 10);
    QTest::newRow("lower") << QSize(1500, 600);
    QTest::newRow("wider and lower") << QSize(1900, 100);
    QTest::newRow("narrower and higher") << QSize(900, 1070);
    QTest::newRow("larger") << QSize(1800, 1070);
}

void TestFormFits::everyTextIsWholeAfterResizing()
{
    QFETCH(QSize, size);
    m_window->show();
    m_window->resize(size);
    QCOMPARE(m_window->size(), m_window->size().expandedTo(size));
    if (!screenHasRoomToGrow()) {
        QCOMPARE(m_window->size(), m_window->size().boundedTo(screenSize().expandedTo(size)));
        return;
    }
    QCOMPARE(cutTexts(*m_window), QStringList());
    QCoreApplication::processEvents();
    QCOMPARE(cutTexts(*m_window), QStringList());
}

void TestFormFits::everyTextIsWholeWithALargerFont()
{
    m_window->show();
    m_window->setFont(pixelFont(13));
    if (!screenHasRoomToGrow()) {
        QCoreApplication::processEvents();
        QCOMPARE(m_window->size(), firstSize);
        return;
    }
    QTRY_COMPARE(cutTexts(*m_window), QStringList());
}

// As the window's rules show and fill it: a notice that is hidden and back, and long choices.
void TestFormFits::everyTextIsWholeInEveryState()
{
    m_form.label_FileSizeNotice->hide();
    m_window->show();
    m_window->resize(10, 10);
    m_form.label_FileSizeNotice->show();
    m_form.comboSystemBuffer->addItem(" FILE_FLAG_WRITE_THROUGH + FILE_FLAG_SEQUENTIAL_SCAN");
    m_form.labelFileSizeMB->setText("1024.0 MiB");
    m_form.labelChunkSizeMB->setText("10.000 MiB");
    m_form.spinFileSize->setValue(1048576);
    if (!screenHasRoomToGrow()) {
        QCoreApplication::processEvents();
        QCOMPARE(m_window->size(), m_window->size().boundedTo(screenSize()));
        return;
    }
    QTRY_COMPARE(cutTexts(*m_window), QStringList());
}

void TestFormFits::formNeverGrowsBeyondTheScreen()
{
    m_window->setFont(pixelFont(40));
    m_window->show();
    QCOMPARE(m_window->size(), m_window->size().boundedTo(screenSize().expandedTo(firstSize)));
    QCOMPARE(m_window->size(), m_window->size().expandedTo(firstSize));
    m_window->resize(1, 1);
    QCOMPARE(m_window->size(), m_window->size().boundedTo(screenSize()));
}

QTEST_MAIN(TestFormFits)

#include "tst_formfits.moc"
