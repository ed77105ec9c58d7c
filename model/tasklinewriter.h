#pragma once

#include "model/testtask.h"

/// Writes a task as one line of a config file, without line end: fourteen fields, each closed by
/// ";", with the padding that belongs to the format. The record is normalised first, in place.
/// Bytes of a path from 128 on appear sign-extended, so that their low byte gives them back.
/// Characters beyond 1000 are dropped silently. Returns `line`.
_kvString<maxLine>& writeTaskLine(_kvString<maxLine>& line, TestTask& task);

/// The same for a record that is normalised already.
_kvString<maxLine>& writePreparedTaskLine(_kvString<maxLine>& line, const TestTask& task);
