#include "tests/check/seriesfolder.h"
#include "tests/support/childprocess.h"

#include <QFile>

#include <sys/stat.h>

/// Files and folders that can't be read, or not as a whole, and the rules that tell of them.
class TestUnreadable : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_series.reset(new SeriesFolder); }

    void fileThatCannotBeRead()
    {
        m_series->put("a.dpc", goodLine() + "[cfgPath]/a1.dpc\n");
        QVERIFY(QDir(m_series->root()).mkdir("a1.dpc"));
        QCOMPARE(m_series->said({"unreadable"}), QStringList{"a1.dpc:1:1 unreadable"});
        // Chosen itself, a folder is a folder to look for series in.
        QVERIFY(!checkAll({m_series->root() + "a1.dpc"}, m_series->options()).problems.empty());
    }

    void whyAFileCannotBeRead()
    {
        m_series->put("a.dpc", goodLine() + "[cfgPath]/a1.dpc\n");
        const QString next = m_series->root() + "a1.dpc";
        QVERIFY(QDir(m_series->root()).mkdir("a1.dpc"));
        QVERIFY(m_series->text("unreadable").contains("it is a folder"));
        // A file that can't be read may hold a marker.
        m_series->put("a2.dpc", goodLine());
        QCOMPARE(m_series->said({"leftover"}), QStringList());
        QVERIFY(QDir(m_series->root()).rmdir("a1.dpc"));
        QVERIFY(QFile::link("nowhere", next));
        QVERIFY(m_series->text("unreadable").contains("it is a link that leads nowhere"));
        QVERIFY(QFile::remove(next));
        QCOMPARE(::mkfifo(QFile::encodeName(next).constData(), 0600), 0);
        QVERIFY(m_series->text("unreadable").contains("it is a pipe"));
    }

    void linkThatLeadsNowhere()
    {
        m_series->put("a.dpc", goodLine() + "[cfgPath]/a1.dpc\n");
        QVERIFY(QFile::link("nowhere", m_series->root() + "a1.dpc"));
        QCOMPARE(m_series->said({"unreadable"}), QStringList{"a1.dpc:1:1 unreadable"});
        QVERIFY(QFile::remove(m_series->root() + "a.dpc"));
        QCOMPARE(m_series->said({"unreadable"}, ""), QStringList{"a1.dpc:1:1 unreadable"});
    }

    void waitFolderThatIsNotAFolder()
    {
        m_series->put("a.dpc", goodLine({{12, ""}, {13, ""}}));
        QVERIFY(QDir(m_series->root()).rmdir("_wait"));
        QCOMPARE(m_series->said({"unreadable"}), QStringList());
        m_series->put("_wait", "");
        QCOMPARE(m_series->said({"unreadable"}), QStringList{"_wait:1:1 unreadable"});
        QVERIFY(m_series->text("unreadable").contains("it is a file"));
        m_series->put("a.dpc", goodLine({{10, "[cfgPath]/s.dat"}}));
        QVERIFY(m_series->text("source-missing").contains("(_wait can't be read)"));
        QVERIFY(QFile::remove(m_series->root() + "_wait"));
        QVERIFY(QFile::link("nowhere", m_series->root() + "_wait"));
        QVERIFY(m_series->text("unreadable").contains("it is a link that leads nowhere"));
    }

    void whatIsForbiddenIsTold()
    {
        m_series->put("_wait/a.dpc", goodLine() + "[cfgPath]/_wait/a1.dpc\n");
        m_series->put("_wait/a1.dpc", goodLine());
        m_series->put("a.dpc", goodLine() + "[cfgPath]/_wait/a1.dpc\n");
        m_series->setRights("", 0755);
        m_series->setRights("_wait", 0);
        {
            const test::WithoutRights nobody;
            QCOMPARE(m_series->said({"unreadable", "last-marker", "number-gap"}),
                     QStringList{"_wait/:1:1 unreadable"});
            QVERIFY(m_series->text("unreadable").contains("you have no right to look into it"));
        }
        m_series->setRights("_wait", 0755);
        m_series->setRights("a.dpc", 0);
        const test::WithoutRights nobody;
        QVERIFY(m_series->text("unreadable", "").contains("you have no right to read it"));
        // Chosen itself, it is a problem.
        const QString path = m_series->root() + "a.dpc";
        QCOMPARE(problemsOf(path),
                 QString("'%1' can't be read: you have no right to read it").arg(path));
    }

    void folderWithoutRightsIsAProblem()
    {
        m_series->put("closed/a.dpc", goodLine());
        const QString closed = m_series->root() + "closed";
        m_series->setRights("", 0755);
        m_series->setRights("closed", 0);
        {
            const test::WithoutRights nobody;
            const QString into = "'%1' can't be read: you have no right to look into its folder";
            QCOMPARE(problemsOf(closed),
                     QString("'%1' can't be read: you have no right to look into it").arg(closed));
            for (const char* name : {"/a.dpc", "/none", "/none.dpc"})
                QCOMPARE(problemsOf(closed + name), into.arg(closed + name));
            // The path leads past the folder.
            QCOMPARE(problemsOf(closed + "/../none"),
                     QString("'%1/../none' does not exist").arg(closed));
        }
        m_series->setRights("closed", 0700);
    }

    void waitFolderWithoutRightsIsWhyNothingIsFound()
    {
        m_series->put("_wait/a.dpc", goodLine());
        m_series->setRights("", 0755);
        m_series->setRights("_wait", 0);
        {
            const test::WithoutRights nobody;
            QCOMPARE(problemsOf(m_series->root()),
                     QString("'%1_wait/' can't be read: you have no right to look into it")
                         .arg(m_series->root()));
        }
        m_series->setRights("_wait", 0700);
    }

    void chosenFileThatCannotBeReadIsAProblem()
    {
        const QString pipe = m_series->root() + "a.dpc";
        QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QCOMPARE(problemsOf(pipe), QString("'%1' can't be read: it is a pipe").arg(pipe));
        QVERIFY(QFile::remove(pipe));
        m_series->put("a.dpc", goodLine());
        QCOMPARE(problemsOf(pipe), QString());
    }

    /// It was there when it was looked for.
    void seriesWithoutFilesHasNoFindings()
    {
        const SeriesFacts facts = m_series->facts();
        QVERIFY(facts.files.empty());
        QVERIFY(checkSeries(facts, m_series->options()).empty());
    }

    void fileIsReadUpTo64MiB()
    {
        m_series->put("a.dpc", goodLine() + "# ");
        QFile file(m_series->root() + "a.dpc");
        QVERIFY(file.resize(64LL * 1024 * 1024));
        QCOMPARE(m_series->said({"too-much"}), QStringList());
        QVERIFY(file.resize(64LL * 1024 * 1024 + 1));
        QCOMPARE(m_series->said({"too-much"}), QStringList{"a.dpc:2:1 too-much"});
        QVERIFY(
            m_series->text("too-much").startsWith("only the first 64 MiB of the file are read"));
    }

    /// The beginning of a file must not pass for the whole.
    void fileThatFailsWhileItIsRead()
    {
        QVERIFY(QFile::link("/proc/self/mem", m_series->root() + "a.dpc"));
        QCOMPARE(m_series->said({"unreadable"}), QStringList{"a.dpc:1:1 unreadable"});
        QVERIFY(m_series->text("unreadable").contains("Input/output error"));
    }

private:
    QString problemsOf(const QString& path) const
    {
        QStringList texts;
        for (const std::string& problem : checkAll({path}, m_series->options()).problems)
            texts += QString::fromStdString(problem);
        return texts.join('\n');
    }

    QScopedPointer<SeriesFolder> m_series;
};

QTEST_APPLESS_MAIN(TestUnreadable)
#include "tst_unreadable.moc"
