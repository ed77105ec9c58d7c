#pragma once

#include "shared/kvfixedtext.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <type_traits>

/// Number of 16-bit characters before the terminating zero; none for a null pointer.
int kvCharLen(const unsigned short* text);

/// A text of at most N 16-bit characters, held in place like _kvString8_allSize and cut in the same
/// way. 8-bit texts widen as Latin-1, without sign, except in addSignExtended().
template <int N>
class _kvString
{
    static_assert(N > 0 && N <= std::numeric_limits<short>::max());

public:
    short length = 0;                ///< characters in use, 0 to N
    unsigned short reserved = 0;     ///< zeroed together with the length
    unsigned short text[N + 1] = {}; ///< the characters; text[length] is zero

    constexpr _kvString() = default;

    /// Copies a zero-terminated Latin-1 text, cut at N; a null pointer gives the empty text.
    constexpr explicit _kvString(const char* source) { add(source); }

    /// Empties the text.
    constexpr void clear()
    {
        kvdetail::terminateAt(*this, 0);
        reserved = 0;
    }

    /// Sets the length in characters, brought into 0 to N, and terminates the text there. Growing
    /// takes in what the array holds: callers that wrote characters directly use it so.
    constexpr void setLength(const short& newLength) { kvdetail::setLength(*this, newLength); }

    /// True if the text holds no character.
    constexpr bool isEmpty() const { return length == 0; }
    /// True if it holds any.
    constexpr bool hasData() const { return length != 0; }

    /// Same length and same characters.
    constexpr bool isEqual(const _kvString& other) const
    {
        return kvdetail::isEqual(*this, other.text, other.length);
    }
    /// True if the text is `other`, a Latin-1 text.
    constexpr bool isEqual(const char* other) const
    {
        return kvdetail::isEqual(*this, other, kvdetail::textLength(other));
    }

    /// True if the text begins with `prefix`, a Latin-1 text; every text begins with the empty one.
    constexpr bool startsWith(const char* prefix) const
    {
        return kvdetail::startsWith(*this, prefix);
    }
    /// True if `ch` is the first character.
    constexpr bool startsWith(const unsigned short& ch) const
    {
        return length > 0 && text[0] == ch;
    }
    /// The same for its end.
    constexpr bool endsWith(const char* suffix) const { return kvdetail::endsWith(*this, suffix); }

    /// True if `what`, a Latin-1 text, stands anywhere in it. The empty text is never found.
    constexpr bool contains(const char* what) const { return kvdetail::contains(*this, what); }

    /// Appends one character.
    constexpr void addChar(unsigned short c) { kvdetail::append(*this, &c, 1); }
    /// Appends `count` characters; 8-bit ones are Latin-1 and widen without sign.
    template <class Source>
    constexpr void add(const Source* source, int count)
    {
        kvdetail::append(*this, source, count);
    }
    /// Appends a zero-terminated Latin-1 text; a null pointer counts as the empty text.
    constexpr void add(const char* source) { add(source, kvdetail::textLength(source)); }
    /// Appends another text of the same kind.
    constexpr void add(const _kvString& other) { add(other.text, other.length); }

    /// Replaces every occurrence of `what`, found from the left and not overlapping; what is put in
    /// is not searched again. An empty `what` changes nothing.
    constexpr void replace(const _kvString& what, const _kvString& with)
    {
        kvdetail::replace(*this, what, with);
    }

    /// Removes every occurrence of `what`.
    constexpr void remove(const _kvString& what) { replace(what, _kvString()); }

    /// Appends `count` bytes as signed numbers: bytes from 128 on become 0xFF80 to 0xFFFF, and
    /// their low byte gives the byte back.
    constexpr void addSignExtended(const char* source, int count)
    {
        const int fitting = kvdetail::fittingOf(*this, count);
        unsigned short* const end = text + length;
        for (int i = 0; i < fitting; ++i) // NOLINTNEXTLINE(bugprone-signed-char-misuse)
            end[i] = static_cast<unsigned short>(static_cast<signed char>(source[i]));
        kvdetail::terminateAt(*this, length + fitting);
    }

    /// Position of the first `ch` at or after `from`, or -1; a negative `from` counts as 0.
    constexpr int indexOf(const unsigned short& ch, int from) const
    {
        return kvdetail::findText(text, length, &ch, 1, std::max(from, 0));
    }

    /// Removes up to `count` characters at `pos`; a position outside the text changes nothing.
    constexpr void remove(const int& pos, const int& count)
    {
        if (pos < 0 || pos >= length || count <= 0)
            return;
        const int removed = count < length - pos ? count : length - pos;
        for (int i = pos; i + removed < length; ++i)
            text[i] = text[i + removed];
        kvdetail::terminateAt(*this, length - removed);
    }

    /// Removes white space (space, tab, CR, LF, VT, FF) at both ends: lines of files that were
    /// written on Windows end in CR.
    constexpr void trim()
    {
        int end = length;
        while (end > 0 && kvdetail::isWhiteSpace(text[end - 1]))
            --end;
        kvdetail::terminateAt(*this, end);
        int start = 0;
        while (kvdetail::isWhiteSpace(text[start])) // the end is none
            ++start;
        remove(0, start);
    }

    /// Cuts off and returns the text before the first `ch`, which goes as well. Without a `ch` the
    /// whole text is returned and the string is left empty. The flag has no effect; every caller
    /// passes false.
    constexpr _kvString<N> leftNCut(const unsigned short& ch, const bool& /*flag*/)
    {
        const int found = indexOf(ch, 0);
        const int end = found < 0 ? length : found;
        _kvString<N> left;
        left.add(text, end);
        remove(0, end + 1);
        return left;
    }
};

static_assert(std::is_trivially_copyable_v<_kvString<1000>>);
static_assert(std::is_standard_layout_v<_kvString<1000>>);
static_assert(offsetof(_kvString<1000>, length) == 0);
static_assert(offsetof(_kvString<1000>, reserved) == 2 && offsetof(_kvString<1000>, text) == 4);
static_assert(sizeof(_kvString<500>) == 1006 && sizeof(_kvString<1000>) == 2006);
