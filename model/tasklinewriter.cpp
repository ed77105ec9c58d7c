#include "model/tasklinewriter.h"

#include <algorithm>
#include <charconv>

namespace {

/// A line in 8 bits, uncut: there is room for four whole paths and everything between them.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): clearing it would cost more than the line
class Bytes
{
public:
    void add(const char* text) { add(text, kvdetail::textLength(text)); }
    void add(const char* text, int count)
    {
        std::copy_n(text, count, m_text + m_length);
        m_length += count;
    }

    /// The decimal text, padded with blanks on the left.
    void addNumber(std::int32_t number, int width = 0)
    {
        char digits[16];
        const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        const auto count = static_cast<int>(end - digits);
        for (int padding = width - count; padding > 0; --padding)
            add(" ");
        add(digits, count);
    }

    const char* text() const { return m_text; }
    int length() const { return m_length; }

private:
    char m_text[4 * 500 + 200]; // not cleared: only what was added is read
    int m_length = 0;
};

void addPath(Bytes& line, const _kvString8_allSize<500>& path)
{
    line.add(path.text);
    line.add(";  ");
}

void addPathOrMemory(Bytes& line, const _kvString8_allSize<500>& path)
{
    if (path.isEmpty())
        line.add("MEMORY;  ");
    else
        addPath(line, path);
}

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

void addSettings(Bytes& line, const TestTask& task)
{
    const _fileGLobal& io = task.io;
    line.add(methodField(task.method));
    line.add(io.flush ? "flush  ;" : "NOflush;");
    line.add(io.preallocate ? "prealloc  ; " : "NOprealloc; ");
    line.addNumber(io.chunkWait, 2);
    line.add(";");
    line.addNumber(kibFromBytes(io.chunkSize), 5);
    // A blank where the number has no sign: the field is two characters wide.
    line.add(io.sysBufferMode >= 0 ? ";  " : "; ");
    line.addNumber(io.sysBufferMode);
    line.add("; ");
    line.addNumber(kibFromBytes(io.fileSize));
    line.add(";");
    line.addNumber(task.iterations);
    line.add(";");
    line.addNumber(io.cacheMode);
    line.add(";  ");
}

} // namespace

_kvString<1000>& writeTaskLine(_kvString<1000>& line, TestTask& task)
{
    task.normalise();
    Bytes bytes;
    addSettings(bytes, task);
    addPathOrMemory(bytes, task.sourcePath);
    addPathOrMemory(bytes, task.destPath);
    addPath(bytes, task.logPath);
    addPath(bytes, task.csvPath);
    bytes.add(task.writeDone ? "true;" : "false;");

    // Widened once, at the end: all but the paths is ASCII, which has no sign.
    line.clear();
    line.addSignExtended(bytes.text(), bytes.length());
    return line;
}
