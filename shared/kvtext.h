#pragma once

#include "shared/kvstring16.h"
#include "shared/kvstring8.h"

#include <QString>

#include <algorithm>

/// Latin-1 text of `count` bytes.
inline QString kvToQString(const char* text, int count)
{
    return QString::fromLatin1(text, count);
}

/// All of a Latin-1 text.
template <int N>
QString kvToQString(const _kvString8_allSize<N>& text)
{
    return kvToQString(text.text, text.length);
}

/// The one way by which 16-bit text leaves the program's records: code units 0xFF80 to 0xFFFF
/// become the Latin-1 character of their low byte, because sign extension makes them of bytes.
/// Characters that have these code units themselves, halfwidth forms, can't be told from them.
template <int N>
QString kvToQString(const _kvString<N>& text)
{
    QString result(text.length, Qt::Uninitialized);
    QChar* const characters = result.data(); // result[i] would look for sharers every time
    for (int i = 0; i < text.length; ++i) {
        const ushort unit = text.text[i];
        characters[i] = QChar(unit >= 0xFF80 ? static_cast<ushort>(unit & 0xFF) : unit);
    }
    return result;
}

/// True if a text is the same in 8 bits.
inline bool kvIsLatin1(const QString& text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() <= 0xFF; });
}

/// The first N characters of a text as Latin-1; characters outside it become "?".
template <int N>
_kvString8_allSize<N> kvToString8(const QString& text)
{
    const QByteArray latin1 = text.left(N).toLatin1();
    _kvString8_allSize<N> result;
    result.add(latin1.constData(), latin1.size());
    return result;
}

/// The first N code units of a text.
template <int N>
_kvString<N> kvToString16(const QString& text)
{
    _kvString<N> result;
    result.add(text.utf16(), text.size());
    return result;
}
