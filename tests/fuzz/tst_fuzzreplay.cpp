#include "fuzz/check.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

// Gives every input of the corpus, every one that fuzzers found to reach more, and every one that
// ever failed, to the function that the fuzzer calls. A broken promise aborts: the name of the
// input is the name of the row.

class TestFuzzReplay : public QObject
{
    Q_OBJECT

private slots:
    void corpusIsThere() { QVERIFY(!inputsIn(FUZZ_FOLDER "/corpus/" FUZZ_TARGET).isEmpty()); }

    void promisesHold_data()
    {
        QTest::addColumn<QString>("path");
        for (const char* folder : {FUZZ_FOLDER "/corpus/" FUZZ_TARGET,
                                   FUZZ_FOLDER "/regressions/" FUZZ_TARGET, FUZZ_FOUND}) {
            for (const QFileInfo& file : inputsIn(folder))
                QTest::newRow(qPrintable(file.filePath())) << file.filePath();
        }
    }

    void promisesHold()
    {
        QFETCH(QString, path);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray input = file.readAll();
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.constData()),
                               static_cast<std::size_t>(input.size()));
    }

private:
    static QFileInfoList inputsIn(const char* folder)
    {
        return QDir(folder).entryInfoList(QDir::Files, QDir::Name);
    }
};

QTEST_APPLESS_MAIN(TestFuzzReplay)
#include "tst_fuzzreplay.moc"
