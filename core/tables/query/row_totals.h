// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/cell_column.h"

namespace core {

/// The sum of the Numbers among the cells; Undefined when there is none.
[[nodiscard]] Value total(RowRange rows, const CellColumn& cells);

/// Rows that belong together, numbered in the order of their first ones.
struct RowGroups {
    std::vector<std::uint32_t> groups; ///< of each row of the range
    std::vector<RowId> firstRows;      ///< of each group
};

/// Groups the rows whose cells are equal in all columns; without columns, all of them.
[[nodiscard]] RowGroups group_rows(RowRange rows, std::span<const CellColumn* const> columns);

/// The same as total() for each group.
[[nodiscard]] std::vector<Value> group_totals(RowRange rows, const RowGroups& groups,
                                              const CellColumn& cells);

} // namespace core
