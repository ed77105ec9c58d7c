#pragma once

#include "check/seriesfacts.h"

// The words for the fields of a task line, in messages and listings.

/// What a field is called in messages: "method", "chunk wait" and so on, from 1.
const char* fieldName(int field);

/// The methods that the reader knows.
constexpr const char* methodWords[] = {"Posix", "System", "Stream", "AnsiC"};

/// "Posix" and so on; empty for a number that is not a method.
const char* methodWord(IoMethod method);

/// By what the line has in place of its paths.
TestType typeOf(const LineFact& line);
/// "Copy", "Write" or "Read".
const char* typeWord(const LineFact& line);
