#include "shared/kvfile.h"
#include "tests/support/faultinjection.h"
#include "tests/support/files.h"

#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <cerrno>
#include <sys/syscall.h>
#include <unistd.h>

// A fault at each system call of a save, one after the other, in each scene that a save can meet.

namespace {

const QByteArray oldText = test::textOf(3000, 'A');
const QByteArray newText = test::textOf(5000, 'a');

struct Scene
{
    QString file;           ///< the name that is saved
    QString target;         ///< where the text belongs
    bool isNew = false;     ///< there is no old text
    bool isForeign = false; ///< it belongs to another user, as far as root runs the test
};

const Scene scenes[] = {
    {"file", "file", false},
    {"new", "new", true},
    {"missing/folder/new", "missing/folder/new", true},
    {"link", "folder/file", false},
    {"foreign", "foreign", false, true},
};

bool isOneOf(long call, std::initializer_list<long> calls)
{
    return std::find(calls.begin(), calls.end(), call) != calls.end();
}

bool syncs(long call)
{
    return isOneOf(call, {SYS_fsync, SYS_fdatasync});
}

/// The call that brings the new text under its name.
int moveIndex(const std::vector<long>& calls)
{
    for (int i = static_cast<int>(calls.size()) - 1; i >= 0; --i) {
        if (isOneOf(calls[i], {SYS_rename, SYS_renameat, SYS_renameat2, SYS_linkat}))
            return i;
    }
    return -1;
}

/// Before the text is moved under its name, no failure of these may be passed over: the new file
/// would be short, not on the disk, or readable by people who could not read the old one.
bool mustKeepOldText(const test::TracedRun& clean, int at)
{
    return at <= moveIndex(clean.calls) &&
           (syncs(clean.calls[at]) ||
            isOneOf(clean.calls[at], {SYS_write, SYS_close, SYS_fchmod, SYS_rename}));
}

} // namespace

class TestKvFileFaults : public QObject
{
    Q_OBJECT

private slots:
    /// What is done once in the life of a process is not done again in its children, so each of
    /// them makes the same calls.
    void initTestCase() { test::save(in("warm-up"), "x"); }

    void theTextIsOnDiskBeforeItHasItsName_data() { addScenes(); }

    void theTextIsOnDiskBeforeItHasItsName()
    {
        prepare();
        const std::vector<long> calls = run({}).calls;
        const auto begin = calls.begin();
        const auto move = begin + moveIndex(calls);
        QVERIFY(move >= begin);
        const auto lastWrite = std::find(std::make_reverse_iterator(move), calls.rend(), SYS_write);
        QVERIFY(lastWrite != calls.rend());
        QVERIFY(std::any_of(lastWrite.base(), move, syncs));
        QVERIFY2(std::any_of(move, calls.end(), syncs), "the folder with the new name");
    }

    void anyErrorKeepsTheOldTextOrGivesTheNewOne_data() { addScenes(); }

    void anyErrorKeepsTheOldTextOrGivesTheNewOne()
    {
        for (const int error : {ENOSPC, EIO, EACCES, EDQUOT, EROFS})
            failEverywhere(test::Fault::Fail, error);
    }

    /// A network file system can do what it was told and report an error all the same.
    void anErrorAfterTheWorkLeavesAWholeFile_data() { addScenes(); }

    void anErrorAfterTheWorkLeavesAWholeFile() { failEverywhere(test::Fault::FailAfter, EIO); }

    void aDiskThatGoesAwayLeavesAWholeFile_data() { addScenes(); }

    void aDiskThatGoesAwayLeavesAWholeFile()
    {
        for (const int error : {EIO, EROFS}) {
            // Nothing can be removed from such a disk, so what was made beside the file stays.
            for (int at = 0; at < prepareAndCount(); ++at) {
                injection = {test::Fault::FailOnwards, at, error};
                prepareAndRun(true);
                checkText();
                checkLaterSave();
                if (QTest::currentTestFailed())
                    return;
            }
        }
    }

    void aShortWriteIsContinuedOrGivenUp_data() { addScenes(); }

    void aShortWriteIsContinuedOrGivenUp() { failEverywhere(test::Fault::Short, 0); }

    void aWriteThatASignalInterruptsIsRepeated_data() { addScenes(); }

    void aWriteThatASignalInterruptsIsRepeated()
    {
        expectNewText(EINTR, [](long call) { return call == SYS_write; });
    }

    /// Some file systems of users' own can't.
    void aDiskThatCantSyncGetsTheNewText_data() { addScenes(); }

    void aDiskThatCantSyncGetsTheNewText() { expectNewText(EINVAL, syncs); }

    /// After a kill, something may lie beside the file. It must not matter.
    void aKillLeavesAWholeFile_data() { addScenes(); }

