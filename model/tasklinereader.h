#pragma once

#include "model/tasklinefields.h"
#include "model/testtask.h"

/// Where and why a line was rejected.
struct TaskLineProblem
{
    int field = 0;  ///< 1 to 14 in the order of the line
    int column = 0; ///< first character of the trimmed field, from 0
    int length = 0; ///< of the trimmed field, in characters
};

/// The fields of a line as the reader takes them.
TaskLineFields splitTaskLine(const _kvString<maxLine>& line);

/// Reads one line of a config file, without line end, into a record. A line that ends in ".dpc" is
/// a marker that names the next config file: its path lands in `sourcePath`. Relative paths get the
/// folder of `configPath` in front, and the record is normalised.
///
/// False if the method is unknown or a number holds anything but digits and a leading "-". The
/// record is then partly filled and of no use; `problem`, if given, says which field it was.
/// Overlong texts are cut silently: paths at 500 characters, numbers at 249. A system buffer mode
/// above 5 and a file size above 1 GiB are lowered to that, on a rejected line too.
bool readTaskLine(TestTask& task, const _kvString<maxLine>& line,
                  const _kvString8_allSize<maxPath>& configPath,
                  TaskLineProblem* problem = nullptr);

/// The same, but the settings stay as the line has them: no number is capped, and the record is not
/// normalised.
bool readTaskLineAsIs(TestTask& task, const _kvString<maxLine>& line,
                      const _kvString8_allSize<maxPath>& configPath,
                      TaskLineProblem* problem = nullptr);
