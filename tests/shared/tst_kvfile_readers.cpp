#include "tests/support/childprocess.h"
#include "tests/support/files.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

// Machines poll for the very file that is being saved. A reader here does the same, as fast as it
// can, and looks at each text that it gets.

namespace {

constexpr int saves = 1000;
constexpr int letters = 26;

/// Set in the writer once the reader has met every letter.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): a handler sees no other
volatile std::sig_atomic_t hasBeenRead = 0;

/// Each save has a letter and a length that belongs to it, so that a reader can tell a whole text.
QByteArray version(int number)
{
    const int letter = number % letters;
    return QByteArray(5000 - letter * 150, static_cast<char>('a' + letter));
}

bool isWhole(const QByteArray& text)
{
    return !text.isEmpty() && text.at(0) >= 'a' && text.at(0) <= 'z' &&
           text == version(text.at(0) - 'a');
}

/// The obvious way to write a file. Other threads and processes run between any two calls.
void overwrite(const QByteArray& path, const QByteArray& text)
{
    const int file = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0 || ::write(file, text.constData(), static_cast<size_t>(text.size())) < 0)
        ::_exit(EXIT_FAILURE);
    ::close(file);
}

QByteArray readOnce(const QByteArray& path)
{
    QByteArray text(8192, '\0');
    const int file = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    const ssize_t size = file < 0 ? -1 : ::read(file, text.data(), 8192);
    ::close(file);
    return text.left(size < 0 ? 0 : static_cast<int>(size));
}

struct Seen
{
    int reads = 0;
    int broken = 0; ///< texts that are not whole, or files that were not there
    std::set<char> letters;
    bool writerEndedWell = false;
};

/// When the reader tells the writer to end.
enum class Tells
{
    Never,
    AtEveryLetter, ///< by SIGUSR1, once it has met all
    AtBrokenText   ///< by SIGKILL, at the first
};

/// Reads until the writer has ended.
Seen readDuring(pid_t writer, const QByteArray& path, Tells tells)
{
    Seen seen;
    int status = 0;
    while (::waitpid(writer, &status, WNOHANG) == 0) {
        const QByteArray text = readOnce(path);
        ++seen.reads;
        if (isWhole(text)) {
            const bool isNew = seen.letters.insert(text.at(0)).second;
            if (isNew && seen.letters.size() == letters && tells == Tells::AtEveryLetter)
                ::kill(writer, SIGUSR1);
        } else {
            ++seen.broken;
        }
        if (tells == Tells::AtBrokenText && seen.broken > 0)
            ::kill(writer, SIGKILL);
    }
    seen.writerEndedWell = WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
    return seen;
}

} // namespace

class TestKvFileReaders : public QObject
{
    Q_OBJECT

private slots:
    void aReaderNeverSeesHalfAFile()
    {
        test::put(path(), version(0));
        const pid_t writer = test::startChild([&] {
            std::signal(SIGUSR1, [](int) { hasBeenRead = 1; });
            // On a busy machine the reader may get its turn late.
            for (int i = 0; i < saves || hasBeenRead == 0; ++i)
                test::save(path(), version(i));
            test::save(path(), version(0));
        });
        const Seen seen = readDuring(writer, QFile::encodeName(path()), Tells::AtEveryLetter);
        qInfo("%d reads during %d saves or more, %d of them broken", seen.reads, saves,
              seen.broken);
        QVERIFY(seen.writerEndedWell);
        QCOMPARE(seen.broken, 0);
        // Proof that the reader was there all the time: it met every letter.
        QCOMPARE(int(seen.letters.size()), letters);
        QCOMPARE(test::contentOf(path()), version(0));
        QCOMPARE(test::entriesOf(folder.path()), QStringList("file"));
    }

    /// The same reader can tell: against a plain overwrite it must meet a broken text.
    void aReaderOfAPlainOverwriteSeesHalfAFile()
    {
        test::put(path(), version(0));
        const QByteArray name = QFile::encodeName(path());
        const pid_t writer = test::startChild([&] {
            for (int i = 0;; ++i)
                overwrite(name, version(i));
        });
        const Seen seen = readDuring(writer, name, Tells::AtBrokenText);
        qInfo("the first broken text after %d reads", seen.reads);
        QVERIFY(seen.broken > 0);
    }

    void twoWritersLeaveOneWholeFile()
    {
        test::put(path(), version(0));
        const auto work = [&] {
            for (int i = 0; i < saves / 4; ++i)
                test::save(path(), version(i));
        };
        const pid_t other = test::startChild(work);
        const pid_t writer = test::startChild(work);
        const Seen seen = readDuring(writer, QFile::encodeName(path()), Tells::Never);
        QVERIFY(test::endedWell(other) && seen.writerEndedWell);
        QCOMPARE(seen.broken, 0);
        QVERIFY(isWhole(test::contentOf(path())));
        QCOMPARE(test::entriesOf(folder.path()), QStringList("file"));
    }

private:
    QString path() const { return folder.filePath("file"); }
    QTemporaryDir folder;
};

QTEST_GUILESS_MAIN(TestKvFileReaders)
#include "tst_kvfile_readers.moc"
