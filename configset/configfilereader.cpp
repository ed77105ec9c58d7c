#include "configset/configfilereader.h"

#include "shared/kvtext.h"

#include <QFileInfo>

#include <algorithm>
#include <cstring>

namespace {

/// The first such byte, or the end.
const char* findByte(const char* start, const char* end, char byte)
{
    const void* const found = std::memchr(start, byte, static_cast<std::size_t>(end - start));
    return found != nullptr ? static_cast<const char*>(found) : end;
}

} // namespace

ConfigLine takeConfigLine(_kvString<maxLine>& line)
{
    constexpr unsigned short commentMark = '#';
    // Before trimming: a "#" after blanks does not begin a comment.
    const bool isComment = line.startsWith(commentMark);
    if (isComment)
        line.remove(0, 1);
    line.trim();
    if (isComment)
        return ConfigLine::Comment;
    return line.isEmpty() ? ConfigLine::Blank : ConfigLine::Entry;
}

ConfigFileReader::ConfigFileReader(const _kvString8_allSize<maxPath>& path)
    : m_file(kvToQString(path))
{
    if (QFileInfo(m_file.fileName()).isFile())
        m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool ConfigFileReader::readLine(_kvString<maxLine>& line)
{
    line.clear();
    m_lineLength = 0;
    bool reachedZero = false;
    while (m_position < m_end || fillBuffer()) {
        const char* const start = m_buffer + m_position;
        const char* const bufferEnd = m_buffer + m_end;
        const char* const lineEnd = findByte(start, bufferEnd, '\n');
        if (!reachedZero) {
            const char* const textEnd = findByte(start, lineEnd, '\0');
            line.add(start, static_cast<int>(textEnd - start));
            reachedZero = textEnd != lineEnd;
        }
        m_lineLength += lineEnd - start;
        m_position = static_cast<int>(lineEnd - m_buffer);
        if (lineEnd != bufferEnd) {
            ++m_position;
            ++m_lineNumber;
            return true;
        }
    }
    m_lineNumber += m_lineLength > 0 ? 1 : 0;
    return m_lineLength > 0;
}

bool ConfigFileReader::fillBuffer()
{
    const qint64 wanted = std::min<qint64>(sizeof m_buffer, maxFileRead - m_bytesRead);
    const qint64 count = m_file.isOpen() && wanted > 0 ? m_file.read(m_buffer, wanted) : 0;
    m_hasFailed = m_hasFailed || count < 0;
    m_position = 0;
    m_end = static_cast<int>(std::max<qint64>(count, 0));
    if (m_bytesRead == 0)
        skipByteOrderMark();
    m_bytesRead += m_end;
    return m_position < m_end;
}

void ConfigFileReader::skipByteOrderMark()
{
    constexpr char mark[] = "\xEF\xBB\xBF";
    constexpr int markLength = sizeof mark - 1;
    if (m_end >= markLength && std::equal(mark, mark + markLength, m_buffer))
        m_position = markLength;
}
