#include "check/foldernames.h"
#include "check/seriesfinder.h"
#include "tests/support/files.h"

#include <QDir>
#include <QFileInfo>
#include <QScopedPointer>
#include <QTemporaryDir>
#include <QTest>

/// Which series a path leads to.
class TestSeriesFinder : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder.reset(new QTemporaryDir);
        m_root = m_folder->path() + '/';
        QVERIFY(QDir(m_root).mkdir("_wait"));
    }

    void pathWithoutANameIsAProblem()
    {
        // A system call would end at the zero character.
        for (const QString& path : {QString(), QString(QChar(0)), m_root + QChar(0) + "a.dpc"}) {
            QCOMPARE(findSeries(path).problem, std::string("a path is empty"));
            QVERIFY(findSeries(path).series.empty());
        }
    }

    void oneSeriesIsThatOfAFileOrOfAFolderWithNoOther()
    {
        put("a.dpc");
        put("_wait/a1.dpc");
        put("a_init.dpc");
        for (const char* name : {"", "a.dpc", "a1.dpc", "_wait"}) {
            const SeriesSearch search = findOneSeries(m_root + name);
            QCOMPARE(search.problem, std::string());
            QCOMPARE(search.series.size(), size_t(1));
            QCOMPARE(search.series.front().name.baseName, QString("a"));
        }
        put("b.dpc");
        QCOMPARE(problemOf(m_root),
                 "there are 2 series in '" + m_root + "': name a file of the one that is meant");
        QVERIFY(findOneSeries(m_root).series.empty());
        QCOMPARE(findOneSeries(m_root + "b.dpc").series.front().name.baseName, QString("b"));
    }

    void foldersNamedAsConfigFilesAreLeftOut()
    {
        QVERIFY(QDir(m_root).mkdir("a.dpc"));
        QVERIFY(QDir(m_root).mkdir("b.dpc.dpc"));
        QCOMPARE(problemOf(m_root), "no config files in '" + m_root + '\'');
        QVERIFY(findSeries(m_root).notLoaded.isEmpty());
    }

    void linkToAConfigFileIsOne()
    {
        QVERIFY(QDir(m_root).mkdir("folder"));
        put("x.txt");
        QVERIFY(QFile::link("x.txt", m_root + "file.dpc"));
        QVERIFY(QFile::link("folder", m_root + "link.dpc"));
        QVERIFY(QFile::link("none", m_root + "dead.dpc"));
        QStringList listed;
        for (const FolderEntry& entry : configFilesIn(m_root))
            listed += entry.name + (entry.isRegular ? " is a file" : " is none");
        QCOMPARE(listed, (QStringList{"dead.dpc is none", "file.dpc is a file"}));
    }

    void folderWithoutASeriesIsAProblem()
    {
        QCOMPARE(problemOf(m_root), "no config files in '" + m_root + '\'');
        // A load of "b.dpc" does not look for it.
        put("b.dpc.dpc");
        QCOMPARE(problemOf(m_root), "no series in '" + m_root + '\'');
        QCOMPARE(findSeries(m_root).problem, std::string());
        QCOMPARE(findSeries(m_root).notLoaded, QStringList{m_root + "b.dpc.dpc"});
    }

    void fileOfNoSeriesIsAProblem()
    {
        put("b.dpc.dpc");
        put("a.txt");
        const QString start = '\'' + m_root;
        QCOMPARE(problemOf(m_root + "a.txt"),
                 start + "a.txt' is not a config file: its name does not end in .dpc");
        QCOMPARE(problemOf(m_root + "none.txt"), start + "none.txt' does not exist");
        QCOMPARE(problemOf(m_root + "none.dpc"),
                 start + "none.dpc' does not exist, nor does another file of its series");
        QCOMPARE(problemOf(m_root + "b.dpc.dpc"), "the editor would not load " + start +
                                                      "b.dpc.dpc': by its name it looks for "
                                                      "'b.dpc'");
    }

    void anyFileOfASeriesLeadsToIt()
    {
        put("_wait/a3.dpc");
        // The first one need not be there, nor the one that is named.
        for (const char* name : {"a.dpc", "a3.dpc", "a19.dpc"})
            QCOMPARE(findSeries(m_root + name).problem, std::string());
        QVERIFY(!findSeries(m_root + "b3.dpc").problem.empty());
    }

    /// The folder above reads the files in "_wait" as well, and not the other way round.
    void seriesOfTheFolderAboveIsKept()
    {
        const FoundSeries above{{m_root, "a"}, "x/"};
        const FoundSeries waiting{{m_root + "_wait/", "a"}, "y/"};
        const FoundSeries again{{m_root + "_wait/", "a"}, "z/"};
        const auto kept = [](const std::vector<FoundSeries>& all) {
            QStringList folders;
            for (const FoundSeries& series : withoutDuplicates(all))
                folders += series.shownFolder;
            return folders;
        };
        QCOMPARE(kept({above, waiting}), QStringList{"x/"});
        QCOMPARE(kept({waiting, again, above}), QStringList{"x/"});
        QCOMPARE(kept({waiting, again}), QStringList{"y/"});
        QCOMPARE(kept({waiting, {{m_root, "b"}, "b/"}}), (QStringList{"y/", "b/"}));
        QCOMPARE(kept({{{m_root, "a_init"}, "init/"}, above}), QStringList{"x/"});
        QCOMPARE(kept({{{m_root, "b_init"}, "init/"}, above}), (QStringList{"init/", "x/"}));
    }

    void foldersThatDoNotExistAreNotTheSame()
    {
        const std::vector<FoundSeries> gone = {{{m_root + "one/", "a"}, "one/"},
                                               {{m_root + "two/", "a"}, "two/"},
                                               {{m_root + "one/", "a"}, "again/"}};
        QCOMPARE(withoutDuplicates(gone).size(), size_t(2));
    }

private:
    void put(const QString& name) { test::put(m_root + name, "x\n"); }

    static QString problemOf(const QString& path)
    {
        return QString::fromStdString(findOneSeries(path).problem);
    }

    QScopedPointer<QTemporaryDir> m_folder;
    QString m_root;
};

QTEST_APPLESS_MAIN(TestSeriesFinder)
#include "tst_seriesfinder.moc"
