// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

/// Places in a text.
namespace core {

/// A place by its line and its column, both from 0. The column counts UTF-16 units from the line's start.
struct TextPosition {
    std::uint64_t line = 0;   ///< index of the line
    std::uint64_t column = 0; ///< units from the start of the line
    /// Returns whether both are equal.
    friend bool operator==(const TextPosition&, const TextPosition&) noexcept = default;
};

/// The units from `begin` up to `end`, which is behind the last one.
struct TextRange {
    std::uint64_t begin = 0; ///< offset of the first unit
    std::uint64_t end = 0;   ///< offset behind the last unit
    /// Returns the number of units.
    [[nodiscard]] std::uint64_t size() const noexcept { return end - begin; }
    /// Returns whether it has no units.
    [[nodiscard]] bool empty() const noexcept { return begin == end; }
    /// Returns whether both ends are equal.
    friend bool operator==(const TextRange&, const TextRange&) noexcept = default;
};

} // namespace core
