#pragma once

#include <QString>
#include <QStringList>

#include <string>

/// A text file that a person wrote.
struct TextFile
{
    QStringList lines;   ///< without their line ends, which may be those of Windows
    std::string problem; ///< half a sentence if the file can't be used, such as "it does not exist"
};

/// Reads a regular file of UTF-8 text, with or without a byte order mark. Whatever lies under the
/// path, it never blocks: pipes and devices are not opened. A file of more than 16 MiB, and one
/// that holds other bytes than text, is a problem.
TextFile readTextFile(const QString& path);

/// A line without its comment, which "#" begins at the start of the line and after a blank, and
/// without blanks at its ends.
QString withoutComment(const QString& line);
