#include "shared/kvfile.h"
#include "tests/support/childprocess.h"
#include "tests/support/faultinjection.h"
#include "tests/support/files.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

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
    bool isNew = false;     ///< the file does not exist before
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
/// would be short, or not on the disk.
bool mustKeepOldText(const test::TracedRun& clean, int at)
{
    const auto& calls = clean.calls;
    const auto firstWrite = std::find(calls.begin(), calls.end(), SYS_write) - calls.begin();
    return at >= firstWrite && at <= moveIndex(calls) &&
           (syncs(calls[at]) || isOneOf(calls[at], {SYS_write, SYS_close}));
}

/// Nor of these, if it was more than a lack of rights: that alone is got round.
bool isAnsweredByRights(const test::TracedRun& clean, int at)
{
    return at <= moveIndex(clean.calls) && isOneOf(clean.calls[at], {SYS_fchmod, SYS_rename});
}

} // namespace

class TestKvFileFaults : public QObject
{
    Q_OBJECT

private slots:
    /// Makes the calls that a process makes only once, so that each of its children makes the same
    /// calls.
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
        QVERIFY2(std::count_if(move, calls.end(), syncs) == 2, "the name, and its folder");
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

    /// A folder may take new files and still not let them replace an old one.
    void aRenameThatIsRefusedForGoodIsDoneInPlace_data() { addScenes(); }

    void aRenameThatIsRefusedForGoodIsDoneInPlace()
    {
        for (const int error : {EACCES, EPERM, EBUSY}) {
            const struct stat old = refuseForGood(SYS_rename, error);
            QVERIFY2(test::contentOf(in(scene.target)) == (scene.isNew ? QByteArray() : newText),
                     where());
            QVERIFY2(test::statusOf(in(scene.target)).st_ino == old.st_ino, where());
            checkText();
            checkNothingElse();
            checkLaterSave();
        }
    }

    /// More than rights is at fault here, and writing in place would break what is left.
    void aRenameWithoutRoomKeepsTheOldText_data() { addScenes(); }

    void aRenameWithoutRoomKeepsTheOldText()
    {
        for (const int error : {ENOSPC, EDQUOT, EIO, EROFS}) {
            refuseForGood(SYS_rename, error);
            QVERIFY2(test::contentOf(in(scene.target)) == textBefore(), where());
            checkText();
            checkNothingElse();
        }
    }

    /// Where rights can't be set, a file may still be made with them.
    void rightsThatCantBeSetAreThereFromBirth_data() { addScenes(); }

    void rightsThatCantBeSetAreThereFromBirth()
    {
        for (const int error : {EACCES, EPERM, EOPNOTSUPP, ENOSYS}) {
            const struct stat old = refuseForGood(SYS_fchmod, error);
            if (clean.calls.empty()) // nothing to set in this scene
                return;
            QVERIFY2(test::contentOf(in(scene.target)) == newText, where());
            // A new file can't be born as that of somebody else.
            const bool isInPlace = test::statusOf(in(scene.target)).st_ino == old.st_ino;
            QVERIFY2(isInPlace == (scene.isForeign && ::geteuid() == 0), where());
            checkText();
            checkNothingElse();
        }
    }

    /// SMB shares do so with a file that is open: it vanishes although the rename was refused.
    void aRenameThatTakesTheOldFileAlongLosesNothing_data() { addScenes(); }

    void aRenameThatTakesTheOldFileAlongLosesNothing()
    {
        meanwhile = [this] { QFile::remove(in(scene.target)); };
        prepareAndCount();
        injection = {test::Fault::Fail, moveIndex(clean.calls), EACCES};
        prepareAndRun(true);
        QVERIFY2(test::contentOf(in(scene.target)) == newText, where());
        checkNothingElse();

        for (const int error : {EACCES, EIO}) {
            refuseForGood(SYS_rename, error);
            if (!scene.isNew)
                checkThatTheNewTextIsBeside();
        }
        meanwhile = nullptr;
    }

    /// Nobody knows then what the old file holds.
    void aFileThatBreaksInPlaceLeavesTheNewTextBeside_data() { addScenes(); }

    void aFileThatBreaksInPlaceLeavesTheNewTextBeside()
    {
        refuseForGood(SYS_rename, EACCES, test::Fault::RefuseAndBreak);
        if (!scene.isNew)
            checkThatTheNewTextIsBeside();
    }

