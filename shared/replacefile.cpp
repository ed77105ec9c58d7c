#include "shared/replacefile.h"

#include "shared/linktarget.h"

#include <QRandomGenerator>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <thread>
#include <unistd.h>

namespace {

// Qt's QSaveFile is not enough here: it passes over errors of its last sync, of permissions and of
// looking at the old file, loses the owner, and fails for names so long that the file system takes
// no suffix after them.

constexpr mode_t modeBits = 07777;
constexpr mode_t modeBitsOfAnyOwner = 0777;

// How often, and how far apart, a file that is in use is asked for again before it is written in
// place. A machine that polls has it open for some milliseconds.
constexpr int maxTries = 10;
constexpr std::chrono::milliseconds betweenTries(20);

struct Target
{
    struct stat status;
    bool exists;
    bool isReplaceable;
};

struct Content
{
    const char* text;
    std::size_t size;
};

enum class Result
{
    Done,
    Forbidden, ///< only rights forbid it
    Failed     ///< a full or broken disk, or something else
};

Result resultOf(int error)
{
    // EBUSY: the name is a mount point, or in use on an SMB share. The last two come from file
    // systems that know no permissions.
    for (const int right : {EACCES, EPERM, EBUSY, EOPNOTSUPP, ENOSYS}) {
        if (error == right)
            return Result::Forbidden;
    }
    return Result::Failed;
}

/// Not every file system can sync, and one that can't has no more to give.
bool syncToDisk(int descriptor)
{
    return ::fsync(descriptor) == 0 || errno == EINVAL;
}

void syncAt(const QByteArray& path, int flags)
{
    const int descriptor = ::open(path.constData(), flags | O_CLOEXEC);
    if (descriptor < 0)
        return;
    syncToDisk(descriptor);
    ::close(descriptor);
}

/// A file can be replaced only if its status is known, and if it is a regular file that may be
/// written.
Target lookAt(const QByteArray& path)
{
    struct stat status = {};
    if (::lstat(path.constData(), &status) != 0)
        return {status, false, errno == ENOENT};
    return {status, true, S_ISREG(status.st_mode) && ::access(path.constData(), W_OK) == 0};
}

/// Opens a file that is there, and nothing that has come in its place.
int openForWriting(const QByteArray& path)
{
    return ::open(path.constData(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
}

bool writeAll(int descriptor, Content content)
{
    while (content.size > 0) {
        const ssize_t written = ::write(descriptor, content.text, content.size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        content.text += written;
        content.size -= static_cast<std::size_t>(written);
    }
    return true;
}

bool hasMode(int descriptor, mode_t mode)
{
    struct stat now = {};
    return ::fstat(descriptor, &now) == 0 &&
           (now.st_mode & modeBitsOfAnyOwner) == (mode & modeBitsOfAnyOwner);
}

/// Gives a file the owner, group and permissions of the one that it replaces. Only root can give
/// files away; from others the file becomes their own, and without the rights that it had as a
/// program of somebody else. Nothing is set that is so already: not every file system can.
Result takeRights(int descriptor, const struct stat& old)
{
    struct stat now = {};
    if (::fstat(descriptor, &now) != 0)
        return Result::Failed;
    constexpr auto same = static_cast<uid_t>(-1);
    const bool group = now.st_gid == old.st_gid || ::fchown(descriptor, same, old.st_gid) == 0;
    const bool owner = now.st_uid == old.st_uid || ::fchown(descriptor, old.st_uid, same) == 0;
    const mode_t mode = old.st_mode & (owner && group ? modeBits : modeBitsOfAnyOwner);
    if ((now.st_mode & modeBits) == mode)
        return Result::Done;
    if (::fchmod(descriptor, mode) != 0)
        return resultOf(errno);
    // Some file systems do nothing and say nothing.
    return hasMode(descriptor, mode) ? Result::Done : Result::Forbidden;
}

/// True if a file, empty yet, was born with the rights of the one that it replaces.
bool hasRightsOf(int descriptor, const struct stat& old)
{
    struct stat now = {};
    return ::fstat(descriptor, &now) == 0 && now.st_uid == old.st_uid && now.st_gid == old.st_gid &&
           (now.st_mode & modeBits) == (old.st_mode & modeBits);
}

/// A name of its own, so that it fits wherever the file's name fits, and random by the system, so
/// that no two writers share it, nor a writer and what a killed one left.
QByteArray nameBeside(const QByteArray& path)
{
    const quint64 number = QRandomGenerator::system()->generate64();
    return folderOf(path) + ".twdp-" + QByteArray::number(number, 16) + ".tmp";
}

enum class Rights
{
    Umask,     ///< those of any new file
    TakenOver, ///< the user's alone at first, so that nobody reads what he may not read
    FromBirth  ///< those of the old file, for file systems where rights can't be set later
};

mode_t modeAtBirth(Rights rights, const struct stat& old)
{
    switch (rights) {
    case Rights::TakenOver:
        return S_IRUSR | S_IWUSR;
    case Rights::FromBirth:
        return old.st_mode & modeBitsOfAnyOwner;
    case Rights::Umask:
        break;
    }
    return DEFFILEMODE;
}

/// Puts a whole file under a new name, and nothing if it can't. Not until every byte has reached
/// the disk is it whole.
Result writeWhole(const QByteArray& path, Rights rights, const struct stat& old, Content content)
{
    const int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    const int descriptor = ::open(path.constData(), flags, modeAtBirth(rights, old));
    if (descriptor < 0)
        return resultOf(errno);
    Result result = Result::Done;
    if (rights == Rights::FromBirth && !hasRightsOf(descriptor, old))
        result = Result::Forbidden;
    else if (!writeAll(descriptor, content))
        result = Result::Failed;
    // A write takes the rights of a program away again, so they come after it.
    if (result == Result::Done && rights == Rights::TakenOver)
        result = takeRights(descriptor, old);
    if (result == Result::Done && !syncToDisk(descriptor))
        result = Result::Failed;
    // A network share may report only now that its disk is full.
    if (::close(descriptor) != 0 && result == Result::Done)
        result = Result::Failed;
    if (result != Result::Done)
        ::unlink(path.constData());
    return result;
}

Result writeBeside(const QByteArray& path, const Target& target, Content content)
{
    if (!target.exists)
        return writeWhole(path, Rights::Umask, target.status, content);
    const Result result = writeWhole(path, Rights::TakenOver, target.status, content);
    return result == Result::Forbidden ? writeWhole(path, Rights::FromBirth, target.status, content)
                                       : result;
}

/// Asks again, for a while, if the answer is yes.
template <class Question>
void repeatWhile(const Question& question)
{
    for (int tries = 1; question() && tries < maxTries; ++tries)
        std::this_thread::sleep_for(betweenTries);
}

bool isOnSmbShare(const QByteArray& path)
{
    struct statfs status = {};
    if (::statfs(path.constData(), &status) != 0)
        return false;
    const auto type = static_cast<quint32>(status.f_type);
    return type == SMB_SUPER_MAGIC || type == CIFS_SUPER_MAGIC || type == SMB2_SUPER_MAGIC;
}

/// The kernel leases a file for writing only if nobody has it open; else EAGAIN. Returns an errno.
int leaseForAMoment(const QByteArray& path)
{
    const int descriptor = openForWriting(path);
    if (descriptor < 0)
        return errno;
    // Whoever opens the file just now has a signal sent to this process: one that does not end it.
    const bool isLeased =
        ::fcntl(descriptor, F_SETSIG, SIGURG) == 0 && ::fcntl(descriptor, F_SETLEASE, F_WRLCK) == 0;
    const int error = isLeased ? 0 : errno;
    ::close(descriptor);
    return error;
}

/// On an SMB share, a rename over an open file is refused, and the old file vanishes all the same
/// as soon as it is closed. A file of which that is not known counts as open.
bool wouldLoseTheOld(const QByteArray& path, const Target& target)
{
    if (!target.exists || !isOnSmbShare(path))
        return false;
    int error = 0;
    repeatWhile([&] {
        error = leaseForAMoment(path);
        return error == EAGAIN;
    });
    return error != 0;
}

Result moveOver(const QByteArray& beside, const QByteArray& path)
{
    Result result = Result::Done;
    repeatWhile([&] {
        const int error = ::rename(beside.constData(), path.constData()) == 0 ? 0 : errno;
        result = error == 0 ? Result::Done : resultOf(error);
        return error == EACCES || error == EBUSY;
    });
    return result;
}

/// Asks for the space of a longer text first, and touches the old text only then. True if the
/// file holds the old text or the new one afterwards.
bool overwrite(int descriptor, off_t oldSize, Content content)
{
    const auto size = static_cast<off_t>(content.size);
    if (size > oldSize) {
        const Content rest = {content.text + oldSize, static_cast<std::size_t>(size - oldSize)};
        if (::lseek(descriptor, oldSize, SEEK_SET) != oldSize || !writeAll(descriptor, rest) ||
            !syncToDisk(descriptor))
            return ::ftruncate(descriptor, oldSize) == 0;
    }
    return ::lseek(descriptor, 0, SEEK_SET) == 0 && writeAll(descriptor, content) &&
           ::ftruncate(descriptor, size) == 0 && syncToDisk(descriptor);
}

/// True if the file is there and holds the old text or the new one afterwards.
bool writeInPlace(const QByteArray& path, const struct stat& old, Content content)
{
    const int descriptor = openForWriting(path);
    if (descriptor < 0)
        return errno == ETXTBSY;
    struct stat now = {};
    const bool isTheOld = ::fstat(descriptor, &now) == 0 && S_ISREG(now.st_mode) &&
                          now.st_dev == old.st_dev && now.st_ino == old.st_ino;
    const bool isWhole = !isTheOld || overwrite(descriptor, now.st_size, content);
    return ::close(descriptor) == 0 && isWhole;
}

/// True if the file is there to stay. To look at its name is not enough on an SMB share.
bool isThere(const QByteArray& path)
{
    const int descriptor = openForWriting(path);
    if (descriptor < 0)
        return errno == ETXTBSY;
    ::close(descriptor);
    return true;
}

/// After a rename that failed. The new text is not removed before the old one is known to be there,
/// or the new one in place.
void giveUpMoving(const QByteArray& beside, const QByteArray& path, const Target& target,
                  Content content, Result result)
{
    const bool isSafe =
        !target.exists ||
        (result == Result::Forbidden ? writeInPlace(path, target.status, content) : isThere(path));
    if (isSafe)
        ::unlink(beside.constData());
}

} // namespace

void replaceFile(const QByteArray& path, const char* text, std::size_t size)
{
    const Target target = lookAt(path);
    if (!target.isReplaceable)
        return;
    const Content content = {text, size};
    const QByteArray beside = nameBeside(path);
    const Result written =
        wouldLoseTheOld(path, target) ? Result::Forbidden : writeBeside(beside, target, content);
    if (written == Result::Forbidden && target.exists)
        writeInPlace(path, target.status, content);
    if (written != Result::Done)
        return;
    const Result moved = moveOver(beside, path);
    if (moved != Result::Done) {
        giveUpMoving(beside, path, target, content, moved);
        return;
    }
    // FAT keeps a file's length beside its name, so the new name needs a sync of the file too.
    syncAt(path, O_WRONLY | O_NOFOLLOW | O_NONBLOCK);
    syncAt(folderOf(path), O_RDONLY | O_DIRECTORY);
}
