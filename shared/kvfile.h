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

/// Replaces the content of a file, whole or not at all: a reader sees the old content or the new
/// one, at every moment and also after a crash. Missing folders are made. Links are followed, and
/// permissions, owner and group stay, as far as the user may set them. The file keeps its content
/// where it can't be written whole (full disk, no rights) or where the name belongs to something
/// that is no regular file; no temporary file is left behind then, only after a crash.
/// Another name of the same file, a hard link, keeps the old content.
/// The two flags belong to the interface; every caller passes true and false.
void writeToLogFile(const _kvString8_allSize<250>& file, _kvString8_allSize<5000> text, bool, bool);
