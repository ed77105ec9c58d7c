#pragma once

#include <QByteArray>

#include <cstddef>

/// Gives the file at a path, which must not be a link, a new content of `size` bytes, or makes it
/// in a folder that is there. A new file is written beside it, synced, and renamed over it, with
/// its permissions, owner and group as far as the user may set them.
///
/// If only rights forbid to put a new file in the old one's place (a folder that can't be written,
/// rights that can't be taken over, somebody else's file in a sticky folder), or if the file is
/// open on an SMB share, so that replacing it would lose both, the old file is written in place and
/// synced. If the disk is full or fails, it keeps its content. A path that is not a
/// regular file, or may not be written, is left alone. No failure is reported.
void replaceFile(const QByteArray& path, const char* text, std::size_t size);
