// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"

namespace core {

/// The rows that a search, a total or a copy goes over, in order: those below a parent, with the rows below
/// them if `subordinates` says so. Valid until the table changes.
class RowList {
  public:
    RowList(const TableData& data, RowId parent, bool subordinates);
    [[nodiscard]] RowRange range() const noexcept { return plain_ ? RowRange(count_) : RowRange(rows_); }

  private:
    std::vector<RowId> rows_;
    std::size_t count_;
    bool plain_;
};

/// A cell that a filter looks at, and the value it must equal.
struct RowCondition {
    const TableColumn* column;
    const Value* value;
};

/// Returns the rows, in order, whose cells equal the wanted values; an empty filter finds all rows. A filter
/// that names all columns of an index looks the rows up there, which takes no longer in a large table than in
/// a small one. Any other filter looks at every row.
[[nodiscard]] std::vector<RowId> matching_rows(const TableData& data, RowId parent, bool subordinates,
                                               std::span<const RowCondition> filter);

/// Returns the first row with a cell, in one of the columns, that equals the value, or kNoRow. A column with
/// an index of its own is looked up there.
[[nodiscard]] RowId first_row_with(const TableData& data, RowId parent, bool subordinates,
                                   std::span<const TableColumn* const> columns, const Value& value);

} // namespace core
