#include "check/taskfields.h"

TestType typeOf(const LineFact& line)
{
    if (line.toMemory)
        return TestType::Read;
    return line.fromMemory ? TestType::Write : TestType::Copy;
}

const char* typeWord(const LineFact& line)
{
    return testTypeName(typeOf(line));
}
