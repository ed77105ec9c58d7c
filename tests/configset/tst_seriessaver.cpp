#include "configset/seriessaver.h"
#include "shared/kvtext.h"
#include "tests/support/tasks.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QScopedPointer>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

namespace {

QByteArray contentOf(const QString& file)
{
    QFile input(file);
    return input.open(QIODevice::ReadOnly) ? input.readAll()
                                           : QByteArray("not readable: " + file.toUtf8());
}

QStringList filesBelow(const QString& folder)
{
    const QDir root(folder);
    QStringList files;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        files += root.relativeFilePath(it.next());
    files.sort();
    return files;
}

} // namespace

class TestSeriesSaver : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder.reset(new QTemporaryDir);
        QVERIFY(m_folder->isValid());
        m_root = m_folder->path() + '/';
    }

    void seriesAndInitFileLieWhereTheyBelong()
    {
        TaskList tasks{taskTo("/t/a"), marker(), taskTo("/t/b"), marker(), taskTo("/t/c")};
        saveSeries(tasks, "info", {m_root, "mytest"});
        QCOMPARE(filesBelow(m_root), (QStringList{"_wait", "_wait/mytest.dpc", "_wait/mytest1.dpc",
                                                  "_wait/mytest2.dpc", "mytest_init.dpc"}));
        const QString next = m_root + "_wait/mytest1.dpc\n";
        QCOMPARE(contentOf(m_root + "_wait/mytest.dpc"),
                 ("# info\n\n" + lineTo("/t/a") + next).toLatin1());
        QCOMPARE(contentOf(m_root + "_wait/mytest2.dpc"), lineTo("/t/c").toLatin1());
        QCOMPARE(contentOf(m_root + "mytest_init.dpc"), QByteArray());
    }

    void seriesOfOneFileMakesItsFolderToo()
    {
        TaskList tasks{taskTo("/t/a")};
        saveSeries(tasks, "", {m_root, "one"});
        QCOMPARE(filesBelow(m_root), (QStringList{"_wait", "_wait/one.dpc", "one_init.dpc"}));
    }

    void listThatEndsWithAMarkerWritesAnEmptyLastFile()
    {
        TaskList tasks{taskTo("/t/a"), marker()};
        saveSeries(tasks, "", {m_root, "a"});
        QCOMPARE(contentOf(m_root + "_wait/a1.dpc"), QByteArray());
    }

    void followUpFilesGoToTheFolderWhereWaitCantBeMade()
    {
        QFile inTheWay(m_root + "_wait");
        QVERIFY(inTheWay.open(QIODevice::WriteOnly));
        inTheWay.close();
        TaskList tasks{taskTo("/t/a"), marker(), taskTo("/t/b")};
        saveSeries(tasks, "", {m_root, "a"});
        QCOMPARE(filesBelow(m_root), (QStringList{"_wait", "a1.dpc", "a_init.dpc"}));
        QCOMPARE(contentOf(m_root + "a1.dpc"), lineTo("/t/b").toLatin1());
        QCOMPARE(contentOf(m_root + "_wait"), QByteArray());
    }

    void secondSaveReplacesTheFirst()
    {
        TaskList tasks{taskTo("/t/a"), marker(), taskTo("/t/b")};
        saveSeries(tasks, "x", {m_root, "a"});
        saveSeries(tasks, "x", {m_root, "a"});
        QCOMPARE(contentOf(m_root + "_wait/a1.dpc"), lineTo("/t/b").toLatin1());
        QCOMPARE(contentOf(m_root + "_wait/a.dpc").count("# x"), 1);
    }

    void filesOfALongerOlderSeriesStay()
    {
        TaskList longer{taskTo("/t/a"), marker(), taskTo("/t/b")};
        saveSeries(longer, "", {m_root, "a"});
        TaskList shorter{taskTo("/t/c")};
        saveSeries(shorter, "", {m_root, "a"});
        QCOMPARE(contentOf(m_root + "_wait/a1.dpc"), lineTo("/t/b").toLatin1());
    }

    void contentIsCutAt5000Characters()
    {
        TaskList tasks;
        for (int i = 0; i < 100; ++i)
            tasks += taskTo("/t/a");
        const QByteArray whole =
            ("# \n\n" + lineTo("/t/a").repeated(100) + m_root + "_wait/a1.dpc\n").toLatin1();
        tasks += marker();
        saveSeries(tasks, "", {m_root, "a"});
        QVERIFY(whole.size() > 5000);
        QCOMPARE(contentOf(m_root + "_wait/a.dpc"), whole.left(5000));
    }

    void contentOfExactly5000CharactersIsWhole()
    {
        for (const int surplus : {-1, 0, 1}) {
            TaskList tasks{taskTo("/t/a")};
            const int rest = lineTo("/t/a").size() + 4;
            const QString info(5000 + surplus - rest, 'i');
            saveSeries(tasks, info, {m_root, "a"});
            QCOMPARE(contentOf(m_root + "_wait/a.dpc"),
                     ("# " + info + "\n\n" + lineTo("/t/a")).toLatin1().left(5000));
        }
    }

    void fileNamesAreCutAt250Characters()
    {
        const QString folder = m_root + QString(100, 'f') + '/';
        const QString base(250 - (folder.size() + 6) - 2, 'b');
        TaskList tasks{taskTo("/t/a")};
        saveSeries(tasks, "", {folder, base});
        // "/_wait/" + base + ".d" is what 250 characters hold.
        QCOMPARE((folder + "_wait/" + base + ".d").size(), 250);
        QVERIFY(QFile::exists(folder + "_wait/" + base + ".d"));
        QVERIFY(!QFile::exists(folder + "_wait/" + base + ".dpc"));
    }

    void lettersOutsideAsciiReachFolderPathsAndText()
    {
        const QString umlauts = QString::fromUtf8("Prüfung");
        TestTask task = taskTo("");
        task.destPath = kvToString8<500>(QString::fromUtf8("/t/größe.dat"));
        TaskList tasks{task, marker()};
        const QString folder = m_root + umlauts + '/';
        saveSeries(tasks, QString::fromUtf8("für alle €"), {folder, umlauts});
        const QByteArray content = contentOf(folder + "_wait/" + umlauts + ".dpc");
        QVERIFY(content.startsWith("# f\xFCr alle ?\n\n"));
        QVERIFY(content.contains("/t/gr\xF6\xDF"
                                 "e.dat;"));
        QVERIFY(content.endsWith("/Pr\xFC"
                                 "fung/_wait/Pr\xFC"
                                 "fung1.dpc\n"));
    }

    void folderOutsideLatin1GetsNothing()
    {
        // In 8 bits each folder has another one's name, which must stay as it is.
        const QString folders[] = {m_root + QString::fromUtf8("Δοκιμή/"),
                                   m_root + QString::fromUtf8("a/€/b/"),
                                   m_root + QString::fromUtf8("\xF0\x9F\x92\xBE/")};
        for (const QString& folder : folders) {
            QVERIFY(QDir().mkpath(folder));
            const QStringList before = filesBelow(m_root);
            TaskList tasks{taskTo("/t/a"), marker(), taskTo("/t/b")};
            saveSeries(tasks, "", {folder, "a"});
            QCOMPARE(filesBelow(m_root), before);
            // As after any save that fails.
            QCOMPARE(tasks[2].configId, 1);
        }
    }

    void nameOutsideLatin1IsWrittenWithQuestionMarks()
    {
        TaskList tasks{taskTo("/t/a")};
        saveSeries(tasks, "", {m_root, QString::fromUtf8("a€")});
        QCOMPARE(filesBelow(m_root), (QStringList{"_wait", "_wait/a?.dpc", "a?_init.dpc"}));
    }

    void endlessIterationsAreSavedAtOnce()
    {
        const int most = std::numeric_limits<int>::max();
        for (const char* name : {"[cfgPath]/src_[iter].bin", "/s/[date]", "[iter]/../x"}) {
            TestTask task = taskTo("[cfgPath]/[iter]/a");
            task.sourcePath = path(name);
            task.logPath = path("/l/[iter]/[host]/log");
            task.csvPath = path("/c/csv");
            task.iterations = 1000;
            TaskList few{task, marker(), task};
            saveSeries(few, "", {m_root, "few"});
            task.iterations = most;
            TaskList many{task, marker(), task};
            saveSeries(many, "", {m_root, "many"});
            const QByteArray init = contentOf(m_root + "many_init.dpc");
            QCOMPARE(init.size(), 5000);
            if (!QByteArray(name).contains("date"))
                QCOMPARE(init, contentOf(m_root + "few_init.dpc"));
        }
    }

    void existingSourcesAreCommentedOut()
    {
        TestTask task = taskTo("");
        task.sourcePath = kvToString8<500>(m_root + "there.dat");
        TestTask missing = taskTo("");
        missing.sourcePath = kvToString8<500>(m_root + "missing.dat");
        QFile there(m_root + "there.dat");
        QVERIFY(there.open(QIODevice::WriteOnly));
        TaskList tasks{task, missing};
        saveSeries(tasks, "", {m_root, "a"});
        const QList<QByteArray> lines = contentOf(m_root + "a_init.dpc").split('\n');
        QCOMPARE(lines.size(), 3);
        QVERIFY(lines[0].startsWith("# Stream;") && lines[0].contains("/there.dat;"));
        QVERIFY(lines[1].startsWith("Stream;") && lines[1].contains("/missing.dat;"));
    }

    void fileThatTheSaveItselfMadeExists()
    {
        // Whether a file is there is asked after the series was written.
        TestTask task = taskTo("");
        task.sourcePath = kvToString8<500>(m_root + "_wait/a.dpc");
        TaskList tasks{task};
        saveSeries(tasks, "", {m_root, "a"});
        QVERIFY(contentOf(m_root + "a_init.dpc").startsWith("# Stream;"));
    }

private:
    QScopedPointer<QTemporaryDir> m_folder;
    QString m_root;
};

QTEST_APPLESS_MAIN(TestSeriesSaver)
#include "tst_seriessaver.moc"
