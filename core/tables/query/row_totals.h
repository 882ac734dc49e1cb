// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_column.h"

namespace core {

/// The sum of the Numbers among the cells of a column. Where there is no Number it is 0 if the column holds
/// only Numbers, and Undefined otherwise.
[[nodiscard]] Value total(RowRange rows, const TableColumn& column);

/// Rows that belong together, numbered in the order of their first ones.
struct RowGroups {
    std::vector<std::uint32_t> groups; ///< of each row of the range
    std::vector<RowId> firstRows;      ///< of each group
};

/// Groups the rows whose cells are equal in all columns; without columns, all of them.
[[nodiscard]] RowGroups group_rows(RowRange rows, std::span<const CellColumn* const> columns);

/// The sum of the Numbers among the cells of each group; Undefined for a group without a Number.
[[nodiscard]] std::vector<Value> group_totals(RowRange rows, const RowGroups& groups,
                                              const CellColumn& cells);

} // namespace core
