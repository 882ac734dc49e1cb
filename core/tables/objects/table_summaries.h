// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"

/// The methods of tables that make totals, by their arguments.
namespace core {

/// Group(Columns, Aggregates, Totals).
[[nodiscard]] GenericValue call_group(const TableData& data, std::span<const GenericValue> arguments);
/// Pivot(Rows, Column, Aggregates, Limit).
[[nodiscard]] GenericValue call_pivot(const TableData& data, std::span<const GenericValue> arguments);
/// Unpivot(Columns, Name, Value, KeepEmpty).
[[nodiscard]] GenericValue call_unpivot(const TableData& data, std::span<const GenericValue> arguments);
/// AddWindow(Functions, Partition, Order).
void call_add_window(TableData& data, std::span<const GenericValue> arguments);
/// Total(Column) over some rows: of a column, or of what stands in parentheses, as "Max(Price)".
[[nodiscard]] Value call_total(const TableData& data, RowRange rows, const Value& column);

} // namespace core
