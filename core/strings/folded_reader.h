// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/strings/fold_table.h"

#include <array>

namespace core {

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

/// The order of the full case foldings of two texts, by code units: what u_strCaseCompare says of them.
[[nodiscard]] int compare_foldings(wstring_view a, wstring_view b) noexcept;

} // namespace core
