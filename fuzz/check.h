#pragma once

#include <QByteArray>
#include <QDebug>
#include <QString>
#include <QtGlobal>

#include <cstddef>
#include <cstdint>

/// libFuzzer calls this with each input, and the replay test with each file of the corpus. A broken
/// promise aborts, which both count as a failure of this input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

/// Compares what the program says with what the promise says.
template <class Value>
void same(const char* promise, const Value& actual, const Value& expected)
{
    if (!(actual == expected))
        qFatal("%s", promise);
}

/// Texts are shown, with escapes for what can't be seen.
inline void same(const char* promise, const QString& actual, const QString& expected)
{
    if (actual == expected)
        return;
    QString shown;
    QDebug(&shown) << "\n  is" << actual << "\n  not" << expected;
    qFatal("%s%s", promise, qPrintable(shown));
}

inline QByteArray bytesOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), static_cast<int>(size)};
}

/// Zeros are characters like others, unlike in QString's own conversion of a byte array.
inline QString latin1(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.constData(), bytes.size());
}

/// Cuts off and returns the text before the first line feed, or everything.
inline QByteArray takeLine(QByteArray& rest)
{
    const int end = rest.indexOf('\n');
    QByteArray line = rest.left(end);
    rest = end < 0 ? QByteArray() : rest.mid(end + 1);
    return line;
}

} // namespace fuzz
