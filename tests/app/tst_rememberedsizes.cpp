#include "app/rememberedsizes.h"

#include <QHeaderView>
#include <QProxyStyle>
#include <QTableWidget>
#include <QTest>

namespace {

/// Needs more space for a cell than other styles, which shows whether it was asked.
class WideStyle final : public QProxyStyle
{
public:
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override
    {
        const QSize usual = QProxyStyle::sizeFromContents(type, option, size, widget);
        return type == CT_ItemViewItem ? usual + QSize(100, 0) : usual;
    }
};

void fill(QTableWidget& table, const QStringList& texts)
{
    table.setColumnCount(1);
    table.setRowCount(texts.size());
    for (int row = 0; row < texts.size(); ++row)
        table.setItem(row, 0, new QTableWidgetItem(texts[row]));
    table.resizeColumnsToContents();
}

} // namespace

class TestRememberedSizes : public QObject
{
    Q_OBJECT

    QTableWidget m_plain;
    QTableWidget m_table;
    RememberedSizes* m_sizes = new RememberedSizes(&m_table);

    void compareWidths(const QStringList& texts)
    {
        fill(m_plain, texts);
        fill(m_table, texts);
        QCOMPARE(m_table.columnWidth(0), m_plain.columnWidth(0));
    }

private slots:
    void initTestCase() { m_table.setItemDelegate(m_sizes); }

    void widthsAreThoseOfTheUsualDelegate()
    {
        for (const QStringList& texts : {QStringList{"a"},
                                         {"a", QString(200, 'w')},
                                         {"a"},
                                         {QString::fromUtf8("für"), ""},
                                         {"two\nlines"},
                                         {QString(200, 'w'), "a"}})
            compareWidths(texts);
    }

    void textsAreMeasuredAnewForAnotherFont()
    {
        const QStringList texts{QString(50, 'w')};
        compareWidths(texts);
        const int before = m_table.columnWidth(0);
        QFont larger = m_table.font();
        larger.setPixelSize(30);
        m_plain.setFont(larger);
        m_table.setFont(larger);
        compareWidths(texts);
        QVERIFY(m_table.columnWidth(0) > before);
    }

    void textsAreMeasuredAnewForAnotherStyle()
    {
        const QStringList texts{QString(50, 'w')};
        compareWidths(texts);
        const int before = m_table.columnWidth(0);
        WideStyle style;
        m_plain.setStyle(&style);
        m_table.setStyle(&style);
        compareWidths(texts);
        QCOMPARE(m_table.columnWidth(0), before + 100);
        m_plain.setStyle(nullptr);
        m_table.setStyle(nullptr);
        compareWidths(texts);
        QCOMPARE(m_table.columnWidth(0), before);
    }

    void rowsThatWrapAreMeasuredEachTime()
    {
        const QStringList texts{"some words that wrap in a narrow column"};
        compareWidths(texts);
        for (QTableWidget* table : {&m_plain, &m_table}) {
            table->setColumnWidth(0, 60);
            table->resizeRowsToContents();
        }
        QCOMPARE(m_table.rowHeight(0), m_plain.rowHeight(0));
        QVERIFY(m_table.rowHeight(0) > 2 * m_table.fontMetrics().height());
    }

    void memoryIsBounded()
    {
        for (int start = 0; start < 3 * RememberedSizes::maxTexts; start += 1000) {
            QStringList texts;
            for (int i = start; i < start + 1000; ++i)
                texts += QString::number(i);
            fill(m_table, texts);
            QVERIFY(m_sizes->count() <= RememberedSizes::maxTexts);
        }
        QVERIFY(m_sizes->count() > 0);
    }

    void allAreForgottenWhenTheMemoryIsFull()
    {
        QTableWidget table(1, 1);
        RememberedSizes sizes;
        QStyleOptionViewItem option;
        option.widget = &table;
        auto* item = new QTableWidgetItem;
        table.setItem(0, 0, item);
        const auto measure = [&](int number) {
            item->setText(QString::number(number));
            sizes.sizeHint(option, table.model()->index(0, 0));
            return sizes.count();
        };
        for (int i = 1; i <= RememberedSizes::maxTexts; ++i)
            QCOMPARE(measure(i), i);
        QCOMPARE(measure(1), RememberedSizes::maxTexts);
        QCOMPARE(measure(0), 1);
    }
};

QTEST_MAIN(TestRememberedSizes)
#include "tst_rememberedsizes.moc"
