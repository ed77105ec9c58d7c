#include "configset/seriesrenderer.h"
#include "configset/seriessaver.h"
#include "tests/support/faultinjection.h"
#include "tests/support/files.h"
#include "tests/support/ownmounts.h"
#include "tests/support/tasks.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <sys/syscall.h>

// A fault at each system call of the save of a whole series. Whatever fails, each file holds what
// it held or what it is to hold.

namespace {

using Contents = QMap<QString, QByteArray>;

/// Three files and an _init file that has something to create. The mark makes every file differ.
TaskList seriesMarked(const QByteArray& mark)
{
    TestTask first = taskTo("/t/" + mark + "/a");
    first.sourcePath = path("/nowhere/" + mark);
    return {first, marker(), taskTo("/t/" + mark + "/b"), marker(), taskTo("/t/" + mark + "/c")};
}

} // namespace

class TestSeriesFaults : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Children do not repeat calls that a process makes only once.
        const QTemporaryDir warmUp;
        TaskList tasks = seriesMarked("warm");
        saveSeries(tasks, "", {warmUp.path() + '/', "a"});
    }

    void anyErrorLeavesWholeFiles_data() { addScenes(); }

    void anyErrorLeavesWholeFiles()
    {
        for (const int error : {ENOSPC, EIO, EACCES, EDQUOT, EROFS})
            failEverywhere(test::Fault::Fail, error);
    }

    void aShortWriteLeavesWholeFiles_data() { addScenes(); }
    void aShortWriteLeavesWholeFiles() { failEverywhere(test::Fault::Short, 0); }

    void aDiskThatGoesAwayLeavesWholeFiles_data() { addScenes(); }
    void aDiskThatGoesAwayLeavesWholeFiles() { failEverywhere(test::Fault::FailOnwards, EIO); }

    void aKillLeavesWholeFiles_data() { addScenes(); }
    void aKillLeavesWholeFiles() { failEverywhere(test::Fault::Kill, 0); }

private:
    static void addScenes()
    {
        QTest::addColumn<bool>("hasOldSeries");
        QTest::newRow("over an old series") << true;
        QTest::newRow("into an empty folder") << false;
    }

    SeriesName name() const { return {m_root.path() + '/', "a"}; }

    /// The files that a save without faults writes, with or without the folder for waiting files.
    Contents contentsOf(TaskList tasks, FollowUpFiles place) const
    {
        prepareTasks(tasks);
        const RenderedSeries series = renderSeries(tasks, "info", name(), place);
        Contents contents;
        for (const ConfigFile& file : series.files)
            contents[file.path] = file.content.toLatin1();
        const ConfigFile init =
            renderInitFile(series.filesToCreate, name(), [](const QString&) { return false; });
        contents[init.path] = init.content.toLatin1();
        return contents;
    }

    void prepare(bool hasOldSeries)
    {
        test::clearFolder(m_root.path());
        if (!hasOldSeries)
            return;
        TaskList tasks = seriesMarked("old");
        saveSeries(tasks, "info", name());
    }

    test::TracedRun run(const test::Injection& injection) const
    {
        return test::runWithFault(
            [this] {
                TaskList tasks = seriesMarked("new");
                saveSeries(tasks, "info", name());
            },
            injection);
    }

    void failEverywhere(test::Fault fault, int error)
    {
        QFETCH(bool, hasOldSeries);
        prepare(hasOldSeries);
        const test::TracedRun clean = run({});
        QVERIFY(clean.endedWell);
        const Contents expected = contentsOf(seriesMarked("new"), FollowUpFiles::InWaitFolder);
        for (auto file = expected.begin(); file != expected.end(); ++file)
            QCOMPARE(test::contentOf(file.key()), file.value());

        int injected = 0;
        for (int at = 0; at < int(clean.calls.size()); ++at) {
            if (fault == test::Fault::Short && clean.calls[at] != SYS_write)
                continue;
            ++injected;
            prepare(hasOldSeries);
            const test::TracedRun faulty = run({fault, at, error});
            QCOMPARE(faulty.endedWell, fault != test::Fault::Kill);
            checkFiles(hasOldSeries, fault == test::Fault::Fail || fault == test::Fault::Short,
                       QString("fault %1, error %2, call %3 (%4)")
                           .arg(int(fault))
                           .arg(error)
                           .arg(at)
                           .arg(test::callName(clean.calls[at])));
            if (QTest::currentTestFailed())
                return;
        }
        qInfo("%d faults", injected);
        QVERIFY(injected >= 4);
    }

    /// Each file is one of those that a save may leave; if the error could be handled, no other
    /// file lies beside them.
    void checkFiles(bool hasOldSeries, bool nothingElse, const QString& where) const
    {
        QList<Contents> allowed{contentsOf(seriesMarked("new"), FollowUpFiles::InWaitFolder),
                                contentsOf(seriesMarked("new"), FollowUpFiles::InSeriesFolder)};
        if (hasOldSeries)
            allowed += contentsOf(seriesMarked("old"), FollowUpFiles::InWaitFolder);
        for (const QString& entry : test::entriesOf(m_root.path())) {
            const QString file = name().folder + entry;
            if (QFileInfo(file).isDir() || (!nothingElse && entry.contains(".twdp-")))
                continue;
            const QByteArray content = test::contentOf(file);
            const bool isWhole =
                std::any_of(allowed.begin(), allowed.end(), [&](const Contents& contents) {
                    return contents.contains(file) && contents[file] == content;
                });
            QVERIFY2(isWhole, qPrintable(where + " left " + entry));
        }
        if (!hasOldSeries)
            return;
        for (const QString& file : allowed.last().keys())
            QVERIFY2(QFile::exists(file), qPrintable(where + " lost " + file));
    }

    QTemporaryDir m_root;
    // A real disk would take minutes for a thousand syncs.
    test::SmallDisk m_disk{m_root.path(), "size=1m"};
};

int main(int argc, char* argv[])
{
    test::allowMounts();
    QCoreApplication application(argc, argv);
    TestSeriesFaults tests;
    return QTest::qExec(&tests, argc, argv);
}
#include "tst_seriesfaults.moc"
