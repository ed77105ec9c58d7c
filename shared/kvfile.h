#pragma once

#include "shared/kvstring16.h"
#include "shared/kvstring8.h"

#include <QString>

// Files and folders. 8-bit names are Latin-1; the file system gets its own encoding of them.

/// True for anything that exists under the name, links followed.
bool kvFileExists(const _kvString<500>& file);

/// Creates a folder, with `parents` also the missing ones above it. True if the folder is there
/// afterwards.
bool kvCreateFolder(const QString& folder, bool parents);

/// The system's folder for temporary files, without a separator at the end: TMPDIR if it is a
/// folder, else /tmp.
_kvString8_allSize<500> kvGetTempDir();

/// Characters of the name and of the text that writeToLogFile() takes.
constexpr int maxLogFileName = 250;
constexpr int maxLogFileText = 5000;

/// Replaces the content of a file, whole or not at all: a reader sees the old content or the new
/// one, at every moment and also after a crash. Missing folders are made. Permissions, owner and
/// group stay, as far as the user may set them. Links are followed if the kernel would follow them.
///
/// If only rights forbid to put a new file in the old one's place, or if the file is open on an SMB
/// share, it is written in place and synced instead, and a reader can see a part of it.
///
/// The file keeps its content if the disk is full or fails, and if the name belongs to
/// something that is not a regular file or may not be written. No temporary file is left behind
/// then, except after a crash, and if the old file has vanished from a share meanwhile.
/// Another name of the same file, a hard link, keeps the old content.
/// The two flags belong to the interface; every caller passes true and false.
void writeToLogFile(const _kvString8_allSize<maxLogFileName>& file,
                    _kvString8_allSize<maxLogFileText> text, bool, bool);
