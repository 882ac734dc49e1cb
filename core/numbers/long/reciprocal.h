// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/numbers/long/words.h"

#include <bit>

/// Repeated division by one divisor of up to two machine words: normalised once, then by multiplication with
/// its reciprocal (Möller and Granlund, "Improved division by invariant integers", 2011).
namespace core::limbs {

/// ⌊(2^128 − 1) / d⌋ − 2^64 for d >= 2^63.
[[nodiscard]] inline Word reciprocal(Word d) noexcept {
    const DoubleWord dividend = (DoubleWord{~d} << 64) | ~Word{0};
    return static_cast<Word>(dividend / d);
}

/// A divisor below 2^64.
class OneWordDivisor {
  public:
    using Remainder = Word; ///< shifted as the divisor is

    explicit OneWordDivisor(Word divisor) noexcept
        : shift_(std::countl_zero(divisor)), divisor_(divisor << shift_), reciprocal_(reciprocal(divisor_)) {}

    [[nodiscard]] Remainder shifted(Word remainder) const noexcept { return remainder << shift_; }

    /// ⌊(r × 10^18 + digit) / divisor⌋ for r below the divisor; r becomes the remainder. Algorithm 4.
    [[nodiscard]] Word step(Remainder& r, Word digit) const noexcept {
        const DoubleWord u = product(r, kWordBase) + (DoubleWord{digit} << shift_);
        const DoubleWord q = product(reciprocal_, high_half(u)) + u;
        Word quotient = high_half(q) + 1;
        Word rest = low_half(u) - quotient * divisor_;
        const Word too_large = mask(rest > low_half(q));
        quotient += too_large;
        rest += too_large & divisor_;
        if (rest >= divisor_) [[unlikely]] {
            ++quotient;
            rest -= divisor_;
        }
        r = rest;
        return quotient;
    }

  private:
    int shift_;
    Word divisor_;
    Word reciprocal_;
};

/// A divisor of 2^60 ... 10^36.
class TwoWordDivisor {
  public:
    using Remainder = DoubleWord; ///< shifted as the divisor is

    explicit TwoWordDivisor(DoubleWord divisor) noexcept
        : shift_(high_half(divisor) != 0 ? std::countl_zero(high_half(divisor))
                                         : 64 + std::countl_zero(low_half(divisor))),
          divisor_(divisor << shift_), reciprocal_(reciprocalOf(high_half(divisor_), low_half(divisor_))) {}

    [[nodiscard]] Remainder shifted(DoubleWord remainder) const noexcept { return remainder << shift_; }

    /// ⌊(r × 10^18 + digit) / divisor⌋ for r below the divisor; r becomes the remainder. Algorithm 5.
    [[nodiscard]] Word step(Remainder& r, Word digit) const noexcept {
        // The dividend has three words: top, and the halves of middle and of low.
        const DoubleWord low = product(low_half(r), kWordBase);
        const DoubleWord addend = DoubleWord{digit} << shift_; // digit < 2^60 and shift <= 68
        const DoubleWord low_sum = DoubleWord{low_half(low)} + low_half(addend);
        const DoubleWord upper =
            product(high_half(r), kWordBase) + high_half(low) + high_half(addend) + high_half(low_sum);
        const Word d1 = high_half(divisor_);
        const Word d0 = low_half(divisor_);
        const DoubleWord q = product(reciprocal_, high_half(upper)) + upper;
        Word quotient = high_half(q);
        const Word r1 = low_half(upper) - quotient * d1;
        DoubleWord rest = ((DoubleWord{r1} << 64) | low_half(low_sum)) - product(d0, quotient) - divisor_;
        const Word too_large = mask(high_half(rest) >= low_half(q));
        quotient += 1 + too_large;
        rest += DoubleWord{too_large & d1} << 64 | (too_large & d0);
        if (rest >= divisor_) [[unlikely]] {
            ++quotient;
            rest -= divisor_;
        }
        r = rest;
        return quotient;
    }

  private:
    /// Algorithm 6.
    static Word reciprocalOf(Word d1, Word d0) noexcept {
        Word v = reciprocal(d1);
        Word p = d1 * v + d0;
        if (p < d0) {
            --v;
            if (p >= d1) {
                --v;
                p -= d1;
            }
            p -= d1;
        }
        const DoubleWord t = product(v, d0);
        p += high_half(t);
        if (p < high_half(t)) {
            --v;
            if (p > d1 || (p == d1 && low_half(t) >= d0)) {
                --v;
            }
        }
        return v;
    }

    int shift_;
    DoubleWord divisor_;
    Word reciprocal_;
};

} // namespace core::limbs
