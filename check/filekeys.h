#pragma once

#include "check/environment.h"

#include <QByteArray>
#include <QHash>
#include <QPair>

#include <vector>

// Which spellings lead to the same file.

/// True for a path that only Windows or a file server can look up: "C:\x", "\\server\x",
/// "//server/x". The content of such a path is unknown on this system.
bool isForeignPath(const QByteArray& path);

/// True for a path on a file server: "\\server\x" or "//server/x".
bool isSharePath(const QByteArray& path);

/// One spelling for all spellings of a foreign path: "/" for "\", small letters, no dots. Paths are
/// Latin-1, at most 500 characters; longer ones are cut.
QByteArray foldedPath(const QByteArray& path);

/// A path without repeated "/", "." and "..", as the editor resolves it: at most 500 characters.
QByteArray resolvedPath(const QByteArray& path);

/// A folder that files of the series lie in, whether it exists or not.
struct KeyedFolder
{
    QByteArray key; ///< the same for all spellings
    PathStatus::Kind kind = PathStatus::Kind::Nothing;
    bool isSeen = true;   ///< false if this system can't tell what lies there
    int parent = -1;      ///< the folder above, -1 for the topmost one that matters
    QByteArray shownPath; ///< as the first user spells it
};

/// The target of a path.
struct KeyedPath
{
    QByteArray key; ///< the same for all spellings and hard links, links followed as they exist
    PathStatus::Kind kind = PathStatus::Kind::Nothing;
    qint64 size = 0;          ///< bytes of a file that exists
    int folder = -1;          ///< its place among the folders; of a dead link where it leads
    bool isSeen = true;       ///< false if this system can't tell what lies there
    bool namesFolder = false; ///< by a separator at the end, or "." and ".."
};

/// The folders that do not exist are known by themselves and with those above them, until their
/// paths have so many characters in all. Of further ones those above are not known.
constexpr long long maxFolderCharacters = 8'000'000;

/// Gives every path a key that all spellings of the file share. Asks the disk once for each folder,
/// and once for each file whose folder exists.
class FileKeys
{
public:
    /// The environment must outlive it.
    explicit FileKeys(const Environment& environment)
        : m_environment(environment)
    {}

    /// The key of a full path. A path of another machine's own disk is not `isHere`: its text alone
    /// tells.
    KeyedPath find(const QByteArray& path, bool isHere);

    /// All folders that were met.
    const std::vector<KeyedFolder>& folders() const { return m_folders; }

private:
    int folderAt(const QByteArray& path, bool isSeen);
    KeyedFolder lookAtFolder(const QByteArray& path, bool isSeen);

    const Environment& m_environment;
    QHash<QByteArray, int> m_folderOfPath;
    std::vector<KeyedFolder> m_folders;
    long long m_folderCharacters = 0;                       ///< of those that do not exist
    QHash<QPair<quint64, quint64>, QByteArray> m_keyOfNode; ///< of files with several names
};
