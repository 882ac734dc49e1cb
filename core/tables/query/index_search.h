// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/query/expression_node.h"
#include "core/tables/query/row_search.h"

#include <optional>

namespace core {

/// Says whether the table has an index whose columns a filter names all, so that matching_rows() looks the
/// rows up instead of going through all.
[[nodiscard]] bool has_index_for(const TableData& data, std::span<const RowCondition> filter) noexcept;

/// Sorts rows by their positions; often they are sorted already.
void put_in_order(std::vector<RowId>& rows, const RowOrder& order);

/// Returns the rows of a table that the indexes leave for a condition, in order: all that can pass, and few
/// others. Nothing where no index says enough.
///
/// Equal values of all columns of an index are looked up by their hash. Ranges of its first column, numbers,
/// dates or texts, are looked up in its sorted rows, which are made when a table was asked for ranges several
/// times without a change: to sort costs as much as to go through all rows some times.
[[nodiscard]] std::optional<std::vector<RowId>> rows_by_index(const TableData& data,
                                                              const ExpressionNode& condition);

} // namespace core
