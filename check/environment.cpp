#include "check/environment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

PathStatus::Kind kindOf(mode_t mode)
{
    switch (mode & S_IFMT) {
    case S_IFREG:
        return PathStatus::Kind::File;
    case S_IFDIR:
        return PathStatus::Kind::Folder;
    case S_IFIFO:
        return PathStatus::Kind::Pipe;
    case S_IFSOCK:
        return PathStatus::Kind::Socket;
    case S_IFBLK:
        return PathStatus::Kind::Disk;
    default:
        return PathStatus::Kind::Device;
    }
}

std::string whyUnreadable(const PathStatus& status)
{
    switch (status.kind) {
    case PathStatus::Kind::Folder:
        return "it is a folder";
    case PathStatus::Kind::Pipe:
        return "it is a pipe";
    case PathStatus::Kind::Socket:
        return "it is a socket";
    case PathStatus::Kind::Disk:
    case PathStatus::Kind::Device:
        return "it is a device";
    default:
        break;
    }
    return status.isReadable ? std::string() : "you have no right to read it";
}

/// The file that writing to a dead link would make. It may lead there over other links.
QString targetOf(const QString& deadLink)
{
    constexpr int maxLinks = 40; // Linux follows no more
    QString path = deadLink;
    for (int i = 0; i < maxLinks && QFileInfo(path).isSymLink(); ++i) {
        const QFileInfo target(QFileInfo(path).symLinkTarget());
        const QString folder = QFileInfo(target.path()).canonicalFilePath();
        path = folder.isEmpty() ? target.filePath() : QDir(folder).filePath(target.fileName());
    }
    return path;
}

/// Of a path that can't be followed to its end.
PathStatus statusOfNothing(const QByteArray& path, int error)
{
    PathStatus status;
    struct stat link = {};
    if (::lstat(path.constData(), &link) == 0 && S_ISLNK(link.st_mode)) {
        status.kind = PathStatus::Kind::DeadLink;
        status.canonical = targetOf(QFile::decodeName(path));
        status.whyUnreadable = error == ELOOP ? "it is a link that leads back to itself"
                                              : "it is a link that leads nowhere";
    } else if (error == EACCES) {
        status.isHidden = true;
        status.whyUnreadable = "you have no right to look into its folder";
    } else if (error == ENOENT || error == ENOTDIR) {
        status.whyUnreadable = "it does not exist";
    } else {
        status.whyUnreadable = std::strerror(error); // NOLINT(concurrency-mt-unsafe): one thread
    }
    return status;
}

PathStatus look(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat info = {};
    if (::stat(name.constData(), &info) != 0)
        return statusOfNothing(name, errno);
    PathStatus status;
    status.kind = kindOf(info.st_mode);
    status.size = S_ISREG(info.st_mode) ? info.st_size : 0;
    status.isReadable = ::access(name.constData(), status.isFolder() ? R_OK | X_OK : R_OK) == 0;
    status.isWritable = ::access(name.constData(), W_OK) == 0;
    status.canonical = QFileInfo(path).canonicalFilePath();
    status.fileSystem = info.st_dev;
    status.node = info.st_ino;
    status.hasOtherNames = status.isFile() && info.st_nlink > 1;
    status.whyUnreadable = whyUnreadable(status);
    return status;
}

/// The nearest folder above that exists, looked for from the top: of a deep path that does not
/// exist most folders do not either. Empty if there is none.
QByteArray nearestFolder(const QByteArray& path)
{
    int length = path.startsWith('/') ? 1 : 0;
    struct stat status = {};
    for (int end = path.indexOf('/', 1); end >= 0; end = path.indexOf('/', end + 1)) {
        if (::stat(path.left(end).constData(), &status) != 0)
            break;
        length = end;
    }
    return path.left(length);
}

/// Of the nearest folder above that exists.
std::optional<DiskSpace> space(const QString& path)
{
    QByteArray place = QFile::encodeName(path);
    struct stat status = {};
    if (::stat(place.constData(), &status) != 0)
        place = nearestFolder(place);
    struct statvfs system = {};
    if (::stat(place.constData(), &status) != 0 || ::statvfs(place.constData(), &system) != 0)
        return std::nullopt;
    const auto free = static_cast<quint64>(system.f_bavail) * system.f_frsize;
    return DiskSpace{status.st_dev, static_cast<qint64>(free)};
}

} // namespace

Environment realEnvironment()
{
    return {look, space};
}
