#include "model/limits.h"
#include "model/methods.h"
#include "ui_twdiskprobe.h"

#include <QTest>

#include <memory>

namespace {

// Tells what uic's form calls on a window through Qt's connections by name.
class SlotsWindow : public QMainWindow
{
    Q_OBJECT
public:
    int saved = 0;
    int methodsSeen = 0;
    int namesSeen = 0;

    Q_SLOT void on_buttonSave_clicked() { ++saved; }
    Q_SLOT void on_comboMethod_currentIndexChanged(int) { ++methodsSeen; }
    Q_SLOT void on_twDiskProbeClass_objectNameChanged(const QString&) { ++namesSeen; }
};

} // namespace

class TestFormUse : public QObject
{
    Q_OBJECT

    std::unique_ptr<QMainWindow> m_window;
    Ui::twDiskProbeClass m_form{};

private slots:
    void init();
    void cleanup();

    void slotsAreConnectedByNameAtTheVeryEnd();
    void waitForNextConfigDisablesEverythingInsideNewTest();
    void newTestTaskEnablesEverythingInsideNewTestAgain();
    void addTaskToListStaysEnabled();
    void spinBoxesStayWithinTheirLimits_data();
    void spinBoxesStayWithinTheirLimits();
    void methodsAndTypesAreThoseOfTheTables();
    void cacheModesEndWithTheLargest();
    void spinBoxesStepAsListed();
    void tableCannotBeEditedInPlace();
    void tableSelectsWholeRowsOneAtATime();
};

void TestFormUse::init()
{
    m_window = std::make_unique<QMainWindow>();
    m_form.setupUi(m_window.get());
}

void TestFormUse::cleanup()
{
    m_window.reset();
}

void TestFormUse::slotsAreConnectedByNameAtTheVeryEnd()
{
    SlotsWindow window;
    Ui::twDiskProbeClass form{};
    form.setupUi(&window);
    QCOMPARE(window.methodsSeen, 0);
    QCOMPARE(window.namesSeen, 0);
    form.buttonSave->click();
    QCOMPARE(window.saved, 1);
    form.comboMethod->setCurrentIndex(2);
    QCOMPARE(window.methodsSeen, 1);
    window.setObjectName("renamed");
    QCOMPARE(window.namesSeen, 1);
}

void TestFormUse::waitForNextConfigDisablesEverythingInsideNewTest()
{
    m_form.radioNextConfig->click();
    QVERIFY(!m_form.radioNewTest->isChecked());
    QVERIFY(!m_form.groupBox->isEnabled());
    const auto widgets = m_form.groupBox->findChildren<QWidget*>();
    QVERIFY(widgets.contains(m_form.groupBox_3) && widgets.contains(m_form.groupBox_5));
    for (const QWidget* widget : widgets)
        QVERIFY2(!widget->isEnabled(), qPrintable(widget->objectName()));
}

void TestFormUse::newTestTaskEnablesEverythingInsideNewTestAgain()
{
    m_form.radioNextConfig->click();
    m_form.radioNewTest->click();
    QVERIFY(!m_form.radioNextConfig->isChecked());
    QVERIFY(m_form.groupBox->isEnabled());
    for (const QWidget* widget : m_form.groupBox->findChildren<QWidget*>())
        if (!widget->objectName().startsWith("qt_"))
            QVERIFY2(widget->isEnabled(), qPrintable(widget->objectName()));
}

void TestFormUse::addTaskToListStaysEnabled()
{
    for (QRadioButton* choice : {m_form.radioNextConfig, m_form.radioNewTest}) {
        choice->click();
        QVERIFY(m_form.buttonCreateNew->isEnabled());
        QVERIFY(m_form.buttonCreateOverwrite->isEnabled());
    }
}

void TestFormUse::spinBoxesStayWithinTheirLimits_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::newRow("file size") << "spinFileSize" << minFormFileKib << (maxFileSize >> 10);
    QTest::newRow("chunk size") << "spinChunkSize" << 1 << maxFormChunkKib;
    QTest::newRow("chunk wait") << "spinChunkWait" << 0 << maxFormChunkWait;
    QTest::newRow("iterations") << "spinIterations" << 1 << maxFormIterations;
}

void TestFormUse::spinBoxesStayWithinTheirLimits()
{
    QFETCH(QString, name);
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    auto* spin = m_window->findChild<QSpinBox*>(name);
    spin->setValue(minimum - 1);
    QCOMPARE(spin->value(), minimum);
    spin->stepDown();
    QCOMPARE(spin->value(), minimum);
    spin->setValue(maximum + 1);
    QCOMPARE(spin->value(), maximum);
    spin->stepUp();
    QCOMPARE(spin->value(), maximum);
}

void TestFormUse::methodsAndTypesAreThoseOfTheTables()
{
    QCOMPARE(m_form.comboMethod->count(), methodCount);
    for (int i = 0; i < methodCount; ++i)
        QVERIFY2(m_form.comboMethod->itemText(i).startsWith(ioMethods[i].name), ioMethods[i].name);
    QCOMPARE(m_form.comboTestType->count(), testTypeCount);
}

void TestFormUse::cacheModesEndWithTheLargest()
{
    QCOMPARE(m_form.comboCacheMode->count() - 1, maxFormCacheMode);
}

void TestFormUse::spinBoxesStepAsListed()
{
    m_form.spinFileSize->stepUp();
    QCOMPARE(m_form.spinFileSize->value(), 51200 + 5120);
    m_form.spinFileSize->stepBy(-2);
    QCOMPARE(m_form.spinFileSize->value(), 51200 - 5120);
    m_form.spinChunkSize->stepUp();
    QCOMPARE(m_form.spinChunkSize->value(), 513);
    m_form.spinChunkWait->stepUp();
    QCOMPARE(m_form.spinChunkWait->value(), 1);
    m_form.spinIterations->stepUp();
    QCOMPARE(m_form.spinIterations->value(), 2);
}

void TestFormUse::tableCannotBeEditedInPlace()
{
    QTableWidget& table = *m_form.tableWidget;
    table.setRowCount(1);
    table.setItem(0, 0, new QTableWidgetItem("a task"));
    m_window->show();
    const QPoint cell = table.visualItemRect(table.item(0, 0)).center();
    QTest::mouseClick(table.viewport(), Qt::LeftButton, {}, cell);
    QTest::mouseDClick(table.viewport(), Qt::LeftButton, {}, cell);
    QTest::keyClick(&table, Qt::Key_F2);
    QTest::keyClicks(&table, "typed");
    QVERIFY(table.viewport()->findChildren<QLineEdit*>().isEmpty());
    QCOMPARE(table.item(0, 0)->text(), QString("a task"));
}

void TestFormUse::tableSelectsWholeRowsOneAtATime()
{
    QTableWidget& table = *m_form.tableWidget;
    table.setRowCount(2);
    for (int row = 0; row < 2; ++row)
        table.setItem(row, 0, new QTableWidgetItem("a task"));
    m_window->show();
    for (int row = 0; row < 2; ++row) {
        QTest::mouseClick(table.viewport(), Qt::LeftButton, Qt::ControlModifier,
                          table.visualItemRect(table.item(row, 0)).center());
        const auto ranges = table.selectedRanges();
        QCOMPARE(ranges.size(), 1);
        QCOMPARE(ranges[0].topRow(), row);
        QCOMPARE(ranges[0].bottomRow(), row);
        QCOMPARE(ranges[0].columnCount(), 11);
    }
}

QTEST_MAIN(TestFormUse)

#include "tst_formuse.moc"
