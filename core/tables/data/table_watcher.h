// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/row_order.h"

#include <cstddef>

namespace core {

/// What is told of each change of a table or tree, when the change is complete: what is called may do
/// anything with the data. The parent of rows in a table is kNoRow.
class TableWatcher {
  public:
    virtual void rowAdded(RowId parent, std::size_t position) noexcept = 0;
    virtual void rowChanged(RowId row, std::size_t column) noexcept = 0;
    virtual void rowDeleted(RowId parent, std::size_t position) noexcept = 0;
    virtual void rowMoved(RowId parent, std::size_t from, std::size_t to) noexcept = 0;
    virtual void rowsSorted(RowId parent) noexcept = 0;
    virtual void rowsCleared(RowId parent) noexcept = 0;
    virtual void columnsChanged() noexcept = 0;
    /// More has changed than single rows.
    virtual void reloaded() noexcept = 0;

  protected:
    ~TableWatcher() = default;
};

} // namespace core
