#pragma once

#include "check/checker.h"
#include "check/nameexpander.h"
#include "check/seriesfacts.h"

/// What a field is called in messages: "method", "chunk wait" and so on, from 1.
const char* fieldName(int field);

/// The methods that the reader knows.
constexpr const char* methodWords[] = {"Posix", "System", "Stream", "AnsiC"};

/// "Posix" and so on; empty for a number that is no method.
const char* methodWord(IoMethod method);

/// "Copy", "Write" or "Read".
const char* typeWord(const LineFact& line);
/// By what the line has in place of its paths.
TestType typeOf(const LineFact& line);

/// The rules about numbers and settings of one task.
void checkNumbers(const LineFact& line, Findings& findings);
