#include "shared/kvfile.h"
#include "tests/support/childprocess.h"
#include "tests/support/files.h"
#include "tests/support/ownmounts.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

// Full disks, at every level around the size of a file and around 16,384 bytes, at which the
// buffers of Qt's files end. The file system is a tmpfs; it counts in pages.

namespace {

constexpr int page = 4096;
constexpr int pages = 16;
constexpr int mostFree = 6;

const int lengths[] = {0, 1, page - 1, page, page + 1, 5000};

qint64 pagesFree(const QString& folder)
{
    struct statvfs status = {};
    if (::statvfs(QFile::encodeName(folder).constData(), &status) != 0)
        return -1;
    return static_cast<qint64>(status.f_bavail * status.f_frsize / page);
}

qint64 filesFree(const QString& folder)
{
    struct statvfs status = {};
    if (::statvfs(QFile::encodeName(folder).constData(), &status) != 0)
        return -1;
    return static_cast<qint64>(status.f_favail);
}

int pagesOf(int length)
{
    return (length + page - 1) / page;
}

} // namespace

class TestKvFileDisk : public QObject
{
    Q_OBJECT

private slots:
    void aFullDiskKeepsTheOldFile_data() { levels(); }

    void aFullDiskKeepsTheOldFile()
    {
        QFETCH(int, freePages);
        for (const int length : lengths) {
            const test::SmallDisk disk(root.path(), size());
            test::put(in("file"), "old", 0640);
            fill(freePages);
            test::save(in("file"), test::textOf(length));
            const bool fits = pagesOf(length) <= freePages;
            QCOMPARE(test::contentOf(in("file")), fits ? test::textOf(length) : QByteArray("old"));
            QCOMPARE(test::modeOf(in("file")), mode_t(0640));
            QCOMPARE(test::entriesOf(root.path()), QStringList({"file", "filler"}));
            checkThatRoomHelps();
        }
    }

    void aFullDiskGetsNoNewFile_data() { levels(); }

    void aFullDiskGetsNoNewFile()
    {
        QFETCH(int, freePages);
        for (const int length : lengths) {
            const test::SmallDisk disk(root.path(), size());
            fill(freePages);
            test::save(in("sub/file"), test::textOf(length));
            QStringList expected = {"filler", "sub"};
            if (pagesOf(length) <= freePages) {
                expected += "sub/file";
                QCOMPARE(test::contentOf(in("sub/file")), test::textOf(length));
            }
            QCOMPARE(test::entriesOf(root.path()), expected);
        }
    }

    /// A file replaces another only if the disk has space for both.
    void aFileOfTheSameSizeNeedsRoomForBoth()
    {
        const test::SmallDisk disk(root.path(), size());
        test::put(in("file"), test::textOf(5000));
        fill(1);
        test::save(in("file"), test::textOf(5000, 'b'));
        QCOMPARE(test::contentOf(in("file")), test::textOf(5000));
        checkThatRoomHelps();
    }

    /// Nobody may put a new file beside it, so its own blocks are all there is.
    void aFullDiskKeepsTheOldFileInAReadOnlyFolder()
    {
        const test::SmallDisk disk(root.path(), size() + ",mode=0755");
        test::put(in("file"), test::textOf(page, 'A'), 0666);
        fill(0);
        QCOMPARE(::chmod(QFile::encodeName(in("file")).constData(), 0666), 0);
        QVERIFY(test::runWithoutRights([this] { test::save(in("file"), test::textOf(5000)); }));
        QCOMPARE(test::contentOf(in("file")), test::textOf(page, 'A'));
        QVERIFY(test::runWithoutRights([this] { test::save(in("file"), test::textOf(page)); }));
        QCOMPARE(test::contentOf(in("file")), test::textOf(page));
        // No more is asked for than the longer text needs.
        QVERIFY(QFile::remove(in("filler")));
        fill(1);
        QVERIFY(test::runWithoutRights([this] { test::save(in("file"), test::textOf(5000)); }));
        QCOMPARE(test::contentOf(in("file")), test::textOf(5000));
    }

