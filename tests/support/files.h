#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <sys/stat.h>

// Files as tests look at them: by the plain ways of the system, not by the code under test.

namespace test {

/// A pattern without repetition over short distances, so that a missing piece shows.
QByteArray textOf(int length, char first = 'a');

/// Content of a file; a null array for a missing one.
QByteArray contentOf(const QString& path);

/// Makes or overwrites a file. Aborts the test program when that fails.
void put(const QString& path, const QByteArray& content, mode_t mode = 0644);

/// Removes everything in a folder, but not the folder. Aborts the test program when that fails.
void clearFolder(const QString& folder);

/// The status of the name itself, links not followed; all zero if nothing has the name.
struct stat statusOf(const QString& path);
mode_t modeOf(const QString& path);

/// The target of a link, word for word; empty if the path is not a link.
QByteArray linkOf(const QString& path);

/// Everything in a folder and its subfolders, hidden entries too, sorted, relative to the folder.
QStringList entriesOf(const QString& folder);

/// writeToLogFile with texts of any kind.
void save(const QString& path, const QByteArray& content);

} // namespace test
