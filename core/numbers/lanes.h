// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/numbers/long/pairs.h"

/// Up to eight limbs in four registers, so that small numbers are worked on without memory and almost without
/// branches.
namespace core::limbs {

/// Up to eight limbs, the unused upper ones zero.
struct Lanes {
    static constexpr std::size_t kLimbs = 8;

    Pair pairs[kLimbs / 2] = {};

    /// Reads four limbs.
    explicit Lanes(const Limb* limbs) noexcept : pairs{load_pair(limbs), load_pair(limbs + 2)} {}
    Lanes(Pair p0, Pair p1, Pair p2, Pair p3) noexcept : pairs{p0, p1, p2, p3} {}

    /// Four limbs moved up by `count` <= 5 limbs; what leaves the eight limbs must be zero.
    [[nodiscard]] Lanes shiftedUp(unsigned count) const noexcept {
        const DoubleWord value = DoubleWord{pairs[1]} << 64 | pairs[0];
        if (count >= 4) [[unlikely]] {
            const DoubleWord high = value << (32 * (count - 4));
            return {0, 0, low_half(high), high_half(high)};
        }
        const DoubleWord low = value << (32 * count);
        const DoubleWord high = value >> 1 >> (127 - 32 * count);
        return {low_half(low), high_half(low), low_half(high), high_half(high)};
    }

    [[nodiscard]] Lanes shiftedDownByOne() const noexcept {
        return {pairs[0] >> 32 | pairs[1] << 32, pairs[1] >> 32 | pairs[2] << 32,
                pairs[2] >> 32 | pairs[3] << 32, pairs[3] >> 32};
    }

    /// The number of limbs without the zeros on top.
    [[nodiscard]] std::size_t count() const noexcept {
        const bool upper = (pairs[3] | pairs[2]) != 0;
        const Pair high = upper ? pairs[3] : pairs[1];
        const Pair top = high != 0 ? high : upper ? pairs[2] : pairs[0];
        return (upper ? 4U : 0U) + (high != 0 ? 2U : 0U) + (top != 0 ? 1U : 0U) + (top >> 32 != 0 ? 1U : 0U);
    }
};

/// a + b, which must not carry out of eight limbs.
[[nodiscard]] inline Lanes add(const Lanes& a, const Lanes& b) noexcept {
    Pair carry = 0;
    const Pair p0 = add_pair(a.pairs[0], b.pairs[0], carry);
    const Pair p1 = add_pair(a.pairs[1], b.pairs[1], carry);
    const Pair p2 = add_pair(a.pairs[2], b.pairs[2], carry);
    const Pair p3 = add_pair(a.pairs[3], b.pairs[3], carry);
    return {p0, p1, p2, p3};
}

/// a − b for b <= a.
[[nodiscard]] inline Lanes subtract(const Lanes& a, const Lanes& b) noexcept {
    Pair borrow = 0;
    const Pair p0 = subtract_pair(a.pairs[0], b.pairs[0], borrow);
    const Pair p1 = subtract_pair(a.pairs[1], b.pairs[1], borrow);
    const Pair p2 = subtract_pair(a.pairs[2], b.pairs[2], borrow);
    const Pair p3 = subtract_pair(a.pairs[3], b.pairs[3], borrow);
    return {p0, p1, p2, p3};
}

/// a × b for four limbs each. The columns are split on their own, side by side, before the carries run.
[[nodiscard]] inline Lanes multiply(const Lanes& a, const Lanes& b) noexcept {
    const Word a0 = word_of(a.pairs[0]);
    const Word a1 = word_of(a.pairs[1]);
    const Word b0 = word_of(b.pairs[0]);
    const Word b1 = word_of(b.pairs[1]);
    const auto [q0, r0] = split_word(product(a0, b0));
    if ((a1 | b1) == 0) {
        return {pair_of(r0), pair_of(q0), 0, 0};
    }
    const auto [q1, r1] = split_word(product(a0, b1) + product(a1, b0));
    const auto [q2, r2] = split_word(product(a1, b1));
    const Word w1 = r1 + q0;
    const Word carry1 = w1 >= kWordBase ? 1 : 0;
    const Word w2 = r2 + q1 + carry1; // below three times the base, as q1 is below twice the base
    const Word carry2 = (w2 >= kWordBase ? 1 : 0) + (w2 >= 2 * kWordBase ? 1 : 0);
    return {pair_of(r0), pair_of(w1 - carry1 * kWordBase), pair_of(w2 - carry2 * kWordBase),
            pair_of(q2 + carry2)};
}

/// ⌊a × 10^(9 × (nb + 3)) / b⌋ for a, b of na, nb = 1 ... 4 limbs: at most na + 4 limbs.
///
/// The dividend enters in k words, as many as make k quotient words hold those limbs. What stands above them
/// has fewer limbs than b and is the first remainder. It is found by moving a to where the four limbs above
/// place 2k are the upper half of the lanes; of the k words only two can differ from zero.
template <class Divisor>
[[nodiscard]] inline Lanes divide_small(const Lanes& a, std::size_t na, std::size_t nb,
                                        const Divisor& divisor) noexcept {
    const std::size_t k = na <= 2 ? 3 : 4;
    const Lanes dividend = a.shiftedUp(static_cast<unsigned>(7 + nb - 2 * k));
    using Remainder = typename Divisor::Remainder;
    auto rest = static_cast<Remainder>(word_of(dividend.pairs[2]));
    if constexpr (sizeof(Remainder) > sizeof(Word)) {
        rest += product(word_of(dividend.pairs[3]), kWordBase);
    }
    rest = divisor.shifted(rest);
    Word q3 = divisor.step(rest, word_of(dividend.pairs[1]));
    Word q2 = divisor.step(rest, word_of(dividend.pairs[0]));
    Word q1 = divisor.step(rest, 0);
    if (k == 3) {
        return {pair_of(q1), pair_of(q2), pair_of(q3), 0};
    }
    const Word q0 = divisor.step(rest, 0);
    return {pair_of(q0), pair_of(q1), pair_of(q2), pair_of(q3)};
}

} // namespace core::limbs
