#pragma once

#include "check/seriesfacts.h"
#include "model/methods.h"

// The words for what stands in a task line, in messages and listings.

/// By what the line has in place of its paths.
TestType typeOf(const LineFact& line);
/// "Copy", "Write" or "Read".
const char* typeWord(const LineFact& line);
