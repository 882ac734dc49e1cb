// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/numbers/long/limbs.h"

#include <bit>
#if !defined(__SIZEOF_INT128__)
#include <boost/multiprecision/cpp_int.hpp>
#endif

/// The form in which long numbers are worked on: words in base 10^18, least significant first. A product of
/// two words fits 128 bits with room for 256 such products before any of them must be reduced.
namespace core::limbs {

using Word = std::uint64_t;
#if defined(__SIZEOF_INT128__)
__extension__ typedef unsigned __int128 DoubleWord;
#else
using DoubleWord = boost::multiprecision::uint128_t;
#endif

inline constexpr Word kWordBase = 1'000'000'000'000'000'000;

[[nodiscard]] inline Word low_half(DoubleWord x) noexcept {
    return static_cast<Word>(x);
}

[[nodiscard]] inline Word high_half(DoubleWord x) noexcept {
    return static_cast<Word>(x >> 64);
}

[[nodiscard]] inline DoubleWord product(Word a, Word b) noexcept {
    return DoubleWord{a} * b;
}

/// All bits where `condition` holds, none elsewhere. What depends on random digits is masked rather than
/// branched upon: no processor foresees a carry.
[[nodiscard]] inline Word mask(bool condition) noexcept {
    return Word{0} - static_cast<Word>(condition);
}

struct WordQuotient {
    Word quotient;
    Word remainder;
};

/// x / 10^18 for x < 2^64 × 10^18, by multiplication with the reciprocal v = ⌊(2^128 − 1) / d⌋ − 2^64 of
/// the normalised divisor d = 2^4 × 10^18 (Möller and Granlund 2011, algorithm 4). The algorithm's
/// second correction could occur only if 2^128 − (2^64 + v) d were at least 2^65 − 2^128 / d, that is
/// 0.84 × 2^64; here it is 0.40 × 2^64.
[[nodiscard]] inline WordQuotient split_word(DoubleWord x) noexcept {
    constexpr Word d = kWordBase << 4;
    constexpr Word v = 0x2725DD1D243ABA0E;
    x <<= 4;
    const DoubleWord q = product(v, high_half(x)) + x;
    Word quotient = high_half(q) + 1;
    Word remainder = low_half(x) - quotient * d;
    const Word too_large = mask(remainder > low_half(q));
    quotient += too_large;
    remainder += too_large & d;
    return {quotient, remainder >> 4};
}

/// Reduces a column sum of any size: returns the digit and leaves the carry in `sum`.
[[nodiscard]] inline Word reduce_column(DoubleWord& sum) noexcept {
    const Word above = high_half(sum) >= kWordBase ? high_half(sum) / kWordBase : 0; // of short columns never
    const auto [quotient, remainder] = split_word(sum - (product(above, kWordBase) << 64));
    sum = (DoubleWord{above} << 64) + quotient;
    return remainder;
}

/// Words needed for `limbs` limbs.
[[nodiscard]] constexpr std::size_t word_count(std::size_t limbs) noexcept {
    return (limbs + 1) / 2;
}

/// out = a, out.size() >= word_count(a.size()); the rest becomes zero.
void pack(std::span<Word> out, std::span<const Limb> a) noexcept;
/// out = a modulo 10^(9 × out.size()).
void unpack(std::span<Limb> out, std::span<const Word> a) noexcept;

/// out += a for a.size() <= out.size(); returns the carry out of the top.
Word add_to(std::span<Word> out, std::span<const Word> a) noexcept;
/// out -= a for a.size() <= out.size(); returns the borrow from beyond the top.
Word subtract_from(std::span<Word> out, std::span<const Word> a) noexcept;
/// −1, 0 or 1 for two numbers of equal size.
[[nodiscard]] int compare(std::span<const Word> a, std::span<const Word> b) noexcept;

} // namespace core::limbs
