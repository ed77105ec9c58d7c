#include "shared/kvfile.h"
#include "shared/kvtext.h"
#include "tests/support/childprocess.h"
#include "tests/support/files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using test::contentOf;
using test::entriesOf;
using test::linkOf;
using test::modeOf;
using test::put;
using test::save;
using test::textOf;

namespace {

bool exists(const QString& path)
{
    return kvFileExists(kvToString16<500>(path));
}

QString tempDirWith(const char* variable)
{
    if (variable != nullptr)
        qputenv("TMPDIR", variable);
    else
        qunsetenv("TMPDIR");
    return kvToQString(kvGetTempDir());
}

void link(const QString& target, const QString& name)
{
    if (::symlink(QFile::encodeName(target).constData(), QFile::encodeName(name).constData()) != 0)
        qFatal("can't make a link");
}

/// A mount anywhere makes the kernel start a walk again, and its count of links goes on.
bool opensAtLast(const QString& name)
{
    constexpr int tries = 100;
    for (int i = 0; i < tries; ++i) {
        if (QFile(name).open(QIODevice::ReadOnly))
            return true;
    }
    return false;
}

const QString pruefung = QString::fromLatin1("Pr\xFC"
                                             "fung");

} // namespace

class TestKvFile : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        test::clearFolder(in("."));
        QDir::setCurrent(root.path());
    }

    void existsMeansAnythingUnderTheName()
    {
        QVERIFY(exists(in(".")) && exists("/") && exists("/dev/null"));
        QVERIFY(!exists(in("file")) && !exists(""));
        put(in("file"), "");
        QVERIFY(exists(in("file")) && exists("file"));
        QVERIFY(!exists(in("file/below")));
        QCOMPARE(::mkfifo("fifo", 0600), 0);
        QVERIFY(test::runInChild([&] { exists(in("fifo")) ? void() : ::abort(); }));
    }

    void existsFollowsLinks()
    {
        link("target", in("link"));
        QVERIFY(!exists(in("link")));
        put(in("target"), "x");
        QVERIFY(exists(in("link")));
        link("loop", in("loop"));
        QVERIFY(!exists(in("loop")));
    }

    void latin1NamesAreNamesOfTheFileSystem()
    {
        _kvString<500> name;
        name.add("Pr\xFC"
                 "fung");
        QVERIFY(!kvFileExists(name));
        QCOMPARE(::mkdir("Pr\xC3\xBC"
                         "fung",
                         0755),
                 0);
        QVERIFY(kvFileExists(name));
        // Text whose bytes were sign-extended on their way is the same name.
        name.text[2] = 0xFFFC;
        QVERIFY(kvFileExists(name));
    }

    void createsAFolder()
    {
        for (const bool parents : {false, true}) {
            test::clearFolder(in("."));
            QVERIFY(kvCreateFolder(in("new"), parents));
            QVERIFY(QFileInfo(in("new")).isDir());
            QVERIFY(kvCreateFolder(in("new"), parents));
            QVERIFY(kvCreateFolder(in("new/"), parents));
            QVERIFY(kvCreateFolder("relative", parents));
            QVERIFY(kvCreateFolder(pruefung, parents));
            QCOMPARE(entriesOf(in(".")), QStringList({pruefung, "new", "relative"}));
        }
    }

    void createsParentsOnlyWhenAsked()
    {
        QVERIFY(!kvCreateFolder(in("a/b/c"), false));
        QCOMPARE(entriesOf(in(".")), QStringList());
        QVERIFY(kvCreateFolder(in("a/b/c"), true));
        QCOMPARE(entriesOf(in(".")), QStringList({"a", "a/b", "a/b/c"}));
    }

    void newFoldersFollowTheUmask()
    {
        const mode_t before = ::umask(027);
        const bool made = kvCreateFolder(in("a/b"), true);
        ::umask(before);
        QVERIFY(made);
        QCOMPARE(modeOf(in("a")), mode_t(0750));
        QCOMPARE(modeOf(in("a/b")), mode_t(0750));
    }

    void aFileInTheWayIsNoFolder()
    {
        put(in("file"), "kept");
        for (const bool parents : {false, true}) {
            QVERIFY(!kvCreateFolder(in("file"), parents));
            QVERIFY(!kvCreateFolder(in("file/below"), parents));
        }
        QCOMPARE(contentOf(in("file")), QByteArray("kept"));
        QVERIFY(!kvCreateFolder("", true) && !kvCreateFolder("", false));
    }

    void aLinkToAFolderIsAFolder()
    {
        QVERIFY(kvCreateFolder(in("folder"), false));
        link("folder", in("link"));
        QVERIFY(kvCreateFolder(in("link"), false) && kvCreateFolder(in("link"), true));
        QVERIFY(kvCreateFolder(in("link/a/b"), true));
        QCOMPARE(linkOf(in("link")), QByteArray("folder"));
        QVERIFY(QFileInfo(in("folder/a/b")).isDir());
    }

    void tempFolderIsTheSystems()
    {
        const QByteArray before = qgetenv("TMPDIR");
        QCOMPARE(tempDirWith(nullptr), QStringLiteral("/tmp"));
        QCOMPARE(tempDirWith(""), QStringLiteral("/tmp"));
        QCOMPARE(tempDirWith("/var/tmp"), QStringLiteral("/var/tmp"));
        QCOMPARE(tempDirWith("/var/tmp/"), QStringLiteral("/var/tmp"));
        QCOMPARE(tempDirWith("/var/tmp///"), QStringLiteral("/var/tmp"));
        QCOMPARE(tempDirWith("/does/not/exist"), QStringLiteral("/tmp"));
        QVERIFY(kvCreateFolder(in(pruefung), false));
        QCOMPARE(tempDirWith(QFile::encodeName(in(pruefung))), in(pruefung));
        // "[temp]/file" stays a file of the root folder.
        QCOMPARE(tempDirWith("/"), QString());
        qputenv("TMPDIR", before);
    }

    void writesANewFileByTheUmask()
    {
        for (const mode_t mask : {022U, 027U, 077U, 0U}) {
            const mode_t before = ::umask(mask);
            save(in("file"), "text\n");
            ::umask(before);
            QCOMPARE(contentOf(in("file")), QByteArray("text\n"));
            QCOMPARE(modeOf(in("file")), 0666U & ~mask);
            QCOMPARE(entriesOf(in(".")), QStringList("file"));
            QFile::remove(in("file"));
        }
    }

    void replacesAndNeverAppends()
    {
        const QByteArray texts[] = {textOf(5000), "short", "", textOf(4999), textOf(5000, 'b')};
        for (const QByteArray& text : texts) {
            save(in("file"), text);
            QCOMPARE(contentOf(in("file")), text);
            QCOMPARE(entriesOf(in(".")), QStringList("file"));
        }
    }

    void replacesWhatIsLongerThanAnyText()
    {
        put(in("file"), textOf(100000));
        save(in("file"), "x");
        QCOMPARE(contentOf(in("file")), QByteArray("x"));
    }

    void writesEveryByteAsItIs()
    {
        QByteArray bytes;
        for (int i = 0; i < 256; ++i)
            bytes += static_cast<char>(i);
        save(in("file"), bytes);
        QCOMPARE(contentOf(in("file")), bytes);
    }

    void makesMissingFolders()
    {
        save(in("a/b/" + pruefung + "/file"), "x");
        QCOMPARE(contentOf(in("a/b/" + pruefung + "/file")), QByteArray("x"));
        save("c/d/relative", "y");
        QCOMPARE(contentOf(in("c/d/relative")), QByteArray("y"));
    }

    void writesRelativeNamesIntoTheCurrentFolder()
    {
        for (const char* name : {"file", "./file", "../*/file"}) {
            QString path = QString::fromLatin1(name);
            path.replace('*', QFileInfo(root.path()).fileName());
            save(path, name);
            QCOMPARE(contentOf(in("file")), QByteArray(name));
            QCOMPARE(entriesOf(in(".")), QStringList("file"));
        }
    }

    void writesLatin1Names()
    {
        save(in(pruefung), "x");
        struct stat status = {};
        QCOMPARE(::stat("Pr\xC3\xBC"
                        "fung",
                        &status),
                 0);
        QCOMPARE(entriesOf(in(".")), QStringList(pruefung));
    }

    void writesNamesAsLongAsTheyMayBe()
    {
        const QStringList names = {QString(250, 'n'), QString(125, QChar(0xFC)),
                                   QString(243, 'm') + ".dpc"};
        for (const QString& name : names) {
            for (const char* text : {"first", "second"}) {
                save(name, text);
                QCOMPARE(contentOf(name), QByteArray(text));
                QCOMPARE(entriesOf(in(".")), QStringList(name));
            }
            QFile::remove(name);
        }
    }

    void namesThatNobodyCanHaveAreLeftAlone()
    {
        put(in("file"), "kept");
        for (const char* name : {"", "file/below", "file/", "missing/", ".", "..", "/"})
            save(QString::fromLatin1(name), "x");
        save(QString(200, QChar(0xFC)), "x");
        link("file", in("link"));
        save(QString::fromLatin1("file\0hidden", 11), "x");
        save(QString::fromLatin1("link\0hidden", 11), "x");
        QCOMPARE(entriesOf(in(".")), QStringList({"file", "link"}));
        QCOMPARE(contentOf(in("file")), QByteArray("kept"));
    }

    void permissionsStay()
    {
        for (const mode_t mode : {0640U, 0755U, 0600U, 0666U, 0777U, 0604U, 02750U, 01644U}) {
            put(in("file"), "old", mode);
            save(in("file"), "new");
            QCOMPARE(contentOf(in("file")), QByteArray("new"));
            QCOMPARE(modeOf(in("file")), mode);
        }
    }

    void aLinkStaysALink_data()
    {
        QTest::addColumn<QString>("target");
        QTest::newRow("relative") << "folder/file";
        QTest::newRow("through a link to a folder") << "elsewhere/../beside";
        QTest::newRow("absolute") << in("folder/file");
        QTest::newRow("another link") << "second";
        QTest::newRow("parent") << "../" + QFileInfo(root.path()).fileName() + "/folder/file";
        QTest::newRow("dangling") << "missing";
        QTest::newRow("dangling into a missing folder") << "no/folder/file";
        QTest::newRow("letters") << pruefung;
    }

    void aLinkStaysALink()
    {
        QFETCH(QString, target);
        QVERIFY(kvCreateFolder(in("folder/deep"), true));
        put(in("folder/file"), "old", 0640);
        link("folder/deep", in("elsewhere"));
        link("folder/file", in("second"));
        link(target, in("link"));
        save(in("link"), "new");
        QCOMPARE(linkOf(in("link")), QFile::encodeName(target));
        QCOMPARE(contentOf(in("link")), QByteArray("new"));
        // Not cleaned: the kernel knows where ".." leads after a link.
        const QString plain = target.startsWith('/') ? target : root.path() + '/' + target;
        QCOMPARE(contentOf(plain), QByteArray("new"));
        QCOMPARE(linkOf(in("second")), QByteArray("folder/file"));
        QVERIFY(!QFileInfo::exists(in("beside")));
        QCOMPARE(entriesOf(in(".")).filter(".tmp"), QStringList());
    }

    void aLinkToANameOfOtherEncodingIsFollowed()
    {
        QCOMPARE(::symlink("latin1-\xFC", "link"), 0);
        save(in("link"), "new");
        QCOMPARE(linkOf(in("link")), QByteArray("latin1-\xFC"));
        QCOMPARE(contentOf(in("link")), QByteArray("new"));
        // Qt doesn't list such a name.
        QCOMPARE(::unlink("latin1-\xFC"), 0);
        QCOMPARE(entriesOf(in(".")), QStringList("link"));
    }

    /// The kernel follows 40.
    void aChainOfLinksIsFollowedAsTheKernelDoes()
    {
        put(in("file"), "old");
        link("file", in("1"));
        for (int i = 2; i <= 41; ++i)
            link(QString::number(i - 1), in(QString::number(i)));
        for (const auto& [name, text] : {std::pair("41", "old"), std::pair("40", "new")}) {
            save(in(name), "new");
            QCOMPARE(contentOf(in("file")), QByteArray(text));
        }
        QVERIFY(!QFile(in("41")).open(QIODevice::ReadOnly));
        QVERIFY(opensAtLast(in("40")));
        QCOMPARE(linkOf(in("41")), QByteArray("40"));
    }

    void aLoopOfLinksIsLeftAlone()
    {
        link("one", in("two"));
        link("two", in("one"));
        QVERIFY(test::runInChild([&] { save(in("one"), "x"); }));
        QCOMPARE(entriesOf(in(".")), QStringList({"one", "two"}));
        QCOMPARE(linkOf(in("one")), QByteArray("two"));
        QCOMPARE(linkOf(in("two")), QByteArray("one"));
    }

    void anotherNameOfTheFileKeepsTheOldContent()
    {
        put(in("file"), "old");
        QCOMPARE(::link("file", "other"), 0);
        save(in("file"), "new");
        QCOMPARE(contentOf(in("other")), QByteArray("old"));
        QCOMPARE(contentOf(in("file")), QByteArray("new"));
    }

    void whatIsNoFileIsLeftAlone()
    {
        QCOMPARE(::mkfifo("fifo", 0640), 0);
        QVERIFY(kvCreateFolder(in("folder"), false));
        link("/dev/full", in("device"));
        link("folder", in("to folder"));
        link("fifo", in("to fifo"));
        const QStringList before = entriesOf(in("."));
        for (const char* name : {"fifo", "folder", "device", "to folder", "to fifo"}) {
            const struct stat old = test::statusOf(in(name));
            // In a child, because an open FIFO waits for its reader.
            QVERIFY2(test::runInChild([&] { save(in(name), "x"); }), name);
            QCOMPARE(entriesOf(in(".")), before);
            QCOMPARE(test::statusOf(in(name)).st_ino, old.st_ino);
            QCOMPARE(test::statusOf(in(name)).st_mode, old.st_mode);
        }
        QVERIFY(S_ISCHR(test::statusOf("/dev/full").st_mode));
    }

    void aRunningProgramIsReplaced()
    {
        QVERIFY(QFile::copy("/bin/sleep", in("sleep")));
        QProcess running;
        running.start(in("sleep"), {"60"});
        QVERIFY(running.waitForStarted());
        save(in("sleep"), "new");
        QCOMPARE(contentOf(in("sleep")), QByteArray("new"));
        running.kill();
        QVERIFY(running.waitForFinished());
    }

private:
    QString in(const QString& name) const
    {
        return QDir::cleanPath(QDir(root.path()).filePath(name));
    }
    QTemporaryDir root;
};

QTEST_GUILESS_MAIN(TestKvFile)
#include "tst_kvfile.moc"
