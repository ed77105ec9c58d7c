#include "shared/kvpath.h"

#include <utility>

namespace {

bool isAsciiLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Builds a resolved path segment by segment; Text is one of the fixed-capacity strings.
template <class Text>
class PathResolver
{
public:
    explicit PathResolver(const Text& path)
        : m_path(path)
    {}

    Text resolve()
    {
        if (m_path.isEmpty())
            return m_path;
        int position = addRoot();
        while (position < m_path.length) {
            const int end = segmentEnd(position);
            addSegment(position, end - position);
            position = end + 1;
        }
        if (m_result.isEmpty())
            m_result.addChar('.');
        if (m_path.text[m_path.length - 1] == '/' && m_result.length > m_root)
            m_result.addChar('/');
        return m_result;
    }

private:
    /// Exactly two separators name a network share; any other number is the plain root.
    int addRoot()
    {
        int slashes = 0;
        while (slashes < m_path.length && m_path.text[slashes] == '/')
            ++slashes;
        m_root = slashes == 2 ? 2 : (slashes > 0 ? 1 : 0);
        m_result.add(m_path.text, m_root);
        return slashes;
    }

    int segmentEnd(int start) const
    {
        int end = start;
        while (end < m_path.length && m_path.text[end] != '/')
            ++end;
        return end;
    }

    void addSegment(int start, int length)
    {
        const auto* segment = m_path.text + start;
        if (length == 0 || (length == 1 && segment[0] == '.'))
            return;
        if (isDotDot(segment, length)) {
            if (removeLastSegment() || (m_root > 0 && m_result.length == m_root))
                return;
        }
        if (m_result.length > m_root)
            m_result.addChar('/');
        m_result.add(segment, length);
    }

    /// False if no segment is left, or if ".." must not cancel the last one.
    bool removeLastSegment()
    {
        int start = m_result.length;
        while (start > m_root && m_result.text[start - 1] != '/')
            --start;
        const auto* segment = m_result.text + start;
        const int length = m_result.length - start;
        if (length == 0 || isDotDot(segment, length) || holdsBracketedWord(segment, length))
            return false;
        m_result.setLength(static_cast<short>(start > m_root ? start - 1 : start));
        return true;
    }

    template <class Char>
    static bool isDotDot(const Char* segment, int length)
    {
        return length == 2 && segment[0] == '.' && segment[1] == '.';
    }

    /// A variable may stand for several folders, and its value may end within one.
    template <class Char>
    static bool holdsBracketedWord(const Char* segment, int length)
    {
        const int opening = kvdetail::findUnit(segment, length, '[', 0);
        return kvdetail::findUnit(segment, length, ']', opening) < length;
    }

    const Text& m_path;
    Text m_result;
    int m_root = 0;
};

} // namespace

bool isRelativePath(const _kvString8_allSize<500>& path)
{
    const bool hasDrive = path.length >= 2 && isAsciiLetter(path.text[0]) && path.text[1] == ':';
    return !(path.startsWith("/") || path.startsWith("\\") || hasDrive ||
             path.startsWith("[cfgPath]") || path.startsWith("[temp]"));
}

_kvString8_allSize<500> kvConvertPDToOS(const _kvString8_allSize<500>& path)
{
    return path;
}

QString kvConvertPDToOS(const QString& path)
{
    return kvConvertPDToOS(path, _kvOS::Linux);
}

QString kvConvertPDToOS(const QString& path, _kvOS os)
{
    return os == _kvOS::Windows ? QString(path).replace(QLatin1Char('/'), QLatin1Char('\\')) : path;
}

_kvString8_allSize<500> kvGetDirName(_kvString8_allSize<500> path)
{
    while (path.length > 0 && path.text[path.length - 1] != '/')
        path.setLength(static_cast<short>(path.length - 1));
    return path;
}

QString kvGetDirName(QString path, unsigned short separator)
{
    path.truncate(path.lastIndexOf(QChar(separator)) + 1);
    return path;
}

QString kvGetDirNameAutoPD(QString path)
{
    const auto separator = path.contains(QLatin1Char('/')) ? u'/' : u'\\';
    return kvGetDirName(std::move(path), separator);
}

QString kvGetFileNameBase(QString path, unsigned short separator)
{
    path.remove(0, path.lastIndexOf(QChar(separator)) + 1);
    const int end = path.lastIndexOf(QLatin1Char('.'));
    path.truncate(end < 0 ? path.size() : end);
    return path;
}

bool kvIsDigit(const unsigned short& ch)
{
    return ch >= '0' && ch <= '9';
}

_kvString8_allSize<500> kvPathResolve(_kvString8_allSize<500> path)
{
    return PathResolver<_kvString8_allSize<500>>(path).resolve();
}

_kvString<500> kvPathResolve(_kvString<500> path)
{
    return PathResolver<_kvString<500>>(path).resolve();
}