    /// The new text is beside it and may not take its place, and in place space lacks.
    void aFullDiskKeepsTheOldFileOfSomebodyElse()
    {
        if (::geteuid() != 0) {
            qInfo("only root can be another user; nothing is checked here");
            return;
        }
        const test::SmallDisk disk(root.path(), size() + ",mode=01777");
        test::put(in("file"), "old", 0666);
        fill(2);
        QVERIFY(test::runWithoutRights([this] { test::save(in("file"), test::textOf(5000)); }));
        QCOMPARE(test::contentOf(in("file")), QByteArray("old"));
        QCOMPARE(test::entriesOf(root.path()), QStringList({"file", "filler"}));
    }

    void aDiskWithoutInodesKeepsTheOldFile()
    {
        const test::SmallDisk disk(root.path(), "size=1m,nr_inodes=10");
        test::put(in("file"), "old", 0640);
        int made = 0;
        while (filesFree(root.path()) > 0)
            test::put(in("other" + QString::number(++made)), "");
        QVERIFY(made > 0);
        const QStringList before = test::entriesOf(root.path());
        test::save(in("file"), "new");
        test::save(in("new"), "new");
        test::save(in("sub/new"), "new");
        QVERIFY(!kvCreateFolder(in("sub"), true) && !kvCreateFolder(in("sub"), false));
        QCOMPARE(test::entriesOf(root.path()), before);
        QCOMPARE(test::contentOf(in("file")), QByteArray("old"));
        QVERIFY(QFile::remove(in("other1")));
        test::save(in("file"), "new");
        QCOMPARE(test::contentOf(in("file")), QByteArray("new"));
    }

    /// One inode: the folder can be made, and then none is left for the file.
    void aDiskWithoutInodesGetsNoNewFile()
    {
        const test::SmallDisk disk(root.path(), "size=1m,nr_inodes=10");
        for (int made = 0; filesFree(root.path()) > 1; ++made)
            test::put(in("other" + QString::number(made)), "");
        const QStringList before = test::entriesOf(root.path());
        test::save(in("sub/new"), "new");
        QCOMPARE(test::entriesOf(root.path()), before + QStringList("sub"));
    }

    void aDiskMountedForReadingKeepsTheOldFile()
    {
        const test::SmallDisk disk(root.path(), size());
        test::put(in("file"), "old");
        QVERIFY(test::mountForReading(root.path()));
        test::save(in("file"), "new");
        test::save(in("new"), "new");
        test::save(in("sub/new"), "new");
        QCOMPARE(test::contentOf(in("file")), QByteArray("old"));
        QCOMPARE(test::entriesOf(root.path()), QStringList("file"));
    }

private:
    static void levels()
    {
        QTest::addColumn<int>("freePages");
        for (int i = 0; i <= mostFree; ++i)
            QTest::addRow("%d bytes free", i * page) << i;
    }

    static QByteArray size() { return "size=" + QByteArray::number(pages * page); }

    void fill(int freePages)
    {
        const auto used = pagesFree(root.path()) - freePages;
        test::put(in("filler"), QByteArray(static_cast<int>(used * page), 'f'));
        QCOMPARE(pagesFree(root.path()), qint64(freePages));
    }

    /// A failed save spoils nothing for the next one.
    void checkThatRoomHelps()
    {
        QVERIFY(QFile::remove(in("filler")));
        test::save(in("file"), "later");
        QCOMPARE(test::contentOf(in("file")), QByteArray("later"));
        QCOMPARE(test::entriesOf(root.path()), QStringList("file"));
    }

    QString in(const QString& name) const { return root.filePath(name); }
    QTemporaryDir root;
};

int main(int argc, char** argv)
{
    test::allowMounts();
    TestKvFileDisk disk;
    return QTest::qExec(&disk, argc, argv);
}
#include "tst_kvfile_disk.moc"
