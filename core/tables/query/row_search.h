// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"

namespace core {

/// The rows that a search, a total or a copy goes over, in their order: those below a parent, with the rows
/// below them where that is wanted. Valid until the table changes.
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

/// The rows, in order, whose cells equal the wanted values; all rows when nothing is wanted. A filter that
/// names all columns of an index of a table looks the rows up there, which takes no longer in a large table
/// than in a small one; any other looks at every row.
[[nodiscard]] std::vector<RowId> matching_rows(const TableData& data, RowId parent, bool subordinates,
                                               std::span<const RowCondition> filter);

/// The first row with a cell, in one of the columns, that equals the value; kNoRow when there is none. A
/// column with an index of its own is looked up there.
[[nodiscard]] RowId first_row_with(const TableData& data, RowId parent, bool subordinates,
                                   std::span<const TableColumn* const> columns, const Value& value);

} // namespace core
