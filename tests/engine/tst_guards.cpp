#include "engine/calllog.h"
#include "engine/guards.h"
#include "engine/jobfile.h"
#include "engine/names.h"
#include "tests/support/childprocess.h"
#include "tests/support/files.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QScopedPointer>
#include <QTemporaryDir>
#include <QTest>

#include <sys/statvfs.h>

/// The conditions that guards ask, and the commands that write logs, as the shell takes them: for
/// files of every kind, and for names that mean something to a shell.
class TestGuards : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void answersFollowTheFile_data();
    void answersFollowTheFile();
    void rightsCount();
    void askingChangesNothing();
    void aGuardLeavesNoFileWhateverItSays_data();
    void aGuardLeavesNoFileWhateverItSays();
    void newFoldersMustBeNew();
    void roomIsThatOfTheFileSystem();
    void bitsTellTheSize();
    void commandsWriteTheSameLogs();
    void longLogsAreWrittenInParts();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    bool holds(const GuardTest& test) const { return isTrue(guardCondition(test)); }
    bool holds(const QString& name, FileState state, qint64 bytes = 5) const;
    bool isTrue(const QByteArray& condition) const;

    QScopedPointer<QTemporaryDir> m_folder;
};

namespace {

/// Letters that a shell, sed or printf could take for something.
constexpr const char* oddNames[] = {"plain", "a b",   "it's",  "a\"b", "$HOME",    "$(id)",
                                    "`id`",  "a\\nb", "%s%d",  "a&b",  "a/../b",   "*",
                                    "[ab]",  "~",     "-f",    "a|b",  "\xC3\xBC", "a:b",
                                    "!x",    "a>b",   "{a,b}", "a\\",  "''"};

} // namespace

void TestGuards::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
}

bool TestGuards::isTrue(const QByteArray& condition) const
{
    QProcess shell;
    shell.setWorkingDirectory(m_folder->path());
    shell.start("sh", {"-c", QFile::decodeName(condition)});
    return shell.waitForFinished(-1) && shell.exitCode() == 0;
}

bool TestGuards::holds(const QString& name, FileState state, qint64 bytes) const
{
    GuardTest test;
    test.path = path(name);
    test.state = state;
    test.bytes = bytes;
    return holds(test);
}

void TestGuards::answersFollowTheFile_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("states"); // absent, made, maybe-made, readable, read-writable
    QTest::newRow("nothing") << "nothing"
                             << "yes no yes no no";
    QTest::newRow("a file of the size") << "file"
                                        << "no yes yes yes yes";
    QTest::newRow("a shorter file") << "shorter"
                                    << "no yes yes no no";
    QTest::newRow("a longer file") << "longer"
                                   << "no yes yes no no";
    QTest::newRow("an empty file") << "empty"
                                   << "no yes yes no no";
    QTest::newRow("a link to a file") << "link"
                                      << "no no no yes yes";
    QTest::newRow("a link to nowhere") << "dangling"
                                       << "no no no no no";
    QTest::newRow("a folder") << "folder"
                              << "no no no no no";
    QTest::newRow("a FIFO") << "fifo"
                            << "no no no no no";
    QTest::newRow("a link to a folder") << "folderlink"
                                        << "no no no no no";
}

void TestGuards::answersFollowTheFile()
{
    QFETCH(QString, kind);
    QFETCH(QString, states);
    for (const char* name : oddNames) {
        const QString odd = QString::fromUtf8(name).replace("/", "_");
        if (kind == "file")
            test::put(path(odd), "12345");
        else if (kind == "shorter")
            test::put(path(odd), "1234");
        else if (kind == "longer")
            test::put(path(odd), "123456");
        else if (kind == "empty")
            test::put(path(odd), {});
        else if (kind == "folder")
            QVERIFY(QDir().mkdir(path(odd)));
        else if (kind == "fifo")
            QCOMPARE(::mkfifo(QFile::encodeName(path(odd)).constData(), 0600), 0);
        else if (kind != "nothing") {
            test::put(path("target"), "12345");
            QVERIFY(QFile::link(kind == "dangling"     ? "nowhere"
                                : kind == "folderlink" ? "."
                                                       : "target",
                                path(odd)));
        }
        QStringList answers;
        for (const FileState state : {FileState::Absent, FileState::Made, FileState::MaybeMade,
                                      FileState::Readable, FileState::ReadWritable})
            answers += holds(odd, state) ? "yes" : "no";
        QVERIFY2(answers.join(' ') == states, qPrintable(odd + ": " + answers.join(' ')));
    }
}

void TestGuards::rightsCount()
{
    test::put(path("readonly"), "12345", 0444);
    test::put(path("secret"), "12345", 0);
    QCOMPARE(::chmod(QFile::encodeName(m_folder->path()).constData(), 0755), 0);
    const bool isAsMeant = test::runWithoutRights([&] {
        const bool good = holds("readonly", FileState::Readable) &&
                          !holds("readonly", FileState::ReadWritable) &&
                          !holds("secret", FileState::Readable) && holds("secret", FileState::Made);
        if (!good)
            std::abort();
    });
    QVERIFY(isAsMeant);
}

void TestGuards::askingChangesNothing()
{
    test::put(path("file"), "12345");
    QVERIFY(QFile::link("nowhere", path("dangling")));
    QVERIFY(QDir().mkdir(path("folder")));
    const QStringList before = test::entriesOf(m_folder->path());
    for (const char* name : {"file", "dangling", "folder", "none"}) {
        for (const FileState state : {FileState::Absent, FileState::Made, FileState::MaybeMade,
                                      FileState::Readable, FileState::ReadWritable})
            holds(name, state);
        for (const GuardTest& test : sizeTests(path(name)))
            holds(test);
        GuardTest test;
        test.kind = GuardTest::Kind::NewFolder;
        test.path = path(name);
        holds(test);
        test.kind = GuardTest::Kind::Space;
        test.needs = {{path(name), 1}};
        holds(test);
    }
    QCOMPARE(test::entriesOf(m_folder->path()), before);
    QCOMPARE(test::contentOf(path("file")), QByteArray("12345"));
}

