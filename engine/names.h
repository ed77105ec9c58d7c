#pragma once

#include <QByteArray>
#include <QString>

#include <string>

// Names of files in what fio reads. A job file has no way to write ";" or "#", which begin a
// comment in the middle of a value, and replaces words that begin with "$".

/// Bytes of the longest line that goes into a job file: fio takes 8192 locally and through a
/// client; the words around the names need the rest.
constexpr int maxNameLine = 7500;

/// Bytes of the longest name in a log of calls.
constexpr int maxLogName = 255;

/// Why fio can't take the name of a file, as the end of a sentence: "holds "#", which ...". Empty
/// if it can.
std::string nameProblem(const QString& path);

/// True if a log of calls can hold the name: no blanks, at most `maxLogName` bytes.
bool fitsLog(const QString& path);

/// The name as the file system has it.
QByteArray encodedName(const QString& path);

/// The name as a value of `filename=`.
QByteArray fileNameValue(const QString& path);

/// Text as one word of a shell.
QByteArray shellWord(const QByteArray& text);

/// Text as a part of the name of a file or a job: other characters than [a-z0-9-] become "-".
QByteArray plainWord(const QString& text);
