#include "model/tasklinewriter.h"

namespace {

/// Padded to six characters, so that the second field starts in the same column for all.
const char* methodField(IoMethod method)
{
    switch (method) {
    case IoMethod::Posix:
        return "Posix ;";
    case IoMethod::System:
        return "System;";
    case IoMethod::Stream:
        return "Stream;";
    case IoMethod::AnsiC:
        return "AnsiC ;";
    case IoMethod::WinApi:
        return "WinApi;";
    }
    return ";";
}

void addWideNumber(_kvString<1000>& line, long long number, unsigned char width)
{
    _kvString8_allSize<20> digits;
    digits.addNr(number, width);
    line.add(digits.text, digits.length);
}

void addNumber(_kvString<1000>& line, std::int32_t number)
{
    _kvString8_allSize<15> digits;
    digits.addNr(number);
    line.add(digits.text, digits.length);
}

void addPath(_kvString<1000>& line, const _kvString8_allSize<500>& path)
{
    line.addSignExtended(path.text, kvdetail::textLength(path.text));
    line.add(";  ");
}

void addPathOrMemory(_kvString<1000>& line, const _kvString8_allSize<500>& path)
{
    if (path.isEmpty())
        line.add("MEMORY;  ");
    else
        addPath(line, path);
}

} // namespace

_kvString<1000>& writeTaskLine(_kvString<1000>& line, TestTask& task)
{
    task.normalise();
    const _fileGLobal& io = task.io;

    line.clear();
    line.add(methodField(task.method));
    line.add(io.flush ? "flush  ;" : "NOflush;");
    line.add(io.preallocate ? "prealloc  ; " : "NOprealloc; ");
    addWideNumber(line, io.chunkWait, 2);
    line.add(";");
    addWideNumber(line, kibFromBytes(io.chunkSize), 5);
    // A blank where the number has no sign: the field is two characters wide.
    line.add(io.sysBufferMode >= 0 ? ";  " : "; ");
    addNumber(line, io.sysBufferMode);
    line.add("; ");
    addNumber(line, kibFromBytes(io.fileSize));
    line.add(";");
    addNumber(line, task.iterations);
    line.add(";");
    addNumber(line, io.cacheMode);
    line.add(";  ");
    addPathOrMemory(line, task.sourcePath);
    addPathOrMemory(line, task.destPath);
    addPath(line, task.logPath);
    addPath(line, task.csvPath);
    line.add(task.writeDone ? "true;" : "false;");
    return line;
}
