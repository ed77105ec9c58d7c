#include "model/pathvariables.h"
#include "shared/kvtext.h"
#include "tests/check/seriesfolder.h"
#include "tests/check/tasklines.h"

/// The rules for the files of several machines.
class TestMachineUses : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_series.reset(new SeriesFolder); }

    void sourceAndDestinationOfOneMachineOnly()
    {
        m_series->put("a_init.dpc", making("[cfgPath]/pc2.dat"));
        m_series->options().hosts = QStringList{"pc1", "pc2", "pc3"};
        QCOMPARE(m_series->hits("same-file", task("[cfgPath]/pc2.dat", "[cfgPath]/[host].dat")), 1);
        QVERIFY(m_series->text("same-file").contains("on pc2"));
        QCOMPARE(m_series->hits("same-file", task("[cfgPath]/pc4.dat", "[cfgPath]/[host].dat")), 0);
    }

    /// The machine that saves the series makes its own folder only.
    void foldersOfOtherMachines()
    {
        m_series->options().hosts = QStringList{"pc1", "pc2", "pc3"};
        m_series->put("a_init.dpc", making("[cfgPath]/pc1/dummyFile", 0));
        m_series->setExisting(m_series->root() + "pc3/");
        for (const QByteArray& lines :
             {writing("[cfgPath]/[host]/x") + writing("[cfgPath]/[host]/y"),
              withLog("[cfgPath]/x_[host]", "[cfgPath]/[host]/l.txt"),
              withCsv("[cfgPath]/[host]/c.csv")}) {
            QCOMPARE(m_series->hits("dest-folder-local", lines), 1);
            QVERIFY(m_series->text("dest-folder-local").contains("does not exist for pc2, and"));
        }
        m_series->setExisting(m_series->root() + "pc2/");
        QCOMPARE(m_series->hits("dest-folder-local", writing("[cfgPath]/[host]/x")), 0);
        // A folder that is here tells nothing about that of another machine.
        m_series->options().hosts = QStringList{"pc1", "pc2"};
        m_series->put("a_init.dpc", making("[temp]/e/dummyFile", 0));
        QCOMPARE(m_series->hits("dest-folder-local", writing("[temp]/e/x_[host]")), 1);
        m_series->setExisting(QDir::tempPath() + "/e/");
        QCOMPARE(m_series->hits("dest-folder-local", writing("[temp]/e/x_[host]")), 1);
        // Without their names nobody can tell.
        m_series->options().hosts.clear();
        QCOMPARE(m_series->hits("dest-folder-local", writing("[cfgPath]/x/[host]/x")), 0);
    }

    void fileOfOneMachineThatIsAFolderOfAnother()
    {
        m_series->options().hosts = QStringList{"pc1", "pc2"};
        m_series->put("a_init.dpc", dummy);
        QCOMPARE(m_series->hits("folder-is-file",
                                writing("[cfgPath]/[host]") + writing("[cfgPath]/pc2/x_[host]")),
                 1);
        QCOMPARE(m_series->hits("folder-is-file",
                                writing("[cfgPath]/[host]") + writing("[cfgPath]/pc3/x_[host]")),
                 0);
    }

    void folderOfEachMachineThatIsAFile()
    {
        m_series->options().hosts = QStringList{"pc1", "pc2"};
        m_series->put("a_init.dpc", dummy);
        m_series->setExisting(m_series->root() + "o", 1);
        m_series->put("a.dpc", writing("[cfgPath]/[host]") + writing("[cfgPath]/o/[host]"));
        QCOMPARE(m_series->said({"folder-is-file"}), QStringList{"a.dpc:2:62 folder-is-file"});
        m_series->put("a.dpc", writing("[cfgPath]/o/x") + writing("[cfgPath]/o/[host]"));
        QCOMPARE(m_series->said({"folder-is-file"}), QStringList{"a.dpc:1:62 folder-is-file"});
    }

    void machinesThatMeetInOneName()
    {
        m_series->options().hosts = QStringList{"pc1", "pc11"};
        QCOMPARE(m_series->hits("shared-output", writing("[cfgPath]/[host][iter].dat", 1024, 12)),
                 1);
        QVERIFY(m_series->text("shared-output").startsWith("pc1, pc11 all write"));
        QCOMPARE(m_series->hits("shared-output", writing("[cfgPath]/[iter][host].dat", 1024, 12)),
                 0);
        m_series->options().hosts = QStringList{"1pc", "pc"};
        QCOMPARE(m_series->hits("shared-output", writing("[cfgPath]/[iter][host].dat", 1024, 12)),
                 1);
        m_series->options().hosts = QStringList{"pc1", "pc11"};
        QCOMPARE(m_series->hits("shared-output", writing("[cfgPath]/[host]_[iter].dat", 1024, 12)),
                 0);
        QCOMPARE(m_series->hits("shared-output", writing("[cfgPath]/[host][iter].dat", 1024, 5)),
                 0);
        // A name of one machine that a task has for all.
        QCOMPARE(
            m_series->hits("shared-results", withLog("[cfgPath]/x_[host]", "[cfgPath]/[host]") +
                                                 withLog("[cfgPath]/y_[host]", "[cfgPath]/pc1")),
            1);
    }

    void sharesAreSharedForCertain()
    {
        m_series->options().hosts = QStringList{"pc1", "pc2"};
        for (const char* share : {"//nas/e/x", "\\\\nas\\e\\x"}) {
            QCOMPARE(m_series->hits("shared-output", writing(share)), 1);
            QCOMPARE(m_series->hits("maybe-shared", writing(share)), 0);
        }
        QCOMPARE(m_series->hits("shared-output", writing(m_series->root().toLatin1() + "e/x")), 1);
        QCOMPARE(m_series->hits("maybe-shared", writing("/mnt/x")), 1);
    }

    void doneFileOfAMachine()
    {
        const QByteArray line = writing("[cfgPath]/done_pc2");
        QCOMPARE(m_series->hits("done-name", line), 0);
        QCOMPARE(m_series->hits("done-name", writing("[cfgPath]/done_[host]")), 1);
        QCOMPARE(m_series->hits("done-name", writing("[cfgPath]/done_[host]x")), 0);
        QCOMPARE(m_series->hits("done-name", writing("[cfgPath]/done")), 0);
        m_series->options().hosts = QStringList{"pc1", "pc2"};
        QCOMPARE(m_series->hits("done-name", line), 1);
        QCOMPARE(m_series->hits("done-name", writing("[cfgPath]/done_pc3")), 0);
        m_series->options().hosts = QStringList{"pc2"};
        QCOMPARE(m_series->hits("done-name", line), 1);
    }

    void machinesWhoseSourcesAreNotThere()
    {
        m_series->options().hosts = QStringList{"pc1", "pc2", "pc3"};
        m_series->put("a_init.dpc", making("[cfgPath]/pc1.dat") + dummy);
        QCOMPARE(m_series->hits("source-local", reading("[cfgPath]/[host].dat")), 1);
        QVERIFY(m_series->text("source-local").contains("not there on pc2, pc3"));
        m_series->setExisting(m_series->root() + "pc2.dat");
        m_series->setExisting(m_series->root() + "pc3.dat");
        QCOMPARE(m_series->hits("source-local", reading("[cfgPath]/[host].dat")), 0);
        // The folders of other machines can't be seen.
        m_series->setExisting(QDir::tempPath() + "/s.dat");
        QCOMPARE(m_series->hits("source-local", reading("[temp]/s.dat")), 1);
    }

    void sourcesOfAMachineAreLookedForInAllIterations()
    {
        m_series->options().hosts = QStringList{"pc1", "pc2"};
        const QByteArray lines =
            goodLine({{2, ""}, {3, ""}, {8, "2"}, {10, "/d/[host]_[iter]"}, {11, "MEMORY"}});
        QCOMPARE(m_series->hits("source-local", lines), 1);
        m_series->setExisting("/d/pc1_0");
        m_series->setExisting("/d/pc2_0");
        m_series->setExisting("/d/pc1_1");
        QCOMPARE(m_series->hits("source-local", lines), 1);
        QVERIFY(m_series->text("source-local").contains("not there on pc2: "));
        m_series->setExisting("/d/pc2_1");
        QCOMPARE(m_series->hits("source-local", lines), 0);
    }

    /// It was there when the series was saved.
    void folderOfALineThatIsCommentedOutIsNotMade()
    {
        m_series->options().hosts = QStringList{"pc1", "pc2"};
        const QByteArray inHostFolder = writing("[cfgPath]/[host]/x");
        const QByteArray both =
            making("[cfgPath]/pc1/dummyFile", 0) + making("[cfgPath]/pc2/dummyFile", 0);
        m_series->put("a_init.dpc", both);
        QCOMPARE(m_series->hits("dest-folder-local", inHostFolder), 0);
        m_series->put("a_init.dpc", "# " + both);
        QCOMPARE(m_series->hits("dest-folder-local", inHostFolder), 1);
        QVERIFY(m_series->text("dest-folder-local").contains("does not exist for pc1, and"));

        m_series->put("a_init.dpc", making("/d/s"));
        QCOMPARE(m_series->hits("dest-folder", reading("/d/s") + writing("/d/x_[host]")), 0);
        m_series->put("a_init.dpc", "# " + making("/d/s"));
        QCOMPARE(m_series->hits("dest-folder", reading("/d/s") + writing("/d/x_[host]")), 1);
    }

    void sourcesThatEachMachineNeeds()
    {
        m_series->options().hosts = QStringList{"pc1", "pc2"};
        const auto text = [&](const QByteArray& source) {
            m_series->put("a.dpc", reading(source));
            return m_series->text("source-local");
        };
        QVERIFY(text("/d/[host].dat").contains("not there on pc1, pc2: "));
        QVERIFY(text("[temp]/s.dat").contains("not there on pc1, pc2: "));
        m_series->setExisting("/d/pc1.dat", 1);
        QVERIFY(text("/d/[host].dat").contains("not there on pc2: "));
        m_series->setExisting("/d/pc2.dat", 1);
        QCOMPARE(text("/d/[host].dat"), QString());
        // On a file server they can't be looked for.
        QCOMPARE(text("//nas/e/[host].dat"), QString());
        const QByteArray both = writing("[temp]/s.dat") + reading("[temp]/s.dat");
        QCOMPARE(m_series->hits("source-local", both), 0);
        m_series->options().hosts = QStringList{"a", "b", "c"};
        QVERIFY(text("[temp]/s.dat").contains("not there on a, b, c: "));
        m_series->options().hosts += QStringList{"d", "e"};
        QVERIFY(text("[temp]/s.dat").contains("not there on a, b, c and 2 more: "));
        m_series->options().hosts.clear();
        QCOMPARE(m_series->hits("source-local", both), 0);
        QVERIFY(text("[temp]/s.dat").contains("is another file on each machine: "));
    }

    /// The folder has a finding of its own, which says nothing of the other machines.
    void folderInThePlaceOfOneMachinesSource()
    {
        m_series->options().hosts = QStringList{"pc1", "pc2", "pc3"};
        const auto text = [&](const QByteArray& lines) {
            m_series->put("a.dpc", lines);
            return m_series->text("source-local");
        };
        m_series->setExisting("/d/pc1/");
        QVERIFY(text(reading("/d/[host]")).contains("not there on pc2, pc3: "));
        m_series->setExisting("/d/pc2/");
        QVERIFY(text(reading("/d/[host]")).contains("not there on pc3: "));
        QCOMPARE(text(reading("/d/[host]/")), QString());
    }

    void foldersThatEachMachineNeeds()
    {
        m_series->options().hosts = QStringList{"pc1", "pc2"};
        const QByteArrayList all = {writing("/d/[host]/x"),
                                    withLog("[cfgPath]/x_[host]", "/d/[host]/l.txt"),
                                    withCsv("/d/[host]/c.csv")};
        for (const QByteArray& lines : all)
            QCOMPARE(m_series->hits("dest-folder-local", lines), 1);
        m_series->setExisting("/d/pc1/");
        for (const QByteArray& lines : all) {
            QCOMPARE(m_series->hits("dest-folder-local", lines), 1);
            QVERIFY(m_series->text("dest-folder-local").contains("is not here for pc2: "));
            m_series->options().hosts = QStringList{"pc1"};
            QCOMPARE(m_series->hits("dest-folder-local", lines), 0);
            m_series->options().hosts = QStringList{"pc1", "pc2"};
        }
        QCOMPARE(m_series->hits("dest-folder-local", writing("//nas/e/[host]/x")), 0);
        // Nobody can look for the folder of a moment, nor into those of other machines.
        for (const char* log : {"/d/[host]_[date]/l.txt", "[temp]/[host]/l.txt"})
            QCOMPARE(m_series->hits("dest-folder-local", withLog("[cfgPath]/x_[host]", log)), 0);
        m_series->setExisting("/d/pc2/");
        for (const QByteArray& lines : all)
            QCOMPARE(m_series->hits("dest-folder-local", lines), 0);
        // That of this machine can be seen.
        const QString own = kvToQString(getComputerName());
        m_series->options().hosts = QStringList{own};
        QCOMPARE(m_series->hits("dest-folder-local", writing("[temp]/[host]/x")), 1);
        m_series->setExisting(QDir::tempPath() + '/' + own + '/');
        QCOMPARE(m_series->hits("dest-folder-local", writing("[temp]/[host]/x")), 0);
        // Without the names of the machines nobody can tell.
        m_series->options().hosts.clear();
        QCOMPARE(m_series->hits("dest-folder-local", all.first()), 1);
    }

    void allMachinesOfALargeListAreCounted()
    {
        QStringList hosts;
        for (int i = 0; i < 4000; ++i)
            hosts += QStringLiteral("m%1").arg(i);
        m_series->options().hosts = hosts;
        QByteArray lines;
        for (int i = 0; i < 5; ++i)
            lines += writing("[cfgPath]/[host]_[cfgTaskID].dat");
        QCOMPARE(m_series->hits("shared-output", lines + writing("[cfgPath]/x.dat")), 1);
        QVERIFY(m_series->text("shared-output").startsWith("m0, m1, m2 and 3997 more all write"));
    }

private:
    QScopedPointer<SeriesFolder> m_series;
};

QTEST_APPLESS_MAIN(TestMachineUses)
#include "tst_machineuses.moc"
