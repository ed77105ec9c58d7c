#include "model/limits.h"
#include "model/methods.h"
#include "model/pathvariables.h"

#include <QFile>
#include <QLocale>
#include <QTest>

/// README and the manual name the limits of the program and the words of a line. Numbers are
/// written there as people write them: 5,000.
class TestDocumentedLimits : public QObject
{
    Q_OBJECT

private slots:
    void readmeNamesEveryLimit()
    {
        for (const QString& row : {
                 "| source, destination, log, .csv path | " + number(maxPath) + " characters |",
                 "| task line | " + number(maxLine) + " characters |",
                 "| config file, written | " + number(maxConfigFile) + " characters |",
                 "| config file, read | " + mib(maxFileRead) + " |",
                 "| line of a config file, read | " + number(maxLine) + " characters,",
                 "| tasks, markers and bad lines of a series, read | " + number(maxSeriesEntries) +
                     " |",
                 "| comment lines of a series, read as info text | " + number(maxSeriesComments) +
                     " |",
                 "| full name of a file that is written | " + number(maxFileName) + " characters |",
                 "| files of a series, read | " + number(seriesFileCount) +
                     ": no number, then 1 to " + number(seriesFileCount - 1) + " |",
                 "| file size | " + gib(maxFileSize) + " |",
             })
            QVERIFY2(read("README.md").contains(row), qPrintable(row));
        QVERIFY(read("README.md").contains("1 to " + number(seriesFileCount - 1) + ", each"));
    }

    void manualOfTheFormatNamesEveryLimit()
    {
        const QString manual = read("packaging/man/dpc.5");
        for (const QString& row : {
                 ".It Path Ta " + number(maxPath) + " characters",
                 ".It Line Ta " + number(maxLine) + " characters",
                 ".It File, written by the editor Ta " + number(maxConfigFile) + " characters",
                 ".It Full name of a written file Ta " + number(maxFileName) + " characters",
                 ".It Entries of a series, read Ta " + number(maxSeriesEntries),
                 ".It Comments of a series, read Ta " + number(maxSeriesComments),
                 ".It Digits of a number Ta " + number(maxNumberLength),
                 "at most " + QString::number(kibFromBytes(maxFileSize)) + ", which is " +
                     gib(maxFileSize),
             })
            QVERIFY2(manual.contains(row), qPrintable(row));
    }

    void pageOfTheCommandNamesWhatItReads()
    {
        const QString page = read("docs/dpc.md").simplified();
        for (const QString& text :
             {number(maxSeriesEntries), mib(maxFileRead), number(seriesFileCount) + " files"})
            QVERIFY2(page.contains(text), qPrintable(text));
    }

    void rulesNameTheLimitsThatTheyCheck()
    {
        const QString rules = read("docs/rules.md");
        for (const QString& text :
             {"ends at " + number(maxLine) + " characters",
              "at most " + number(maxConfigFile) + " characters",
              "ends at " + number(maxPath) + " characters",
              "cut at " + number(maxFileName) + " characters",
              number(maxSeriesEntries) + " lines a series, " + mib(maxFileRead) + " a file",
              "numbers up to " + number(seriesFileCount - 1)})
            QVERIFY2(rules.contains(text), qPrintable(text));
    }

    void manualOfTheFormatNamesEveryWord()
    {
        const QString manual = read("packaging/man/dpc.5");
        for (const MethodInfo& method : ioMethods)
            QVERIFY2(manual.contains(method.name), method.name);
        for (const char* variable : pathVariables)
            QVERIFY2(manual.contains(variable), variable);
    }

private:
    static QString number(qint64 value) { return QLocale(QLocale::English).toString(value); }
    static QString mib(qint64 bytes) { return whole(bytes, qint64(1) << 20) + " MiB"; }
    static QString gib(qint64 bytes) { return whole(bytes, qint64(1) << 30) + " GiB"; }

    static QString whole(qint64 bytes, qint64 unit)
    {
        return bytes % unit == 0 ? QString::number(bytes / unit) : "a part of";
    }

    static QString read(const char* name)
    {
        QFile file(QStringLiteral(TWDP_SOURCE_DIR "/") + name);
        const bool isOpen = file.open(QIODevice::ReadOnly);
        return isOpen ? QString::fromUtf8(file.readAll()) : QString();
    }
};

QTEST_APPLESS_MAIN(TestDocumentedLimits)
#include "tst_documentedlimits.moc"
