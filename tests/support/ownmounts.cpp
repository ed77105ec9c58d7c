#include "tests/support/ownmounts.h"

#include "tests/support/leaveout.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace test {

namespace {

[[noreturn]] void giveUp(const char* what)
{
    const std::string reason =
        std::string("can't ") + what + ": " + std::strerror(errno) +
        ". This test mounts small file systems; run it as root, or allow user namespaces (sysctl "
        "kernel.unprivileged_userns_clone=1).";
    leaveOut(reason.c_str());
}

void writeTo(const char* path, const QByteArray& text)
{
    QFile file(QString::fromLatin1(path));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || file.write(text) < 0)
        giveUp("set up a user namespace");
}

void becomeRootOfOwnNamespace()
{
    const QByteArray user = QByteArray::number(::geteuid());
    const QByteArray group = QByteArray::number(::getegid());
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        giveUp("make a user namespace");
    writeTo("/proc/self/setgroups", "deny");
    writeTo("/proc/self/uid_map", "0 " + user + " 1");
    writeTo("/proc/self/gid_map", "0 " + group + " 1");
}

} // namespace

void allowMounts()
{
    if (::geteuid() != 0)
        becomeRootOfOwnNamespace();
    else if (::unshare(CLONE_NEWNS) != 0)
        giveUp("make a mount namespace");
    if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        giveUp("keep mounts to itself");
}

SmallDisk::SmallDisk(const QString& folder, const QByteArray& options)
    : folder_(QFile::encodeName(folder))
{
    if (::mount("tmpfs", folder_.constData(), "tmpfs", 0, options.constData()) != 0)
        giveUp("mount a tmpfs");
}

SmallDisk::~SmallDisk()
{
    if (::umount2(folder_.constData(), MNT_DETACH) != 0)
        giveUp("unmount a tmpfs");
}

FileInPlace::FileInPlace(const QString& file, const QByteArray& content)
    : file_(QFile::encodeName(file))
{
    if (!content_.open() || content_.write(content) != content.size() || !content_.flush() ||
        ::chmod(QFile::encodeName(content_.fileName()).constData(), 0644) != 0 ||
        ::mount(QFile::encodeName(content_.fileName()).constData(), file_.constData(), nullptr,
                MS_BIND, nullptr) != 0)
        giveUp("mount a file");
}

FileInPlace::~FileInPlace()
{
    if (::umount2(file_.constData(), MNT_DETACH) != 0)
        giveUp("unmount a file");
}

bool mountForReading(const QString& folder)
{
    return ::mount(nullptr, QFile::encodeName(folder).constData(), nullptr, MS_REMOUNT | MS_RDONLY,
                   nullptr) == 0;
}

} // namespace test
