#pragma once

#include <QByteArray>

/// The file that a chain of symbolic links ends at, existing or not, as a path in the file system's
/// encoding; the path itself if it names no link. Empty if the chain holds a link that the kernel
/// would not follow for a plain write: somebody else's, in a folder that is sticky and that
/// everybody may write to, such as /tmp (fs.protected_symlinks).
QByteArray linkTarget(QByteArray path);

/// The folder of a path, up to and including the last separator; "./" if there is none.
QByteArray folderOf(const QByteArray& path);
