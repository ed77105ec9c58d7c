#pragma once

#include <algorithm>
#include <iterator>
#include <string>
#include <type_traits>

/// Operations that the 8-bit and the 16-bit fixed-capacity strings share: helpers on plain
/// character ranges, and below them the operations on a `Text`, one of the two. A char counts as
/// its Latin-1 code unit, never as a sign. Nothing here fails or allocates.
namespace kvdetail {

/// A character as an unsigned number.
constexpr unsigned short codeUnit(char c)
{
    return static_cast<unsigned char>(c);
}
/// The same for what is one already.
constexpr unsigned short codeUnit(unsigned short c)
{
    return c;
}

/// Space, tab, CR, LF, VT and FF.
constexpr bool isWhiteSpace(unsigned short c)
{
    return c == ' ' || (c >= 9 && c <= 13);
}

/// Characters before the terminating zero; none for a null pointer.
template <class Char>
constexpr int textLength(const Char* text)
{
    int length = 0;
    while (text != nullptr && text[length] != 0)
        ++length;
    return length;
}
/// The same, left to the C library, which looks at many characters at once.
constexpr int textLength(const char* text)
{
    return text == nullptr ? 0 : static_cast<int>(std::char_traits<char>::length(text));
}

/// True if the first `length` characters are the same.
template <class A, class B>
constexpr bool sameText(const A* a, const B* b, int length)
{
    for (int i = 0; i < length; ++i) {
        if (codeUnit(a[i]) != codeUnit(b[i]))
            return false;
    }
    return true;
}

/// Position of the first `unit` at or after `from`, or `length`.
template <class Char>
constexpr int findUnit(const Char* text, int length, unsigned short unit, int from)
{
    while (from < length && codeUnit(text[from]) != unit)
        ++from;
    return from;
}

/// Position of the first `what` at or after `from`, or -1; an empty `what` is never found.
template <class A, class B>
constexpr int findText(const A* text, int length, const B* what, int whatLength, int from)
{
    if (whatLength == 0)
        return -1;
    const unsigned short first = codeUnit(what[0]);
    const int lastEnd = length - whatLength + 1;
    for (int i = from; i < lastEnd; ++i) {
        i = findUnit(text, lastEnd, first, i);
        if (i < lastEnd && sameText(text + i, what, whatLength))
            return i;
    }
    return -1;
}

/// Characters that a text can hold; behind them, the text has space for the terminating zero.
template <class Text>
constexpr int capacityOf(const Text& text)
{
    return static_cast<int>(std::size(text.text)) - 1;
}

/// Makes `end`, from 0 to the capacity, the length.
template <class Text>
constexpr void terminateAt(Text& text, int end)
{
    text.length = static_cast<short>(end);
    text.text[end] = 0;
}

/// Sets the length, brought into 0 to the capacity. Growing takes in what the array holds.
template <class Text>
constexpr void setLength(Text& text, int length)
{
    terminateAt(text, std::clamp(length, 0, capacityOf(text)));
}

/// The number of further characters that fit, at most `count`.
template <class Text>
constexpr int fittingOf(const Text& text, int count)
{
    return std::clamp(count, 0, capacityOf(text) - text.length);
}

/// Appends `count` characters, as far as they fit; 8-bit ones widen without sign.
template <class Text, class Char>
constexpr void append(Text& text, const Char* source, int count)
{
    using Own = std::remove_reference_t<decltype(text.text[0])>;
    const int fitting = fittingOf(text, count);
    Own* const end = text.text + text.length;
    for (int i = 0; i < fitting; ++i)
        end[i] = static_cast<Own>(codeUnit(source[i]));
    terminateAt(text, text.length + fitting);
}

/// True if the text is `other`, of `length` characters.
template <class Text, class Char>
constexpr bool isEqual(const Text& text, const Char* other, int length)
{
    return text.length == length && sameText(text.text, other, length);
}

/// True if the text begins with `prefix`; every text begins with the empty one.
template <class Text>
constexpr bool startsWith(const Text& text, const char* prefix)
{
    const int length = textLength(prefix);
    return length <= text.length && sameText(text.text, prefix, length);
}

/// The same for its end.
template <class Text>
constexpr bool endsWith(const Text& text, const char* suffix)
{
    const int start = text.length - textLength(suffix);
    return start >= 0 && sameText(text.text + start, suffix, text.length - start);
}

/// True if `what` stands anywhere in the text. The empty text is never found.
template <class Text>
constexpr bool contains(const Text& text, const char* what)
{
    return findText(text.text, text.length, what, textLength(what), 0) >= 0;
}

/// Replaces every occurrence of `what`, found from the left and not overlapping; what is put in is
/// not searched again. An empty `what` changes nothing.
template <class Text>
constexpr void replace(Text& text, const Text& what, const Text& with)
{
    int found = findText(text.text, text.length, what.text, what.length, 0);
    if (found < 0)
        return;
    Text result;
    int copied = 0;
    while (found >= 0) {
        append(result, text.text + copied, found - copied);
        append(result, with.text, with.length);
        copied = found + what.length;
        found = findText(text.text, text.length, what.text, what.length, copied);
    }
    append(result, text.text + copied, text.length - copied);
    text = result;
}

} // namespace kvdetail
