#include "tests/shared/somebodyslink.h"
#include "tests/support/leaveout.h"
#include "tests/support/ownmounts.h"

#include <QTest>

// Links of other users, where the kernel says that it refuses some of them.

namespace {

constexpr uid_t somebody = 1234;

} // namespace

class TestKvFileLinks : public QObject
{
    Q_OBJECT

private slots:
    void aLinkThatTheKernelRefusesIsRefused_data()
    {
        QTest::addColumn<QByteArray>("protection"); // as the kernel tells it
        QTest::newRow("on") << QByteArray("1\n");
        QTest::newRow("of a kind to come") << QByteArray("2\n");
        QTest::newRow("not told") << QByteArray();
    }

    void aLinkThatTheKernelRefusesIsRefused()
    {
        QFETCH(QByteArray, protection);
        const test::FileInPlace told(QStringLiteral("/proc/sys/fs/protected_symlinks"), protection);
        for (const mode_t mode : {0777U, 01777U, 01775U}) {
            for (const uid_t folderOwner : {0U, somebody, test::nobody}) {
                for (const uid_t linkOwner : {0U, somebody, test::nobody}) {
                    const bool isTrusted = linkOwner == test::nobody || linkOwner == folderOwner;
                    const test::SomebodysLink link(mode, folderOwner, linkOwner);
                    QVERIFY2(link.isFollowedByASave() == (isTrusted || mode != 01777),
                             qPrintable(QString("mode %1, folder of %2, link of %3")
                                            .arg(mode, 0, 8)
                                            .arg(folderOwner)
                                            .arg(linkOwner)));
                }
            }
        }
    }

    void aLinkThatTheKernelFollowsIsFollowed()
    {
        const test::FileInPlace told(QStringLiteral("/proc/sys/fs/protected_symlinks"), "0\n");
        const test::SomebodysLink link(01777, 0, somebody);
        QVERIFY(link.isFollowedByASave());
        QVERIFY(link.isFollowedByASaveWithoutInput());
    }
};

int main(int argc, char** argv)
{
    if (::geteuid() != 0)
        test::leaveOut("only root can make the links of other users");
    test::allowMounts();
    TestKvFileLinks links;
    return QTest::qExec(&links, argc, argv);
}
#include "tst_kvfile_links.moc"
