#include "dpc/pages/pages.h"
#include "tests/dpc/dpcrun.h"

#include <QTest>

/// The manual page and the completions of the shells are those that the options make.
class TestDpcPages : public QObject
{
    Q_OBJECT

private slots:
    void pagesAreUpToDate_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("page");
        const auto add = [](const char* file, const std::string& page) {
            QTest::newRow(file) << QString(file) << QByteArray::fromStdString(page);
        };
        add("man/dpc.1", manualPage());
        add("completions/dpc.bash", bashCompletion());
        add("completions/_dpc", zshCompletion());
        add("completions/dpc.fish", fishCompletion());
    }

    void pagesAreUpToDate()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, page);
        const QString path = QStringLiteral(TWDP_SOURCE_DIR "/packaging/") + file;
        if (updatesGolden())
            test::put(path, page);
        else
            QCOMPARE(QString::fromUtf8(page), QString::fromUtf8(test::contentOf(path)));
    }
};

QTEST_APPLESS_MAIN(TestDpcPages)
#include "tst_dpcpages.moc"
