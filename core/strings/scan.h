// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <array>
#include <cstddef>

namespace core {

/// The first unit in [at, end) that is one of four; `end` if there is none.
[[nodiscard]] inline const wchar* find_one_of(const wchar* at, const wchar* end,
                                              const std::array<wchar, 4>& units) noexcept {
    const auto found = [a = units[0], b = units[1], c = units[2], d = units[3]](wchar u) {
        return (u == a) | (u == b) | (u == c) | (u == d);
    };
    // A block without an early exit is what the compiler turns into vector instructions.
    constexpr std::ptrdiff_t kBlock = 16;
    for (; end - at >= kBlock; at += kBlock) {
        bool any = false;
        for (std::ptrdiff_t i = 0; i < kBlock; ++i)
            any |= found(at[i]);
        if (any)
            break;
    }
    while (at != end && !found(*at))
        ++at;
    return at;
}

} // namespace core
