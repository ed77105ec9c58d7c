#include "check/environment.h"
#include "tests/support/childprocess.h"
#include "tests/support/files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

class TestEnvironment : public QObject
{
    Q_OBJECT

private slots:
    void filesHaveSizesAndRights()
    {
        put("file", "12345");
        const PathStatus status = look("file");
        QVERIFY(status.exists() && status.isFile() && !status.isFolder());
        QCOMPARE(status.size, qint64(5));
        QVERIFY(status.isReadable && status.isWritable);
        QCOMPARE(status.whyUnreadable, std::string());
        QCOMPARE(status.canonical, QFileInfo(m_root + "file").canonicalFilePath());
    }

    void foldersAreNotFiles()
    {
        QVERIFY(QDir(m_root).mkdir("folder"));
        for (const char* name : {"folder", "folder/"}) {
            QVERIFY(look(name).isFolder() && !look(name).isFile());
            QCOMPARE(look(name).whyUnreadable, std::string("it is a folder"));
        }
        put("file", "");
        QVERIFY(!look("file/").exists());
    }

    void linksAreFollowed()
    {
        put("target", "123");
        QVERIFY(QFile::link(m_root + "target", m_root + "link"));
        QCOMPARE(look("link").size, qint64(3));
        QCOMPARE(look("link").canonical, look("target").canonical);
        QVERIFY(QFile::link("nowhere", m_root + "dead"));
        QCOMPARE(look("dead").kind, PathStatus::Kind::DeadLink);
        QVERIFY(!look("dead").exists());
        QCOMPARE(look("dead").canonical, QFileInfo(m_root).canonicalFilePath() + "/nowhere");
        QCOMPARE(look("dead").whyUnreadable, std::string("it is a link that leads nowhere"));
        QVERIFY(QFile::link("dead", m_root + "first"));
        QCOMPARE(look("first").canonical, look("dead").canonical);
        QVERIFY(QFile::link("none/x", m_root + "far"));
        QCOMPARE(look("far").canonical, m_root + "none/x");
        QVERIFY(QFile::link("loop", m_root + "loop"));
        QCOMPARE(look("loop").whyUnreadable, std::string("it is a link that leads back to itself"));
    }

    void hardLinksAreOneFile()
    {
        put("file", "123");
        QVERIFY(!look("file").hasOtherNames);
        QCOMPARE(::link(QFile::encodeName(m_root + "file").constData(),
                        QFile::encodeName(m_root + "other").constData()),
                 0);
        QVERIFY(look("file").hasOtherNames);
        QCOMPARE(look("file").node, look("other").node);
        QCOMPARE(look("file").fileSystem, look("other").fileSystem);
        put("third", "123");
        QVERIFY(look("third").node != look("file").node);
        // A number of a node says something within one file system only.
        QVERIFY(look("third").fileSystem != m_real.look("/proc/self").fileSystem);
    }

    void pipesAreNotOpened()
    {
        QCOMPARE(::mkfifo(QFile::encodeName(m_root + "pipe").constData(), 0600), 0);
        QCOMPARE(look("pipe").kind, PathStatus::Kind::Pipe);
        QVERIFY(look("pipe").exists());
        QCOMPARE(look("pipe").whyUnreadable, std::string("it is a pipe"));
        QCOMPARE(m_real.look("/dev/null").kind, PathStatus::Kind::Device);
        QCOMPARE(m_real.look("/dev/null").whyUnreadable, std::string("it is a device"));
    }

    void socketsAreTold()
    {
        const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        const QByteArray path = QFile::encodeName(m_root + "socket");
        qstrncpy(address.sun_path, path.constData(), sizeof address.sun_path);
        QCOMPARE(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        QCOMPARE(::close(socket), 0);
        QCOMPARE(look("socket").kind, PathStatus::Kind::Socket);
        QVERIFY(look("socket").exists());
        QCOMPARE(look("socket").whyUnreadable, std::string("it is a socket"));
    }

    void missingRightsAreTold()
    {
        put("closed/file", "x");
        put("secret", "x");
        const QString closed = m_root + "closed";
        QCOMPARE(::chmod(QFile::encodeName(m_root).constData(), 0755), 0);
        QCOMPARE(::chmod(QFile::encodeName(closed).constData(), 0), 0);
        QCOMPARE(::chmod(QFile::encodeName(m_root + "secret").constData(), 0), 0);
        {
            const test::WithoutRights nobody;
            const PathStatus secret = look("secret");
            QVERIFY(secret.isFile() && !secret.isReadable && !secret.isWritable);
            QCOMPARE(secret.whyUnreadable, std::string("you have no right to read it"));
            const PathStatus inside = look("closed/file");
            QVERIFY(!inside.exists() && inside.isHidden);
            QCOMPARE(inside.whyUnreadable,
                     std::string("you have no right to look into its folder"));
            QVERIFY(look("closed").isFolder() && !look("closed").isReadable);
        }
        QCOMPARE(::chmod(QFile::encodeName(closed).constData(), 0700), 0);
    }

    void whatIsNotThereIsNothing()
    {
        QCOMPARE(look("none").kind, PathStatus::Kind::Nothing);
        QVERIFY(!m_real.exists(m_root + "none"));
        QCOMPARE(look("none").whyUnreadable, std::string("it does not exist"));
        QVERIFY(look("none").canonical.isEmpty());
    }

    void spaceIsThatOfTheNearestFolder()
    {
        const auto space = m_real.space(m_root + "none/none/x");
        QVERIFY(space && space->free > 0);
        QCOMPARE(space->fileSystem, m_real.space(m_root)->fileSystem);
        QVERIFY(!m_real.space("none at all"));
        QCOMPARE(m_real.space("/none at all/none")->fileSystem, m_real.space("/")->fileSystem);
        // Of several file systems above a name, the nearest.
        struct stat process = {};
        QCOMPARE(::stat("/proc/self", &process), 0);
        QCOMPARE(m_real.space("/proc/self/none/none")->fileSystem, process.st_dev);
        QVERIFY(m_real.exists(m_root));
    }

private:
    void put(const QString& name, const QByteArray& content)
    {
        QVERIFY(QDir().mkpath(QFileInfo(m_root + name).path()));
        test::put(m_root + name, content);
    }

    PathStatus look(const QString& name) const { return m_real.look(m_root + name); }

    QTemporaryDir m_folder;
    QString m_root = m_folder.path() + '/';
    Environment m_real = realEnvironment();
};

QTEST_APPLESS_MAIN(TestEnvironment)
#include "tst_environment.moc"
