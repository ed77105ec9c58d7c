#include "check/taskfields.h"

const char* fieldName(int field)
{
    static constexpr const char* names[] = {
        "method",        "flush",     "pre-allocate", "chunk wait", "chunk size",
        "system buffer", "file size", "iterations",   "cache mode", "source",
        "destination",   "log file",  ".csv file",    "done file"};
    return field >= 1 && field <= taskLineFieldCount ? names[field - 1] : "text";
}

const char* methodWord(IoMethod method)
{
    for (int i = 0; i < 4; ++i) {
        if (int(method) == i)
            return methodWords[i];
    }
    return "";
}

TestType typeOf(const LineFact& line)
{
    if (line.toMemory)
        return TestType::Read;
    return line.fromMemory ? TestType::Write : TestType::Copy;
}

const char* typeWord(const LineFact& line)
{
    switch (typeOf(line)) {
    case TestType::Copy:
        return "Copy";
    case TestType::Write:
        return "Write";
    case TestType::Read:
        break;
    }
    return "Read";
}
