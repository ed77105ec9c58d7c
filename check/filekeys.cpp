#include "check/filekeys.h"

#include "check/text.h"
#include "model/limits.h"
#include "shared/kvpath.h"
#include "shared/kvtext.h"

#include <algorithm>
#include <utility>

namespace {

bool isSeparator(char c)
{
    return c == '/' || c == '\\';
}

bool isAsciiLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Windows ignores dots and blanks at the end of each name.
QByteArray withoutIgnoredEnds(const QByteArray& path)
{
    QByteArray result;
    for (const char c : path) {
        while (c == '/' && (result.endsWith(' ') || (result.endsWith('.') && result != ".")))
            result.chop(1);
        result += c;
    }
    while (result.endsWith(' ') || result.endsWith('.'))
        result.chop(1);
    return result;
}

QByteArray lowered(const QByteArray& latin1)
{
    return QString::fromLatin1(latin1).toLower().toLatin1();
}

QByteArray withSlashes(QByteArray path)
{
    return path.replace('\\', '/');
}

QString toQString(const QByteArray& path)
{
    return QString::fromLatin1(path);
}

bool isAscii(const QByteArray& text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

/// Keys are UTF-8: a link may lead to a name outside Latin-1.
QByteArray toKey(const QByteArray& latin1)
{
    // Most names are the same in both, and share their memory.
    return isAscii(latin1) ? latin1 : toQString(latin1).toUtf8();
}

/// True for a drive, a server or a share by itself, which is not a file: "c:", "//server",
/// "//server/share". With a "." in its name, the second is rather a file whose share is left out.
bool isForeignRoot(const QByteArray& folded)
{
    if (!isSharePath(folded))
        return folded.size() == 2 && folded[1] == ':';
    const int share = folded.indexOf('/', 2) + 1;
    return share == 0 || (folded.indexOf('/', share) == -1 && folded.indexOf('.', share) == -1);
}

/// Where the last name begins.
int nameStart(const QByteArray& path)
{
    return path.lastIndexOf('/') + 1;
}

/// Without the separator that follows it, unless it is the root.
QByteArray folderOf(const QByteArray& path)
{
    const int start = nameStart(path);
    return path.left(start > 1 ? start - 1 : start);
}

QByteArray joined(const QByteArray& folder, const QByteArray& name)
{
    QByteArray path;
    path.reserve(folder.size() + 1 + name.size()); // appending takes twice of that
    path += folder;
    if (!folder.endsWith('/'))
        path += '/';
    return path += name;
}

} // namespace

QByteArray resolvedPath(const QByteArray& path)
{
    // Most paths have nothing to resolve.
    if (!holds(path, "//") && !holds(path, "/."))
        return path;
    _kvString8_allSize<maxPath> text;
    text.add(path.constData(), path.size());
    const auto result = kvPathResolve(text);
    return {result.text, result.length};
}

bool isSharePath(const QByteArray& path)
{
    return path.size() > 2 && isSeparator(path[0]) && path[1] == path[0] && !isSeparator(path[2]);
}

bool isForeignPath(const QByteArray& path)
{
    const bool hasDrive = path.size() > 1 && isAsciiLetter(path[0]) && path[1] == ':';
    return path.startsWith('\\') || hasDrive || isSharePath(path);
}

QByteArray foldedPath(const QByteArray& path)
{
    QByteArray folded = withSlashes(path);
    // The prefixes by which Windows switches its own rules for paths off.
    if (folded.startsWith("//?/") || folded.startsWith("//./"))
        folded.remove(0, 4);
    if (folded.left(4).toLower() == "unc/")
        folded.replace(0, 4, "//");
    // Without a drive, it is the root of the one that is in use there.
    if (folded.startsWith('/') && !isSharePath(folded))
        folded.prepend(':');
    return lowered(withoutIgnoredEnds(resolvedPath(folded)));
}

KeyedPath FileKeys::find(const QByteArray& path, bool isHere)
{
    KeyedPath found;
    found.isSeen = isHere && !isForeignPath(path);
    QByteArray text = isForeignPath(path) ? foldedPath(path) : path;
    // On Linux a "\" may be part of a name; on Windows it never is.
    if (text.contains('\\') && !(found.isSeen && m_environment.exists(toQString(text))))
        text = resolvedPath(withSlashes(text));
    const QByteArray lastName = text.mid(nameStart(text));
    found.namesFolder =
        path.endsWith('/') || path.endsWith('\\') || lastName == "." || lastName == "..";
    while (text.size() > 1 && text.endsWith('/'))
        text.chop(1);
    found.namesFolder = found.namesFolder || (isForeignPath(path) && isForeignRoot(text));

    const int start = nameStart(text);
    found.folder = folderAt(folderOf(text), found.isSeen);
    const KeyedFolder& folder = m_folders[size_t(found.folder)];
    found.key = joined(folder.key, toKey(text.mid(start)));
    if (!found.isSeen || folder.kind != PathStatus::Kind::Folder)
        return found;
    const PathStatus status = m_environment.look(toQString(text));
    found.kind = status.kind;
    found.size = status.size;
    if (!status.canonical.isEmpty())
        found.key = status.canonical.toUtf8();
    // Writing to the link makes the file there.
    if (status.kind == PathStatus::Kind::DeadLink && kvIsLatin1(status.canonical))
        found.folder = folderAt(folderOf(status.canonical.toLatin1()), true);
    if (status.hasOtherNames) {
        QByteArray& first = m_keyOfNode[{status.fileSystem, status.node}];
        if (first.isEmpty())
            first = found.key;
        found.key = first;
    }
    return found;
}

int FileKeys::folderAt(const QByteArray& path, bool isSeen)
{
    // A path of another system never equals a path of this one, even if it is spelled alike.
    const QByteArray spelling = isSeen ? path : '\n' + path;
    const auto known = m_folderOfPath.constFind(spelling);
    if (known != m_folderOfPath.cend())
        return *known;
    KeyedFolder folder = lookAtFolder(path, isSeen);
    m_folders.push_back(std::move(folder));
    return *m_folderOfPath.insert(spelling, int(m_folders.size()) - 1);
}

KeyedFolder FileKeys::lookAtFolder(const QByteArray& path, bool isSeen)
{
    KeyedFolder folder;
    folder.isSeen = isSeen;
    folder.shownPath = path;
    folder.key = toKey(path);
    if (isSeen) {
        const PathStatus status = m_environment.look(toQString(path));
        folder.kind = status.kind;
        if (!status.canonical.isEmpty()) {
            folder.key = status.canonical.toUtf8();
            return folder;
        }
    }
    const int start = nameStart(path);
    m_folderCharacters += path.size();
    const bool hasParent =
        start > 2 && !path.endsWith('/') && m_folderCharacters <= maxFolderCharacters;
    if (hasParent) {
        folder.parent = folderAt(path.left(start - 1), isSeen);
        const QByteArray key = joined(m_folders[size_t(folder.parent)].key, toKey(path.mid(start)));
        if (key != folder.key)
            folder.key = key;
    }
    return folder;
}
