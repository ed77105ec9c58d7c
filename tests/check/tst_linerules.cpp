#include "tests/check/seriesfolder.h"

class TestLineRules : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_series.reset(new SeriesFolder); }

    /// Each rule with a line that it must say something of and a line that it must not.
    void ruleHitsAndMisses_data()
    {
        QTest::addColumn<QByteArray>("rule");
        QTest::addColumn<QByteArray>("bad");
        QTest::addColumn<QByteArray>("good");
        const auto row = [](const char* name, const char* rule, const QByteArray& bad,
                            const QByteArray& good = goodLine()) {
            QTest::newRow(name) << QByteArray(rule) << bad << good;
        };
        row("method", "bad-line", goodLine({{1, "Posx"}}));
        row("number", "bad-line", goodLine({{9, "2x"}}));
        row("no method", "bad-line", goodLine({{1, ""}}));
        row("marker with more behind it", "bad-line", goodLine() + "/x/a1.dpc more\n",
            goodLine() + "/x/a1.dpc\n");
        row("indented comment", "bad-line", " # comment\n", "# comment\n" + goodLine());
        row("winapi", "winapi", goodLine({{1, "WinApi"}}));
        row("fields", "missing-fields",
            "Posix;flush;prealloc;10;64;1;1024;3;2;MEMORY;/d/x.dat;/l;/c;\n");
        row("semicolon", "extra-fields", goodLine({{11, "/d/a;b.dat"}}));
        row("empty number", "empty-number", goodLine({{9, ""}}));
        row("lone minus", "empty-number", goodLine({{6, "-"}}), goodLine({{6, "-1"}}));
        row("flush", "unknown-word", goodLine({{2, "Flush"}}), goodLine({{2, "1"}}));
        row("prealloc", "unknown-word", goodLine({{3, "yes"}}), goodLine({{3, "NOprealloc"}}));
        row("done", "unknown-word", goodLine({{14, "1"}}), goodLine({{14, "false"}}));
        row("file size", "size-overflow", goodLine({{7, "2097152"}}), goodLine({{7, "2097151"}}));
        row("chunk size", "size-overflow", goodLine({{5, "4194305"}}));
        row("iterations", "size-overflow", goodLine({{8, "4294967297"}}), goodLine({{8, "100"}}));
        row("one iteration too many", "size-overflow", goodLine({{8, "2147483648"}}),
            goodLine({{8, "2147483647"}}));
        row("one below the smallest wait", "size-overflow", goodLine({{4, "-2147483649"}}),
            goodLine({{4, "-2147483648"}}));
        row("long number", "size-overflow", goodLine({{4, QByteArray(300, '9')}}));
        row("negative size", "negative-number", goodLine({{7, "-1"}}));
        row("negative wait", "negative-number", goodLine({{4, "-1"}}), goodLine({{4, "0"}}));
        row("buffer below default", "negative-number", goodLine({{6, "-2"}}),
            goodLine({{6, "-1"}}));
        row("large file", "changed-value", goodLine({{7, "1048577"}}), goodLine({{7, "1048576"}}));
        row("buffer", "changed-value", goodLine({{6, "2"}}));
        row("buffer above five", "changed-value", goodLine({{6, "6"}}));
        row("chunks of a copy", "changed-value", goodLine({{5, "0"}, {10, "/d/s"}}),
            goodLine({{5, "0"}}));
        row("prealloc of a stream", "no-effect", goodLine({{1, "Stream"}}),
            goodLine({{1, "Stream"}, {3, "NOprealloc"}}));
        row("flush of a read", "no-effect", goodLine({{3, ""}, {10, "/d/s"}, {11, "MEMORY"}}),
            goodLine({{2, "NOflush"}, {3, "NOprealloc"}, {10, "/d/s"}, {11, "MEMORY"}}));
        row("wait without chunks", "no-effect", goodLine({{2, ""}, {5, "0"}}),
            goodLine({{2, ""}, {4, "0"}, {5, "0"}}));
        row("buffer of a system copy", "no-effect",
            goodLine({{1, "System"}, {3, ""}, {10, "/d/s"}}),
            goodLine({{1, "System"}, {3, ""}, {6, "-1"}, {10, "/d/s"}}));
        row("iterations of the form", "beyond-form", goodLine({{8, "101"}}),
            goodLine({{8, "100"}}));
        row("size of the form", "beyond-form", goodLine({{7, "1023"}}));
        row("wait of the form", "beyond-form", goodLine({{4, "501"}}), goodLine({{4, "500"}}));
        row("chunk of the form", "beyond-form", goodLine({{5, "10241"}}), goodLine({{5, "10240"}}));
        row("cache mode of the form", "beyond-form", goodLine({{9, "6"}}), goodLine({{9, "5"}}));
        row("no iteration", "no-iterations", goodLine({{8, "0"}}), goodLine({{8, "1"}}));
        row("large chunk", "chunk-too-large", goodLine({{5, "2048"}}), goodLine({{5, "1024"}}));
        row("remainder", "chunk-remainder", goodLine({{5, "1000"}}), goodLine({{5, "512"}}));
        row("long line", "long-line", "#" + QByteArray(1000, 'x') + '\n' + goodLine(),
            "#" + QByteArray(999, 'x') + '\n' + goodLine());
        row("line cut by a save", "long-line", cutLine(1000), cutLine(999));
        row("line that a save just takes", "long-line", cutLine(1000),
            paddedLine(1000) + '/' + QByteArray(995, 'x') + ".dpc\n");
        row("zero byte", "zero-byte", goodLine() + QByteArray("a\0b\n", 4));
        row("long path", "long-path", goodLine({{11, '/' + QByteArray(500, 'x')}}),
            goodLine({{11, '/' + QByteArray(248, 'x') + '/' + QByteArray(249, 'x')}}));
        row("path cut by a save", "long-path", goodLine({{11, '/' + QByteArray(499, 'x')}}));
        row("long path with its values", "long-path",
            goodLine({{11, '/' + QByteArray(300, 'x') + "[cfgNameID]" + QByteArray(187, 'x') +
                               "[cfgPath]"}}));
        row("long file", "long-file", '#' + QByteArray(maxConfigFile - 1, 'x'),
            '#' + QByteArray(maxConfigFile - 2, 'x'));
        row("full file with its line end", "long-file", '#' + QByteArray(4999, 'x') + "\n",
            '#' + QByteArray(4998, 'x') + "\n");
        row("full file without its last line end", "long-file", '#' + QByteArray(4997, 'x') + "\n#",
            '#' + QByteArray(4998, 'x') + "\n");
        row("same task", "same-task", goodLine() + goodLine(), goodLine() + goodLine({{8, "4"}}));
        row("split before a separator", "split-line", split(";/d/x", ";/d/x\n"));
        row("split inside of a path", "split-line", split("/d/[host].txt", "/d/\n[host].txt"));
        row("split at the start of a path", "split-line", split(";/d/x", ";\n/d/x"));
        row("split twice, with an empty line", "split-line",
            split("/d/x.dat;/d/", "/d/x.dat\n\n;/d/\n"),
            goodLine({{1, "Posx"}}) + goodLine().left(60) + '\n');
        row("split line without its last separator", "split-line", split(";true;", "\n;true"),
            split(";true;", "").replace(";/d/[", ";\n/d/["));
        row("cache mode of another method", "cache-mode", goodLine({{1, "Stream"}, {9, "4"}}),
            goodLine({{1, "System"}, {9, "4"}}));
        row("cache mode of Windows", "cache-mode", goodLine({{9, "1"}}), goodLine({{9, "3"}}));
        row("cache mode of Linux", "cache-mode",
            goodLine({{9, "3"}, {11, "C:\\x"}, {12, "C:\\l"}, {13, "C:\\c"}}),
            goodLine({{9, "2"}, {11, "C:\\x"}, {12, "C:\\l"}, {13, "C:\\c"}}));
        row("cache mode of Linux on a share", "cache-mode",
            goodLine({{9, "3"}, {11, "\\\\nas\\x"}, {12, "\\\\nas\\l"}, {13, "\\\\nas\\c"}}),
            goodLine({{9, "2"}, {11, "\\\\nas\\x"}, {12, "\\\\nas\\l"}, {13, "\\\\nas\\c"}}));
        row("utf-8", "utf8-text", goodLine({{11, "/d/f\xC3\xBCr"}}), goodLine({{11, "/d/f\xFCr"}}));
        row("comment in utf-8", "utf8-text", "# f\xC3\xBCr\n" + goodLine(),
            "# f\xFCr\n" + goodLine());
    }

    void ruleHitsAndMisses()
    {
        QFETCH(QByteArray, rule);
        QFETCH(QByteArray, bad);
        QFETCH(QByteArray, good);
        QVERIFY(m_series->hits(rule, bad) >= 1);
        QCOMPARE(m_series->hits(rule, good), 0);
    }

    void utf8IsToldAtItsFirstByte()
    {
        m_series->put("a.dpc", goodLine({{11, "/d/\x7F"
                                              "f\xC3\xBCr"}}));
        QCOMPARE(m_series->said({"utf8-text"}), QStringList{"a.dpc:1:51 utf8-text"});
    }

    /// It does no harm to the tests, and one finding tells of the whole file.
    void firstCommentInUtf8IsANote()
    {
        QCOMPARE(m_series->hits("utf8-text", "# f\xC3\xBCr\n# \xC3\xA4\n" + goodLine()), 1);
        QCOMPARE(m_series->severity("utf8-text"), Severity::Note);
        m_series->put("a1.dpc", "# f\xC3\xBCr\n" + goodLine());
        QCOMPARE(m_series->said({"utf8-text"}),
                 (QStringList{"a.dpc:1:1 utf8-text", "a1.dpc:1:1 utf8-text"}));
        m_series->put("a.dpc", goodLine({{11, "/d/f\xC3\xBCr"}}));
        QCOMPARE(m_series->severity("utf8-text"), Severity::Warning);
    }

    /// One sentence for all parts, and none for the rest that does not load.
    void splitTaskIsOneFinding()
    {
        m_series->put("a.dpc", split("/d/[host].txt", "/d/\n[host].txt"));
        QCOMPARE(m_series->said({"split-line", "bad-line", "missing-fields"}),
                 QStringList{"a.dpc:1:58 split-line"});
        QVERIFY(m_series->text("split-line").contains("goes on to line 2"));
        // The line of another file does not go on.
        const QByteArray halves = split("/d/[host].txt", "/d/\n[host].txt");
        m_series->put("a.dpc", halves.left(halves.indexOf('\n') + 1));
        m_series->put("a1.dpc", halves.mid(halves.indexOf('\n') + 1));
        QCOMPARE(m_series->said({"split-line", "bad-line"}), QStringList{"a1.dpc:1:1 bad-line"});
        QVERIFY(QFile::remove(m_series->root() + "a1.dpc"));
        // Lines that end before the task does are not its parts.
        m_series->put("a.dpc", halves.left(halves.indexOf('\n') + 1) + "x;y\n");
        QCOMPARE(m_series->said({"split-line", "bad-line"}), QStringList{"a.dpc:2:1 bad-line"});
        // The first part may not load either.
        m_series->put("a.dpc", QByteArray(halves).replace(";10;", ";x;"));
        QCOMPARE(m_series->said({"split-line", "bad-line"}),
                 (QStringList{"a.dpc:1:22 bad-line", "a.dpc:1:57 split-line"}));
        // Nor is a line behind a whole task.
        m_series->put("a.dpc",
                      QByteArray(halves).replace(";true;", ";true") + goodLine({{1, "Posx"}}));
        QCOMPARE(m_series->said({"split-line", "bad-line"}),
                 (QStringList{"a.dpc:1:58 split-line", "a.dpc:3:1 bad-line"}));
        // In the _init file, in which the line may be a comment as well.
        m_series->put("a.dpc", goodLine());
        m_series->put("a_init.dpc", "# " + split("/d/x.dat", "/d/x.dat\n"));
        QCOMPARE(m_series->said({"split-line", "bad-line"}),
                 QStringList{"a_init.dpc:1:56 split-line"});
    }

    /// As many as a load takes for the info text.
    void commentsAreCountedUpTo5000()
    {
        const QByteArray bad("#\0\n", 3);
        const auto count = [&](int comments) {
            m_series->put("a.dpc", bad.repeated(comments) + goodLine());
            for (const Finding& finding : m_series->findings()) {
                if (finding.more > 0)
                    return maxFindingsPerRule + finding.more;
            }
            return 0;
        };
        QCOMPARE(count(maxSeriesComments - 1), maxSeriesComments - 1);
        QCOMPARE(count(maxSeriesComments), maxSeriesComments);
        QCOMPARE(count(maxSeriesComments + 1), maxSeriesComments);
    }

    void severityIsThatOfTheHarm()
    {
        m_series->put("a.dpc", '#' + QByteArray(1000, 'x') + '\n' + goodLine({{1, "WinApi"}}));
        QCOMPARE(m_series->severity("long-line"), Severity::Warning);
        QCOMPARE(m_series->severity("winapi"), Severity::Warning);
        m_series->put("a.dpc", goodLine().repeated(60));
        QCOMPARE(m_series->severity("long-file"), Severity::Warning);
        m_series->put("a.dpc", goodLine().repeated(60).left(maxConfigFile));
        QCOMPARE(m_series->severity("long-file"), Severity::Error);
    }

    void goodLineIsGood()
    {
        m_series->put("a.dpc", goodLine());
        m_series->setExisting("/d/");
        m_series->options().rulesOff = {ruleNamed("init-missing")};
        QCOMPARE(m_series->said(), QStringList());
    }

    void findingsPointAtTheField()
    {
        m_series->put("a.dpc", "# info\n  Posx ; flush;\n" + goodLine({{6, " 9"}, {9, "x"}}));
        QCOMPARE(m_series->said({"bad-line"}),
                 (QStringList{"a.dpc:2:3 bad-line", "a.dpc:3:38 bad-line"}));
    }

    void fileSizePointsAtTheLastCharacterThatASaveKeeps()
    {
        QByteArray content;
        while (content.size() < maxConfigFile)
            content += '#' + QByteArray(98, 'x') + '\n';
        QCOMPARE(m_series->hits("long-file", content), 0);
        m_series->put("a.dpc", content.left(4990) + QByteArray(20, 'y'));
        QCOMPARE(m_series->said({"long-file"}), QStringList{"a.dpc:50:100 long-file"});
        m_series->put("a.dpc", content + "#\n");
        QCOMPARE(m_series->said({"long-file"}), QStringList{"a.dpc:51:1 long-file"});
    }

    void textsSayFromWhatToWhat()
    {
        m_series->put("a.dpc", goodLine({{7, "2000000"}}));
        QCOMPARE(
            m_series->text("changed-value"),
            QString("file size 2000000 KiB becomes 1048576 KiB for a Posix Write; write the value "
                    "that the editor uses"));
        m_series->put("a.dpc", goodLine({{7, "4194304"}}));
        QCOMPARE(
            m_series->text("size-overflow"),
            QString("file size '4194304' is too large: it becomes 0 KiB; write a smaller number"));
    }

    void controlCharactersDoNotReachTheTerminal()
    {
        m_series->put("a.dpc", "\x1B[31mPosix;\n");
        QVERIFY(m_series->text("bad-line").contains("'\\x1B[31mPosix'"));
    }

private:
    /// A line that was cut at this length.
    static QByteArray cutLine(int length)
    {
        const QByteArray path = '/' + QByteArray(290, 'x');
        return goodLine({{10, path}, {11, path}, {12, path}, {13, path}}).left(length) + '\n';
    }

    /// A line of this length in which nothing lacks.
    static QByteArray paddedLine(int length)
    {
        const QByteArray line = goodLine();
        return goodLine({{14, QByteArray(length + 1 - line.size(), ' ') + "true"}});
    }

    /// The good line with a line end in it.
    static QByteArray split(const QByteArray& from, const QByteArray& to)
    {
        return goodLine().replace(from, to);
    }

    QScopedPointer<SeriesFolder> m_series;
};

QTEST_APPLESS_MAIN(TestLineRules)
#include "tst_linerules.moc"
