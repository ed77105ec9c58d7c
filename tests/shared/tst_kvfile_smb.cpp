#include "shared/kvfile.h"
#include "tests/support/childprocess.h"
#include "tests/support/files.h"
#include "tests/support/leaveout.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <linux/magic.h>
#include <memory>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

// Saving on an SMB share, where a rename over an open file loses both. The share is a folder that
// says so; the kernel's leases, by which the save learns that somebody has the file open, are real.

namespace {

// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): read by a function of C
unsigned int claimedType = 0;
int refusal = 0;
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

ino_t numberOf(const QString& path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_ino : 0;
}

/// A file that somebody has open for as long as this lives.
class OpenFile
{
public:
    explicit OpenFile(const QString& path)
        : m_number(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC))
    {}
    ~OpenFile() { ::close(m_number); }
    Q_DISABLE_COPY_MOVE(OpenFile)

private:
    const int m_number;
};

} // namespace

/// Takes the place of the system's own: the type of the file system is the test's.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): that has reserved names
extern "C" int statfs(const char* path, struct statfs* status) noexcept
{
    const long result = ::syscall(SYS_statfs, path, status);
    if (claimedType != 0)
        status->f_type = claimedType;
    if (refusal == 0)
        return int(result);
    errno = refusal;
    return -1;
}

class TestKvFileSmb : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        claimedType = 0;
        refusal = 0;
        test::put(file(), "old");
        m_old = numberOf(file());
    }

    void anOpenFileOnAShareIsWrittenInPlace_data()
    {
        QTest::addColumn<unsigned int>("type");
        QTest::addColumn<bool>("isShare");
        QTest::newRow("SMB 1") << 0x517BU << true;
        QTest::newRow("CIFS") << 0xFF534D42U << true;
        QTest::newRow("SMB 2 and 3") << 0xFE534D42U << true;
        QTest::newRow("next to SMB 1") << 0x517CU << false;
        QTest::newRow("ext4") << unsigned(EXT4_SUPER_MAGIC) << false;
        QTest::newRow("NFS") << unsigned(NFS_SUPER_MAGIC) << false;
    }

    void anOpenFileOnAShareIsWrittenInPlace()
    {
        QFETCH(const unsigned int, type);
        QFETCH(const bool, isShare);
        claimedType = type;
        const OpenFile reader(file());
        test::save(file(), "newer");
        QCOMPARE(test::contentOf(file()), QByteArray("newer"));
        QCOMPARE(numberOf(file()) == m_old, isShare);
    }

    void aFileThatNobodyHasOpenIsReplaced()
    {
        claimedType = 0xFE534D42U;
        errno = EIO; // left by a call before
        test::save(file(), "newer");
        QCOMPARE(test::contentOf(file()), QByteArray("newer"));
        QVERIFY(numberOf(file()) != m_old);
    }

    void noFileStaysOpen()
    {
        claimedType = 0xFE534D42U;
        const QStringList before = QDir("/proc/self/fd").entryList();
        test::save(file(), "newer");
        {
            const OpenFile reader(file());
            test::save(file(), "newest");
        }
        QCOMPARE(QDir("/proc/self/fd").entryList(), before);
    }

    /// Such a program gets the number 0 for the first file that it opens.
    void aProgramWithoutStandardInputSaves()
    {
        claimedType = 0xFE534D42U;
        for (const bool isOpen : {false, true}) {
            std::unique_ptr<OpenFile> reader;
            if (isOpen)
                reader = std::make_unique<OpenFile>(file());
            const QByteArray text(isOpen ? "newest" : "newer");
            QVERIFY(test::runInChild([&] {
                ::close(STDIN_FILENO);
                test::save(file(), text);
            }));
            QCOMPARE(test::contentOf(file()), text);
            const ino_t now = numberOf(file());
            QCOMPARE(now == m_old, isOpen);
            m_old = now;
        }
    }

    /// A machine that polls has it open for some milliseconds.
    void aFileThatIsClosedSoonIsReplaced()
    {
        claimedType = 0xFE534D42U;
        constexpr qint64 leastMs = 150; // the ten tries take longer
        qint64 closedMs = leastMs;
        while (closedMs >= leastMs) {
            m_old = numberOf(file());
            QElapsedTimer sinceStart;
            sinceStart.start();
            std::thread polling([&, reader = std::make_unique<OpenFile>(file())]() mutable {
                std::this_thread::sleep_for(std::chrono::milliseconds(40));
                reader.reset();
                closedMs = sinceStart.elapsed();
            });
            test::save(file(), "newer");
            polling.join();
        }
        QCOMPARE(test::contentOf(file()), QByteArray("newer"));
        QVERIFY(numberOf(file()) != m_old);
    }

    void aNewFileIsMade()
    {
        claimedType = 0xFE534D42U;
        const QString path = m_folder.filePath("new");
        test::save(path, "new");
        QCOMPARE(test::contentOf(path), QByteArray("new"));
    }

    void aFileSystemThatTellsNoTypeIsNotAShare()
    {
        refusal = EIO;
        claimedType = 0xFE534D42U;
        const OpenFile reader(file());
        test::save(file(), "newer");
        QCOMPARE(test::contentOf(file()), QByteArray("newer"));
        QVERIFY(numberOf(file()) != m_old);
    }

    void aProgramThatRunsIsKept()
    {
        claimedType = 0xFE534D42U;
        QVERIFY(QFile::remove(file()) && QFile::copy("/bin/sleep", file()));
        const QByteArray program = test::contentOf(file());
        const pid_t child = ::fork();
        if (child == 0) {
            ::execl(QFile::encodeName(file()).constData(), "sleep", "1000", nullptr);
            ::_exit(EXIT_FAILURE);
        }
        const QString link = QStringLiteral("/proc/%1/exe").arg(child);
        QTRY_COMPARE(QFile::symLinkTarget(link), file());
        test::save(file(), "newer");
        const QByteArray after = test::contentOf(file());
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        // The kernel lets nobody write into it, so that neither way is safe.
        QVERIFY(after == program);
    }

    void nothingIsLeftBeside()
    {
        QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden),
                 (QStringList{"file", "new"}));
    }

private:
    QString file() const { return m_folder.filePath("file"); }

    QTemporaryDir m_folder;
    ino_t m_old = 0;
};

int main(int argc, char** argv)
{
    QTemporaryDir folder;
    const int number =
        ::open(QFile::encodeName(folder.filePath("file")).constData(), O_RDWR | O_CREAT, 0600);
    if (::fcntl(number, F_SETLEASE, F_WRLCK) != 0)
        test::leaveOut("the file system of temporary files knows no leases");
    ::close(number);
    TestKvFileSmb tests;
    return QTest::qExec(&tests, argc, argv);
}
#include "tst_kvfile_smb.moc"
