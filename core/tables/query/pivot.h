// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/query/aggregate_cells.h"
#include "core/tables/query/new_columns.h"

namespace core {

/// Makes a table with a row for each group of rows by the key columns, and a column for each value of
/// `turned` and each aggregate (see pivot() in aggregates.h). Throws ContextException
/// ("IDS_VT_PIVOT_COLUMNS") for more than `most` values.
[[nodiscard]] TableContent pivot_table(RowRange rows, std::span<const TableColumn* const> keys,
                                       const TableColumn& turned, std::span<const BoundAggregate> aggregates,
                                       std::size_t most, WorkWatch& watch);

/// Where unpivot_table() puts what it makes of columns.
struct UnpivotNames {
    wstring_view name;  ///< the column for their names
    wstring_view value; ///< the column for their cells
};
/// Makes a table with a row for each cell of the `turned` columns, with the cells of the `kept` ones (see
/// unpivot() in aggregates.h). Throws ContextException for names that are not valid or taken.
[[nodiscard]] TableContent unpivot_table(RowRange rows, std::span<const TableColumn* const> kept,
                                         std::span<const TableColumn* const> turned,
                                         const UnpivotNames& names, EmptyCells empty, WorkWatch& watch);

} // namespace core
