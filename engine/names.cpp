#include "engine/names.h"

#include "check/text.h"

#include <QFile>

#include <algorithm>
#include <fmt/format.h>

namespace {

bool isControl(char c)
{
    return static_cast<unsigned char>(c) < ' ' || c == '\x7F';
}

bool isBlank(char c)
{
    return c == ' ' || isControl(c);
}

/// The text that fio replaces or cuts in a value, for people; null if it takes the value as it is.
const char* replacedWord(const QByteArray& name)
{
    constexpr const char* words[] = {"${", "$ncpus", "$pagesize", "$mb_memory"};
    const auto found = std::find_if(std::begin(words), std::end(words),
                                    [&](const char* word) { return name.contains(word); });
    return found == std::end(words) ? nullptr : *found;
}

/// The same for a name that is one of this system.
std::string valueProblem(const QByteArray& name)
{
    for (const char comment : {'#', ';'}) {
        if (name.contains(comment))
            return fmt::format("holds \"{}\", which begins a comment in a job file of fio",
                               comment);
    }
    if (std::any_of(name.begin(), name.end(), isControl))
        return "holds a control character, which a job file of fio can't hold";
    if (const char* const word = replacedWord(name))
        return fmt::format("holds \"{}\", which fio replaces", word);
    if (name.endsWith(' '))
        return "ends with a blank, which fio cuts";
    return {};
}

} // namespace

std::string nameProblem(const QString& path)
{
    if (path.startsWith(QLatin1String("//")))
        return "names a network share, which fio would take as a folder of this system";
    if (!path.startsWith('/'))
        return "is not an absolute path of this system";
    if (path.endsWith('/'))
        return "names a folder";
    const QByteArray name = encodedName(path);
    if (QFile::decodeName(name) != path)
        return "has letters that the encoding of file names can't hold";
    return valueProblem(name);
}

bool fitsLog(const QString& path)
{
    const QByteArray name = encodedName(path);
    return name.size() <= maxLogName && std::none_of(name.begin(), name.end(), isBlank);
}

QByteArray encodedName(const QString& path)
{
    return QFile::encodeName(path);
}

QByteArray fileNameValue(const QString& path)
{
    return encodedName(path).replace(':', "\\:");
}

QByteArray shellWord(const QByteArray& text)
{
    QByteArray word = text;
    return '\'' + word.replace('\'', "'\\''") + '\'';
}

QByteArray plainWord(const QString& text)
{
    QByteArray word;
    const QByteArray lower = text.toLower().toLatin1();
    for (const char c : lower)
        word += (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ? c : '-';
    return word;
}
