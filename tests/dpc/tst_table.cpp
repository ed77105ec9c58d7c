#include "dpc/table.h"

#include <QTest>

// Tables, in terminals of any width and for other programs.

namespace {

Table sample()
{
    Table table;
    table.headers = QStringList{"file", "bytes", "what"};
    table.isNumber = {false, true, false};
    table.rows = {{"abcdefghijklmnopqrst", "1", "read"}, {"b", "12345678", "w"}};
    return table;
}

const QByteArray whole = "file                     bytes  what\n"
                         "abcdefghijklmnopqrst         1  read\n"
                         "b                     12345678  w\n";

QByteArray textOf(const Table& table, int width = 0, const QStringList& leastImportant = {})
{
    return QByteArray::fromStdString(tableAsText(table, width, leastImportant));
}

} // namespace

class TestTable : public QObject
{
    Q_OBJECT

private slots:
    void columnsStandBelowTheirHeaders()
    {
        QCOMPARE(textOf(sample()), whole);
        Table wide = sample();
        wide.headers[2] = "what it was";
        QCOMPARE(textOf(wide).left(textOf(wide).indexOf('\n')),
                 QByteArray("file                     bytes  what it was"));
    }

    void firstColumnIsCutInItsMiddle_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("fits") << 36 << QByteArray("abcdefghijklmnopqrst");
        QTest::newRow("one too wide") << 35 << QByteArray("abcdefgh...mnopqrst");
        QTest::newRow("two too wide") << 34 << QByteArray("abcdefg...mnopqrst");
        QTest::newRow("eight too wide") << 28 << QByteArray("abcd...pqrst");
        QTest::newRow("nothing left to cut") << 27 << QByteArray("abcd...pqrst");
        QTest::newRow("hardly anything") << 1 << QByteArray("abcd...pqrst");
    }

    void firstColumnIsCutInItsMiddle()
    {
        QFETCH(const int, width);
        QFETCH(const QByteArray, name);
        const QList<QByteArray> lines = textOf(sample(), width).split('\n');
        QCOMPARE(lines[1], name + "         1  read");
        QCOMPARE(lines[2].indexOf("12345678"), name.size() + 2);
        QCOMPARE(lines.size(), 4);
    }

    void aLongHeaderOfTheFirstColumnIsCutAsWell()
    {
        Table table = sample();
        table.headers[0] = "the file that was read";
        QVERIFY(textOf(table, 34).startsWith("the fil...was read     bytes  what\n"));
    }

    void whatMattersLeastIsLeftOutFirst_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<QByteArray>("below");
        const QByteArray what = "(column left out: what)\n";
        const QByteArray both = what + "(column left out: bytes)\n";
        QTest::newRow("any width")
            << 0 << QByteArray("file                     bytes  what") << QByteArray();
        QTest::newRow("cut") << 28 << QByteArray("file             bytes  what") << QByteArray();
        QTest::newRow("one without") << 27 << QByteArray("file                  bytes") << what;
        QTest::newRow("and cut") << 22 << QByteArray("file             bytes") << what;
        QTest::newRow("both without") << 21 << QByteArray("file") << both;
        QTest::newRow("not the first") << 2 << QByteArray("file") << both;
    }

    void whatMattersLeastIsLeftOutFirst()
    {
        QFETCH(const int, width);
        QFETCH(const QByteArray, header);
        QFETCH(const QByteArray, below);
        const QByteArray text = textOf(sample(), width, {"none such", "what", "bytes", "file"});
        QCOMPARE(text.left(text.indexOf('\n')), header);
        QCOMPARE(text.mid(text.indexOf("(column") + (below.isEmpty() ? text.size() + 1 : 0)),
                 below);
    }

    void theFirstColumnIsNotLeftOut()
    {
        const Table table{{"task", "bytes"}, {false, true}, {{QString(30, 'x'), "1234567"}}};
        const QStringList columns = {"unknown", "task", "bytes"};
        QCOMPARE(QString::fromStdString(tableAsText(table, 21, columns)),
                 QString("task            bytes\nxxxx...xxxxx  1234567\n"));
        QCOMPARE(QString::fromStdString(tableAsText(table, 20, columns)),
                 QString("task\nxxxxxxxx...xxxxxxxxx\n(column left out: bytes)\n"));
    }

    void markdownShowsWhatItWouldTake()
    {
        Table table = sample();
        table.rows = {{"a|b\\c", "1", "`*_<[&"}};
        QCOMPARE(QByteArray::fromStdString(tableAsMarkdown(table)),
                 QByteArray("| file | bytes | what |\n"
                            "|---|--:|---|\n"
                            "| a\\|b\\\\c | 1 | \\`\\*\\_\\<\\[\\& |\n"));
    }

    void htmlShowsWhatItWouldTake()
    {
        Table table = sample();
        table.rows = {{"<a>", "1", "'\"&"}};
        QCOMPARE(
            QByteArray::fromStdString(tableAsHtml(table, "Files")),
            QByteArray("<table class=\"sortable\"><caption>Files</caption><thead><tr>"
                       "<th scope=\"col\">file</th><th scope=\"col\" class=\"number\">bytes</th>"
                       "<th scope=\"col\">what</th></tr></thead><tbody>\n"
                       "<tr><td>&lt;a&gt;</td><td class=\"number\">1</td>"
                       "<td>&#39;&quot;&amp;</td></tr>\n"
                       "</tbody></table>\n"));
    }
};

QTEST_APPLESS_MAIN(TestTable)
#include "tst_table.moc"
