// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <array>
#include <cstddef>

namespace core {

/// Up to four units that count as one, as the cases of a letter do: the first ones differ, the entries left
/// over repeat the first.
using UnitClass = std::array<wchar, 4>;

/// Two units that stand `distance` units apart, or one of their cases each. A pair tells nearly all positions
/// of a text apart, so that few are left to look at closely.
struct UnitPair {
    UnitClass near;
    UnitClass far;
    std::size_t distance = 0;
};

/// The first of the `count` positions from `at` on where `pair` stands; null if none exists. The units up to
/// at[count - 1 + distance] are read.
[[nodiscard]] const wchar* find_pair(const UnitPair& pair, const wchar* at, std::size_t count) noexcept;

} // namespace core
