#include "configset/seriesrenderer.h"
#include "shared/kvtext.h"
#include "tests/configset/filetexts.h"
#include "tests/support/tasks.h"

#include <QTest>

#include <limits>

namespace {

const SeriesName mytest{"/x/", "mytest"};

/// As a save does it.
RenderedSeries rendered(TaskList& tasks, const QString& infoText = QString(),
                        FollowUpFiles place = FollowUpFiles::InWaitFolder)
{
    prepareTasks(tasks);
    return renderSeries(tasks, infoText, mytest, place);
}

bool nothingExists(const QString& /*resolved*/)
{
    return false;
}

/// The _init file of tasks, without a limit.
QString initOf(TaskList& tasks)
{
    prepareTasks(tasks);
    FileToCreateList list;
    for (int i = 0; i < tasks.size(); ++i)
        collectFilesOfTask(list, tasks[i], i);
    QString content;
    for (const FileToCreate& file : list.files())
        content += creatingLine(file);
    return content;
}

} // namespace

class TestSeriesRenderer : public QObject
{
    Q_OBJECT

private slots:
    void markersSplitTheListIntoFiles()
    {
        TaskList tasks{taskTo("/t/a"), taskTo("/t/b"), marker(),
                       taskTo("/t/c"), marker(),       taskTo("/t/d")};
        const RenderedSeries series = rendered(tasks);
        QCOMPARE(series.files.size(), 3);
        QCOMPARE(series.files[0].path, QStringLiteral("/x/_wait/mytest.dpc"));
        QCOMPARE(series.files[0].content,
                 "# \n\n" + lineTo("/t/a") + lineTo("/t/b") + "/x/_wait/mytest1.dpc\n");
        QCOMPARE(series.files[1].path, QStringLiteral("/x/_wait/mytest1.dpc"));
        QCOMPARE(series.files[1].content, lineTo("/t/c") + "/x/_wait/mytest2.dpc\n");
        QCOMPARE(series.files[2].path, QStringLiteral("/x/_wait/mytest2.dpc"));
        QCOMPARE(series.files[2].content, lineTo("/t/d"));
        QList<int> ids;
        for (const TestTask& task : qAsConst(tasks))
            ids += task.configId;
        QCOMPARE(ids, (QList<int>{0, 0, 0, 1, 0, 2}));
    }

    void listThatEndsWithAMarkerHasAnEmptyLastFile()
    {
        TaskList tasks{taskTo("/t/a"), marker()};
        const RenderedSeries series = rendered(tasks);
        QCOMPARE(series.files.size(), 2);
        QCOMPARE(series.files[1].path, QStringLiteral("/x/_wait/mytest1.dpc"));
        QCOMPARE(series.files[1].content, QString());
    }

    void listThatStartsWithAMarkerHasAFirstFileWithoutTasks()
    {
        TaskList tasks{marker(), taskTo("/t/a")};
        const RenderedSeries series = rendered(tasks, "i");
        QCOMPARE(series.files[0].content, QStringLiteral("# i\n\n/x/_wait/mytest1.dpc\n"));
        QCOMPARE(tasks[1].configId, 1);
    }

    void onlyTheFirstFileStaysInWaitWithoutThatFolder()
    {
        TaskList tasks{taskTo("/t/a"), marker(), taskTo("/t/b")};
        const RenderedSeries series = rendered(tasks, "", FollowUpFiles::InSeriesFolder);
        QCOMPARE(series.files[0].path, QStringLiteral("/x/_wait/mytest.dpc"));
        QVERIFY(series.files[0].content.endsWith("\n/x/mytest1.dpc\n"));
        QCOMPARE(series.files[1].path, QStringLiteral("/x/mytest1.dpc"));
    }

    void infoTextBecomesCommentsOfTheFirstFile_data()
    {
        QTest::addColumn<QString>("info");
        QTest::addColumn<QString>("header");
        QTest::newRow("empty") << ""
                               << "# \n\n";
        QTest::newRow("one line") << "a"
                                  << "# a\n\n";
        QTest::newRow("two lines") << "a\nb"
                                   << "# a\n# b\n\n";
        QTest::newRow("line end") << "a\n"
                                  << "# a\n# \n\n";
        QTest::newRow("own mark") << "# a"
                                  << "# # a\n\n";
    }

    void infoTextBecomesCommentsOfTheFirstFile()
    {
        QFETCH(QString, info);
        QFETCH(QString, header);
        TaskList tasks{taskTo("/t/a"), marker(), taskTo("/t/b")};
        const RenderedSeries series = rendered(tasks, info);
        QCOMPARE(series.files[0].content, header + lineTo("/t/a") + "/x/_wait/mytest1.dpc\n");
        QCOMPARE(series.files[1].content, lineTo("/t/b"));
    }

    void taskNumbersStartAgainInEachFile()
    {
        TestTask numbered = taskTo("/t/d");
        numbered.sourcePath = path("[cfgPath]/[cfgID]-[cfgTaskID]");
        TaskList tasks{numbered, numbered, marker(), numbered};
        const RenderedSeries series = rendered(tasks);
        QCOMPARE(textsOf(series.filesToCreate),
                 (QStringList{"[cfgPath]/0-0", "[cfgPath]/0-1", "[cfgPath]/1-0"}));
    }

