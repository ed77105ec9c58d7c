#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryFile>

// Small file systems in memory, for disks that run full, and files that tell something else. They
// are mounted in a mount namespace of the test's own, so that they are gone when the test ends, in
// whatever way.

namespace test {

/// Must come first in main(), while there is one thread. Root needs only a mount namespace; other
/// users get a user namespace as well, if the system lets them. If mounting is not permitted, as in
/// most containers, the program is left out; see leaveOut().
void allowMounts();

/// A tmpfs with mount options such as "size=64k,nr_inodes=20", mounted over a folder for as long
/// as the object lives.
class SmallDisk
{
public:
    SmallDisk(const QString& folder, const QByteArray& options);
    ~SmallDisk();
    Q_DISABLE_COPY_MOVE(SmallDisk)

private:
    QByteArray folder_;
};

/// Another content of a file, for as long as the object lives. The file itself does not change.
class FileInPlace
{
public:
    FileInPlace(const QString& file, const QByteArray& content);
    ~FileInPlace();
    Q_DISABLE_COPY_MOVE(FileInPlace)

private:
    QByteArray file_;
    QTemporaryFile content_;
};

/// Takes the right to write from a mounted disk.
bool mountForReading(const QString& folder);

} // namespace test
