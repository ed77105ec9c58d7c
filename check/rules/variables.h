#pragma once

#include "model/pathvariables.h"

#include <QByteArray>

#include <algorithm>
#include <iterator>

/// True for a path that begins with a variable in the notation of another program, such as
/// "%TEMP%".
bool startsWithOtherNotation(const QByteArray& path);

/// True for a variable that is replaced in a path, brackets included.
inline bool isVariable(const QByteArray& word)
{
    return std::any_of(std::begin(pathVariables), std::end(pathVariables),
                       [&](const char* variable) { return word == variable; });
}
