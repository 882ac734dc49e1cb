// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <array>
#include <cstdint>

namespace core {

/// The classes of every code unit, one byte each: flags in the low half, the value of a digit in the high
/// half. Made from ICU at first use; read-only afterwards.
class ClassTable {
  public:
    enum Flag : std::uint8_t { kSpace = 1, kAlpha = 2, kDigit = 4, kNamePart = 8 };

    [[nodiscard]] static const ClassTable& instance() noexcept {
        static const ClassTable table;
        return table;
    }

    /// Whether `c` has one of `flags`.
    [[nodiscard]] bool has(wchar c, unsigned flags) const noexcept { return (classes_[c] & flags) != 0; }
    /// The value of a digit; meaningless for other units.
    [[nodiscard]] int digitValue(wchar c) const noexcept { return classes_[c] >> 4; }

  private:
    ClassTable() noexcept;

    std::array<std::uint8_t, 0x10000> classes_{};
};

} // namespace core
