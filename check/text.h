#pragma once

#include <QByteArray>
#include <QString>

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>

// Everything that dpc prints is UTF-8.

/// Any text as it is printed.
inline std::string utf8(const QString& text)
{
    return text.toStdString();
}

/// Text of a config file or a task; both are Latin-1.
inline std::string utf8(const QByteArray& latin1)
{
    return QString::fromLatin1(latin1).toStdString();
}

/// The text in Latin-1, in as much memory as it needs: of a temporary the toolkit keeps the buffer,
/// which is twice as large.
inline QByteArray toLatin1(const QString& text)
{
    return text.toLatin1();
}

/// With control characters, invisible ones, and those that change the direction of writing, as
/// "\x1B": a config file must not steer the terminal, and no text may break the line. A byte of a
/// file name that is not UTF-8 is shown in the same way.
std::string printable(const QString& text);

/// The same with another notation for the characters that are not safe to look at.
std::string safeText(const QString& text, const std::function<std::string(uint)>& escape);

/// Printable, in quotes, long texts shortened in the middle.
std::string quoted(const QString& text);
/// The same for Latin-1.
std::string quoted(const QByteArray& latin1);

/// True if a path holds a variable or another part. Paths are short: QByteArray::contains costs
/// several times as much, and every path is asked often.
inline bool holds(const QByteArray& path, std::string_view part)
{
    const std::string_view text(path.constData(), size_t(path.size()));
    return text.find(part) != std::string_view::npos;
}

/// How often a path holds a variable, for the same reason.
inline int countOf(const QByteArray& path, std::string_view variable)
{
    const std::string_view text(path.constData(), size_t(path.size()));
    int count = 0;
    for (size_t at = text.find(variable); at != std::string_view::npos;
         at = text.find(variable, at + variable.size()))
        ++count;
    return count;
}

/// How many variables a path holds at most: each begins with a bracket.
inline int maxVariables(const QByteArray& path)
{
    return int(std::count(path.cbegin(), path.cend(), '['));
}

/// True for text with letters that is UTF-8, and hardly Latin-1.
bool looksLikeUtf8(const QByteArray& text);

/// "1 task", "2 tasks".
std::string counted(long long count, const char* noun);

/// The candidate that a person most likely meant: equal but for case, or at most two letters off.
/// Null if no candidate is that close.
const char* closest(const std::string& word, const char* const* candidates, int count);

/// The same for an array.
template <int N>
const char* closest(const std::string& word, const char* const (&candidates)[N])
{
    return closest(word, candidates, N);
}

/// " (did you mean ...?)", or nothing.
std::string didYouMean(const char* candidate);
