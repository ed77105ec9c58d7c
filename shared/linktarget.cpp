#include "shared/linktarget.h"

#include <array>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// A link, and the text that it holds. Both come from one descriptor, so that nobody can put
/// another link under the name in between.
struct Link
{
    struct stat status = {};
    QByteArray target; ///< empty if the path is not a link
};

Link linkAt(const QByteArray& path)
{
    Link link;
    const int descriptor = ::open(path.constData(), O_PATH | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0)
        return link;
    // No QByteArray: the checked readlinkat takes its bytes for the few behind its header.
    std::array<char, PATH_MAX> target = {};
    if (::fstat(descriptor, &link.status) == 0) {
        // Fails for all that is not a link.
        const ssize_t size = ::readlinkat(descriptor, "", target.data(), target.size());
        link.target = QByteArray(target.data(), static_cast<int>(size < 0 ? 0 : size));
    }
    ::close(descriptor);
    return link;
}

/// A kernel that does not tell counts as one that protects.
bool kernelProtectsLinks()
{
    const int descriptor = ::open("/proc/sys/fs/protected_symlinks", O_RDONLY | O_CLOEXEC);
    char value = '1';
    const bool isKnown = descriptor >= 0 && ::read(descriptor, &value, 1) == 1;
    ::close(descriptor);
    return !isKnown || value != '0';
}

/// The kernel's own rule.
bool mayFollow(const struct stat& link, const QByteArray& folder)
{
    if (link.st_uid == ::geteuid())
        return true;
    struct stat status = {};
    if (::stat(folder.constData(), &status) != 0)
        return false;
    constexpr mode_t everybodys = S_ISVTX | S_IWOTH;
    return (status.st_mode & everybodys) != everybodys || status.st_uid == link.st_uid ||
           !kernelProtectsLinks();
}

} // namespace

QByteArray folderOf(const QByteArray& path)
{
    return path.contains('/') ? path.left(path.lastIndexOf('/') + 1) : QByteArrayLiteral("./");
}

QByteArray linkTarget(QByteArray path)
{
    // The kernel follows as many. Nothing of a path is shortened, because ".." after a link to a
    // folder is not the folder before it.
    constexpr int maxLinks = 40;
    for (int i = 0; i < maxLinks; ++i) {
        const Link link = linkAt(path);
        if (link.target.isEmpty())
            break;
        const QByteArray folder = folderOf(path);
        if (!mayFollow(link.status, folder))
            return {};
        path = link.target.startsWith('/') ? link.target : folder + link.target;
    }
    return path;
}
