#include "tests/support/files.h"

#include "shared/kvfile.h"
#include "shared/kvtext.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <array>
#include <climits>
#include <unistd.h>

namespace test {

QByteArray textOf(int length, char first)
{
    QByteArray text;
    for (int i = 0; i < length; ++i)
        text += static_cast<char>(first + i % 23);
    return text;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray content = file.readAll();
    return content.isNull() ? QByteArray("") : content;
}

void put(const QString& path, const QByteArray& content, mode_t mode)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() ||
        !file.flush() || ::fchmod(file.handle(), mode) != 0)
        qFatal("can't prepare %s", qPrintable(path));
}

void clearFolder(const QString& folder)
{
    constexpr auto all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    if (!QDir().mkpath(folder))
        qFatal("can't make %s", qPrintable(folder));
    for (const QFileInfo& entry : QDir(folder).entryInfoList(all)) {
        const bool isFolder = entry.isDir() && !entry.isSymLink();
        const QByteArray name = QFile::encodeName(entry.filePath());
        if (isFolder ? !QDir(entry.filePath()).removeRecursively() : ::unlink(name) != 0)
            qFatal("can't clear %s", name.constData());
    }
}

struct stat statusOf(const QString& path)
{
    struct stat status = {};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return status;
}

mode_t modeOf(const QString& path)
{
    return statusOf(path).st_mode & 07777U;
}

QByteArray linkOf(const QString& path)
{
    std::array<char, PATH_MAX> target = {};
    const ssize_t size =
        ::readlink(QFile::encodeName(path).constData(), target.data(), target.size());
    return {target.data(), size < 0 ? 0 : static_cast<int>(size)};
}

QStringList entriesOf(const QString& folder)
{
    QStringList entries;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        entries += QDir(folder).relativeFilePath(it.next());
    entries.sort();
    return entries;
}

void save(const QString& path, const QByteArray& content)
{
    _kvString8_allSize<5000> text;
    text.add(content.constData(), content.size());
    writeToLogFile(kvToString8<250>(path), text, true, false);
}

} // namespace test
