// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/query/aggregate_cells.h"
#include "core/tables/query/new_columns.h"

namespace core {

/// Makes a table with a row for each group of rows: the cells of the key columns and the aggregates. With
/// `levels`, the name of a column for them, the totals of all levels stand before what they add up (see
/// group() in aggregates.h). Throws ContextException for names that are not valid or taken.
[[nodiscard]] TableContent group_table(RowRange rows, std::span<const TableColumn* const> keys,
                                       std::span<const BoundAggregate> aggregates, wstring_view levels,
                                       WorkWatch& watch);

} // namespace core
