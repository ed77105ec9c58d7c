#include "dpc/totals.h"
#include "tests/check/seriesfolder.h"

/// The files, bytes and time that a series costs.
class TestTotals : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_series.reset(new SeriesFolder); }

    void filesAndTasksAreCounted()
    {
        m_series->put("a.dpc", "# text\n" + goodLine() + goodLine({{1, "Posx"}}) + "/x/a1.dpc\n");
        m_series->put("_wait/a1.dpc", goodLine() + goodLine());
        m_series->put("a20.dpc", goodLine());
        m_series->put("a_init.dpc", goodLine());
        const Totals totals = totalsOf(m_series->facts());
        QCOMPARE(totals.files, 2);
        QCOMPARE(totals.tasks, 3);
    }

    void bytesAreThoseOfAllIterations_data()
    {
        QTest::addColumn<QByteArray>("source");
        QTest::addColumn<QByteArray>("dest");
        QTest::addColumn<qint64>("written");
        QTest::addColumn<qint64>("read");
        const qint64 all = qint64(3) * 1048576;
        QTest::newRow("copy") << QByteArray("/s") << QByteArray("/d") << all << all;
        QTest::newRow("write") << QByteArray("MEMORY") << QByteArray("/d") << all << qint64(0);
        QTest::newRow("read") << QByteArray("/s") << QByteArray("MEMORY") << qint64(0) << all;
    }

    void bytesAreThoseOfAllIterations()
    {
        QFETCH(QByteArray, source);
        QFETCH(QByteArray, dest);
        m_series->put("a.dpc", goodLine({{10, source}, {11, dest}}));
        const Totals totals = totalsOf(m_series->facts());
        QTEST(totals.bytesWritten, "written");
        QTEST(totals.bytesRead, "read");
    }

    void eachChunkWaits_data()
    {
        QTest::addColumn<QByteArray>("wait");
        QTest::addColumn<QByteArray>("chunk");
        QTest::addColumn<QByteArray>("size");
        QTest::addColumn<QByteArray>("iterations");
        QTest::addColumn<qint64>("ms");
        const auto row = [](const char* wait, const char* chunk, const char* size,
                            const char* iterations, qint64 ms) {
            QTest::addRow("%s ms, %s of %s KiB, %s times", wait, chunk, size, iterations)
                << QByteArray(wait) << QByteArray(chunk) << QByteArray(size)
                << QByteArray(iterations) << ms;
        };
        row("10", "64", "1024", "3", 480);
        row("10", "64", "1023", "1", 160);
        row("10", "64", "1025", "1", 170);
        row("10", "1", "1", "1", 10);
        row("10", "64", "1", "1", 10);
        row("10", "0", "1024", "1", 0);
        row("10", "64", "0", "1", 0);
        row("0", "64", "1024", "1", 0);
        row("-5", "64", "1024", "1", 0);
        row("10", "-64", "1024", "1", 0);
        row("10", "64", "-1024", "1", 0);
        row("10", "64", "1024", "-1", 0);
        // The last that fits into 64 bits, and the first that does not.
        row("4096", "1", "1048576", "2147483647", 9223372032559808512);
        row("4097", "1", "1048576", "2147483647", std::numeric_limits<qint64>::max());
    }

    void eachChunkWaits()
    {
        QFETCH(QByteArray, wait);
        QFETCH(QByteArray, chunk);
        QFETCH(QByteArray, size);
        QFETCH(QByteArray, iterations);
        m_series->put("a.dpc", goodLine({{4, wait}, {5, chunk}, {7, size}, {8, iterations}}));
        QTEST(totalsOf(m_series->facts()).leastWait, "ms");
    }

    void text_data()
    {
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<QString>("text");
        const auto row = [](qint64 bytes, const char* text) {
            QTest::newRow(text) << bytes << QString(text);
        };
        row(0, "0 bytes (0.0 KiB)");
        row(1023, "1023 bytes (1.0 KiB)");
        row(1024, "1024 bytes (1.0 KiB)");
        row(1048575, "1048575 bytes (1024.0 KiB)");
        row(1048576, "1048576 bytes (1.0 MiB)");
        row(1610612736, "1610612736 bytes (1.5 GiB)");
        row(qint64(1) << 40, "1099511627776 bytes (1.0 TiB)");
        row(qint64(1) << 50, "1125899906842624 bytes (1.0 PiB)");
        row(std::numeric_limits<qint64>::max(), "9223372036854775807 bytes (8.0 EiB)");
    }

    void text()
    {
        QFETCH(const qint64, bytes);
        QFETCH(const QString, text);
        Totals totals;
        totals.files = 1;
        totals.tasks = 2;
        totals.bytesWritten = bytes;
        totals.bytesRead = bytes;
        totals.leastWait = 61005;
        QCOMPARE(QString::fromStdString(totalsAsText(totals)),
                 "2 tasks in 1 config file\nwritten: " + text + "\nread:    " + text +
                     "\nleast waiting time: 61.005 s\n");
    }

private:
    QScopedPointer<SeriesFolder> m_series;
};

QTEST_APPLESS_MAIN(TestTotals)
#include "tst_totals.moc"
