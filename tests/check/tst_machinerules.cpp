#include "tests/check/seriesfolder.h"

class TestMachineRules : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_series.reset(new SeriesFolder);
        m_series->options().hosts = QStringList{"pc1", "pc2"};
    }

    void ruleHitsAndMisses_data()
    {
        QTest::addColumn<QByteArray>("rule");
        QTest::addColumn<QByteArray>("bad");
        QTest::addColumn<QByteArray>("good");
        const auto row = [](const char* name, const char* rule, const QMap<int, QByteArray>& bad,
                            const QMap<int, QByteArray>& good) {
            QTest::newRow(name) << QByteArray(rule) << goodLine(bad) << goodLine(good);
        };
        row("destination", "shared-output", {{11, "[cfgPath]/x"}}, {{11, "[cfgPath]/x_[host]"}});
        row("relative destination", "shared-output", {{11, "x"}}, {{11, "[host]/x"}});
        row("date does not help", "shared-output", {{11, "[cfgPath]/[date]"}}, {{11, "[temp]/x"}});
        row("log", "shared-results", {{12, "[cfgPath]/l.txt"}}, {{12, "[cfgPath]/[host].txt"}});
        row("csv", "shared-results", {{13, "[cfgPath]/c.csv"}}, {{13, "[cfgPath]/[host].csv"}});
        row("log alone", "shared-results", {{10, ""}, {11, ""}, {12, "[cfgPath]/l.txt"}, {13, ""}},
            {{10, ""}, {11, ""}, {12, "[cfgPath]/[host].txt"}, {13, ""}});
        row("csv alone", "shared-results", {{10, ""}, {11, ""}, {12, ""}, {13, "[cfgPath]/c.csv"}},
            {{10, ""}, {11, ""}, {12, ""}, {13, "[cfgPath]/[host].csv"}});
        row("any folder", "maybe-shared", {{11, "/mnt/x"}}, {{11, "/mnt/[host]"}});
    }

    void ruleHitsAndMisses()
    {
        QFETCH(QByteArray, rule);
        QFETCH(QByteArray, bad);
        QFETCH(QByteArray, good);
        QCOMPARE(m_series->hits(rule, bad), 1);
        QCOMPARE(m_series->hits(rule, good), 0);
        // One machine is never two.
        m_series->options().hosts = QStringList{"pc1"};
        QCOMPARE(m_series->hits(rule, bad), 0);
    }

    void machinesWithTheSameShortName()
    {
        const QByteArray line = goodLine({{11, "[cfgPath]/[host]"}});
        m_series->options().hosts = QStringList{"pc1.north", "pc2", "pc1.south"};
        QCOMPARE(m_series->hits("shared-output", line), 1);
        QVERIFY(m_series->text("shared-output")
                    .startsWith(
                        "pc1.north, pc1.south all write '[cfgPath]/[host]', because the names come "
                        "out the same"));
    }

    void manyMachinesAreNotAllNamed()
    {
        m_series->options().hosts = QStringList{"a", "b", "c", "d", "e"};
        m_series->put("a.dpc", goodLine({{11, "[cfgPath]/x"}}));
        QVERIFY(m_series->text("shared-output").startsWith("a, b, c and 2 more all write"));
    }

    void eachSharedFileIsNamedOnce()
    {
        const QByteArray line = goodLine({{13, "[cfgPath]/c.csv"}});
        QCOMPARE(m_series->hits("shared-results", line + line), 1);
    }

    void roomIsCountedForEachMachine()
    {
        // Two machines write 3 files of 1 MiB each.
        const QByteArray line = goodLine({{11, "/mnt/[host]_[iter].dat"}});
        setFree(6 * mib);
        QCOMPARE(m_series->hits("disk-space", line), 0);
        setFree(6 * mib - 1);
        QCOMPARE(m_series->hits("disk-space", line), 1);
        QVERIFY(m_series->text("disk-space")
                    .startsWith("the series needs 6 MiB on the file system of '/mnt/'"));
    }

    void sharedFilesAndSourcesAreCountedOnce()
    {
        setFree(mib);
        QCOMPARE(m_series->hits("disk-space", goodLine({{11, "/mnt/x"}})), 0);
        QCOMPARE(
            m_series->hits("disk-space", goodLine({{11, "/mnt/x"}}) + goodLine({{11, "/mnt/x"}})),
            0);
        QCOMPARE(m_series->hits("disk-space", goodLine({{10, "/mnt/s"}, {11, "[temp]/[host]"}})),
                 1);
    }

    void existingFilesTakeNoMoreRoom()
    {
        setFree(mib);
        const QByteArray lines = goodLine({{11, "/mnt/x"}}) + goodLine({{11, "/mnt/y"}});
        QCOMPARE(m_series->hits("disk-space", lines), 1);
        m_series->setExisting("/mnt/y", mib);
        QCOMPARE(m_series->hits("disk-space", lines), 0);
        // Told at the first line that needs some.
        m_series->setExisting("/mnt/x", mib);
        m_series->put("a.dpc", lines + goodLine({{11, "/mnt/z"}}));
        setFree(mib - 1);
        QCOMPARE(m_series->said({"disk-space"}), QStringList{"a.dpc:3:1 disk-space"});
    }

    /// The size of the task is that of the file that is read, which may be larger.
    void existingSourceTakesNoRoom()
    {
        m_series->setExisting("/mnt/s", 7 * mib);
        m_series->setExisting("/mnt/t", 1);
        const QByteArray lines = goodLine({{2, ""}, {3, ""}, {10, "/mnt/s"}, {11, "MEMORY"}}) +
                                 goodLine({{2, ""}, {3, ""}, {10, "/mnt/t"}, {11, "MEMORY"}});
        setFree(1);
        QCOMPARE(m_series->hits("disk-space", lines), 0);
        // Nor has a task without a source anything to do with the files of the task before.
        m_series->setExisting("/mnt/c.csv", 7 * mib);
        setFree(mib);
        QCOMPARE(m_series->hits("disk-space",
                                goodLine({{10, "/mnt/s"}, {11, "MEMORY"}, {13, "/mnt/c.csv"}}) +
                                    goodLine({{11, "/mnt/x"}})),
                 0);
    }

    /// The machine that runs the _init file makes those of others only if it names them.
    void sourcesThatTheInitFileMakesNeedRoom()
    {
        m_series->put("a_init.dpc", lineTo("/mnt/pc2").toLatin1());
        const QByteArray line = goodLine({{2, ""}, {3, ""}, {10, "/mnt/[host]"}, {11, "MEMORY"}});
        setFree(2 * mib);
        QCOMPARE(m_series->hits("disk-space", line), 0);
        setFree(2 * mib - 1);
        QCOMPARE(m_series->hits("disk-space", line), 1);
        m_series->put("a_init.dpc", "");
        setFree(mib);
        QCOMPARE(m_series->hits("disk-space", line), 0);
    }

    void aFileMayNeedOneByteMore()
    {
        m_series->setExisting("/mnt/x", mib - 1);
        setFree(0);
        m_series->put("a.dpc", goodLine({{11, "/mnt/x"}}) + goodLine({{11, "/mnt/x"}}));
        QCOMPARE(m_series->said({"disk-space"}), QStringList{"a.dpc:1:1 disk-space"});
        setFree(1);
        QCOMPARE(m_series->said({"disk-space"}), QStringList());
    }

    void fileSystemsAreCountedApart()
    {
        m_series->options().environment.space = [](const QString& path) {
            return std::optional<DiskSpace>({path.startsWith("/a/") ? 1U : 2U, mib});
        };
        QCOMPARE(m_series->hits("disk-space", goodLine({{11, "/a/x"}}) + goodLine({{11, "/b/x"}})),
                 0);
        QCOMPARE(m_series->hits("disk-space", goodLine({{11, "/a/x"}}) + goodLine({{11, "/a/y"}})),
                 1);
        m_series->put("a.dpc", goodLine({{11, "/a/x"}}) + goodLine({{11, "/b/x"}}) +
                                   goodLine({{11, "/b/y"}}));
        QCOMPARE(m_series->said({"disk-space"}), QStringList{"a.dpc:2:1 disk-space"});
        QVERIFY(m_series->text("disk-space").contains("'/b/'"));
    }

private:
    static constexpr qint64 mib = 1024L * 1024;

    void setFree(qint64 bytes)
    {
        m_series->options().environment.space = [bytes](const QString&) {
            return std::optional<DiskSpace>({1, bytes});
        };
    }

    QScopedPointer<SeriesFolder> m_series;
};

QTEST_APPLESS_MAIN(TestMachineRules)
#include "tst_machinerules.moc"
