#include "tests/check/seriesfolder.h"
#include "tests/support/files.h"

#include <QProcess>

#include <unistd.h>

/// The program itself, as a shell starts it.
class TestDpcProgram : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_series.reset(new SeriesFolder);
        m_series->put("a.dpc", goodLine({{1, "x"}}));
    }

    void saysWhyItCannotWrite_data()
    {
        QTest::addColumn<QByteArray>("redirection");
        QTest::addColumn<QByteArray>("reason");
        QTest::newRow("full") << QByteArray(">/dev/full") << QByteArray("No space left on device");
        QTest::newRow("closed") << QByteArray(">&-") << QByteArray("Bad file descriptor");
    }

    void saysWhyItCannotWrite()
    {
        QFETCH(QByteArray, redirection);
        QFETCH(QByteArray, reason);
        const QByteArrayList commands = {"check a.dpc", "check --format=json a.dpc", "--help",
                                         "show a.dpc", "init a.dpc"};
        m_series->put("a.dpc", goodLine() + goodLine({{5, "1000"}}));
        for (const QByteArray& command : commands) {
            const Result result = shell("\"$dpc\" " + command + ' ' + redirection);
            QCOMPARE(result.code, 2);
            QVERIFY2(result.err.endsWith("dpc: standard output can't be written: " + reason + '\n'),
                     result.err);
        }
        // Output that is written in parts, before it is whole.
        m_series->put("a.dpc", goodLine().repeated(manyLines));
        const Result result = shell("\"$dpc\" show --format=csv a.dpc " + redirection);
        QCOMPARE(result.code, 2);
        QCOMPARE(result.err, "dpc: standard output can't be written: " + reason + '\n');
    }

    void countsFollowTheFindingsIfBothGoToOnePlace()
    {
        const QByteArray printed = shell("\"$dpc\" check --summary a.dpc 2>&1").out;
        QVERIFY2(printed.startsWith("a.dpc:1:1: error: "), printed);
        QVERIFY2(printed.contains("\n1 error, 0 warnings, 0 notes\n1 file, 0 tasks; "), printed);
    }

    void nothingIsWrittenIntoFilesInPlaceOfClosedStreams()
    {
        const QByteArray before = test::contentOf(m_series->root() + "a.dpc");
        shell("\"$dpc\" init --write a.dpc >&- 2>&- <&-");
        shell("\"$dpc\" check a.dpc >&- 2>&- <&-");
        QCOMPARE(test::contentOf(m_series->root() + "a.dpc"), before);
    }

    void namesThatAreNotUtf8CanBeGiven()
    {
        // A folder of letters in Latin-1, as old systems leave behind.
        const QByteArray make = "d=$(printf 'pr\\374fung'); mkdir \"$d\"; cp a.dpc \"$d/a.dpc\"; ";
        for (const char* locale : {"C.UTF-8", "C", "POSIX", "xx_XX.unknown"}) {
            const QByteArray set = QByteArray("rm -rf pr*; export LC_ALL=") + locale + "; ";
            Result result = shell(set + make + "\"$dpc\" check \"$d\"");
            QCOMPARE(result.code, 1);
            QVERIFY2(result.out.startsWith("pr\\xFCfung/a.dpc:1:1: error: "), result.out);
            QCOMPARE(result.out.count('\n'), 1);
            result = shell(set + make + "\"$dpc\" check \"$d/b.dpc\"");
            QCOMPARE(result.code, 2);
            QVERIFY2(result.err.contains("'pr\\xFCfung/b.dpc'"), result.err);
            // The same from inside of a folder, with a name of a file.
            result = shell(set + "cp a.dpc \"$(printf '\\374.dpc')\"; \"$dpc\" check .");
            QVERIFY2(result.out.contains("./\\xFC.dpc:1:1: error: "), result.out);
            QVERIFY2(result.out.contains("./a.dpc:1:1: error: "), result.out);
            shell("rm \"$(printf '\\374.dpc')\"");
        }
    }

    void namesInUtf8StayAsTheyAre()
    {
        // A scheduled job often has no locale.
        for (const char* locale : {"C.UTF-8", "C", "POSIX", "xx_XX.unknown"}) {
            const Result result = shell(QByteArray("rm -rf Pr*; export LC_ALL=") + locale +
                                        "; mkdir Pr\xC3\xBC"
                                        "fung; cp a.dpc Pr*; \"$dpc\" check Pr*");
            QVERIFY2(result.out.startsWith("Pr\xC3\xBC"
                                           "fung/a.dpc:1:1: error: "),
                     result.out);
        }
    }

    void folderWithoutRightsSaysSo()
    {
        const Result folder = shell("mkdir secret; cp a.dpc secret; chmod 000 secret; " +
                                    asOthers() + "\"$dpc\" check secret");
        const Result file = shell(asOthers() + "\"$dpc\" check secret/a.dpc");
        shell("chmod 700 secret");
        QCOMPARE(folder.code, 2);
        QCOMPARE(folder.err, QByteArray("dpc: 'secret' can't be read: you have no right to look "
                                        "into it\n"));
        QCOMPARE(file.code, 2);
        QCOMPARE(file.err,
                 QByteArray("dpc: 'secret/a.dpc' can't be read: you have no right to look "
                            "into its folder\n"));
    }

    void aFileThatCannotBeWrittenIsSaid()
    {
        m_series->put("a.dpc", goodLine());
        const QByteArray name = "a_init.dpc can't be written: ";
        QVERIFY(QDir(m_series->root()).mkdir("closed"));
        m_series->put("closed/a.dpc", goodLine());
        Result result = shell("cd closed; chmod 555 .; " + asOthers() +
                              "\"$dpc\" init --write a.dpc; code=$?; chmod 755 .; exit $code");
        QCOMPARE(result.code, 2);
        QCOMPARE(result.err, "dpc: " + name + "you have no right to write into its folder\n");
        // A shell that lets files have no byte, as a full disk does.
        result = shell("trap '' XFSZ; ulimit -f 0; \"$dpc\" init --write a.dpc");
        QCOMPARE(result.code, 2);
        QCOMPARE(result.err, "dpc: " + name + "the disk is full, or the file can't be replaced\n");
    }

    void coloursAreForTerminals_data()
    {
        QTest::addColumn<QByteArray>("settings");
        QTest::addColumn<bool>("hasColour");
        QTest::newRow("a terminal") << QByteArray("TERM=xterm") << true;
        QTest::newRow("a dumb one") << QByteArray("TERM=dumb") << false;
        QTest::newRow("an unknown one") << QByteArray("-u TERM") << false;
        QTest::newRow("colours are refused") << QByteArray("TERM=xterm NO_COLOR=1") << false;
        QTest::newRow("refused by nothing") << QByteArray("TERM=xterm NO_COLOR=") << true;
    }

    void coloursAreForTerminals()
    {
        QFETCH(QByteArray, settings);
        QFETCH(bool, hasColour);
        const QByteArray command = "env -u NO_COLOR " + settings + " \"$dpc\" check a.dpc";
        // A terminal of its own.
        const Result seen = shell("script --quiet --return --command '" + command + "' /dev/null");
        QVERIFY2(seen.out.contains("a.dpc:1:1"), seen.out);
        QCOMPARE(seen.out.contains("\x1B["), hasColour);
        QVERIFY(!shell(command).out.contains('\x1B'));
    }

    void bytesOfAnInitFileAreForOtherPrograms()
    {
        m_series->put("a.dpc", goodLine({{10, "[cfgPath]/pr\xFC"
                                              "fung.dat"}}));
        QVERIFY(shell("\"$dpc\" init a.dpc")
                    .out.contains("/pr\xFC"
                                  "fung.dat;"));
        const Result seen =
            shell("script --quiet --return --command '\"$dpc\" init a.dpc' /dev/null");
        QVERIFY2(seen.out.contains("/pr\xC3\xBC"
                                   "fung.dat;"),
                 seen.out);
    }

    void longOutputComesWhole()
    {
        constexpr int tasks = manyLines;
        QByteArray lines;
        for (int chunk = 1; chunk <= tasks; ++chunk)
            lines += goodLine({{5, QByteArray::number(chunk)}, {7, "10240"}});
        m_series->put("a.dpc", lines);
        const Result result = shell("\"$dpc\" show --format=csv a.dpc");
        QCOMPARE(result.code, 0);
        const QByteArrayList rows = result.out.split('\n');
        QCOMPARE(rows.size(), tasks + 2);
        for (int chunk = 1; chunk <= tasks; ++chunk) {
            QCOMPARE(rows[chunk].count(','), rows[0].count(','));
            QCOMPARE(rows[chunk].split(',').value(5).toInt(), chunk);
        }
        // A shell that lets files have one block.
        const Result cut = shell("trap '' XFSZ; ulimit -f 1; \"$dpc\" show a.dpc > out");
        QCOMPARE(cut.code, 2);
        QVERIFY2(cut.err.endsWith("standard output can't be written: File too large\n"), cut.err);
    }

private:
    static constexpr int manyLines = 3000; ///< much more output than is written at once

    struct Result
    {
        QByteArray out;
        QByteArray err;
        int code;
    };

    /// Root has every right. Without those, it can do what any user can with its own files, in a
    /// folder of its own as well.
    static QByteArray asOthers()
    {
        if (::geteuid() != 0)
            return {};
        const QByteArray rights = "-dac_override,-dac_read_search ";
        return "setpriv --bounding-set=" + rights + "--inh-caps=" + rights;
    }

    /// A command line in the folder of the series; "$dpc" is the program.
    Result shell(const QByteArray& line) const
    {
        QProcess process;
        process.setWorkingDirectory(m_series->root());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("dpc", TWDP_DPC);
        process.setProcessEnvironment(environment);
        const QString script = m_folder.filePath("script");
        test::put(script, line);
        process.start("sh", {script});
        process.waitForFinished(-1);
        return {process.readAllStandardOutput(), process.readAllStandardError(),
                process.exitCode()};
    }

    QTemporaryDir m_folder;
    QScopedPointer<SeriesFolder> m_series;
};

QTEST_APPLESS_MAIN(TestDpcProgram)
#include "tst_dpcprogram.moc"
