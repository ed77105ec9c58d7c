#include "configset/configfilereader.h"
#include "shared/kvtext.h"
#include "tests/support/files.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <memory>
#include <unistd.h>

class TestConfigFileReader : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        m_file = m_folder->filePath("a.dpc");
    }

    void linesAreCountedAndMeasured()
    {
        test::put(m_file, "one\n\nx");
        ConfigFileReader reader(kvToString8<maxPath>(m_file));
        QVERIFY(reader.isOpen());
        QCOMPARE(nextOf(reader), QStringLiteral("one"));
        QCOMPARE(reader.lineNumber(), 1);
        QCOMPARE(reader.lineLength(), qint64(3));
        QCOMPARE(nextOf(reader), QString());
        QCOMPARE(reader.lineNumber(), 2);
        QCOMPARE(reader.lineLength(), qint64(0));
        QCOMPARE(nextOf(reader), QStringLiteral("x"));
        QCOMPARE(reader.lineNumber(), 3);
        QCOMPARE(reader.lineLength(), qint64(1));
    }

    /// However much of the file is read at a time.
    void lineEndsAtItsFirstZeroByte()
    {
        const QByteArray rest(100000, 'y');
        test::put(m_file, QByteArray("x\0", 2) + rest + "\nz");
        ConfigFileReader reader(kvToString8<maxPath>(m_file));
        QCOMPARE(nextOf(reader), QStringLiteral("x"));
        QCOMPARE(reader.lineLength(), qint64(2 + rest.size()));
        QCOMPARE(nextOf(reader), QStringLiteral("z"));
        QCOMPARE(reader.lineNumber(), 2);
    }

    void endOfTheFileIsNotAnError()
    {
        test::put(m_file, "one");
        ConfigFileReader reader(kvToString8<maxPath>(m_file));
        _kvString<maxLine> line;
        QVERIFY(reader.readLine(line));
        QVERIFY(!reader.readLine(line));
        QCOMPARE(reader.lineNumber(), 1);
        QCOMPARE(reader.readError(), QString());
        QVERIFY(!reader.fileWasCut());
    }

    void readingThatFailsIsToldWithItsReason()
    {
        // A regular file that opens, and whose first page nobody can read.
        ConfigFileReader reader(kvToString8<maxPath>(QStringLiteral("/proc/self/mem")));
        QVERIFY(reader.isOpen());
        _kvString<maxLine> line;
        QVERIFY(!reader.readLine(line));
        QCOMPARE(reader.readError(), qt_error_string(EIO));
    }

    void byteOrderMarkBelongsToNoLine()
    {
        test::put(m_file, "\xEF\xBB\xBFone\n");
        ConfigFileReader reader(kvToString8<maxPath>(m_file));
        QCOMPARE(nextOf(reader), QStringLiteral("one"));
        QCOMPARE(reader.lineNumber(), 1);
        QCOMPARE(reader.lineLength(), qint64(3));
    }

    void fileBeyondTheLargestSizeIsCut()
    {
        // One line of a gigabyte without a byte on the disk.
        put("one\nBytes", 1024L * 1024 * 1024);
        ConfigFileReader reader(kvToString8<maxPath>(m_file));
        QCOMPARE(nextOf(reader), QStringLiteral("one"));
        QCOMPARE(nextOf(reader), QStringLiteral("Bytes"));
        QVERIFY(reader.fileWasCut());
        QCOMPARE(reader.lineNumber(), 2);
        QCOMPARE(reader.lineLength(), maxFileRead - 4);
        _kvString<maxLine> line;
        QVERIFY(!reader.readLine(line));
        QCOMPARE(reader.lineNumber(), 2);
    }

    void fileOfTheLargestSizeIsNotCut()
    {
        for (const qint64 size : {maxFileRead, maxFileRead + 1}) {
            put({}, size);
            ConfigFileReader reader(kvToString8<maxPath>(m_file));
            _kvString<maxLine> line;
            while (reader.readLine(line)) {
            }
            QCOMPARE(reader.fileWasCut(), size > maxFileRead);
        }
    }

private:
    void put(const QByteArray& start, qint64 size) const
    {
        test::put(m_file, start);
        QCOMPARE(::truncate(QFile::encodeName(m_file), size), 0);
    }

    static QString nextOf(ConfigFileReader& reader)
    {
        _kvString<maxLine> line;
        return reader.readLine(line) ? kvToQString(line) : QStringLiteral("(no line)");
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_file;
};

QTEST_GUILESS_MAIN(TestConfigFileReader)
#include "tst_configfilereader.moc"
