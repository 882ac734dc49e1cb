// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/cell_column.h"

#include <algorithm>

namespace core {

/// The words of some rows as distances from the smallest one: small numbers in the order of the words.
/// Undefined, if it occurs, is 0, before the smallest word.
class WordSpan {
  public:
    WordSpan(RowRange rows, std::span<const std::int64_t> words) noexcept {
        std::int64_t smallest = std::numeric_limits<std::int64_t>::max();
        std::int64_t largest = CellColumn::kEmptyWord;
        bool anyEmpty = false;
        rows.forEach([&](RowId row) {
            const bool empty = words[row] == CellColumn::kEmptyWord;
            anyEmpty = anyEmpty || empty;
            smallest = empty ? smallest : std::min(smallest, words[row]);
            largest = std::max(largest, words[row]);
        });
        base_ = static_cast<std::uint64_t>(smallest) - (anyEmpty ? 1 : 0);
        highest_ = largest != CellColumn::kEmptyWord ? static_cast<std::uint64_t>(largest) - base_ : 0;
    }

    [[nodiscard]] std::uint64_t distance(std::int64_t word) const noexcept {
        return word != CellColumn::kEmptyWord ? static_cast<std::uint64_t>(word) - base_ : 0;
    }
    [[nodiscard]] std::uint64_t highest() const noexcept { return highest_; }

  private:
    std::uint64_t base_;
    std::uint64_t highest_;
};

} // namespace core
