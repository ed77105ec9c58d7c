#include "check/environment.h"
#include "tests/support/leaveout.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace {

/// A disk of this machine, or else the name of one, which exists without a driver behind it.
QString anyDisk(const QString& folder)
{
    const QFileInfoList devices = QDir("/dev").entryInfoList(QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo& device : devices) {
        struct stat info = {};
        if (::stat(QFile::encodeName(device.filePath()).constData(), &info) == 0 &&
            S_ISBLK(info.st_mode))
            return device.filePath();
    }
    const QString made = folder + "/disk";
    constexpr int loopDevices = 7;
    if (::mknod(QFile::encodeName(made).constData(), S_IFBLK | 0600, makedev(loopDevices, 0)) != 0)
        test::leaveOut("/dev holds no disk, and none can be made; run this test as root");
    return made;
}

} // namespace

class TestBlockDevice : public QObject
{
    Q_OBJECT

private slots:
    /// Nothing opens it.
    void diskIsToldFromOtherDevices()
    {
        const QTemporaryDir folder;
        const PathStatus disk = realEnvironment().look(anyDisk(folder.path()));
        QCOMPARE(disk.kind, PathStatus::Kind::Disk);
        QVERIFY(disk.exists() && !disk.isFile());
        QCOMPARE(disk.size, qint64(0));
        QCOMPARE(disk.whyUnreadable, std::string("it is a device"));
        QCOMPARE(realEnvironment().look("/dev/null").kind, PathStatus::Kind::Device);
    }
};

QTEST_APPLESS_MAIN(TestBlockDevice)
#include "tst_blockdevice.moc"
