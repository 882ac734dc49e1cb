// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

/// Natural numbers as arrays of limbs in base 10^9, least significant first. Nothing here knows of signs or
/// decimal points. Long routines work on words, two limbs each (see words.h).
namespace core::limbs {

using Limb = std::uint32_t;

inline constexpr std::size_t kLimbDigits = 9;
inline constexpr Limb kLimbBase = 1'000'000'000;

/// 10^0 ... 10^9.
inline constexpr std::array<Limb, 10> kPowers = [] {
    std::array<Limb, 10> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) {
        powers[i] = powers[i - 1] * 10;
    }
    return powers;
}();

/// 5 × 10^(i − 1) for i = 1 ... 9: half of 10^i.
inline constexpr std::array<Limb, 10> kHalves = [] {
    std::array<Limb, 10> halves{};
    for (std::size_t i = 1; i < halves.size(); ++i) {
        halves[i] = kPowers[i] / 2;
    }
    return halves;
}();

/// Decimal digits of `limb`; 1 for 0.
[[nodiscard]] constexpr std::size_t digit_count(Limb limb) noexcept {
    // The binary logarithm times log10(2), which is one too small at most.
    const auto estimate = static_cast<std::size_t>(std::bit_width(limb | 1)) * 1233 >> 12;
    return estimate + (limb >= kPowers[estimate] ? 1 : 0);
}

/// Zero digits at the end of a limb that is not zero.
[[nodiscard]] constexpr std::size_t trailing_zeros(Limb limb) noexcept {
    // Multiplied by the inverse of 5^k modulo 2^32 and rotated by k, the multiples of 10^k become their
    // quotients and everything else becomes greater than any quotient.
    struct Step {
        int digits;
        Limb inverse;
        Limb greatest;
    };
    constexpr Step steps[] = {{4, 989'560'465, 429'496},
                              {2, 3'264'175'145, 42'949'672},
                              {1, 3'435'973'837, 429'496'729},
                              {1, 3'435'973'837, 429'496'729}};
    std::size_t zeros = 0;
    for (const Step& step : steps) {
        const Limb quotient = std::rotr(limb * step.inverse, step.digits);
        const bool divides = quotient <= step.greatest;
        limb = divides ? quotient : limb;
        zeros += divides ? static_cast<std::size_t>(step.digits) : 0;
    }
    return zeros;
}

/// out += a for a.size() <= out.size(); returns the carry out of the top.
Limb add_to(std::span<Limb> out, std::span<const Limb> a) noexcept;
/// out -= a for a.size() <= out.size(); returns the borrow from beyond the top.
Limb subtract_from(std::span<Limb> out, std::span<const Limb> a) noexcept;

/// out = a × b, with out.size() == a.size() + b.size(), neither factor empty and no overlap. The
/// algorithm is chosen by size.
void multiply(std::span<Limb> out, std::span<const Limb> a, std::span<const Limb> b);

/// q = ⌊a × 10^(9 × shift) / b⌋ modulo 10^(9 × q.size()); the top limb of b is not zero.
void divide(std::span<Limb> q, std::span<const Limb> a, std::size_t shift, std::span<const Limb> b);

} // namespace core::limbs
