#include "engine/runfolder.h"
#include "tests/support/files.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

/// The folder of a run while it goes on, and as the next run finds it.
class TestRunFolder : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void isMadeAnewOrNotAtAll();
    void stateIsThatOfTheRun_data();
    void stateIsThatOfTheRun();
    void whatIsThereIsTold_data();
    void whatIsThereIsTold();
    void aRunThatGoesOnIsTold();
    void theFirstProblemIsKept();
    void earlierRunsKnowTheirFiles();
    void foldersWithoutFilesOfARunAreNone();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    /// The sentence about a path, without the folder of the test.
    QString taken(const QString& name) const
    {
        return QString::fromStdString(RunFolder::whyTaken(path(name)))
            .remove(m_folder->path() + '/');
    }

    QScopedPointer<QTemporaryDir> m_folder;
};

void TestRunFolder::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
}

void TestRunFolder::isMadeAnewOrNotAtAll()
{
    std::string problem;
    RunFolder folder;
    QVERIFY(folder.create(path("run"), problem));
    QCOMPARE(folder.path(), path("run") + '/');
    QCOMPARE(folder.file("x"), path("run") + "/x");
    RunFolder again;
    QVERIFY(!again.create(path("run"), problem));
    QCOMPARE(problem, std::string("File exists"));
    RunFolder nowhere;
    QVERIFY(!nowhere.create(path("none/run"), problem));
    QCOMPARE(problem, std::string("No such file or directory"));
    QCOMPARE(test::entriesOf(m_folder->path()), QStringList("run"));
}

void TestRunFolder::stateIsThatOfTheRun_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("name");
    const auto row = [](RunState state, const char* name) {
        QTest::newRow(name) << int(state) << name;
    };
    row(RunState::Running, "running");
    row(RunState::Complete, "complete");
    row(RunState::Incomplete, "incomplete");
    row(RunState::Failed, "failed");
    row(RunState::Interrupted, "interrupted");
    row(RunState::Refused, "refused");
}

void TestRunFolder::stateIsThatOfTheRun()
{
    QFETCH(int, state);
    QFETCH(QString, name);
    std::string problem;
    RunFolder folder;
    QVERIFY(folder.create(path("run"), problem));
    RunStatus status;
    status.state = RunState(state);
    status.startedMs = 5;
    status.reasons = {"a", "b"};
    QVERIFY(folder.writeState(status));
    const auto read = [&] {
        return QJsonDocument::fromJson(test::contentOf(path("run/state.json"))).object();
    };
    QJsonObject expected{{"version", 1},
                         {"state", name},
                         {"stage", QJsonValue()},
                         {"reasons", QJsonArray{"a", "b"}},
                         {"startedMs", 5},
                         {"endedMs", QJsonValue()},
                         {"process", int(::getpid())}};
    QCOMPARE(read(), expected);
    status.stage = 3;
    status.endedMs = 7;
    QVERIFY(folder.writeState(status));
    expected.insert("stage", 3);
    expected.insert("endedMs", 7);
    QCOMPARE(read(), expected);
}