void TestGuards::aGuardLeavesNoFileWhateverItSays_data()
{
    QTest::addColumn<bool>("answer");
    QTest::newRow("yes") << true;
    QTest::newRow("no") << false;
}

void TestGuards::aGuardLeavesNoFileWhateverItSays()
{
    QFETCH(bool, answer);
    test::put(path("job.prerun.txt"), "content");
    // As fio calls it.
    const QByteArray condition = answer ? "test ! -e none && true" : "true && test -e none";
    QCOMPARE(isTrue(asPrerun(condition) + " > job.prerun.txt"), answer);
    QCOMPARE(test::contentOf(path("job.prerun.txt")), QByteArray("content"));
}

void TestGuards::newFoldersMustBeNew()
{
    GuardTest test;
    test.kind = GuardTest::Kind::NewFolder;
    test.path = path("new");
    QVERIFY(holds(test));
    QVERIFY(QFile::link("nowhere", path("new")));
    QVERIFY(!holds(test));
    QVERIFY(QFile::remove(path("new")));
    QVERIFY(QDir().mkdir(path("new")));
    QVERIFY(!holds(test));
    test.path = path("none/new");
    QVERIFY(!holds(test));
}

void TestGuards::roomIsThatOfTheFileSystem()
{
    struct statvfs system = {};
    QCOMPARE(::statvfs(QFile::encodeName(m_folder->path()).constData(), &system), 0);
    const auto free = qint64(system.f_bavail) * qint64(system.f_frsize);
    GuardTest test;
    test.kind = GuardTest::Kind::Space;
    const QString missing = path("none/deep er/it's");
    test.needs = {{missing, free / 4}};
    QVERIFY(holds(test));
    test.needs = {{missing, free * 2}};
    QVERIFY(!holds(test));
    // Two folders of one file system need the sum.
    test.needs = {{missing, free * 3 / 4}};
    QVERIFY(holds(test));
    test.needs.push_back({path("other"), free * 3 / 4});
    QVERIFY(!holds(test));
}

void TestGuards::bitsTellTheSize()
{
    const QString file = path("it's a file");
    QVERIFY(QFile(file).open(QIODevice::WriteOnly));
    const qint64 size = 0x2A0055001LL;
    QVERIFY(QFile::resize(file, size));
    qint64 told = 0;
    const std::vector<GuardTest> tests = sizeTests(file);
    for (size_t bit = 0; bit < tests.size(); ++bit)
        told |= qint64(holds(tests[bit])) << bit;
    QCOMPARE(told, size);
    QVERIFY(QFile::remove(file));
    for (const GuardTest& test : sizeTests(file))
        QVERIFY(!holds(test));
}

void TestGuards::commandsWriteTheSameLogs()
{
    QRandomGenerator random(14);
    for (int round = 0; round < 60; ++round) {
        PlanJob job;
        const auto oddPath = [&] {
            const int index = random.bounded(int(std::size(oddNames)));
            return "/d/" + QString::fromUtf8(oddNames[index]).remove(' ');
        };
        const int kind = random.bounded(3);
        job.kind = kind == 0 ? JobKind::Copy : kind == 1 ? JobKind::Read : JobKind::Write;
        if (job.kind != JobKind::Write)
            job.source.path = oddPath();
        if (job.kind != JobKind::Read)
            job.destination.path = oddPath();
        job.flush = job.kind != JobKind::Read && random.bounded(2) == 0;
        job.chunk = 1 + random.bounded(5000);
        job.bytes = 1 + random.bounded(1 << random.bounded(5, 20));
        // Numbers that a shell could write with an exponent.
        if (round % 10 == 0)
            job.chunk = (job.bytes = qint64(1) << (30 + round / 10)) / 4;
        QByteArray expected;
        QVERIFY(writeLog(job, [&](const QByteArray& text) {
            expected += text;
            return true;
        }));
        QCOMPARE(qint64(expected.count('\n')), logLines(job));
        const QString log = path("it's a log");
        const QByteArray command = logCommand(job, QFile::encodeName(log));
        QVERIFY(!command.contains(';') && !command.contains('#') && !command.contains('\n'));
        QVERIFY2(isTrue(command), command);
        QCOMPARE(test::contentOf(log), expected);
    }
}

void TestGuards::longLogsAreWrittenInParts()
{
    PlanJob job;
    job.kind = JobKind::Write;
    job.destination.path = "/d/a.dat";
    job.chunk = 1;
    job.bytes = 20000;
    QByteArray log;
    int parts = 0;
    const auto write = [&](const QByteArray& text) {
        constexpr int aboutOnePart = 66 * 1024;
        log += text;
        return ++parts > 0 && text.size() < aboutOnePart;
    };
    QVERIFY(writeLog(job, write));
    QCOMPARE(qint64(log.count('\n')), logLines(job));
    QVERIFY(log.endsWith("/d/a.dat write 19999 1\n/d/a.dat close\n"));
    QCOMPARE(parts, log.size() / (64 * 1024) + 1);
    // A part that can't be written ends it.
    for (int fails = 1; fails <= parts; ++fails) {
        int calls = 0;
        QVERIFY(!writeLog(job, [&](const QByteArray&) { return ++calls != fails; }));
        QCOMPARE(calls, fails);
    }
}

QTEST_APPLESS_MAIN(TestGuards)
#include "tst_guards.moc"
