#include "tests/ui/formlisting.h"
#include "tests/ui/formlooks.h"
#include "tests/ui/formtree.h"

#include "ui_twdiskprobe.h"

#include <QAction>
#include <QButtonGroup>
#include <QTest>

class TestForm : public QObject
{
    Q_OBJECT

    std::unique_ptr<QMainWindow> m_window;
    Ui::twDiskProbeClass m_form{};

private slots:
    void init();
    void cleanup();

    void windowHasItsNameSizeAndTitle();
    void treeIsAsListed();
    void treeHoldsNothingElse();
    void everyNameIsGivenOnce();
    void labelsHaveTheirColours();
    void onlyTheListedWidgetsAreBold();
    void windowWithANameKeepsIt();
};

void TestForm::init()
{
    m_window = std::make_unique<QMainWindow>();
    m_form.setupUi(m_window.get());
}

void TestForm::cleanup()
{
    m_window.reset();
}

void TestForm::windowHasItsNameSizeAndTitle()
{
    QCOMPARE(m_window->objectName(), QString("twDiskProbeClass"));
    QCOMPARE(m_window->size(), QSize(1200, 880));
    QCOMPARE(m_window->windowTitle(), QString("twDiskProbe UI"));
    QCOMPARE(m_window->centralWidget(), m_form.centralWidget);
    QVERIFY(!m_window->isVisible());
}

void TestForm::treeIsAsListed()
{
    const QStringList built = FormListing(*m_window->centralWidget()).lines();
    const QStringList expected = expectedTree();
    for (int i = 0; i < qMin(built.size(), expected.size()); ++i)
        QCOMPARE(built[i], expected[i]);
    QCOMPARE(built.size(), expected.size());
}

void TestForm::treeHoldsNothingElse()
{
    const FormListing listing(*m_window->centralWidget());
    for (const QWidget* widget : namedWidgets(*m_window))
        QVERIFY2(listing.objects().contains(widget), qPrintable(widget->objectName()));
    for (const QLayout* layout : m_window->centralWidget()->findChildren<QLayout*>())
        if (listing.objects().contains(layout->parentWidget()))
            QVERIFY2(listing.objects().contains(layout), qPrintable(layout->objectName()));
    // No bars, docks or actions: whatever hangs on the window itself is the central widget.
    for (const QWidget* child :
         m_window->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        QCOMPARE(child, m_form.centralWidget);
    QVERIFY(m_window->findChildren<QAction*>(QString(), Qt::FindDirectChildrenOnly).isEmpty());
    QVERIFY(m_window->findChildren<QButtonGroup*>().isEmpty());
}

void TestForm::everyNameIsGivenOnce()
{
    QSet<QString> names;
    const FormListing listing(*m_window->centralWidget());
    for (const QObject* object : listing.objects())
        names += object->objectName();
    QCOMPARE(names.size(), listing.objects().size());
    QVERIFY(!names.contains(QString()));
}

void TestForm::labelsHaveTheirColours()
{
    const QHash<QString, Look> looks = expectedLooks();
    for (const QWidget* widget : namedWidgets(*m_window)) {
        const bool coloured = looks.contains(widget->objectName());
        QVERIFY2(widget->testAttribute(Qt::WA_SetPalette) == coloured,
                 qPrintable(widget->objectName()));
        if (!coloured)
            continue;
        const Look look = looks[widget->objectName()];
        QPalette expected = widget->parentWidget()->palette();
        for (auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            const bool disabled = group == QPalette::Disabled;
            expected.setColor(group, QPalette::WindowText,
                              disabled ? look.disabledWindowText : look.windowText);
            expected.setColor(group, QPalette::Window,
                              disabled ? look.disabledWindow : look.window);
            expected.setColor(group, QPalette::Base, Qt::white);
        }
        QVERIFY2(widget->palette() == expected, qPrintable(widget->objectName()));
    }
}

void TestForm::onlyTheListedWidgetsAreBold()
{
    for (const QWidget* widget : namedWidgets(*m_window)) {
        const bool bold = boldWidgets().contains(widget->objectName());
        QVERIFY2(widget->testAttribute(Qt::WA_SetFont) == bold, qPrintable(widget->objectName()));
        if (!bold)
            continue;
        QCOMPARE(widget->font().weight(), 75);
        QFont expected = widget->parentWidget()->font();
        expected.setBold(true);
        QCOMPARE(widget->font(), expected);
    }
}

void TestForm::windowWithANameKeepsIt()
{
    QMainWindow window;
    window.setObjectName("mine");
    Ui::twDiskProbeClass form{};
    form.setupUi(&window);
    QCOMPARE(window.objectName(), QString("mine"));
}

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QApplication::setStyle(new TellTaleStyle);
    // The application owns its style, which the analyzer cannot see.
    TestForm test; // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks)
    return QTest::qExec(&test, argc, argv);
}

#include "tst_form.moc"
