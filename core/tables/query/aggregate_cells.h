// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/query/grouping.h"
#include "core/tables/query/operands.h"

#include <core/tables/aggregates.h>

namespace core {

/// An aggregate of a column of the table at hand.
struct BoundAggregate {
    AggregateKind kind;
    const TableColumn* column; ///< null for a count of rows
    wstring name;
};

/// Finds the columns of aggregates, and the names that were not given. Throws ContextException:
/// "IDS_VT_UNKNOWN_COLUMN_ERROR", and "IDS_VT_TOTAL_OF_TEXTS" or "IDS_VT_TOTAL_OF_MIXED" for a sum or an
/// average of other values than Numbers.
[[nodiscard]] std::vector<BoundAggregate> bind_aggregates(Operands& operands, RowRange rows,
                                                          std::span<const Aggregate> aggregates);

/// The description of an aggregate's results. It depends on that of the column alone, not on the cells.
[[nodiscard]] TypeDomain domain_of(const BoundAggregate& aggregate);

/// The aggregate of each group.
[[nodiscard]] CellColumn aggregate_cells(const BoundAggregate& aggregate, RowRange rows,
                                         const RowGroups& groups, WorkWatch& watch);

/// The sums of the Numbers of each group; `none` for a group without a Number.
[[nodiscard]] CellColumn group_sums(RowRange rows, const RowGroups& groups, const CellColumn& cells,
                                    const Value& none, WorkWatch& watch);

} // namespace core
