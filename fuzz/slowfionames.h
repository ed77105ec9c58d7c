#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QList>

// A second reading of what fio and a shell make of the texts that stand for names of files, one
// character after the other. fio's rules are those that its 3.33 was seen to follow.

namespace slow {

inline bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// The value of a line of a job file: comments and blanks at the ends are cut, and words that begin
/// with "$" are other words.
inline QByteArray jobFileValue(const QByteArray& line)
{
    QByteArray value;
    for (const char c : line.mid(line.indexOf('=') + 1)) {
        if (c == '#' || c == ';' || c == '\n' || c == '\0')
            break;
        value += c;
    }
    while (!value.isEmpty() && isBlank(value[value.size() - 1]))
        value.chop(1);
    while (!value.isEmpty() && isBlank(value[0]))
        value.remove(0, 1);
    for (const char* word : {"$pagesize", "$mb_memory", "$ncpus", "${"})
        value.replace(word, "(replaced)");
    return value;
}

/// The files that a value of `filename=` names: a ":" separates them, unless a "\" stands before
/// it.
inline QByteArrayList fileNames(const QByteArray& value)
{
    QByteArrayList names = {{}};
    for (const char c : value) {
        QByteArray& name = names.last();
        if (c == ':' && name.endsWith('\\'))
            name[name.size() - 1] = ':';
        else if (c == ':')
            names += QByteArray();
        else
            name += c;
    }
    return names;
}

/// The words of a command that has no other quotes than single ones, and no substitutions; nothing
/// if a character outside of quotes means something.
inline QByteArrayList shellWords(const QByteArray& command)
{
    QByteArrayList words;
    bool isQuoted = false;
    bool isWord = false;
    for (int i = 0; i < command.size(); ++i) {
        const char c = command[i];
        if (!isQuoted && isBlank(c)) {
            isWord = false;
            continue;
        }
        if (!isWord)
            words += QByteArray();
        isWord = true;
        if (c == '\'')
            isQuoted = !isQuoted;
        else if (!isQuoted && c == '\\' && i + 1 < command.size())
            words.last() += command[++i];
        else if (!isQuoted && QByteArray("\"$`|&;<>()*?[]#~!{}").contains(c))
            return {};
        else
            words.last() += c;
    }
    return isQuoted ? QByteArrayList() : words;
}

/// The first word of a line of a log, which fio reads up to a blank.
inline QByteArray logName(const QByteArray& line)
{
    QByteArray name;
    for (const char c : line) {
        if (isBlank(c) || name.size() >= 255)
            break;
        name += c;
    }
    return name;
}

} // namespace slow
