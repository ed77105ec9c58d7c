#include "tests/check/seriesfolder.h"

/// The rules about the lines that name the next config file.
class TestMarkerRules : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_series.reset(new SeriesFolder); }

    void markerThatNamesAnotherFile()
    {
        m_series->put("a1.dpc", goodLine());
        for (const char* good : {"[cfgPath]/a1.dpc", "[cfgPath]/_wait/a1.dpc", "a1.dpc"})
            QCOMPARE(m_series->hits("marker-target", goodLine() + good + "\n"), 0);
        for (const char* bad : {"[cfgPath]/a2.dpc", "[cfgPath]/b1.dpc", "[cfgPath]/a.dpc"}) {
            QCOMPARE(m_series->hits("marker-target", goodLine() + "  " + bad + "\n"), 1);
            QCOMPARE(m_series->said({"marker-target"}), QStringList{"a.dpc:2:3 marker-target"});
        }
    }

    void markerOfASeriesThatWasMoved()
    {
        m_series->put("a1.dpc", goodLine());
        QCOMPARE(m_series->hits("marker-folder", goodLine() + "/old/_wait/a1.dpc\n"), 1);
        QCOMPARE(m_series->hits("marker-folder",
                                goodLine() + m_series->root().toLatin1() + "_wait/a1.dpc\n"),
                 0);
    }

    void markerFolderThatDoesNotExist()
    {
        QVERIFY(QDir(m_series->root()).rmdir("_wait"));
        m_series->put("a1.dpc", goodLine());
        QCOMPARE(m_series->hits("marker-folder", goodLine() + "/none/_wait/a1.dpc\n"), 1);
        QCOMPARE(m_series->hits("marker-folder", goodLine() + "[cfgPath]/_wait/a1.dpc\n"), 0);
    }

    void markerToAFolderUnderAnotherName()
    {
        QVERIFY(QFile::link(m_series->root(), m_series->root() + "link"));
        m_series->put("a1.dpc", goodLine());
        QCOMPARE(m_series->hits("marker-folder",
                                goodLine() + m_series->root().toLatin1() + "link/a1.dpc\n"),
                 0);
    }

    /// It may be the folder of the series, as that system sees it.
    void markerOfAnotherSystemIsANote()
    {
        m_series->put("a1.dpc", goodLine());
        for (const char* path :
             {"//nas/test/_wait/a1.dpc", "\\\\nas\\test\\a1.dpc", "S:\\a1.dpc"}) {
            QCOMPARE(m_series->hits("marker-folder", goodLine() + path + "\n"), 1);
            QCOMPARE(m_series->severity("marker-folder"), Severity::Note);
        }
        QCOMPARE(m_series->hits("marker-target", goodLine() + "S:\\a2.dpc\n"), 1);
        QCOMPARE(m_series->said({"marker-folder"}), QStringList());
    }

    /// A save names one folder in all of them.
    void markersOfAnotherSystemThatNameSeveralFolders()
    {
        m_series->put("a2.dpc", goodLine());
        const auto warnings = [&](const QByteArray& first, const QByteArray& second) {
            m_series->put("a.dpc", goodLine() + first + "a1.dpc\n");
            m_series->put("a1.dpc", goodLine() + second + "a2.dpc\n");
            QStringList places;
            for (const Finding& finding : m_series->findings()) {
                if (QByteArray(finding.rule->name) == "marker-folder" &&
                    finding.severity == Severity::Warning)
                    places += QFileInfo(finding.path).fileName();
            }
            return places.join(' ');
        };
        QCOMPARE(warnings("S:\\x\\", "S:\\x\\"), QString());
        QCOMPARE(m_series->said({"marker-folder"}), QStringList{"a.dpc:2:1 marker-folder"});
        QCOMPARE(warnings("S:\\x\\_wait\\", "s:/X/"), QString());
        QCOMPARE(warnings("//nas/x/", "\\\\NAS\\x\\_wait\\"), QString());
        QCOMPARE(warnings("S:\\x\\", "S:\\y\\"), QString("a1.dpc"));
        QCOMPARE(warnings("S:\\x\\", "//nas/x/"), QString("a1.dpc"));
        QCOMPARE(warnings("[cfgPath]/", "S:\\x\\"), QString("a1.dpc"));
        QCOMPARE(warnings("\\\\nas\\x\\", m_series->root().toLatin1() + "_wait/"),
                 QString("a.dpc"));
    }

    void markerToAFileThatIsElsewhere()
    {
        const QString other = m_series->root() + "other/a1.dpc";
        m_series->put("other/a1.dpc", goodLine());
        QCOMPARE(m_series->hits("marker-folder", goodLine() + other.toLatin1() + '\n'), 1);
        QCOMPARE(m_series->said({"last-marker"}), QStringList());
    }

    void markerAtTheVeryEnd()
    {
        QCOMPARE(m_series->hits("last-marker", goodLine() + "[cfgPath]/a1.dpc\n"), 1);
        m_series->put("a1.dpc", goodLine());
        QCOMPARE(m_series->hits("last-marker", goodLine() + "[cfgPath]/a1.dpc\n"), 0);
    }

    void linesAfterAMarker()
    {
        m_series->put("a1.dpc", goodLine());
        QCOMPARE(m_series->hits("after-marker", goodLine() + "[cfgPath]/a1.dpc\n# end\n\n"), 0);
        QCOMPARE(m_series->hits("after-marker", "[cfgPath]/a1.dpc\n" + goodLine() + goodLine()), 1);
        QCOMPARE(m_series->said({"after-marker"}), QStringList{"a.dpc:2:1 after-marker"});
    }

    /// One machine knows by itself when it is done.
    void doneFilesAreNeededBySeveralMachines()
    {
        const QByteArray marker = "[cfgPath]/a1.dpc\n";
        const QByteArray without = goodLine({{14, "false"}}) + marker;
        m_series->put("a1.dpc", goodLine());
        QCOMPARE(m_series->hits("no-done-files", without), 0);
        m_series->options().hosts = QStringList{"pc1"};
        QCOMPARE(m_series->hits("no-done-files", without), 0);
        m_series->options().hosts = QStringList{"pc1", "pc2"};
        QCOMPARE(m_series->hits("no-done-files", without), 1);
        QCOMPARE(m_series->hits("no-done-files", goodLine() + marker), 0);
        QCOMPARE(m_series->hits("no-done-files", goodLine({{14, "false"}})), 0);
    }

private:
    QScopedPointer<SeriesFolder> m_series;
};

QTEST_APPLESS_MAIN(TestMarkerRules)
#include "tst_markerrules.moc"
