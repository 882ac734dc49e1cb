// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/numbers/long/words.h"

/// Arithmetic modulo the primes of the transform.
namespace core::limbs {

/// The integers modulo a prime 10^18 < P < 2^61 of the form c × 3 × 2^40 + 1, of which
/// `Generator` is a primitive root.
///
/// Numbers that stay are in Montgomery's form (times 2^64); multiplying one by a plain number gives a plain
/// number. Results are reduced lazily: a product is below 2P, sums may reach 8P, which is below 2^64.
template <Word P, Word Generator>
struct Field {
    static constexpr Word kPrime = P;

    /// P^−1 modulo 2^64, by Newton's iteration: each step doubles the bits that are right.
    static constexpr Word kInverse = [] {
        Word inverse = P; // right in three bits
        for (int bits = 3; bits < 64; bits *= 2) {
            inverse *= 2 - P * inverse;
        }
        return inverse;
    }();
    /// 2^64 and 2^128 modulo P: 1 in Montgomery's form, and what brings a number into it.
    static constexpr Word kOne = (0 - P) % P;
    static constexpr Word kSquare = [] {
        Word power = kOne;
        for (int bit = 0; bit < 64; ++bit) {
            power = power * 2 % P;
        }
        return power;
    }();

    /// a × b / 2^64 in 0 ... 2P − 1 for a × b < 2^64 × P.
    [[nodiscard]] static Word multiply(Word a, Word b) noexcept {
        const DoubleWord exact = product(a, b);
        return high_half(exact) - high_half(product(low_half(exact) * kInverse, P)) + P;
    }
    /// The same in 0 ... P − 1.
    [[nodiscard]] static Word multiplyFully(Word a, Word b) noexcept { return reduce<1>(multiply(a, b)); }
    /// Takes `Times` × P off if it can be taken off.
    template <Word Times>
    [[nodiscard]] static Word reduce(Word a) noexcept {
        return a >= Times * P ? a - Times * P : a;
    }
    /// `a` in Montgomery's form.
    [[nodiscard]] static Word enter(Word a) noexcept { return multiplyFully(a, kSquare); }

    [[nodiscard]] static Word power(Word a, Word exponent) noexcept {
        Word result = kOne;
        for (; exponent != 0; exponent >>= 1) {
            result = (exponent & 1) != 0 ? multiplyFully(result, a) : result;
            a = multiplyFully(a, a);
        }
        return result;
    }
    [[nodiscard]] static Word inverse(Word a) noexcept { return power(a, P - 2); }
    /// A primitive root of unity whose order is `order`, a divisor of 3 × 2^40.
    [[nodiscard]] static Word root(Word order) noexcept { return power(enter(Generator), (P - 1) / order); }
};

using FirstField = Field<0x1FFFDD0000000001, 5>;
using SecondField = Field<0x1FFFC50000000001, 13>;
using ThirdField = Field<0x1FFFB30000000001, 7>;

} // namespace core::limbs
