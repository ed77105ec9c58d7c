#include "configset/configfilereader.h"
#include "shared/kvtext.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

class TestConfigFileReader : public QObject
{
    Q_OBJECT

private slots:
    void readingThatFailsIsToldWithItsReason()
    {
        // A regular file that opens, and whose first page nobody can read.
        ConfigFileReader reader(kvToString8<maxPath>(QStringLiteral("/proc/self/mem")));
        QVERIFY(reader.isOpen());
        _kvString<maxLine> line;
        QVERIFY(!reader.readLine(line));
        QCOMPARE(reader.readError(), qt_error_string(EIO));
    }

    void endOfTheFileIsNotAnError()
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath("a.dpc"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write("one\n\ntwo"), qint64(8));
        file.close();

        ConfigFileReader reader(kvToString8<maxPath>(file.fileName()));
        _kvString<maxLine> line;
        QVERIFY(reader.readLine(line));
        QCOMPARE(kvToQString(line), QStringLiteral("one"));
        QVERIFY(reader.readLine(line));
        QVERIFY(reader.readLine(line));
        QCOMPARE(kvToQString(line), QStringLiteral("two"));
        QCOMPARE(reader.lineNumber(), 3);
        QVERIFY(!reader.readLine(line));
        QCOMPARE(reader.lineNumber(), 3);
        QCOMPARE(reader.readError(), QString());
        QVERIFY(!reader.fileWasCut());
    }
};

QTEST_GUILESS_MAIN(TestConfigFileReader)
#include "tst_configfilereader.moc"
