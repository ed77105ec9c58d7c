#pragma once

#include "shared/kvexport.h"
#include "shared/kvfixedtext.h"

#include <cstddef>
#include <type_traits>

/// Number of 16-bit characters before the terminating zero.
constexpr int kvCharLen(const unsigned short* text)
{
    return kvdetail::textLength(text);
}

/// A text of at most N 16-bit characters, held in place like _kvString8_allSize. 8-bit texts widen
/// as Latin-1, without sign, except in addSignExtended().
template <int N>
class _kvString : public kvFixedText<_kvString<N>, unsigned short, N>
{
    static_assert(N == 500 || N == 1000, "a capacity that the library does not provide");
    using Base = kvFixedText<_kvString<N>, unsigned short, N>;

public:
    short length = 0;                ///< characters in use, 0 to N
    unsigned short reserved = 0;     ///< always zero
    unsigned short text[N + 1] = {}; ///< the characters; text[length] is zero

    using Base::remove;
    using Base::startsWith;

    constexpr _kvString() = default;

    /// Copies a zero-terminated Latin-1 text, cut at N; a null pointer gives the empty text.
    constexpr explicit _kvString(const char* source) { this->add(source); }

    /// Appends `count` bytes as signed numbers: bytes from 128 on become 0xFF80 to 0xFFFF, and
    /// their low byte gives the byte back.
    constexpr void addSignExtended(const char* source, int count)
    {
        const int fitting = this->fittingOf(count);
        unsigned short* const end = text + length;
        for (int i = 0; i < fitting; ++i) // NOLINTNEXTLINE(bugprone-signed-char-misuse)
            end[i] = static_cast<unsigned short>(static_cast<signed char>(source[i]));
        this->terminateAt(length + fitting);
    }

    /// True if `ch` is the first character.
    constexpr bool startsWith(const unsigned short& ch) const
    {
        return length > 0 && text[0] == ch;
    }

    /// Position of the first `ch` at or after `from`, or -1; a negative `from` counts as 0.
    constexpr int indexOf(const unsigned short& ch, int from) const
    {
        return kvdetail::findText(text, length, &ch, 1, from < 0 ? 0 : from);
    }

    /// Removes up to `count` characters at `pos`; a position outside the text changes nothing.
    constexpr void remove(const int& pos, const int& count)
    {
        if (pos < 0 || pos >= length || count <= 0)
            return;
        const int removed = count < length - pos ? count : length - pos;
        for (int i = pos; i + removed < length; ++i)
            text[i] = text[i + removed];
        this->terminateAt(length - removed);
    }

    /// Removes white space (space, tab, CR, LF, VT, FF) at both ends: lines of files that were
    /// written on Windows end in CR.
    constexpr void trim()
    {
        int end = length;
        while (end > 0 && kvdetail::isWhiteSpace(text[end - 1]))
            --end;
        this->terminateAt(end);
        int start = 0;
        while (start < end && kvdetail::isWhiteSpace(text[start]))
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

// A parenthesis around any of the arguments would not compile.
// NOLINTBEGIN(bugprone-macro-parentheses)

/// One instance of each capacity, in the library; every other user of the header links to it.
#define KV_STRING16_INSTANCE(prefix, visibility, N)                                                \
    prefix template class visibility kvFixedText<_kvString<N>, unsigned short, N>;                 \
    prefix template class visibility _kvString<N>;

/// The instances of all capacities.
#define KV_STRING16_INSTANCES(prefix, visibility)                                                  \
    KV_STRING16_INSTANCE(prefix, visibility, 500)                                                  \
    KV_STRING16_INSTANCE(prefix, visibility, 1000)

// NOLINTEND(bugprone-macro-parentheses)

KV_STRING16_INSTANCES(extern, KVSHARED_EXPORT)

static_assert(std::is_trivially_copyable_v<_kvString<1000>>);
static_assert(std::is_standard_layout_v<_kvString<1000>>);
static_assert(offsetof(_kvString<1000>, length) == 0);
static_assert(offsetof(_kvString<1000>, reserved) == 2 && offsetof(_kvString<1000>, text) == 4);
static_assert(sizeof(_kvString<500>) == 1006 && sizeof(_kvString<1000>) == 2006);
