// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/types.h>

#include <array>

namespace core {

/// The case folding of every code unit, made from ICU at first use; read-only afterwards.
///
/// 1. For a unit whose full folding is a single unit, the table holds that unit; the simple folding is the
///    same. A trail surrogate folds to itself, whether it is the second half of a pair or stands alone.
/// 2. For every other unit the table holds kLong: it folds to several, as the sharp s does, or it is a lead
///    surrogate, whose folding depends on the next unit.
/// 3. kLong is a capital letter: it has a folding of its own, so no unit folds to it.
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

/// Reads a text as its full case folding, unit by unit. A surrogate without its partner within the text
/// stands for itself.
class FoldedReader {
  public:
    explicit FoldedReader(wstring_view text) noexcept
        : table_(FoldTable::instance()), at_(text.data()), end_(text.data() + text.size()) {}

    /// The next unit; -1 at the end.
    [[nodiscard]] int next() noexcept {
        if (pending_ < count_)
            return folding_[pending_++];
        if (at_ == end_)
            return -1;
        const wchar folded = table_[*at_];
        if (folded == FoldTable::kLong)
            return nextLong();
        ++at_;
        return folded;
    }

  private:
    int nextLong() noexcept;

    const FoldTable& table_;
    const wchar* at_;
    const wchar* end_;
    std::array<wchar, 4> folding_; // of one character: three units at the most
    unsigned pending_ = 0;
    unsigned count_ = 0;
};

/// The order of the full case foldings of two texts, by code units, as u_strCaseCompare says.
[[nodiscard]] int compare_foldings(wstring_view a, wstring_view b) noexcept;

} // namespace core
