#pragma once

#include "shared/kvfile.h"

#include <cstdint>

// How much the records, the lines and the files hold. Everything beyond is cut or left out without
// a word, as the config file format demands; README has the table for users.

/// Characters of a path or a name in a record, and of a config file's own path.
constexpr int maxPath = 500;

/// Characters of a line of a config file, without its line end.
constexpr int maxLine = 1000;

/// Characters of a config file that is written.
constexpr int maxConfigFile = maxLogFileText;

/// Characters of the full name of a file that is written.
constexpr int maxFileName = maxLogFileName;

/// Bytes of a config file that are read.
constexpr std::int64_t maxFileRead = 64LL * 1024 * 1024;

/// Config files of a series: one without a number, then 1 to 19.
constexpr int seriesFileCount = 20;

/// Entries that are read of a series: tasks, markers, and lines that the reader rejects. A record
/// takes more than 7 KB of memory, and an entry can be as short as six bytes.
constexpr int maxSeriesEntries = 50000;

/// Comment lines that are read of a series as its info text.
constexpr int maxSeriesComments = 5000;

/// Bytes of the file that a task reads or writes: 1 GiB, which the form announces.
constexpr std::int32_t maxFileSize = 1073741824;

/// Bytes of a file that a record can be made for; the next normalisation lowers it to maxFileSize.
constexpr std::int32_t maxTaskFile = 2147483600;

// The largest values that the form can show, and its smallest file.
constexpr int minFormFileKib = 1024;
constexpr int maxFormChunkWait = 500; ///< ms
constexpr int maxFormChunkKib = 10240;
constexpr int maxFormIterations = 100;
constexpr int maxFormCacheMode = 5;

/// The system buffer mode that is read from a line.
constexpr std::int32_t maxSysBufferModeRead = 5;

/// Characters of a number in a line that are read.
constexpr int maxNumberLength = 249;
