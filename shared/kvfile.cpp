#include "shared/kvfile.h"

#include "shared/kvtext.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Qt's QSaveFile is not enough here: it passes over errors of its last sync, of permissions and of
// looking at the old file, loses the owner, and fails for names so long that the file system takes
// no suffix after them.

constexpr mode_t modeBits = 07777;
constexpr mode_t modeBitsOfAnyOwner = 0777;

/// Up to and including the last separator.
QByteArray folderOf(const QByteArray& path)
{
    return path.left(path.lastIndexOf('/') + 1);
}

/// The file that a chain of links ends at, existing or not; the kernel follows as many. Nothing of
/// a path is shortened, for ".." after a link to a folder is not the folder before it.
QByteArray linkTarget(QByteArray path)
{
    constexpr int mostLinks = 40;
    // No QByteArray: the checked readlink takes its bytes for the few behind its header.
    std::array<char, PATH_MAX> target = {};
    for (int i = 0; i < mostLinks; ++i) {
        const ssize_t size = ::readlink(path.constData(), target.data(), target.size());
        if (size < 0)
            break;
        const QByteArray next(target.data(), static_cast<int>(size));
        path = next.startsWith('/') ? next : folderOf(path) + next;
    }
    return path;
}

/// Not every file system can sync, and one that can't has no more to give.
bool syncToDisk(int descriptor)
{
    return ::fsync(descriptor) == 0 || errno == EINVAL;
}

void syncFolder(const QByteArray& folder)
{
    const int descriptor = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    syncToDisk(descriptor);
    ::close(descriptor);
}

struct Target
{
    struct stat status = {};
    bool exists = false;
    bool isReplaceable = false;
};

/// What can't be looked at, or is no regular file that may be written, can't be replaced.
Target lookAt(const QByteArray& path)
{
    Target target;
    target.exists = ::lstat(path.constData(), &target.status) == 0;
    if (target.exists)
        target.isReplaceable =
            S_ISREG(target.status.st_mode) && ::access(path.constData(), W_OK) == 0;
    else
        target.isReplaceable = errno == ENOENT;
    return target;
}

/// Gives a file the owner, group and permissions of the one that it replaces. Only root can give
/// files away; from others the file becomes their own, and without the rights that it had as a
/// program of somebody else. Nothing is set that is so already: not every file system can.
bool takeRights(int descriptor, const struct stat& old)
{
    struct stat now = {};
    if (::fstat(descriptor, &now) != 0)
        return false;
    constexpr auto same = static_cast<uid_t>(-1);
    const bool group = now.st_gid == old.st_gid || ::fchown(descriptor, same, old.st_gid) == 0;
    const bool owner = now.st_uid == old.st_uid || ::fchown(descriptor, old.st_uid, same) == 0;
    const mode_t mode = old.st_mode & (owner && group ? modeBits : modeBitsOfAnyOwner);
    return (now.st_mode & modeBits) == mode || ::fchmod(descriptor, mode) == 0;
}

bool writeAll(int descriptor, const char* text, size_t size)
{
    while (size > 0) {
        const ssize_t written = ::write(descriptor, text, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        text += written;
        size -= static_cast<size_t>(written);
    }
    return true;
}

/// A name of its own, so that it fits wherever the file's name fits, and random by the system, so
/// that no two writers share it, nor a writer and what a killed one left.
QByteArray nameBeside(const QByteArray& path)
{
    const quint64 number = QRandomGenerator::system()->generate64();
    return folderOf(path) + ".twdp-" + QByteArray::number(number, 16) + ".tmp";
}

/// Puts a whole file under a new name. Not until every byte has reached the disk is it whole.
bool writeWhole(const QByteArray& path, const Target& target, const char* text, size_t size)
{
    const mode_t mode = target.exists ? S_IRUSR | S_IWUSR : DEFFILEMODE;
    const int descriptor = ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (descriptor < 0)
        return false;
    // A write takes the rights of a program away again, so they come after it.
    const bool whole = writeAll(descriptor, text, size) &&
                       (!target.exists || takeRights(descriptor, target.status)) &&
                       syncToDisk(descriptor);
    // A network share may tell only now that there was no room.
    return ::close(descriptor) == 0 && whole;
}

} // namespace

bool kvFileExists(const _kvString<500>& file)
{
    return QFileInfo::exists(kvToQString(file));
}

bool kvCreateFolder(const QString& folder, bool parents)
{
    if (folder.isEmpty())
        return false;
    const QDir here;
    return (parents ? here.mkpath(folder) : here.mkdir(folder)) || QFileInfo(folder).isDir();
}

_kvString8_allSize<500> kvGetTempDir()
{
    QString folder = QDir::tempPath();
    // Qt finds nothing where TMPDIR names no folder. Then "[temp]/file" must not land in "/".
    if (folder.isEmpty())
        folder = QStringLiteral("/tmp");
    while (folder.endsWith(QLatin1Char('/')))
        folder.chop(1);
    return kvToString8<500>(folder);
}

void writeToLogFile(const _kvString8_allSize<250>& file, _kvString8_allSize<5000> text, bool, bool)
{
    const QByteArray name = QFile::encodeName(kvToQString(file));
    if (name.isEmpty() || name.contains('\0'))
        return;
    const QByteArray path = linkTarget(name);
    if (path.endsWith('/'))
        return;
    const Target target = lookAt(path);
    const QByteArray folder = path.contains('/') ? folderOf(path) : QByteArrayLiteral("./");
    if (!target.isReplaceable || !kvCreateFolder(QFile::decodeName(folder), true))
        return;

    const QByteArray beside = nameBeside(path);
    if (writeWhole(beside, target, text.text, static_cast<size_t>(text.length)) &&
        ::rename(beside.constData(), path.constData()) == 0)
        syncFolder(folder);
    else
        ::unlink(beside.constData());
}