    /// The space of the longer text is asked for before the old one is touched.
    void aFileThatIsWrittenInPlaceGetsItsSpaceFirst()
    {
        const auto writeInPlace = [this](const test::Injection& with) {
            test::clearFolder(root.path());
            test::put(in("file"), oldText, 0666);
            QCOMPARE(::chmod(QFile::encodeName(root.path()).constData(), 0555), 0);
            traced = test::runWithFault(
                [this] {
                    test::giveUpRights();
                    test::save(in("file"), newText);
                },
                with);
            QCOMPARE(::chmod(QFile::encodeName(root.path()).constData(), 0755), 0);
        };
        writeInPlace({});
        QCOMPARE(test::contentOf(in("file")), newText);
        const std::vector<long> calls = traced.calls;
        const auto write = std::find(calls.begin(), calls.end(), SYS_write);
        const auto sync = std::find_if(calls.begin(), calls.end(), syncs);
        QVERIFY(write < sync && sync < calls.end());
        QVERIFY(syncs(*std::find_if(std::make_reverse_iterator(calls.end()), calls.rend(), syncs)));
        for (const auto call : {write, sync}) {
            for (const int error : {ENOSPC, EDQUOT, EIO}) {
                writeInPlace({test::Fault::Fail, int(call - calls.begin()), error});
                QCOMPARE(test::contentOf(in("file")), oldText);
                QCOMPARE(test::entriesOf(root.path()), QStringList("file"));
            }
        }
    }

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
        int left = 0;
        for (int at = 0; at < prepareAndCount(); ++at, ++kills) {
            injection = {test::Fault::Kill, at, 0};
            prepareAndRun(false);
            checkText();
            left += filesLeftByAKill();
            checkLaterSave();
            if (QTest::currentTestFailed())
                return;
        }
        qInfo("%d kills", kills);
        QVERIFY(kills > 0 && left > 0);
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

    /// How many hidden files lie there that people know by their names.
    int filesLeftByAKill() const
    {
        static const QRegularExpression form("(^|/)\\.twdp-[0-9a-f]+\\.tmp$");
        return test::entriesOf(root.path()).filter(form).size();
    }

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
        return test::runWithFault([this] { test::save(in(scene.file), newText); }, with, meanwhile);
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

    /// The last call of this number, and all that come after it, return the error. Returns what the
    /// file was before. Without such a call nothing is done, and `clean` is left empty.
    struct stat refuseForGood(long call, int error, test::Fault fault = test::Fault::Refuse)
    {
        prepareAndCount();
        const auto last = std::find(clean.calls.rbegin(), clean.calls.rend(), call);
        if (last == clean.calls.rend()) {
            clean.calls.clear();
            return {};
        }
        injection = {fault, int(clean.calls.rend() - last) - 1, error};
        prepare();
        const struct stat old = test::statusOf(in(scene.target));
        [this] { QVERIFY2(run(injection).endedWell, where()); }();
        return old;
    }

    /// The number of calls if nothing fails.
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
            const bool isRight = error == EACCES && isAnsweredByRights(clean, at);
            if (fault == test::Fault::Fail && isRight)
                QVERIFY2(test::contentOf(in(scene.target)) == newText, where());
            else if (fault == test::Fault::Fail &&
                     (mustKeepOldText(clean, at) || isAnsweredByRights(clean, at)))
                QVERIFY2(test::contentOf(in(scene.target)) == textBefore(), where());
            checkLaterSave();
            if (QTest::currentTestFailed())
                return;
        }
        qInfo("%d of %d calls, error %d", injected, count, error);
        QVERIFY(injected > 0);
    }

    /// The error means no loss if it comes from these calls.
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

    void checkThatTheNewTextIsBeside()
    {
        const QStringList left = test::entriesOf(root.path()).filter(QRegularExpression("\\.tmp$"));
        QVERIFY2(left.size() == 1, where());
        QVERIFY2(test::contentOf(in(left.first())) == newText, where());
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
    test::TracedRun traced;
    std::function<void()> meanwhile;
    test::Injection injection;
};

QTEST_GUILESS_MAIN(TestKvFileFaults)
#include "tst_kvfile_faults.moc"
