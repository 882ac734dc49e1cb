// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/index_iterator.h>
#include <core/tables/cell.h>
#include <core/tables/columns.h>

namespace core {

/// A row of a table: a handle, which keeps the table alive and names the row by its position. It is another
/// row when rows before it come, go or move; object() stays the same row. Threads: as the table.
class Row {
  public:
    /// Makes the handle of a row, which is not looked for before it is used.
    Row(InterfacePtr<IValueTable> table, std::size_t position) noexcept
        : table_(std::move(table)), position_(position) {}

    /// Returns the position of the row.
    [[nodiscard]] std::size_t position() const noexcept { return position_; }
    /// Returns the table that the row is of, borrowed: valid as long as this handle.
    [[nodiscard]] IValueTable& table() const noexcept { return *table_; }
    /// Returns the row as scripts hold it, which stays this row wherever it moves. Throws ContextException
    /// ("IDS_INDEX_OFFBOUND") when there is no row at the position.
    [[nodiscard]] GenericValue object() const { return table_->row(position_); }

    /// Returns how many cells there are.
    [[nodiscard]] std::size_t size() const noexcept { return table_->columnCount(); }
    /// Returns the cell in a column, by its name, position or handle: `row["Price"]`. Throws as
    /// ColumnKey::idIn() does.
    [[nodiscard]] Cell operator[](const ColumnKey& column) const {
        return Cell({table_.get(), position_, column.idIn(table_->columns())});
    }
    /// Begins a walk over the cells; changes of the columns end it.
    [[nodiscard]] IndexIterator<Row> begin() const noexcept { return {*this, 0}; }
    /// Returns the end of a walk.
    [[nodiscard]] IndexIterator<Row> end() const noexcept { return {*this, size()}; }

  private:
    InterfacePtr<IValueTable> table_;
    std::size_t position_;
};

} // namespace core