    void preparingNumbersAndNormalisesTasksButNoMarkers()
    {
        TestTask system = taskTo("/t/a");
        system.method = IoMethod::System;
        system.setChunkSize(0);
        TestTask markerWithSettings = system;
        markerWithSettings.waitForNextConfig = true;
        markerWithSettings.configId = 9;
        TaskList tasks{system, markerWithSettings, markerWithSettings, system};
        prepareTasks(tasks);
        QCOMPARE(tasks[0].io.chunkSize, 1048576);
        QCOMPARE(tasks[0].configId, 0);
        QCOMPARE(tasks[1].io.chunkSize, 0);
        QCOMPARE(tasks[1].configId, 9);
        QCOMPARE(tasks[3].configId, 2);
    }

    void listEndsWhereTheInitFileIsFull()
    {
        TestTask endless = taskTo("");
        endless.iterations = std::numeric_limits<int>::max();
        TestTask few = endless;
        few.iterations = 400;
        for (const char* name : {"[cfgPath]/src_[iter].bin", "[iter]", "/s/x", "[iter]/../x",
                                 "/[iter]/[iter]/[iter]/[iter]/[iter]"}) {
            endless.sourcePath = few.sourcePath = path(name);
            TaskList endlessTasks{endless, endless};
            TaskList fewTasks{few, few};
            const RenderedSeries series = rendered(endlessTasks);
            const QString content =
                renderInitFile(series.filesToCreate, mytest, nothingExists).content;
            // All that a file can hold, and no more of it than that takes.
            QCOMPARE(content.left(maxConfigFile), initOf(fewTasks).left(maxConfigFile));
            QVERIFY(content.size() < maxConfigFile + maxLine);
            QVERIFY(series.filesToCreate.files().size() <= maxConfigFile / 70 + 1);
        }
    }

    void sameTextIsCollectedOnce()
    {
        TestTask first = taskTo("");
        first.sourcePath = path("/s/./a");
        TestTask second = taskTo("");
        second.sourcePath = path("/s//a");
        TaskList tasks{first, second};
        const RenderedSeries series = rendered(tasks);
        QCOMPARE(textsOf(series.filesToCreate), QStringList{"/s/a"});
    }

    void unsavedTaskHasAnEmptyConfigName()
    {
        TestTask task;
        task.setDefaults();
        TaskList tasks{task};
        const RenderedSeries series = rendered(tasks);
        QCOMPARE(textsOf(series.filesToCreate).value(0),
                 QStringLiteral("[cfgPath]/testfile_-0.dat"));
    }

    void initFileCreatesWhatDoesNotExist()
    {
        FileToCreateList list;
        list.append({"[cfgPath]/a.dat", "/x/a.dat", 5242880, false});
        list.append({"/log/dummyFile", "/log/dummyFile", 1, true});
        const ConfigFile file = renderInitFile(
            list, mytest, [](const QString& resolved) { return resolved == "/x/a.dat"; });
        QCOMPARE(file.path, QStringLiteral("/x/mytest_init.dpc"));
        QCOMPARE(file.content,
                 QStringLiteral("# Stream;NOflush;NOprealloc;  0;    0; -1; 5120;1;0;  MEMORY;  "
                                "[cfgPath]/a.dat;  ;  ;  true;\n"
                                "Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  "
                                "/log/dummyFile;  ;  ;  true;\n"));
    }

    /// The marks of comments count.
    void initFileEndsWithTheLineThatFillsIt()
    {
        constexpr int lineLength = 100;
        constexpr int lines = maxConfigFile / lineLength;
        const auto linesOf = [](int firstLength, bool exist) {
            FileToCreateList list;
            const int restLength = creatingLine({"/", "/", 0, false}).size() - 1;
            for (int i = 0; i < lines + 2; ++i) {
                const int length = (i == 0 ? firstLength : lineLength) - restLength;
                const QString name = QStringLiteral("/%1").arg(i).leftJustified(length, 'n');
                list.append({name, name, 0, false});
            }
            return renderInitFile(list, mytest, [exist](const QString&) { return exist; })
                .content.count('\n');
        };
        QCOMPARE(linesOf(lineLength + 1, false), lines);
        QCOMPARE(linesOf(lineLength, false), lines);
        QCOMPARE(linesOf(lineLength - 1, false), lines + 1);
        QCOMPARE(linesOf(lineLength - 1, true), lines);
    }

    void initFileOfNothingIsEmpty()
    {
        QCOMPARE(renderInitFile({}, mytest, nothingExists).content, QString());
    }

    void initFileCutsNamesAt500AndSizesAtOneGiB()
    {
        FileToCreateList list;
        list.append({'/' + QString(600, 'n'), "", qint64(3000000000), false});
        const QString line = renderInitFile(list, mytest, nothingExists).content;
        QVERIFY(line.contains("; 1048576;1;0;  MEMORY;  /" + QString(499, 'n') + ";  ;"));
    }
};

QTEST_APPLESS_MAIN(TestSeriesRenderer)
#include "tst_seriesrenderer.moc"
