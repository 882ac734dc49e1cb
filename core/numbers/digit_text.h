// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/numbers/limbs.h"

#include <array>
#include <cstring>

/// Decimal digits in text of one- or two-byte characters, several at a time.
namespace core::limbs {

template <class Char>
[[nodiscard]] constexpr bool is_decimal(Char c) noexcept {
    return c >= Char{'0'} && c <= Char{'9'};
}

/// The end of the run of digits that begins at `p`.
template <class Char>
[[nodiscard]] const Char* digits_end(const Char* p, const Char* end) noexcept {
    while (p != end && is_decimal(*p)) {
        ++p;
    }
    return p;
}

/// The number that `count` <= 9 digits spell.
template <class Char>
[[nodiscard]] Limb read_digits(const Char* p, std::size_t count) noexcept {
    Limb value = 0;
    for (std::size_t i = 0; i < count; ++i) {
        value = value * 10 + static_cast<Limb>(p[i] - Char{'0'});
    }
    return value;
}

/// "00", "01", ... "99" one after another.
template <class Char>
inline constexpr auto kDigitPairs = [] {
    std::array<Char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<Char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<Char>('0' + i % 10);
    }
    return pairs;
}();

/// Writes `value` as exactly `count` digits and returns their end.
template <class Char>
Char* write_digits(Char* out, Limb value, std::size_t count) noexcept {
    Char* const end = out + count;
    Char* p = end;
    for (; p - out >= 2; value /= 100) {
        p -= 2;
        std::memcpy(p, &kDigitPairs<Char>[2 * (value % 100)], 2 * sizeof(Char));
    }
    if (p != out) {
        *out = static_cast<Char>('0' + value % 10);
    }
    return end;
}

} // namespace core::limbs
