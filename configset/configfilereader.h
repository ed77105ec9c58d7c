#pragma once

#include "model/limits.h"
#include "shared/kvstring16.h"
#include "shared/kvstring8.h"

#include <QFile>

/// The kinds of lines in a config file.
enum class ConfigLine
{
    Comment, ///< begins with "#"
    Blank,
    Entry ///< for the task line reader
};

/// Tells what a line of a config file is, and brings it into the form in which it is used: an entry
/// trimmed, a comment without its mark and trimmed.
ConfigLine takeConfigLine(_kvString<maxLine>& line);

/// Reads a config file line by line, in bounded time and memory whatever the file holds.
///
/// Only a regular file is read: a FIFO or a device behind the name would keep the caller waiting
/// for ever, and counts as a file that can't be opened. Bytes are Latin-1; a byte order mark of
/// UTF-8 at the start of the file, which editors on Windows write, belongs to no line. A line ends
/// at its first zero byte and is cut at 1000 characters; a file is cut at 64 MiB, which is more
/// than twelve thousand times what the editor writes.
class ConfigFileReader
{
public:
    /// Opens the file; the name is Latin-1 like every text of a task.
    explicit ConfigFileReader(const _kvString8_allSize<maxPath>& path);

    /// False if the path does not name a regular file that this user may read.
    bool isOpen() const { return m_file.isOpen(); }

    /// Reads up to the next "\n" or the end of the file; false if nothing is left.
    bool readLine(_kvString<maxLine>& line);

    int lineNumber() const { return m_lineNumber; }    ///< of the last line, from 1
    qint64 lineLength() const { return m_lineLength; } ///< bytes of the last line, uncut
    /// Why a part of the file could not be read, as the system tells; empty if none. It looks like
    /// the end of the file.
    QString readError() const { return m_hasFailed ? m_file.errorString() : QString(); }
    /// True if `maxFileRead` was reached before the end of the file, so that the rest is not read.
    bool fileWasCut() const { return m_bytesRead >= maxFileRead && !m_file.atEnd(); }

private:
    bool fillBuffer();
    void skipByteOrderMark();

    QFile m_file;
    char m_buffer[16384] = {};
    int m_position = 0;
    int m_end = 0;
    int m_lineNumber = 0;
    qint64 m_lineLength = 0;
    qint64 m_bytesRead = 0;
    bool m_hasFailed = false;
};
