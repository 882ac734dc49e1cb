// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <array>

namespace core {

/// The case folding of every code unit, made from ICU at first use; read-only afterwards.
///
/// 1. For a unit whose full folding is a single unit, the table holds that unit; the simple folding is the
///    same. So it is for a trail surrogate, which is read as the second half of a pair or stands alone.
/// 2. For every other unit the table holds kLong: it folds to several, as the sharp s does, or it is a lead
///    surrogate, whose folding depends on the next unit.
/// 3. kLong is a capital letter: it has a folding of its own, so nothing folds to it and it is no folding.
class FoldTable {
  public:
    static constexpr wchar kLong = u'A';

    [[nodiscard]] static const FoldTable& instance() noexcept {
        static const FoldTable table;
        return table;
    }

    [[nodiscard]] wchar operator[](wchar c) const noexcept { return units_[c]; }

    /// The simple folding of any unit.
    [[nodiscard]] wchar simple(wchar c) const noexcept {
        const wchar folded = units_[c];
        return folded != kLong ? folded : simpleOfLong(c);
    }

  private:
    FoldTable() noexcept;
    static wchar simpleOfLong(wchar c) noexcept;

    std::array<wchar, 0x10000> units_;
};

} // namespace core
