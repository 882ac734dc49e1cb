// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/cell_column.h"
#include "core/tables/query/work_watch.h"

namespace core {

/// Rows that belong together, numbered in the order of their first ones.
struct RowGroups {
    std::vector<std::uint32_t> groups; ///< of each row of the range
    std::vector<RowId> firstRows;      ///< of each group
};

/// Puts all rows into one group; no rows make no group.
[[nodiscard]] RowGroups one_group(RowRange rows);
/// Splits each group by the cells of one more column: rows stay together whose cells there are equal.
void split_groups(RowGroups& groups, RowRange rows, const CellColumn& cells, WorkWatch& watch);

/// Groups the rows whose cells are equal in all columns; without columns, all of them.
[[nodiscard]] RowGroups group_rows(RowRange rows, std::span<const CellColumn* const> columns,
                                   WorkWatch& watch);

} // namespace core
