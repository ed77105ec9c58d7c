#pragma once

#include <QString>

#include <functional>
#include <optional>
#include <string>

/// The file, folder or other object under a path. Links are followed.
struct PathStatus
{
    /// Its kind.
    enum class Kind
    {
        Nothing,
        File, ///< a regular file
        Folder,
        DeadLink, ///< a link that leads nowhere
        Pipe,
        Socket,
        Disk,  ///< a disk or a partition itself
        Device ///< a device that holds no bytes, such as /dev/null
    };

    Kind kind = Kind::Nothing;
    qint64 size = 0;         ///< bytes of a file
    bool isHidden = false;   ///< nothing can be told: its folder may not be looked into
    bool isReadable = false; ///< by this user; a folder can be listed and entered
    bool isWritable = false; ///< by this user
    /// Without links and dots; empty if there is nothing. Of a dead link where it leads, as far as
    /// that exists.
    QString canonical;
    quint64 fileSystem = 0; ///< together with `node` the same for all names of a file
    quint64 node = 0;
    bool hasOtherNames = false; ///< a file with several hard links
    std::string whyUnreadable;  ///< half a sentence, empty for a file that can be read

    /// True if something is there that can be opened.
    bool exists() const { return kind != Kind::Nothing && kind != Kind::DeadLink; }
    /// True for a regular file.
    bool isFile() const { return kind == Kind::File; }
    /// True for a folder.
    bool isFolder() const { return kind == Kind::Folder; }
};

/// Space on a file system.
struct DiskSpace
{
    quint64 fileSystem = 0; ///< tells file systems apart
    qint64 free = 0;        ///< bytes
};

/// Questions that a check asks of the machine, beyond reading config files. They never write, and
/// never open anything that could block.
struct Environment
{
    std::function<PathStatus(const QString& path)> look;
    /// Of the file system that a path would lie on; nothing if that can't be told.
    std::function<std::optional<DiskSpace>(const QString& path)> space;

    /// True if something is there that can be opened.
    bool exists(const QString& path) const { return look(path).exists(); }
};

/// This machine.
Environment realEnvironment();
