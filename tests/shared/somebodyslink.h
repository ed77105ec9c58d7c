#pragma once

#include "tests/support/childprocess.h"
#include "tests/support/files.h"

#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace test {

/// A link in a folder, both of some users, to a file elsewhere that everybody may write. Only root
/// can make it.
class SomebodysLink
{
public:
    SomebodysLink(mode_t folderMode, uid_t folderOwner, uid_t linkOwner)
    {
        const QByteArray place = QFile::encodeName(m_folder.path());
        if (::symlink(QFile::encodeName(target()).constData(), link().constData()) != 0 ||
            ::lchown(link().constData(), linkOwner, linkOwner) != 0 ||
            ::chown(place.constData(), folderOwner, folderOwner) != 0 ||
            ::chmod(place.constData(), folderMode) != 0 ||
            ::chmod(QFile::encodeName(m_elsewhere.path()).constData(), 0777) != 0)
            qFatal("can't prepare a link");
    }

    /// True if the text of a user without rights arrives in the file.
    bool isFollowedByASave() const
    {
        return isFollowedBy([this] { saveAndClose(); });
    }

    /// By a program whose first file gets the number 0.
    bool isFollowedByASaveWithoutInput() const
    {
        return isFollowedBy([this] {
            ::close(STDIN_FILENO);
            saveAndClose();
        });
    }

    bool isFollowedByAWrite() const
    {
        return isFollowedBy([this] {
            const int file = ::open(link().constData(), O_WRONLY | O_TRUNC | O_CLOEXEC);
            static_cast<void>(::write(file, "new", 3) == 3);
            ::close(file);
        });
    }

private:
    void saveAndClose() const
    {
        const int before = openFiles();
        save(QFile::decodeName(link()), "new");
        if (openFiles() != before)
            endChild(EXIT_FAILURE);
    }

    bool isFollowedBy(const std::function<void()>& work) const
    {
        put(target(), "old", 0666);
        return runWithoutRights(work) && contentOf(target()) == "new";
    }

    QByteArray link() const { return QFile::encodeName(m_folder.filePath("link")); }
    QString target() const { return m_elsewhere.filePath("target"); }

    QTemporaryDir m_folder;
    QTemporaryDir m_elsewhere;
};

} // namespace test
