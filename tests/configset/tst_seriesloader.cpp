#include "configset/infotext.h"
#include "configset/seriesloader.h"
#include "configset/seriessaver.h"
#include "tests/support/files.h"
#include "tests/support/tasks.h"
#include "tests/support/warnings.h"

#include <QDir>
#include <QFile>
#include <QScopedPointer>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

class TestSeriesLoader : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder.reset(new QTemporaryDir);
        QVERIFY(m_folder->isValid());
        m_root = m_folder->path() + '/';
        QVERIFY(QDir(m_root).mkdir("_wait"));
        m_info.clear();
        m_rejected.clear();
    }

    void savedSeriesComesBack()
    {
        TaskList tasks{taskTo("/t/a"), marker(), taskTo("/t/b"), marker(), taskTo("/t/c")};
        saveSeries(tasks, "one\ntwo", {m_root, "mytest"});
        QCOMPARE(load(m_root + "_wait/mytest.dpc"),
                 (QStringList{"/t/a", "next " + m_root + "_wait/mytest1.dpc", "/t/b",
                              "next " + m_root + "_wait/mytest2.dpc", "/t/c"}));
        QCOMPARE(m_info, (QStringList{"one", "two"}));
        QCOMPARE(m_rejected, QStringList());
    }

    void bothFoldersAreReadInSeriesOrder()
    {
        write("a.dpc", lineTo("/1"));
        write("_wait/a.dpc", lineTo("/2"));
        write("a1.dpc", lineTo("/3"));
        write("_wait/a1.dpc", lineTo("/4"));
        write("a19.dpc", lineTo("/5"));
        write("_wait/a20.dpc", lineTo("/unread"));
        write("a_init.dpc", lineTo("/unread"));
        for (const char* chosen : {"a.dpc", "a1.dpc", "a19.dpc", "a7.dpc"})
            QCOMPARE(load(m_root + chosen), (QStringList{"/1", "/2", "/3", "/4", "/5"}));
        // Chosen inside "_wait", that is the folder.
        QCOMPARE(load(m_root + "_wait/a1.dpc"), (QStringList{"/2", "/4"}));
    }

    void initFileIsItsOwnSeries()
    {
        write("a_init.dpc", "# " + lineTo("/there") + lineTo("/missing"));
        QCOMPARE(load(m_root + "a_init.dpc"), QStringList{"/missing"});
        // The line of a file that is there is a comment like any other.
        QCOMPARE(m_info, QStringList{lineTo("/there").trimmed()});
    }

    void namesWithDotsLoadBackAndNoOtherSeriesDoes()
    {
        write("v1.dpc", lineTo("/other"));
        write("nas.dpc", lineTo("/other"));
        TaskList tasks{taskTo("/t/a"), marker(), taskTo("/t/b")};
        for (const char* chosen : {"v1.2.dpc", "nas.lan.dpc"}) {
            const SeriesName name = seriesNameForSaving(m_root + chosen);
            saveSeries(tasks, "", name);
            QCOMPARE(load(seriesFile(name.folder + "_wait/", name.baseName, 1)),
                     (QStringList{"/t/a", "next " + m_root + "_wait/" + name.baseName + "1.dpc",
                                  "/t/b"}));
        }
    }

    void folderWhoseNameEndsInWaitIsNoWaitFolder()
    {
        QVERIFY(QDir(m_root).mkpath("my_wait"));
        write("mys.dpc", lineTo("/other"));
        write("my_wait/mys.dpc", lineTo("/other"));
        TaskList tasks{taskTo("/t/a"), marker(), taskTo("/t/b")};
        saveSeries(tasks, "", seriesNameForSaving(m_root + "my_wait/s.dpc"));
        write("my_wait/s.dpc", lineTo("/t/c"));
        QCOMPARE(load(m_root + "my_wait/s.dpc"),
                 (QStringList{"/t/c", "/t/a", "next " + m_root + "my_wait/_wait/s1.dpc", "/t/b"}));
    }

    void byteOrderMarkIsSkippedAtTheStartOnly()
    {
        const QByteArray mark("\xEF\xBB\xBF");
        test::put(m_root + "a.dpc", mark + "# info\n" + mark + lineTo("/1").toLatin1());
        test::put(m_root + "_wait/a.dpc", mark + lineTo("/2").toLatin1());
        test::put(m_root + "a1.dpc", mark);
        test::put(m_root + "a2.dpc", mark.left(2) + lineTo("/3").toLatin1());
        test::put(m_root + "a3.dpc", mark + mark + lineTo("/4").toLatin1());
        QCOMPARE(load(m_root + "a.dpc"), QStringList{"/2"});
        QCOMPARE(m_info, QStringList{"info"});
        QCOMPARE(m_rejected.size(), 3);
    }

    void commentsOfTheFirstFileOnly()
    {
        write("a.dpc", lineTo("/1"));
        write("_wait/a.dpc", "#  first \n" + lineTo("/2") + "#second\n");
        write("a1.dpc", "# never\n" + lineTo("/3"));
        load(m_root + "a.dpc");
        QCOMPARE(m_info, (QStringList{"first", "second"}));
        // An info text that is there before stays.
        load(m_root + "a.dpc");
        QCOMPARE(m_info, (QStringList{"first", "second"}));
    }

    void onlyALineThatBeginsWithTheMarkIsAComment()
    {
        write("a.dpc", " # no comment\n#\n" + lineTo("/1"));
        QCOMPARE(load(m_root + "a.dpc"), QStringList{"/1"});
        QCOMPARE(m_rejected, QStringList{"# no comment <- " + m_root + "a.dpc"});
        QCOMPARE(m_info, QStringList{""});
    }

    void badLinesLoseNothingElse()
    {
        write("a.dpc", "garbage\n" + lineTo("/1") + "Posix;;;x;\n\t \n" + lineTo("/2") +
                           QString::fromUtf8("  WinApi;NOflush;  \nfür\n"));
        QCOMPARE(load(m_root + "a.dpc"), (QStringList{"/1", "/2"}));
        const QString from = " <- " + m_root + "a.dpc";
        QCOMPARE(m_rejected,
                 (QStringList{"garbage" + from, "Posix;;;x;" + from, "WinApi;NOflush;" + from,
                              QString::fromUtf8("für") + from}));
    }

    void windowsLineEndsAndMissingLastLineEnd()
    {
        write("a.dpc",
              "# info\r\n\r\n" + lineTo("/1").replace("\n", "\r\n") + lineTo("/2").trimmed());
        QCOMPARE(load(m_root + "a.dpc"), (QStringList{"/1", "/2"}));
        QCOMPARE(m_info, QStringList{"info"});
        QCOMPARE(m_rejected, QStringList());
    }

    void lastLineMayBeOneCharacterWithoutALineEnd()
    {
        write("a.dpc", "\nx");
        QCOMPARE(load(m_root + "a.dpc"), QStringList());
        QCOMPARE(m_rejected, QStringList{"x <- " + m_root + "a.dpc"});
    }

    void emptyFilesAndFilesOfLineEndsYieldNothing()
    {
        for (const char* content : {"", "\n", "\n\n\n", "\r\n \n"}) {
            write("a.dpc", content);
            QCOMPARE(load(m_root + "a.dpc"), QStringList());
            QCOMPARE(m_rejected, QStringList());
        }
    }

    void missingFilesAreSkipped()
    {
        QCOMPARE(load(m_root + "nothing.dpc"), QStringList());
        QCOMPARE(m_rejected, QStringList());
    }

    void unreadableFileYieldsNothing()
    {
        // Root reads everything, so another user looks.
        write("a.dpc", lineTo("/1"));
        QCOMPARE(::chmod(QFile::encodeName(m_root + "a.dpc"), 0), 0);
        const bool isRoot = ::geteuid() == 0;
        if (isRoot)
            QCOMPARE(::seteuid(65534), 0);
        const QStringList loaded = load(m_root + "a.dpc");
        if (isRoot)
            QCOMPARE(::seteuid(0), 0);
        QCOMPARE(loaded, QStringList());
        QCOMPARE(m_rejected, QStringList());
    }

    void folderWithTheNameOfAFileYieldsNothing()
    {
        QVERIFY(QDir(m_root).mkdir("a.dpc"));
        write("a1.dpc", lineTo("/1"));
        const WarningCollector warnings;
        QCOMPARE(load(m_root + "a.dpc"), QStringList{"/1"});
        QCOMPARE(m_rejected, QStringList());
        QCOMPARE(warnings.messages(), QStringList());
    }

    void endlessFilesAreNotOpened()
    {
        QCOMPARE(::mkfifo(QFile::encodeName(m_root + "a.dpc"), 0600), 0);
        QVERIFY(QFile::link("/dev/zero", m_root + "a1.dpc"));
        QVERIFY(QFile::link(m_root + "a.dpc", m_root + "_wait/a.dpc"));
        write("a2.dpc", lineTo("/1"));
        QCOMPARE(load(m_root + "a.dpc"), QStringList{"/1"});
        QCOMPARE(m_rejected, QStringList());
    }

    void linksToFilesAreFollowed()
    {
        write("real", lineTo("/1"));
        QVERIFY(QFile::link(m_root + "real", m_root + "a.dpc"));
        QVERIFY(QFile::link(m_root + "nowhere", m_root + "a1.dpc"));
        QCOMPARE(load(m_root + "a.dpc"), QStringList{"/1"});
    }

    void linesAreCutAt1000Characters()
    {
        const QString head = "Posix;;;;;;;;;";
        // The last characters of a line count only as far as they fit.
        write("a.dpc", head + '/' + QString(2000, 's') + ";/d;;;true;\n" + lineTo("/1"));
        QCOMPARE(load(m_root + "a.dpc"), (QStringList{"", "/1"}));
        write("a.dpc", QString(1001 - 4, 'n') + ".dpc\n" + QString(1000 - 4, 'n') + ".dpc\n");
        load(m_root + "a.dpc");
        QCOMPARE(m_rejected.size(), 1);
        QCOMPARE(m_rejected[0].indexOf(" <- "), 1000);
    }

    void binaryLinesEndAtTheirFirstZero()
    {
        QByteArray content("Bytes\0Posix;;;\n", 15);
        content += QByteArray(300000, '\0') + "\n" + lineTo("/1").toLatin1();
        test::put(m_root + "a.dpc", content);
        QCOMPARE(load(m_root + "a.dpc"), QStringList{"/1"});
        QCOMPARE(m_rejected, QStringList{"Bytes <- " + m_root + "a.dpc"});
    }

    void everyByteIsReadAsLatin1()
    {
        QByteArray bytes;
        for (int code = 1; code < 256; ++code) {
            if (code != ';' && code != '\n')
                bytes += static_cast<char>(code);
        }
        test::put(m_root + "a.dpc", "Posix;;;;;;;;;;/x" + bytes + "x;;;true;\n");
        QCOMPARE(load(m_root + "a.dpc"), QStringList{QString::fromLatin1("/x" + bytes + "x")});
    }

    void hugeFileIsReadWithinBounds()
    {
        // One line of a gigabyte without a byte on the disk.
        const WarningCollector warnings;
        test::put(m_root + "a.dpc", lineTo("/1").toLatin1() + "Bytes");
        QCOMPARE(::truncate(QFile::encodeName(m_root + "a.dpc"), 1024L * 1024 * 1024), 0);
        QCOMPARE(load(m_root + "a.dpc"), QStringList{"/1"});
        QCOMPARE(m_rejected.size(), 1);
        QCOMPARE(warnings.messages(), QStringList());
    }

    void seriesHasAtMost50000Entries()
    {
        // Short lines in two files; a rejected line and a marker are entries like the others.
        write("a.dpc", "garbage\n/x.dpc\n" + QString("\n# c\nPosix\n").repeated(29998));
        write("_wait/a.dpc",
              QString("Posix\n").repeated(19999) + lineTo("/last") + "Posix\nbeyond\nPosix\n");
        write("a1.dpc", "beyond\n" + lineTo("/beyond"));
        const QStringList loaded = load(m_root + "a.dpc");
        QCOMPARE(loaded.size(), 49999);
        QCOMPARE(loaded.last(), QString("/last"));
        QCOMPARE(m_rejected.size(), 1);
    }

    void rejectedLinesAreCountedToo()
    {
        write("a.dpc", QString("x\n").repeated(50000) + lineTo("/beyond"));
        QCOMPARE(load(m_root + "a.dpc"), QStringList());
        QCOMPARE(m_rejected.size(), 50000);
    }

    void infoTextIsThatOfTheEditorsField()
    {
        const auto textOf = [](const QStringList& lines) {
            InfoText info;
            for (const QString& line : lines)
                info.addLine(line);
            return info.text();
        };
        QCOMPARE(textOf({}), QString());
        QCOMPARE(textOf({"a"}), QString("a"));
        QCOMPARE(textOf({"a", "b"}), QString("a\nb"));
        QCOMPARE(textOf({"", "", "a", "", "b", ""}), QString("a\n\nb\n"));
        QCOMPARE(textOf({QString("a") + QChar(QChar::Nbsp) + "b\rc"}), QString("a b\nc"));

        write("a.dpc", "# one\n#\n# two\nbad line\n" + lineTo("/1"));
        write("a1.dpc", "# another file\n" + lineTo("/2"));
        InfoText info;
        TaskList tasks;
        loadSeries({m_root, "a"}, tasks, silentListener(info));
        QCOMPARE(info.text(), QString("one\n\ntwo"));
        QCOMPARE(tasks.size(), 2);
    }

    void infoTextHasAtMost5000Lines()
    {
        // Empty comments leave the info text empty, so that the next file's count as well.
        write("a.dpc", QString("#\n").repeated(3000));
        write("a1.dpc", QString("# text\n").repeated(2500) + lineTo("/1"));
        write("a2.dpc", "# other file\n" + lineTo("/2"));
        QStringList info;
        TaskList tasks;
        loadSeries({m_root, "a"}, tasks,
                   {[&] { return info.filter("text").isEmpty(); },
                    [&](const QString& text) { info += text; },
                    [](const QString&, const QString&) {}});
        QCOMPARE(tasks.size(), 2);
        QCOMPARE(info.size(), 5000);
        QCOMPARE(info.filter("text").size(), 2000);
    }

    void linesAcrossTheBufferAreWhole()
    {
        // Lines of all phases against the buffer's length.
        QString content;
        for (int i = 0; i < 600; ++i)
            content += "/" + QString::number(i).rightJustified(1 + i % 90, 'n') + ".dpc\n";
        write("a.dpc", content);
        QStringList expected;
        for (const QString& line : content.split('\n', Qt::SkipEmptyParts))
            expected += "next " + line;
        QCOMPARE(load(m_root + "a.dpc"), expected);
    }

    void pathIsReplacedByTheSystemsForm()
    {
        QString file = m_root + "a.dpc";
        TaskList tasks;
        loadConfigFile(file, tasks, listener());
        QCOMPARE(file, m_root + "a.dpc");
    }

    void umlautsInFolderAndName()
    {
        const QString folder = m_root + QString::fromUtf8("Prüfung/");
        QVERIFY(QDir().mkpath(folder + "_wait"));
        TaskList tasks{taskTo("/t/\xFC"), marker(), taskTo("/t/b")};
        saveSeries(tasks, QString::fromUtf8("für"), {folder, QString::fromUtf8("größe")});
        QCOMPARE(load(folder + QString::fromUtf8("größe.dpc")),
                 (QStringList{QString::fromUtf8("/t/ü"),
                              "next " + folder + QString::fromUtf8("_wait/größe1.dpc"), "/t/b"}));
        QCOMPARE(m_info, QStringList{QString::fromUtf8("für")});
    }

    void listIsNotCopied()
    {
        for (int n = 0; n < 20; ++n)
            write(QString("a%1.dpc").arg(n > 0 ? QString::number(n) : QString()),
                  lineTo("/1").repeated(10));
        TaskList tasks;
        tasks.append(taskTo("/kept"));
        const TestTask* const first = &tasks.constFirst();
        loadSeries({m_root, "a"}, tasks, listener());
        QCOMPARE(tasks.size(), 201);
        // A copy of the list would have moved its records.
        QCOMPARE(&tasks.constFirst(), first);
    }

private:
    void write(const QString& name, const QString& content)
    {
        test::put(m_root + name, content.toLatin1());
    }

    LoadListener listener()
    {
        return {[this] { return m_info.join('\n').isEmpty(); },
                [this](const QString& text) { m_info += text; },
                [this](const QString& line, const QString& file) {
                    m_rejected += line + " <- " + file;
                }};
    }

    /// The destinations of the tasks and "next ..." for markers.
    QStringList load(const QString& chosen)
    {
        TaskList tasks;
        loadSeries(seriesNameForLoading(chosen), tasks, listener());
        QStringList texts;
        for (const TestTask& task : qAsConst(tasks))
            texts += task.waitForNextConfig ? "next " + kvToQString(task.sourcePath)
                                            : kvToQString(task.destPath);
        return texts;
    }

    QScopedPointer<QTemporaryDir> m_folder;
    QString m_root;
    QStringList m_info;
    QStringList m_rejected;
};

QTEST_APPLESS_MAIN(TestSeriesLoader)
#include "tst_seriesloader.moc"
