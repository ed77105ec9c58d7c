#pragma once

#include <QByteArray>

#include <cstddef>

/// Gives the file at a path, which is no link, a new content of `size` bytes, or makes it in a
/// folder that is there. A new file is written beside it, synced, and renamed over it, with its
/// permissions, owner and group as far as the user may set them.
///
/// If only rights forbid to put a new file in the old one's place (a folder that can't be written,
/// rights that can't be taken over, somebody else's file in a sticky folder), or if the file is
/// open on an SMB share, where replacing it would lose both, the old file is written in place and
/// synced. After a lack of room or an error of the disk it keeps its content. What is no regular
/// file, or may not be written, is left alone. No failure is reported.
void replaceFile(const QByteArray& path, const char* text, std::size_t size);
