// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/row_order.h"

namespace core {

/// Rows to go through in order: the first ones of a plain order, or those of a list, which is borrowed.
class RowRange {
  public:
    /// The rows from 0 to `count` - 1.
    explicit RowRange(std::size_t count) noexcept : count_(count), plain_(true) {}
    explicit RowRange(std::span<const RowId> rows) noexcept : count_(rows.size()), rows_(rows) {}

    [[nodiscard]] std::size_t size() const noexcept { return count_; }
    [[nodiscard]] RowId operator[](std::size_t position) const noexcept {
        return plain_ ? static_cast<RowId>(position) : rows_[position];
    }
    [[nodiscard]] RowRange first(std::size_t count) const noexcept {
        return plain_ ? RowRange(count) : RowRange(rows_.first(count));
    }
    /// Calls `work` with a function that gives the row at a position. So each kind of range has a loop of its
    /// own, which does not ask for the kind at every row.
    template <class Work>
    decltype(auto) visit(Work work) const {
        if (plain_)
            return work([](std::size_t position) { return static_cast<RowId>(position); });
        return work([rows = rows_](std::size_t position) { return rows[position]; });
    }
    /// Calls `work(row)` for every row.
    template <class Work>
    void forEach(Work work) const {
        if (plain_) {
            for (std::size_t i = 0; i < count_; ++i)
                work(static_cast<RowId>(i));
        } else {
            for (const RowId row : rows_)
                work(row);
        }
    }

  private:
    std::size_t count_;
    std::span<const RowId> rows_;
    bool plain_ = false;
};

} // namespace core
