// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/numbers/long/words.h"

#include <bit>
#include <cstring>

/// Arithmetic on two limbs at a time: a pair is one register whose low half is the lower limb.
namespace core::limbs {

using Pair = std::uint64_t;

/// 2^32 − 10^9 in each half: added to a limb, it makes the hardware carry out of the half
/// exactly when the limb carries.
inline constexpr Pair kCarryBias = (Pair{1} << 32) - kLimbBase;

[[nodiscard]] inline Pair load_pair(const Limb* limbs) noexcept {
    Pair pair = 0;
    std::memcpy(&pair, limbs, sizeof pair);
    return std::endian::native == std::endian::little ? pair : std::rotl(pair, 32);
}

inline void store_pair(Limb* limbs, Pair pair) noexcept {
    pair = std::endian::native == std::endian::little ? pair : std::rotl(pair, 32);
    std::memcpy(limbs, &pair, sizeof pair);
}

/// x + y + carry for carry 0 or 1, which becomes the carry out. As in packed decimal addition: every half is
/// biased first, and the halves that did not carry give the bias back.
[[nodiscard]] inline Pair add_pair(Pair x, Pair y, Pair& carry) noexcept {
    const Pair biased = x + (kCarryBias << 32 | kCarryBias);
    const Pair partial = biased + y;
    const Pair sum = partial + carry;
    const Pair low_carry = ((sum ^ biased ^ y) >> 32) & 1;
    carry = static_cast<Pair>(partial < biased) | static_cast<Pair>(sum < partial);
    return sum - ((low_carry - 1) & kCarryBias) - ((carry - 1) & (kCarryBias << 32));
}

/// x − y − borrow for borrow 0 or 1, which becomes the borrow from beyond. A half that
/// borrowed took 2^32 instead of 10^9.
[[nodiscard]] inline Pair subtract_pair(Pair x, Pair y, Pair& borrow) noexcept {
    const Pair partial = x - y;
    const Pair difference = partial - borrow;
    const Pair low_borrow = ((difference ^ x ^ y) >> 32) & 1;
    borrow = static_cast<Pair>(x < y) | static_cast<Pair>(partial < borrow);
    return difference - ((0 - low_borrow) & kCarryBias) - ((0 - borrow) & (kCarryBias << 32));
}

[[nodiscard]] inline Word word_of(Pair pair) noexcept {
    return (pair & 0xFFFFFFFF) + (pair >> 32) * kLimbBase;
}

[[nodiscard]] inline Pair pair_of(Word word) noexcept {
    const Word high = word / kLimbBase;
    return high << 32 | (word - high * kLimbBase);
}

} // namespace core::limbs
