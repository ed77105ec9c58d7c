#pragma once

#include "shared/kvstring16.h"
#include "shared/kvstring8.h"

#include <QString>

// Paths as texts: nothing here asks the file system. "/" is the platform-independent separator.

/// Operating systems that a path can be written for.
enum class _kvOS
{
    Windows = 0,
    MacOS = 1,
    Linux = 2
};

/// False for text that begins with "/", "\", a drive letter and ":", or with "[cfgPath]" or
/// "[temp]", which stand for rooted folders; else true, for the empty text too.
bool isRelativePath(const _kvString8_allSize<500>& path);

/// Turns the platform-independent separators into those of Linux, which this program runs on. For
/// Linux and macOS nothing changes: a "\" is an ordinary character there.
_kvString8_allSize<500> kvConvertPDToOS(const _kvString8_allSize<500>& path);
/// The same for a text without a limit.
QString kvConvertPDToOS(const QString& path);
/// The same for the system given.
QString kvConvertPDToOS(const QString& path, _kvOS os);

/// The folder part: up to and including the last "/"; empty without one.
_kvString8_allSize<500> kvGetDirName(_kvString8_allSize<500> path);
/// The same up to and including the last separator.
QString kvGetDirName(QString path, unsigned short separator);

/// The folder part of a path in either notation: the separator is "/" if the text has one, else
/// "\".
QString kvGetDirNameAutoPD(QString path);

/// The file name after the last separator, without the last "." and what follows it.
QString kvGetFileNameBase(QString path, unsigned short separator);

/// "0" to "9".
bool kvIsDigit(const unsigned short& ch);

/// A normalised form, never longer than the path: joins repeated "/" (exactly two at the start, a
/// network share, stay), drops "." and resolves ".." as far as the text tells: never past the root,
/// a leading ".." or a segment that holds a bracketed word, because nobody knows yet how many
/// folders that stands for ("[cfgPath]sub"). A "/" at the end stays. A relative path that cancels
/// out is
/// "."; the empty path stays empty.
_kvString8_allSize<500> kvPathResolve(_kvString8_allSize<500> path);
/// The same for 16-bit texts.
_kvString<500> kvPathResolve(_kvString<500> path);
