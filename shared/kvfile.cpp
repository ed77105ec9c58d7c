#include "shared/kvfile.h"

#include "shared/kvtext.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// The file that a chain of links ends at, existing or not; the kernel follows as many.
QString linkTarget(QString path)
{
    constexpr int mostLinks = 40;
    for (int i = 0; i < mostLinks; ++i) {
        const QFileInfo info(path);
        if (!info.isSymLink())
            break;
        path = info.symLinkTarget();
    }
    return path;
}

/// Not every file system can sync, and one that can't has no more to give.
bool syncToDisk(int descriptor)
{
    return ::fsync(descriptor) == 0 || errno == EINVAL || errno == EROFS;
}

void syncFolder(const QString& folder)
{
    const int descriptor =
        ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    syncToDisk(descriptor);
    ::close(descriptor);
}

/// On a full disk the commit alone can report success after its last flush failed, and an empty
/// file would replace a good one. So every byte must have reached the disk before.
bool writeWhole(QSaveFile& file, const char* text, qint64 size)
{
    return file.write(text, size) == size && file.flush() && file.error() == QFile::NoError &&
           syncToDisk(file.handle());
}

} // namespace

bool kvFileExists(const _kvString<500>& file)
{
    return QFileInfo::exists(kvToQString(file));
}

bool kvCreateFolder(const QString& folder, bool parents)
{
    const QDir here;
    return (parents ? here.mkpath(folder) : here.mkdir(folder)) || QFileInfo(folder).isDir();
}

_kvString8_allSize<500> kvGetTempDir()
{
    QString folder = QDir::tempPath();
    while (folder.endsWith(QLatin1Char('/')))
        folder.chop(1);
    return kvToString8<500>(folder);
}

void writeToLogFile(const _kvString8_allSize<250>& file, const _kvString8_allSize<5000>& text, bool,
                    bool)
{
    const QFileInfo target(linkTarget(kvToQString(file)));
    if (target.isSymLink() || (target.exists() && !target.isFile()))
        return;
    if (!kvCreateFolder(target.absolutePath(), true))
        return;

    QSaveFile output(target.absoluteFilePath());
    if (!output.open(QIODevice::WriteOnly))
        return;
    if (!writeWhole(output, text.text, text.length))
        output.cancelWriting();
    if (output.commit())
        syncFolder(target.absolutePath());
}
