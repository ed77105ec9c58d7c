#include "shared/kvfile.h"
#include "tests/shared/somebodyslink.h"
#include "tests/support/childprocess.h"
#include "tests/support/files.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

// Saving as a user who may not do everything.

namespace {

constexpr uid_t owner = 1234;
constexpr gid_t group = 4321;

bool isRoot()
{
    return ::geteuid() == 0;
}

/// An ordinary user has no second one to be, nor a second group that is sure to be there.
bool canChangeUsers()
{
    if (!isRoot())
        qInfo("only root can give files to others; nothing is checked here");
    return isRoot();
}

void setMode(const QString& path, mode_t mode)
{
    if (::chmod(QFile::encodeName(path).constData(), mode) != 0)
        qFatal("can't set permissions");
}

} // namespace

class TestKvFileRights : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        setMode(root.path(), 0777);
        test::clearFolder(folder());
        setMode(folder(), 0777);
    }

    void cleanup() { setMode(folder(), 0777); }

    /// A save that happens beats one that is dropped without a word.
    void aFileInAReadOnlyFolderIsWrittenInPlace()
    {
        for (const int length : {0, 1, 2999, 3000, 3001, 5000}) {
            test::put(in("file"), test::textOf(3000, 'A'), 0666);
            const ino_t before = test::statusOf(in("file")).st_ino;
            setMode(folder(), 0555);
            QVERIFY(test::runWithoutRights([&] {
                test::save(in("file"), test::textOf(length));
                test::save(in("new"), "new");
                test::save(in("sub/new"), "new");
            }));
            setMode(folder(), 0777);
            QCOMPARE(test::contentOf(in("file")), test::textOf(length));
            QCOMPARE(test::statusOf(in("file")).st_ino, before);
            QCOMPARE(test::entriesOf(folder()), QStringList("file"));
        }
    }

    /// In a folder such as /tmp, only the owner of a file may replace it.
    void aFileOfSomebodyElseInAStickyFolderIsWrittenInPlace()
    {
        if (!canChangeUsers())
            return;
        test::put(in("file"), "old", 0666);
        QCOMPARE(::chown(QFile::encodeName(in("file")).constData(), owner, group), 0);
        setMode(folder(), 01777);
        QVERIFY(test::runWithoutRights([&] { test::save(in("file"), "new"); }));
        QCOMPARE(test::contentOf(in("file")), QByteArray("new"));
        QCOMPARE(test::statusOf(in("file")).st_uid, owner);
        QCOMPARE(test::entriesOf(folder()), QStringList("file"));
    }

    /// The system may refuse to follow links of other users in a folder such as /tmp. A save
    /// follows one if a plain write does.
    void aLinkIsFollowedAsByAPlainWrite()
    {
        if (!canChangeUsers())
            return;
        for (const mode_t mode : {0777U, 01777U, 01775U}) {
            for (const uid_t folderOwner : {0U, owner, test::nobody}) {
                for (const uid_t linkOwner : {0U, owner, test::nobody}) {
                    const test::SomebodysLink link(mode, folderOwner, linkOwner);
                    const bool isPlain = link.isFollowedByAWrite();
                    const bool isSaved = link.isFollowedByASave();
                    QVERIFY(isPlain || mode == 01777);
                    QVERIFY2(isPlain == isSaved,
                             qPrintable(QString("mode %1, folder of %2, link of %3, plain %4")
                                            .arg(mode, 0, 8)
                                            .arg(folderOwner)
                                            .arg(linkOwner)
                                            .arg(isPlain)));
                }
            }
        }
    }

    /// The negative control: the same user can save where he may.
    void aWritableFolderIsWritten()
    {
        test::put(in("file"), "old", 0666);
        QVERIFY(test::runWithoutRights([&] {
            test::save(in("file"), "new");
            test::save(in("sub/new"), "new");
        }));
        QCOMPARE(test::contentOf(in("file")), QByteArray("new"));
        QCOMPARE(test::contentOf(in("sub/new")), QByteArray("new"));
        QCOMPARE(test::entriesOf(folder()), QStringList({"file", "sub", "sub/new"}));
    }

    void aReadOnlyFileIsLeftAlone()
    {
        test::put(in("file"), "old", 0444);
        const ino_t before = test::statusOf(in("file")).st_ino;
        QVERIFY(test::runWithoutRights([&] { test::save(in("file"), "new"); }));
        QCOMPARE(test::contentOf(in("file")), QByteArray("old"));
        QCOMPARE(test::statusOf(in("file")).st_ino, before);
        QCOMPARE(test::modeOf(in("file")), mode_t(0444));
        QCOMPARE(test::entriesOf(folder()), QStringList("file"));
    }

    void aFileThatMayOnlyBeWrittenIsWritten()
    {
        test::put(in("file"), "old", 0222);
        QVERIFY(test::runWithoutRights([&] { test::save(in("file"), "new"); }));
        QCOMPARE(test::modeOf(in("file")), mode_t(0222));
        setMode(in("file"), 0666);
        QCOMPARE(test::contentOf(in("file")), QByteArray("new"));
    }

    void aFolderThatCannotBeEnteredIsLeftAlone()
    {
        test::put(in("file"), "old", 0666);
        setMode(folder(), 0666);
        QVERIFY(test::runWithoutRights([&] {
            test::save(in("file"), "new");
            test::save(in("sub/new"), "new");
        }));
        setMode(folder(), 0777);
        QCOMPARE(test::contentOf(in("file")), QByteArray("old"));
        QCOMPARE(test::entriesOf(folder()), QStringList("file"));
    }

    void aFolderThatCannotBeListedIsWritten()
    {
        setMode(folder(), 0333);
        QVERIFY(test::runWithoutRights([&] { test::save(in("file"), "new"); }));
        setMode(folder(), 0777);
        QCOMPARE(test::contentOf(in("file")), QByteArray("new"));
    }

    void noFolderIsMadeWithoutRights()
    {
        setMode(folder(), 0555);
        QVERIFY(test::runWithoutRights([&] {
            for (const bool parents : {false, true}) {
                if (kvCreateFolder(in("a"), parents) || kvCreateFolder(in("a/b"), parents))
                    ::_exit(EXIT_FAILURE);
                // One that is there needs no rights.
                if (!kvCreateFolder(folder(), parents))
                    ::_exit(EXIT_FAILURE);
            }
        }));
        QCOMPARE(test::entriesOf(folder()), QStringList());
    }

    /// Root who saves a file of somebody else doesn't take it away from him.
    void ownerAndGroupStay()
    {
        for (const mode_t mode : {0640U, 02755U, 04755U}) {
            test::put(in("file"), "old");
            if (isRoot())
                QCOMPARE(::chown(QFile::encodeName(in("file")).constData(), owner, group), 0);
            setMode(in("file"), mode);
            test::save(in("file"), "new");
            QCOMPARE(test::contentOf(in("file")), QByteArray("new"));
            const struct stat status = test::statusOf(in("file"));
            QCOMPARE(status.st_uid, isRoot() ? owner : ::geteuid());
            QCOMPARE(status.st_gid, isRoot() ? group : ::getegid());
            QCOMPARE(test::modeOf(in("file")), mode);
            QCOMPARE(::unlink(QFile::encodeName(in("file")).constData()), 0);
        }
    }

    /// A file that everybody may write becomes the user's who writes it, as only root can give
    /// files away. It must not give him or his group the rights that it had as somebody else's
    /// program.
    void aFileThatChangesItsOwnerGivesAwayNoRights()
    {
        if (!canChangeUsers())
            return;
        test::put(in("file"), "old", 06777);
        QVERIFY(test::runWithoutRights([&] { test::save(in("file"), "new"); }));
        QCOMPARE(test::contentOf(in("file")), QByteArray("new"));
        QCOMPARE(test::modeOf(in("file")), mode_t(0777));
        QCOMPARE(test::entriesOf(folder()), QStringList("file"));
    }

    /// The system takes such rights away at each write by an ordinary user; saving keeps them.
    void aProgramOfTheUserKeepsItsRights()
    {
        QVERIFY(test::runWithoutRights([&] {
            test::put(in("file"), "old", 06755);
            test::save(in("file"), "new");
        }));
        QCOMPARE(test::contentOf(in("file")), QByteArray("new"));
        QCOMPARE(test::modeOf(in("file")), mode_t(06755));
    }

    /// People who share files through a group go on sharing them. It must not run programs with the
    /// rights of him who saved.
    void aGroupOfTheUserStays()
    {
        if (!canChangeUsers())
            return;
        for (const mode_t mode : {0660U, 06770U}) {
            putFor(owner, mode);
            QVERIFY(test::runWithoutRights([&] { test::save(in("file"), "new"); }, group));
            QCOMPARE(test::contentOf(in("file")), QByteArray("new"));
            QCOMPARE(test::statusOf(in("file")).st_gid, group);
            QCOMPARE(test::modeOf(in("file")), mode & 0777U);
        }
    }

    /// Only members give a file to a group.
    void aGroupThatIsNotOfTheUserGivesAwayNoRights()
    {
        if (!canChangeUsers())
            return;
        putFor(test::nobody, 06770);
        QVERIFY(test::runWithoutRights([&] { test::save(in("file"), "new"); }));
        QCOMPARE(test::contentOf(in("file")), QByteArray("new"));
        QCOMPARE(test::statusOf(in("file")).st_gid, test::nobody);
        QCOMPARE(test::modeOf(in("file")), mode_t(0770));
    }

private:
    /// Of the group.
    void putFor(uid_t user, mode_t mode)
    {
        test::put(in("file"), "old");
        QCOMPARE(::chown(QFile::encodeName(in("file")).constData(), user, group), 0);
        setMode(in("file"), mode);
    }

    QString folder() const { return root.filePath("folder"); }
    QString in(const QString& name) const { return folder() + '/' + name; }
    QTemporaryDir root;
};

QTEST_GUILESS_MAIN(TestKvFileRights)
#include "tst_kvfile_rights.moc"
