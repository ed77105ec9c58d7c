#pragma once

#include <string>

/// Helpers on plain character ranges; a char counts as its Latin-1 code unit, never as a sign.
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

} // namespace kvdetail

/// The operations that the 8-bit and the 16-bit fixed-capacity strings share. It has no members of
/// its own, so that `Text` keeps its layout: `length` first, then the contiguous characters.
///
/// Capacity is N characters. Whatever would pass it is dropped silently, and `text[length]` is
/// always zero. Comparisons are exact. No operation fails or allocates.
template <class Text, class Char, int N>
class kvFixedText
{
public:
    /// Empties the text.
    constexpr void clear() { terminateAt(0); }

    /// Sets the length in characters, brought into 0 to N, and terminates the text there. Growing
    /// takes in what the array holds: callers that wrote characters directly use it so.
    constexpr void setLength(const short& newLength)
    {
        const int notNegative = newLength < 0 ? 0 : newLength;
        terminateAt(notNegative > N ? N : notNegative);
    }

    /// True if the text holds no character.
    constexpr bool isEmpty() const { return self().length == 0; }
    /// True if it holds any.
    constexpr bool hasData() const { return self().length != 0; }

    /// Same length and same characters.
    constexpr bool isEqual(const Text& other) const
    {
        return self().length == other.length &&
               kvdetail::sameText(self().text, other.text, self().length);
    }

    /// True if the text is `other`; 8-bit characters are Latin-1.
    constexpr bool isEqual(const char* other) const
    {
        return self().length == kvdetail::textLength(other) &&
               kvdetail::sameText(self().text, other, self().length);
    }

    /// True if the text begins with `prefix`, a Latin-1 text; every text begins with the empty one.
    constexpr bool startsWith(const char* prefix) const
    {
        const int prefixLength = kvdetail::textLength(prefix);
        return prefixLength <= self().length &&
               kvdetail::sameText(self().text, prefix, prefixLength);
    }

    /// The same for its end.
    constexpr bool endsWith(const char* suffix) const
    {
        const int start = self().length - kvdetail::textLength(suffix);
        return start >= 0 && kvdetail::sameText(self().text + start, suffix, self().length - start);
    }

    /// True if `what`, a Latin-1 text, stands anywhere in it. The empty text is never found.
    constexpr bool contains(const char* what) const
    {
        return kvdetail::findText(self().text, self().length, what, kvdetail::textLength(what),
                                  0) >= 0;
    }

    /// Appends one character.
    constexpr void addChar(Char c)
    {
        if (self().length < N) {
            self().text[self().length] = c;
            terminateAt(self().length + 1);
        }
    }

    /// Appends `count` characters; 8-bit ones are Latin-1 and widen without sign.
    template <class Source>
    constexpr void add(const Source* source, int count)
    {
        const int fitting = fittingOf(count);
        Char* const end = self().text + self().length;
        for (int i = 0; i < fitting; ++i)
            end[i] = static_cast<Char>(kvdetail::codeUnit(source[i]));
        terminateAt(self().length + fitting);
    }

    /// Appends a zero-terminated Latin-1 text; a null pointer counts as the empty text.
    constexpr void add(const char* source) { add(source, kvdetail::textLength(source)); }

    /// Appends another text of the same kind.
    constexpr void add(const Text& other) { add(other.text, other.length); }

    /// Replaces every occurrence of `what`, found from the left and not overlapping; what is put in
    /// is not searched again. An empty `what` changes nothing.
    constexpr void replace(const Text& what, const Text& with)
    {
        int found = kvdetail::findText(self().text, self().length, what.text, what.length, 0);
        if (found < 0)
            return;
        Text result;
        int copied = 0;
        while (found >= 0) {
            result.add(self().text + copied, found - copied);
            result.add(with);
            copied = found + what.length;
            found = kvdetail::findText(self().text, self().length, what.text, what.length, copied);
        }
        result.add(self().text + copied, self().length - copied);
        self() = result;
    }

    /// Removes every occurrence of `what`.
    constexpr void remove(const Text& what) { replace(what, Text()); }

protected:
    /// How many of `count` further characters have room.
    constexpr int fittingOf(int count) const
    {
        const int room = N - self().length;
        return count < 0 ? 0 : (count < room ? count : room);
    }

    /// Makes `end`, from 0 to N, the length.
    constexpr void terminateAt(int end)
    {
        self().length = static_cast<short>(end);
        self().text[end] = 0;
    }

private:
    constexpr Text& self() { return static_cast<Text&>(*this); }
    constexpr const Text& self() const { return static_cast<const Text&>(*this); }
};
