#pragma once

#include "shared/kvexport.h"
#include "shared/kvfixedtext.h"

#include <cstddef>
#include <type_traits>

/// A text of at most N 8-bit characters, encoded in Latin-1, held in place: no heap memory, copied
/// byte for byte. Longer texts are cut silently; see kvFixedText for the operations.
template <int N>
class _kvString8_allSize : public kvFixedText<_kvString8_allSize<N>, char, N>
{
    static_assert(N == 15 || N == 20 || N == 50 || N == 250 || N == 500 || N == 5000,
                  "a capacity that the library does not provide");

public:
    short length = 0;      ///< characters in use, 0 to N
    char text[N + 1] = {}; ///< the characters; text[length] is zero

    constexpr _kvString8_allSize() = default;

    /// Copies a zero-terminated Latin-1 text, cut at N; a null pointer gives the empty text.
    constexpr explicit _kvString8_allSize(const char* source) { this->add(source); }

    /// Appends the decimal text of a number, "-" first when it is negative.
    constexpr void addNr(const int& number) { addNr(static_cast<long long>(number)); }
    /// The same for 64 bits.
    constexpr void addNr(const long long& number) { addNr(number, 0); }

    /// The same, padded with blanks on the left to at least `width` characters.
    constexpr void addNr(const long long& number, const unsigned char& width)
    {
        char digits[20] = {};
        int count = 0;
        // Negating as unsigned keeps the smallest number, which has no positive twin.
        auto rest = static_cast<unsigned long long>(number);
        rest = number < 0 ? 0 - rest : rest;
        do {
            digits[count++] = static_cast<char>('0' + rest % 10);
            rest /= 10;
        } while (rest != 0);
        if (number < 0)
            digits[count++] = '-';
        for (int padding = width - count; padding > 0; --padding)
            this->addChar(' ');
        while (count > 0)
            this->addChar(digits[--count]);
    }
};

// A parenthesis around any of the arguments would not compile.
// NOLINTBEGIN(bugprone-macro-parentheses)

/// One instance of each capacity, in the library; every other user of the header links to it.
#define KV_STRING8_INSTANCE(prefix, visibility, N)                                                 \
    prefix template class visibility kvFixedText<_kvString8_allSize<N>, char, N>;                  \
    prefix template class visibility _kvString8_allSize<N>;

/// The instances of all capacities.
#define KV_STRING8_INSTANCES(prefix, visibility)                                                   \
    KV_STRING8_INSTANCE(prefix, visibility, 15)                                                    \
    KV_STRING8_INSTANCE(prefix, visibility, 20)                                                    \
    KV_STRING8_INSTANCE(prefix, visibility, 50)                                                    \
    KV_STRING8_INSTANCE(prefix, visibility, 250)                                                   \
    KV_STRING8_INSTANCE(prefix, visibility, 500)                                                   \
    KV_STRING8_INSTANCE(prefix, visibility, 5000)

// NOLINTEND(bugprone-macro-parentheses)

KV_STRING8_INSTANCES(extern, KVSHARED_EXPORT)

static_assert(std::is_trivially_copyable_v<_kvString8_allSize<500>>);
static_assert(std::is_standard_layout_v<_kvString8_allSize<500>>);
static_assert(offsetof(_kvString8_allSize<500>, length) == 0);
static_assert(offsetof(_kvString8_allSize<500>, text) == sizeof(short));
static_assert(sizeof(_kvString8_allSize<15>) == 18 && sizeof(_kvString8_allSize<5000>) == 5004);
