// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstring>

namespace core {

/// "00", "01", ... "99" one after another, in text of one- or two-byte characters.
template <class C>
inline constexpr auto kDigitPairs = [] {
    std::array<C, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<C>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<C>('0' + i % 10);
    }
    return pairs;
}();

/// Writes a number below 100 as two digits, and returns their end.
template <class C>
C* write_pair(C* out, std::size_t number) noexcept {
    std::memcpy(out, &kDigitPairs<C>[2 * number], 2 * sizeof(C));
    return out + 2;
}

} // namespace core
