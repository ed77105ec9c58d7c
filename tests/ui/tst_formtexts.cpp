#include "tests/ui/formstate.h"

#include "ui_twdiskprobe.h"

#include <QTest>

namespace {

void setTextOf(QObject& object, const QString& text)
{
    for (const char* property : {"text", "title", "plainText"})
        if (object.metaObject()->indexOfProperty(property) >= 0)
            object.setProperty(property, text);
}

} // namespace

class TestFormTexts : public QObject
{
    Q_OBJECT

    QWidget* named(const QString& name) { return m_window->findChild<QWidget*>(name); }
    void changeEverything();
    std::unique_ptr<QMainWindow> m_window;
    Ui::twDiskProbeClass m_form{};

private slots:
    void init();
    void cleanup();

    void labelsShowTheirTextsLiterally();
    void textsAreAsListed();
    void nothingElseHasAText();
    void toolTipsAreAsListed();
    void comboBoxesHoldTheirItems();
    void tableHasItsColumns();
    void textsAreTranslatedInTheFormsContext();
    void retranslatingResetsTheTextsAndNothingElse();
};

void TestFormTexts::init()
{
    m_window = std::make_unique<QMainWindow>();
    m_form.setupUi(m_window.get());
}

void TestFormTexts::cleanup()
{
    m_window.reset();
}

void TestFormTexts::labelsShowTheirTextsLiterally()
{
    for (const QLabel* label : m_window->findChildren<QLabel*>())
        QVERIFY2(label->textFormat() == Qt::AutoText && !Qt::mightBeRichText(label->text()),
                 qPrintable(label->objectName()));
}

void TestFormTexts::textsAreAsListed()
{
    for (const ObjectText& expected : allTexts()) {
        const QWidget* widget = named(expected.object);
        QVERIFY2(widget, expected.object);
        QCOMPARE(textOf(*widget), QString(expected.text));
    }
}

void TestFormTexts::nothingElseHasAText()
{
    QSet<QString> listed;
    for (const ObjectText& expected : allTexts())
        listed += expected.object;
    for (const QWidget* widget : namedWidgets(*m_window)) {
        if (qobject_cast<const QLineEdit*>(widget))
            QCOMPARE(textOf(*widget), QString());
        else if (!qobject_cast<const QSpinBox*>(widget) && !listed.contains(widget->objectName()))
            QCOMPARE(textOf(*widget), QString("has no text"));
    }
}

void TestFormTexts::toolTipsAreAsListed()
{
    QHash<QString, QString> expected;
    for (const ObjectText& toolTip : toolTips())
        expected[toolTip.object] = toolTip.text;
    QCOMPARE(expected.size(), 3);
    for (const QWidget* widget : namedWidgets(*m_window))
        QCOMPARE(widget->toolTip(), expected.value(widget->objectName()));
}

void TestFormTexts::comboBoxesHoldTheirItems()
{
    QCOMPARE(m_window->findChildren<QComboBox*>().size(), comboItems().size());
    for (const ComboItems& expected : comboItems()) {
        const auto* combo = m_window->findChild<QComboBox*>(expected.combo);
        QVERIFY2(combo, expected.combo);
        QStringList items;
        for (int i = 0; i < combo->count(); ++i) {
            items += combo->itemText(i);
            QVERIFY(!combo->itemData(i).isValid());
        }
        QCOMPARE(items, expected.items);
    }
}

void TestFormTexts::tableHasItsColumns()
{
    QStringList headers;
    for (int column = 0; column < m_form.tableWidget->columnCount(); ++column)
        headers += m_form.tableWidget->horizontalHeaderItem(column)->text();
    QCOMPARE(headers, columnHeaders());
    QCOMPARE(m_form.tableWidget->rowCount(), 0);
}

void TestFormTexts::textsAreTranslatedInTheFormsContext()
{
    MarkingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    m_form.retranslateUi(m_window.get());
    QCoreApplication::removeTranslator(&translator);

    const auto marked = [](const QString& text) { return text.isEmpty() ? text : '~' + text; };
    QCOMPARE(m_window->windowTitle(), QString("~twDiskProbe UI"));
    for (const ObjectText& expected : allTexts())
        QCOMPARE(textOf(*named(expected.object)), marked(expected.text));
    for (const ObjectText& expected : toolTips())
        QCOMPARE(named(expected.object)->toolTip(), marked(expected.text));
    for (const ComboItems& expected : comboItems())
        for (int i = 0; i < expected.items.size(); ++i)
            QCOMPARE(m_window->findChild<QComboBox*>(expected.combo)->itemText(i),
                     marked(expected.items[i]));
    for (int column = 0; column < columnHeaders().size(); ++column)
        QCOMPARE(m_form.tableWidget->horizontalHeaderItem(column)->text(),
                 marked(columnHeaders()[column]));
}

// As translations, users and programs may.
void TestFormTexts::changeEverything()
{
    m_window->setObjectName("renamed");
    m_window->resize(1300, 900);
    m_window->setWindowTitle("changed");
    for (const ObjectText& text : allTexts())
        setTextOf(*named(text.object), "changed");
    for (QWidget* widget : namedWidgets(*m_window))
        if (auto* edit = qobject_cast<QLineEdit*>(widget))
            edit->setText("typed");
        else if (auto* spin = qobject_cast<QSpinBox*>(widget))
            spin->setValue(spin->maximum() - 1);
        else if (auto* check = qobject_cast<QCheckBox*>(widget))
            check->setChecked(true);
        else if (auto* combo = qobject_cast<QComboBox*>(widget)) {
            combo->setCurrentIndex(combo->count() - 1);
            for (int i = 0; i < combo->count(); ++i)
                combo->setItemText(i, "changed");
        }
    for (const ObjectText& toolTip : toolTips())
        named(toolTip.object)->setToolTip("changed");
    m_form.radioNextConfig->setChecked(true);
    m_form.tableWidget->setRowCount(1);
    m_form.tableWidget->setItem(0, 0, new QTableWidgetItem("a task"));
    for (int column = 0; column < columnHeaders().size(); ++column)
        m_form.tableWidget->horizontalHeaderItem(column)->setText("changed");
}

void TestFormTexts::retranslatingResetsTheTextsAndNothingElse()
{
    changeEverything();
    m_form.checkFlush->setToolTip("added");
    // A button loses its key with its text, and gets it back with it.
    QStringList before = stateOf(*m_window);
    const QStringList buttons{"buttonSave", "buttonLoad", "buttonCreateNew",
                              "buttonCreateOverwrite"};
    for (int i = 0; i < buttons.size(); ++i) {
        const int line = before.indexOf(buttons[i] + " shortcut ");
        QVERIFY2(line >= 0, qPrintable(buttons[i]));
        before[line] += formKeys()[i];
    }
    m_form.retranslateUi(m_window.get());
    QCOMPARE(stateOf(*m_window), before);
    QCOMPARE(m_form.checkFlush->toolTip(), QString("added"));
    m_form.checkFlush->setToolTip({});

    QCOMPARE(m_window->windowTitle(), QString("twDiskProbe UI"));
    textsAreAsListed();
    toolTipsAreAsListed();
    comboBoxesHoldTheirItems();
    m_form.tableWidget->setRowCount(0);
    tableHasItsColumns();
}

QTEST_MAIN(TestFormTexts)

#include "tst_formtexts.moc"
