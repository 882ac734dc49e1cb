// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/row_order.h"

namespace core {

class TableData;

/// A walk over the rows that an order had when the walk began, without those deleted since. It copies them
/// only when the order is about to change.
class RowWalk {
  public:
    /// Walks over the rows below `parent`, or over those of the table.
    RowWalk(TableData& data, RowId parent);
    RowWalk(const RowWalk&) = delete;
    RowWalk& operator=(const RowWalk&) = delete;
    ~RowWalk();

    /// Returns the next row, or kNoRow at the end.
    [[nodiscard]] RowId next();

  private:
    friend class TableData;
    void copy();
    void end() noexcept;

    TableData& data_;
    const RowOrder* order_; // null when the walk has its own copy
    std::size_t next_ = 0;
    std::size_t end_;
    std::vector<RowId> rows_;
};

} // namespace core