    void aKillLeavesAWholeFile()
    {
        int kills = 0;
        for (int at = 0; at < prepareAndCount(); ++at, ++kills) {
            injection = {test::Fault::Kill, at, 0};
            prepareAndRun(false);
            checkText();
            checkLaterSave();
            if (QTest::currentTestFailed())
                return;
        }
        qInfo("%d kills", kills);
        QVERIFY(kills > 0);
    }

private:
    static void addScenes()
    {
        QTest::addColumn<int>("number");
        int number = 0;
        for (const Scene& each : scenes)
            QTest::newRow(qPrintable(each.file)) << number++;
    }

    QString in(const QString& name) const { return root.filePath(name); }

    void prepare()
    {
        QFETCH(int, number);
        scene = scenes[number];
        test::clearFolder(root.path());
        QVERIFY(QDir(root.path()).mkdir("folder"));
        if (!scene.isNew)
            test::put(in(scene.target), oldText, 0640);
        if (scene.file != scene.target)
            QVERIFY(QFile::link(scene.target, in(scene.file)));
        if (scene.isForeign && ::geteuid() == 0)
            QCOMPARE(::chown(QFile::encodeName(in(scene.target)).constData(), 1234, 4321), 0);
        before = test::entriesOf(root.path());
    }

    test::TracedRun run(const test::Injection& with) const
    {
        return test::runWithFault([this] { test::save(in(scene.file), newText); }, with);
    }

    /// The work must return, and must have met the fault at the call that was counted.
    void prepareAndRun(bool endsWell)
    {
        prepare();
        const test::TracedRun faulty = run(injection);
        const int met = injection.at + 1;
        QVERIFY2(faulty.endedWell == endsWell, where());
        QVERIFY2(
            int(faulty.calls.size()) >= met &&
                std::equal(faulty.calls.begin(), faulty.calls.begin() + met, clean.calls.begin()),
            where());
    }

    /// How many calls there are where nothing fails.
    int prepareAndCount()
    {
        prepare();
        clean = run({});
        return static_cast<int>(clean.calls.size());
    }

    void failEverywhere(test::Fault fault, int error)
    {
        int injected = 0;
        const int count = prepareAndCount();
        for (int at = 0; at < count; ++at) {
            const long call = clean.calls[at];
            // A file that was made although its maker was told that it was not is out of reach.
            const bool lostFile = fault == test::Fault::FailAfter && call == SYS_openat;
            if (lostFile || (fault == test::Fault::Short && call != SYS_write))
                continue;
            ++injected;
            injection = {fault, at, error};
            prepareAndRun(true);
            checkText();
            checkNothingElse();
            if (fault == test::Fault::Fail && mustKeepOldText(clean, at))
                QVERIFY2(test::contentOf(in(scene.target)) == textBefore(), where());
            checkLaterSave();
            if (QTest::currentTestFailed())
                return;
        }
        qInfo("%d of %d calls, error %d", injected, count, error);
        QVERIFY(injected > 0);
    }

    /// The error means no loss where it comes from these calls.
    template <class IsMeant>
    void expectNewText(int error, const IsMeant& isMeant)
    {
        int injected = 0;
        for (int at = 0; at < prepareAndCount(); ++at) {
            if (!isMeant(clean.calls[at]))
                continue;
            ++injected;
            injection = {test::Fault::Fail, at, error};
            prepareAndRun(true);
            QVERIFY2(test::contentOf(in(scene.target)) == newText, where());
            checkNothingElse();
        }
        QVERIFY(injected > 0);
    }

    QByteArray textBefore() const { return scene.isNew ? QByteArray() : oldText; }

    void checkText()
    {
        const QByteArray text = test::contentOf(in(scene.target));
        const bool isOld = text == textBefore() && text.isNull() == scene.isNew;
        QVERIFY2(isOld || text == newText, where());
        if (!scene.isNew)
            QVERIFY2(test::modeOf(in(scene.target)) == 0640, where());
        if (scene.file != scene.target)
            QVERIFY2(test::linkOf(in(scene.file)) == QFile::encodeName(scene.target), where());
    }

    /// Nothing but the file itself and the folders on the way to it may be new.
    void checkNothingElse()
    {
        for (const QString& entry : test::entriesOf(root.path())) {
            QVERIFY2(before.contains(entry) || entry == scene.target ||
                         scene.target.startsWith(entry + '/'),
                     where() + (" left " + entry.toLocal8Bit()));
        }
    }

    void checkLaterSave()
    {
        test::save(in(scene.file), "later");
        QVERIFY2(test::contentOf(in(scene.target)) == "later", where());
    }

    QByteArray where() const
    {
        const auto at = static_cast<size_t>(injection.at);
        const QString name = at < clean.calls.size() ? test::callName(clean.calls[at]) : "?";
        return QStringLiteral("fault %1, errno %2, at call %3 (%4)")
            .arg(static_cast<int>(injection.fault))
            .arg(injection.error)
            .arg(injection.at)
            .arg(name)
            .toLocal8Bit();
    }

    QTemporaryDir root;
    Scene scene;
    QStringList before;
    test::TracedRun clean;
    test::Injection injection;
};

QTEST_GUILESS_MAIN(TestKvFileFaults)
#include "tst_kvfile_faults.moc"
