#pragma once

#include "shared/kvpath.h"
#include "shared/kvtext.h"

#include <QString>
#include <QStringList>

#include <limits>
#include <optional>

// A second reading of a task line: slow, obvious, and written from the rules of the format alone,
// with lists and big strings in place of the program's views and fixed ones.

struct SlowReading
{
    int method = -1;
    bool flush = false;
    bool preallocate = false;
    int chunkWait = 0;
    int chunkSize = 0;
    int sysBufferMode = 0;
    int fileSize = 0;
    int iterations = 0;
    int cacheMode = 0;
    QString source;
    QString dest;
    QString log;
    QString csv;
    bool writeDone = false;
};

namespace slowreading {

inline QString trimmed(QString text)
{
    const QString blanks = " \t\r\n\v\f";
    while (!text.isEmpty() && blanks.contains(text.front()))
        text.remove(0, 1);
    while (!text.isEmpty() && blanks.contains(text.back()))
        text.chop(1);
    return text;
}

inline std::optional<int> number(const QString& token)
{
    const QString digits = token.startsWith('-') ? token.mid(1) : token;
    for (const QChar c : digits) {
        if (c < '0' || c > '9')
            return std::nullopt;
    }
    // Saturating at 64 bits, as the C library does, then the low 32 bits.
    const bool negative = token.startsWith('-');
    const QString kept = token.left(249).mid(negative ? 1 : 0);
    quint64 value = 0;
    const quint64 limit = quint64(std::numeric_limits<qint64>::max()) + (negative ? 1 : 0);
    for (const QChar c : kept) {
        const quint64 digit = c.unicode() - '0';
        value = value > (limit - digit) / 10 ? limit : value * 10 + digit;
    }
    return static_cast<int>(static_cast<quint32>(negative ? 0 - value : value));
}

inline int shifted(int kib)
{
    return static_cast<int>(static_cast<quint32>(kib) * 1024U);
}

/// The rules that bring a record's settings into what its method can use.
inline void normalise(SlowReading& r)
{
    enum
    {
        Posix,
        System,
        Stream,
        AnsiC
    };
    const bool write = r.source.isEmpty();
    const bool read = !write && r.dest.isEmpty();
    const bool copy = !write && !read;
    r.fileSize = qMin(r.fileSize, 1073741824);
    if (r.method == System)
        r.sysBufferMode = -1;
    else
        r.sysBufferMode = qMin(r.sysBufferMode, 1);
    if ((r.method == Stream || r.method == AnsiC) && r.sysBufferMode >= 0 && r.chunkSize <= 0)
        r.sysBufferMode = -1;
    if (r.chunkSize == 0 && (r.method == System || (copy && r.method != Stream)))
        r.chunkSize = 1048576;
    if (r.method != Posix || read)
        r.preallocate = false;
    if (read && r.method != System)
        r.flush = false;
    if (r.chunkSize == 0) {
        r.flush = false;
        r.chunkWait = 0;
    }
}

/// The reading of a line that is not a marker; nothing if it is rejected.
inline std::optional<SlowReading> read(const QString& line, const QString& folder)
{
    QStringList fields = line.split(';');
    while (fields.size() < 14)
        fields += QString();
    for (QString& field : fields)
        field = trimmed(field);

    SlowReading r;
    r.method = QStringList({"Posix", "System", "Stream", "AnsiC"}).indexOf(fields[0]);
    if (r.method < 0)
        return std::nullopt;
    r.flush = QStringList({"flush", "true", "1"}).contains(fields[1]);
    r.preallocate = QStringList({"prealloc", "true", "1"}).contains(fields[2]);
    int numbers[6];
    for (int i = 0; i < 6; ++i) {
        const auto value = number(fields[3 + i]);
        if (!value)
            return std::nullopt;
        numbers[i] = *value;
    }
    r.chunkWait = numbers[0];
    r.chunkSize = shifted(numbers[1]);
    r.sysBufferMode = qMin(numbers[2], 5);
    r.fileSize = qMin(shifted(numbers[3]), 1073741824);
    r.iterations = numbers[4];
    r.cacheMode = numbers[5];

    QString* const paths[] = {&r.source, &r.dest, &r.log, &r.csv};
    for (int i = 0; i < 4; ++i) {
        QString& path = *paths[i];
        path = fields[9 + i].section(QChar(0), 0, 0).left(500);
        if (i < 2 && path == "MEMORY")
            path.clear();
        const bool mayStayEmpty = i < 2 && path.isEmpty();
        if (!mayStayEmpty && isRelativePath(kvToString8<500>(path)))
            path = (folder + path).left(500);
    }
    r.writeDone = fields[13] == "true";
    normalise(r);
    return r;
}

} // namespace slowreading
