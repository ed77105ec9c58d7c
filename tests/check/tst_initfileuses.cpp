#include "tests/check/seriesfolder.h"
#include "tests/check/tasklines.h"

/// The rules for sources and for what the "_init" file makes.
class TestInitFileUses : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_series.reset(new SeriesFolder); }

    /// Nothing has to be made before.
    void filesThatTasksWriteThemselvesNeedNoInitFile()
    {
        for (const QByteArray& lines :
             {writing("[cfgPath]/x") + reading("[cfgPath]/x", 2048),
              writing("[cfgPath]/x[iter]", 1024, 3) + reading("[cfgPath]/x2"),
              writing("[cfgPath]/x") + task("[cfgPath]/x", "[cfgPath]/y") +
                  reading("[cfgPath]/y")}) {
            m_series->put("a.dpc", lines);
            QCOMPARE(m_series->said(), QStringList());
            m_series->put("a_init.dpc", dummy);
            QCOMPARE(m_series->said(), QStringList());
            QVERIFY(QFile::remove(m_series->root() + "a_init.dpc"));
        }
    }

    void sizesThatWantTheSameSourceAcrossConfigFiles()
    {
        const QByteArray source = "[cfgPath]/testfile_[cfgName]-[cfgTaskID].dat";
        m_series->put("a_init.dpc", making("[cfgPath]/testfile_a-0.dat") + dummy);
        m_series->put("a.dpc", reading(source) + "[cfgPath]/a1.dpc\n");
        m_series->put("a1.dpc", reading(source, 2048));
        QCOMPARE(m_series->errorsAndWarnings(), QStringList{"a1.dpc:1:42 source-size"});
        QVERIFY(m_series->text("source-size").contains("2048 KiB here and with 1024 KiB in"));
        // A file that is there has the size that it has.
        m_series->setExisting(m_series->root() + "testfile_a-0.dat", 777);
        m_series->put("a_init.dpc", "# " + making("[cfgPath]/testfile_a-0.dat") + dummy);
        QCOMPARE(m_series->errorsAndWarnings(), QStringList());
    }

    void aSourceThatNothingMakesHasNoSizeToCompare()
    {
        m_series->put("a_init.dpc", "# " + making("[cfgPath]/s.dat") + dummy);
        const QByteArray two = reading("[cfgPath]/s.dat") + reading("[cfgPath]/s.dat", 2048);
        QCOMPARE(m_series->hits("source-size", two), 0);
    }

    /// With the source itself, which a save would put into the "_init" file.
    void sizesOfASourceThatNothingMakesYet()
    {
        const QByteArray two = reading("[cfgPath]/s.dat") + reading("[cfgPath]/s.dat", 2048);
        QCOMPARE(m_series->hits("source-size", two), 1);
        QCOMPARE(m_series->hits("source-size", writing("[cfgPath]/s.dat") + two), 0);
        m_series->setExisting(m_series->root() + "s.dat", 777);
        QCOMPARE(m_series->hits("source-size", two), 0);
    }

    void initFileThatMakesAFileOfTheSeries()
    {
        m_series->put("a.dpc", writing("[cfgPath]/x_[host]"));
        m_series->put("a_init.dpc", making("[cfgPath]/a1.dpc") + dummy);
        QCOMPARE(m_series->said(), QStringList{"a_init.dpc:1:1 overwrites-series"});
        m_series->put("a_init.dpc", "# " + making("[cfgPath]/a1.dpc") + dummy);
        QCOMPARE(m_series->said(), QStringList());
    }

    /// It runs on one machine.
    void initFileByItselfIsNotSharedByMachines()
    {
        m_series->options().hosts = QStringList{"pc1", "pc2"};
        m_series->put("a_init.dpc", making("[cfgPath]/s.dat") + dummy);
        QCOMPARE(m_series->said({}, "a_init.dpc"), QStringList());
    }

    /// Whether the file of the series was chosen, or the _init file.
    void linesOfTheInitFileThatMakeAFileInTwoSizes()
    {
        m_series->put("a.dpc", reading("[cfgPath]/s.dat"));
        const QStringList found{"a_init.dpc:2:1 source-size"};
        for (const QByteArray& lines :
             {making("[cfgPath]/s.dat") + making("[cfgPath]/s.dat", 2048),
              making("[cfgPath]/s.dat", 2048) + making("[cfgPath]/s.dat"),
              making("[cfgPath]/s.dat", 2048) + making("[cfgPath]s.dat"),
              making("[cfgPath]/s.dat", 2048) + making("[cfgPath]s.dat") +
                  making("[cfgPath]/e/../s.dat", 4096),
              making("[cfgPath]/s.dat", 2048) + making("[cfgPath]/e/../s.dat"),
              making("[cfgPath]/s.dat", 2048) + making(m_series->root().toLatin1() + "s.dat")}) {
            m_series->put("a_init.dpc", lines + dummy);
            QCOMPARE(m_series->said(), found);
            QCOMPARE(m_series->said({}, "a_init.dpc"), found);
        }
        for (const QByteArray& lines :
             {making("[cfgPath]/s.dat") + "# " + making("[cfgPath]/s.dat", 2048),
              "# " + making("[cfgPath]/s.dat", 2048) + making("[cfgPath]/s.dat"),
              making("[cfgPath]/s.dat") + making("[cfgPath]/dummyFile", 1)}) {
            m_series->put("a_init.dpc", lines + dummy);
            QCOMPARE(m_series->said(), QStringList());
            QCOMPARE(m_series->said({}, "a_init.dpc"), QStringList());
        }
    }

    void lastLineOfTheInitFileLeavesTheSize()
    {
        m_series->put("a.dpc", reading("[cfgPath]/s.dat", 2048));
        m_series->put("a_init.dpc",
                      making("[cfgPath]/s.dat") + making("[cfgPath]/s.dat", 2048) + dummy);
        m_series->setExisting(m_series->root() + "s.dat", qint64(2048) * 1024);
        QCOMPARE(m_series->said({"init-overwrites"}), QStringList());
        m_series->setExisting(m_series->root() + "s.dat", qint64(1024) * 1024);
        QCOMPARE(m_series->said({"init-overwrites"}),
                 QStringList{"a_init.dpc:2:1 init-overwrites"});
    }

    /// As if a file of the series had been chosen.
    void initFileByItselfIsJudgedLikeAnyOther()
    {
        m_series->put("a.dpc", reading("[cfgPath]/s.dat"));
        m_series->put("a_init.dpc", making("[cfgPath]/s.dat") + dummy);
        QCOMPARE(m_series->said({}, "a_init.dpc"), QStringList());
        m_series->setExisting(m_series->root() + "s.dat", 3);
        QCOMPARE(m_series->said(), QStringList{"a_init.dpc:1:1 init-overwrites"});
        QCOMPARE(m_series->said({}, "a_init.dpc"), m_series->said());
        m_series->put("a_init.dpc", making("[cfgPath]/a.dpc") + dummy);
        QCOMPARE(m_series->said({"overwrites-series"}),
                 QStringList{"a_init.dpc:1:1 overwrites-series"});
        QCOMPARE(m_series->said({"overwrites-series"}, "a_init.dpc"),
                 m_series->said({"overwrites-series"}));
        QCOMPARE(m_series->text("overwrites-series", "a_init.dpc"),
                 m_series->text("overwrites-series"));
    }

    void initFileThatMakesAFileAnew()
    {
        m_series->put("a.dpc", reading("[cfgPath]/s.dat"));
        m_series->put("a_init.dpc", making("[cfgPath]/s.dat") + dummy);
        QCOMPARE(m_series->errorsAndWarnings(), QStringList());
        // After a run of the _init file it has that size.
        m_series->setExisting(m_series->root() + "s.dat", qint64(1024) * 1024);
        QCOMPARE(m_series->errorsAndWarnings(), QStringList());
        m_series->setExisting(m_series->root() + "s.dat", 1024 * 1024 + 1);
        QCOMPARE(m_series->errorsAndWarnings(), QStringList{"a_init.dpc:1:1 init-overwrites"});
        m_series->put("a_init.dpc", "# " + making("[cfgPath]/s.dat") + dummy);
        QCOMPARE(m_series->errorsAndWarnings(), QStringList());
        // A file that only keeps its folder may have a byte.
        m_series->setExisting(m_series->root() + "dummyFile", 1);
        QCOMPARE(m_series->errorsAndWarnings(), QStringList());
    }

    /// A save takes two spellings for two files.
    void sourceThatIsMadeInTwoSizesIsOneFinding()
    {
        const QByteArray full = m_series->root().toLatin1() + "s.dat";
        m_series->put("a_init.dpc", making("[cfgPath]/s.dat") + making(full, 2048) + dummy);
        m_series->put("a.dpc", reading("[cfgPath]/s.dat") + reading(full, 2048));
        QCOMPARE(m_series->errorsAndWarnings(), QStringList{"a.dpc:2:42 source-size"});
    }

    void sourceThatIsMadeTwiceInOneSizeIsNoFinding()
    {
        const QByteArray full = m_series->root().toLatin1() + "s.dat";
        m_series->put("a.dpc", reading("[cfgPath]/s.dat"));
        m_series->put("a_init.dpc", making("[cfgPath]/s.dat") + making(full) + dummy);
        QCOMPARE(m_series->errorsAndWarnings(), QStringList());
        m_series->put("a_init.dpc", making("[cfgPath]/s.dat") + making(full, 1025) + dummy);
        QCOMPARE(m_series->errorsAndWarnings().size(), 1);
    }

    void sourcesOfAllIterationsInTwoSizesAreOneFinding()
    {
        const QByteArray made = making("[cfgPath]/s0.dat") + making("[cfgPath]/s1.dat");
        m_series->put("a_init.dpc", made + dummy);
        m_series->put("a.dpc", reading("[cfgPath]/s[iter].dat", 1024, 2) +
                                   reading("[cfgPath]/s[iter].dat", 2048, 2));
        QCOMPARE(m_series->said({"source-size"}), QStringList{"a.dpc:2:42 source-size"});
    }

    void filesOfTheInitFileAreReadAsFarAsLinesAre()
    {
        m_series->put("a.dpc", reading("[cfgPath]/s2.dat"));
        m_series->put("a_init.dpc", making("[cfgPath]/s1.dat") + making("[cfgPath]/s2.dat"));
        m_series->options().limits.entries = 2;
        QCOMPARE(m_series->said({"source-missing"}), QStringList());
        m_series->options().limits.entries = 1;
        QCOMPARE(m_series->said({"source-missing"}).size(), 1);
    }

    /// Two spellings, of which the first load out of "_wait" took one for missing.
    void fileThatIsMadeAnewIsOneFinding()
    {
        m_series->setExisting(m_series->root() + "s.dat", 777);
        m_series->put("a_init.dpc", making("[cfgPath]/s.dat", 4096) + dummy);
        m_series->put("a.dpc", reading(m_series->root().toLatin1() + "s.dat") +
                                   reading("[cfgPath]/s.dat", 4096));
        QCOMPARE(m_series->errorsAndWarnings(), QStringList{"a_init.dpc:1:1 init-overwrites"});
    }

    /// A file of a third size has a finding of its own.
    void sizeOfTheInitFileIsComparedWithThatOfTheFile()
    {
        const QByteArray made =
            goodLine({{7, "1024"}, {11, "[cfgPath]/s.dat"}, {12, ""}, {13, ""}});
        m_series->put("a_init.dpc", made);
        const QByteArray line =
            goodLine({{7, "2048"}, {10, "[cfgPath]/s.dat"}, {11, "MEMORY"}, {12, ""}, {13, ""}});
        QCOMPARE(m_series->hits("init-outdated", line), 1);
        m_series->setExisting(m_series->root() + "s.dat", 1048576);
        QCOMPARE(m_series->hits("init-outdated", line), 1);
        m_series->setExisting(m_series->root() + "s.dat", 1048577);
        QCOMPARE(m_series->hits("init-outdated", line), 0);
        QCOMPARE(m_series->hits("init-overwrites", line), 1);
    }

    void whatTasksLeaveBehindMayBeMadeAnew()
    {
        m_series->put("a.dpc", writing("[cfgPath]/s.dat") + reading("[cfgPath]/s.dat", 2048));
        m_series->put("a_init.dpc", making("[cfgPath]/s.dat", 2048) + dummy);
        m_series->setExisting(m_series->root() + "s.dat", qint64(1024) * 1024);
        QCOMPARE(m_series->errorsAndWarnings(), QStringList());
    }

private:
    QScopedPointer<SeriesFolder> m_series;
};

QTEST_APPLESS_MAIN(TestInitFileUses)
#include "tst_initfileuses.moc"
