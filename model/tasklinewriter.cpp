#include "model/tasklinewriter.h"

#include "model/limits.h"
#include "model/methods.h"

#include <QtGlobal>

#include <algorithm>
#include <limits>

namespace {

/// All methods are padded to it, so that the second field starts in the same column.
constexpr int methodWidth = 6;

constexpr bool methodsFit()
{
    for (const MethodInfo& method : ioMethods) {
        if (kvdetail::textLength(method.name) > methodWidth)
            return false;
    }
    return true;
}
static_assert(methodsFit());

// How long a line can get: the longest text of each piece, added up.
constexpr int maxNumberText = std::numeric_limits<std::int32_t>::digits10 + 2; // one more, a sign
constexpr int maxKeywordsText =
    methodWidth + kvdetail::textLength(";") + kvdetail::textLength("NOflush;") +
    kvdetail::textLength("NOprealloc; ") + kvdetail::textLength("false;");
constexpr int maxNumbersText = 6 * maxNumberText + kvdetail::textLength(";"
                                                                        ";  "
                                                                        "; "
                                                                        ";"
                                                                        ";"
                                                                        ";  ");
constexpr int maxPathsText = 4 * (maxPath + kvdetail::textLength(";  "));

/// A line in 8 bits before it is cut. Nothing is checked when a piece is added, because the
/// capacity suffices for the longest line that a record can give.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): clearing it would cost more than the line
class UncutLine
{
public:
    void add(const char* text) { add(text, kvdetail::textLength(text)); }
    void add(const char* text, int count)
    {
        Q_ASSERT(m_length + count <= static_cast<int>(sizeof m_text));
        std::copy_n(text, count, m_text + m_length);
        m_length += count;
    }

    void addNumber(int number)
    {
        _kvString8_allSize<15> digits;
        digits.addNr(number);
        add(digits.text, digits.length);
    }

    /// Padded with blanks on the left.
    void addNumber(long long number, unsigned char width)
    {
        _kvString8_allSize<20> digits;
        digits.addNr(number, width);
        add(digits.text, digits.length);
    }

    const char* text() const { return m_text; }
    int length() const { return m_length; }

private:
    char m_text[maxKeywordsText + maxNumbersText + maxPathsText]; // only what was added is read
    int m_length = 0;
};

void addPath(UncutLine& line, const _kvString8_allSize<maxPath>& path)
{
    line.add(path.text);
    line.add(";  ");
}

void addPathOrMemory(UncutLine& line, const _kvString8_allSize<maxPath>& path)
{
    if (path.isEmpty())
        line.add("MEMORY;  ");
    else
        addPath(line, path);
}

void addMethod(UncutLine& line, IoMethod method)
{
    if (const MethodInfo* const info = methodInfo(method)) {
        const int length = kvdetail::textLength(info->name);
        line.add(info->name, length);
        line.add("      ", std::max(methodWidth - length, 0));
    }
    line.add(";");
}

void addSettings(UncutLine& line, const TestTask& task)
{
    const _fileGLobal& io = task.io;
    addMethod(line, task.method);
    line.add(io.flush ? "flush  ;" : "NOflush;");
    line.add(io.preallocate ? "prealloc  ; " : "NOprealloc; ");
    line.addNumber(io.chunkWait, 2);
    line.add(";");
    line.addNumber(kibFromBytes(io.chunkSize), 5);
    // A blank in place of a missing sign: the field is two characters wide.
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

_kvString<maxLine>& writeTaskLine(_kvString<maxLine>& line, TestTask& task)
{
    task.normalise();
    return writePreparedTaskLine(line, task);
}

_kvString<maxLine>& writePreparedTaskLine(_kvString<maxLine>& line, const TestTask& task)
{
    UncutLine uncut;
    addSettings(uncut, task);
    addPathOrMemory(uncut, task.sourcePath);
    addPathOrMemory(uncut, task.destPath);
    addPath(uncut, task.logPath);
    addPath(uncut, task.csvPath);
    uncut.add(task.writeDone ? "true;" : "false;");

    // Widened once, at the end: all but the paths is ASCII, which has no sign.
    line.clear();
    line.addSignExtended(uncut.text(), uncut.length());
    return line;
}
