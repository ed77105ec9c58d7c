#pragma once

#include "shared/kvfixedtext.h"

#include <cstddef>
#include <limits>
#include <type_traits>

/// A text of at most N 8-bit characters, encoded in Latin-1, held in place: no heap memory, copied
/// byte for byte. Beyond N characters everything is dropped silently, and `text[length]` is always
/// zero. Comparisons are exact. No operation fails.
template <int N>
class _kvString8_allSize
{
    static_assert(N > 0 && N <= std::numeric_limits<short>::max());

public:
    short length = 0;      ///< characters in use, 0 to N
    char text[N + 1] = {}; ///< the characters; text[length] is zero

    constexpr _kvString8_allSize() = default;

    /// Copies a zero-terminated Latin-1 text, cut at N; a null pointer gives the empty text.
    constexpr explicit _kvString8_allSize(const char* source) { add(source); }

    /// Empties the text.
    constexpr void clear() { kvdetail::terminateAt(*this, 0); }

    /// Sets the length in characters, brought into 0 to N, and terminates the text there. Growing
    /// takes in what the array holds: callers that wrote characters directly use it so.
    constexpr void setLength(const short& newLength) { kvdetail::setLength(*this, newLength); }

    /// True if the text holds no character.
    constexpr bool isEmpty() const { return length == 0; }
    /// True if it holds any.
    constexpr bool hasData() const { return length != 0; }

    /// Same length and same characters.
    constexpr bool isEqual(const _kvString8_allSize& other) const
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
    /// The same for its end.
    constexpr bool endsWith(const char* suffix) const { return kvdetail::endsWith(*this, suffix); }

    /// True if `what`, a Latin-1 text, stands anywhere in it. The empty text is never found.
    constexpr bool contains(const char* what) const { return kvdetail::contains(*this, what); }

    /// Appends one character.
    constexpr void addChar(char c) { kvdetail::append(*this, &c, 1); }
    /// Appends `count` characters; 8-bit ones are Latin-1.
    template <class Source>
    constexpr void add(const Source* source, int count)
    {
        kvdetail::append(*this, source, count);
    }
    /// Appends a zero-terminated Latin-1 text; a null pointer counts as the empty text.
    constexpr void add(const char* source) { add(source, kvdetail::textLength(source)); }
    /// Appends another text of the same kind.
    constexpr void add(const _kvString8_allSize& other) { add(other.text, other.length); }

    /// Replaces every occurrence of `what`, found from the left and not overlapping; what is put in
    /// is not searched again. An empty `what` changes nothing.
    constexpr void replace(const _kvString8_allSize& what, const _kvString8_allSize& with)
    {
        kvdetail::replace(*this, what, with);
    }

    /// Removes every occurrence of `what`.
    constexpr void remove(const _kvString8_allSize& what) { replace(what, _kvString8_allSize()); }

    /// Appends the decimal text of a number, "-" first when it is negative.
    constexpr void addNr(const int& number) { addNr(static_cast<long long>(number)); }
    /// The same for 64 bits.
    constexpr void addNr(const long long& number) { addNr(number, 0); }

    /// The same, padded with blanks on the left to at least `width` characters.
    constexpr void addNr(const long long& number, const unsigned char& width)
    {
        // Filled from its end: a sign and the 19 digits of the smallest number fit.
        char digits[20] = {};
        int start = 20;
        // Negating as unsigned keeps the smallest number, which has no positive counterpart.
        auto rest = static_cast<unsigned long long>(number);
        rest = number < 0 ? 0 - rest : rest;
        do {
            digits[--start] = static_cast<char>('0' + rest % 10);
            rest /= 10;
        } while (rest != 0);
        if (number < 0)
            digits[--start] = '-';
        const int count = 20 - start;
        for (int padding = width - count; padding > 0; --padding)
            addChar(' ');
        add(digits + start, count);
    }
};

static_assert(std::is_trivially_copyable_v<_kvString8_allSize<500>>);
static_assert(std::is_standard_layout_v<_kvString8_allSize<500>>);
static_assert(offsetof(_kvString8_allSize<500>, length) == 0);
static_assert(offsetof(_kvString8_allSize<500>, text) == sizeof(short));
static_assert(sizeof(_kvString8_allSize<15>) == 18 && sizeof(_kvString8_allSize<5000>) == 5004);