void TestRunFolder::whatIsThereIsTold_data()
{
    QTest::addColumn<QByteArray>("state");
    QTest::addColumn<QString>("told");
    const QString there = "'run' is there already";
    QTest::newRow("no state") << QByteArray("{}") << there;
    QTest::newRow("not JSON") << QByteArray("x") << there;
    QTest::newRow("a state that is a number") << QByteArray(R"({"state": 5})") << there;
    QTest::newRow("ended") << QByteArray(R"({"state": "failed", "stage": 2})")
                           << there + ": a run that ended as failed";
    QTest::newRow("killed") << QByteArray(R"({"state": "running", "stage": 2})")
                            << there + ": a run that was killed in stage 2";
    QTest::newRow("killed early") << QByteArray(R"({"state": "running", "stage": null})")
                                  << there + ": a run that was killed before its first stage";
    QTest::newRow("a state that steers a terminal")
        << QByteArray(R"({"state": "\u001b[2J"})") << there + ": a run that ended as \\x1B[2J";
}

void TestRunFolder::whatIsThereIsTold()
{
    QFETCH(QByteArray, state);
    QFETCH(QString, told);
    QCOMPARE(taken("run"), QString());
    QVERIFY(QDir().mkdir(path("run")));
    QCOMPARE(taken("run"), QStringLiteral("'run' is there already"));
    test::put(path("run/state.json"), state);
    QCOMPARE(taken("run"), told);
    // A pipe holds nothing up.
    QVERIFY(QFile::remove(path("run/state.json")));
    QCOMPARE(::mkfifo(QFile::encodeName(path("run/state.json")).constData(), 0600), 0);
    QCOMPARE(taken("run"), QStringLiteral("'run' is there already"));
    test::put(path("file"), "");
    QCOMPARE(taken("file"), QStringLiteral("'file' is there already"));
    QVERIFY(QFile::link("nowhere", path("link")));
    QCOMPARE(taken("link"), QStringLiteral("'link' is there already"));
}

void TestRunFolder::aRunThatGoesOnIsTold()
{
    std::string problem;
    QVERIFY(!RunFolder::isLocked(path("run")));
    {
        RunFolder folder;
        QVERIFY(folder.create(path("run"), problem));
        RunStatus status;
        status.stage = 1;
        QVERIFY(folder.writeState(status));
        QVERIFY(RunFolder::isLocked(path("run")));
        QCOMPARE(taken("run"),
                 QStringLiteral("'run' is there already: a run that goes on in stage 1"));
    }
    QVERIFY(!RunFolder::isLocked(path("run")));
    QCOMPARE(taken("run"),
             QStringLiteral("'run' is there already: a run that was killed in stage 1"));
}

void TestRunFolder::theFirstProblemIsKept()
{
    std::string problem;
    RunFolder folder;
    QVERIFY(folder.create(path("run"), problem));
    QVERIFY(folder.write("a", "1"));
    QVERIFY(folder.write("a", "2"));
    QCOMPARE(test::contentOf(path("run/a")), QByteArray("2"));
    QVERIFY(folder.problem().empty());
    QVERIFY(!folder.write("none/b", "3"));
    const std::string first = folder.problem();
    QCOMPARE(QString::fromStdString(first).remove(m_folder->path()),
             QStringLiteral("'/run/none/b': No such file or directory"));
    QVERIFY(QDir(path("run")).removeRecursively());
    QVERIFY(!folder.writeState({}));
    QCOMPARE(folder.problem(), first);
}

void TestRunFolder::earlierRunsKnowTheirFiles()
{
    QVERIFY(QDir().mkdir(path("run")));
    test::put(path("run/plan.json"), R"({"series": "/x/a.dpc"})");
    const std::vector<MadeFile> files = {
        {"pc1", "/d/a"}, {"pc2", "/d/b\tc"}, {"", "/d/\\n"}, {"pc1", "/d/x\ny"}};
    const QByteArray text = manifestText(files);
    QCOMPARE(text, QByteArray("pc1\t/d/a\npc2\t/d/b\\tc\n\t/d/\\\\n\npc1\t/d/x\\ny\n"));
    test::put(path("run/manifest"), text);
    std::string problem;
    const auto run = EarlierRun::read(path("run"), problem);
    QVERIFY2(run.has_value(), problem.c_str());
    QCOMPARE(run->series(), QStringLiteral("/x/a.dpc"));
    for (const MadeFile& file : files)
        QVERIFY2(run->made(file.machine, file.path), qPrintable(file.path));
    QVERIFY(!run->made("pc2", "/d/a"));
    QVERIFY(!run->made("pc1", "/d/"));
    QVERIFY(!run->made("", "/d/\n"));
    QVERIFY(!run->made("", ""));
}

void TestRunFolder::foldersWithoutFilesOfARunAreNone()
{
    std::string problem;
    const auto isRun = [&] {
        problem.clear();
        const bool isOne = EarlierRun::read(path("run"), problem).has_value();
        return isOne && problem.empty();
    };
    QVERIFY(!isRun());
    QCOMPARE(QString::fromStdString(problem).remove(m_folder->path() + '/'),
             QStringLiteral("'run' does not hold a run that made files"));
    QVERIFY(QDir().mkdir(path("run")));
    test::put(path("run/plan.json"), R"({"series": "/x/a.dpc"})");
    QVERIFY(!isRun());
    QVERIFY(QDir().mkdir(path("run/manifest")));
    QVERIFY(!isRun());
    QVERIFY(QDir().rmdir(path("run/manifest")));
    test::put(path("run/manifest"), "");
    QVERIFY(isRun());
    test::put(path("run/plan.json"), R"({"series": ""})");
    QVERIFY(!isRun());
}

QTEST_APPLESS_MAIN(TestRunFolder)
#include "tst_runfolder.moc"
