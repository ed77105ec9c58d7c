#pragma once

#include <QByteArray>
#include <QFileDevice>

/// Writes all bytes into an open file. False, with the error of the system in the file, if there is
/// no space for all of them.
bool writeAll(QFileDevice& file, const QByteArray& content);
