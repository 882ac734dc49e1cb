// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"
#include "core/tables/sort/row_sort.h"

#include <core/tables/expression_parameter.h>

#include <deque>

/// Filters and expressions as the arguments of script calls. Wrong ones throw ContextException of a wrong
/// type, and ExpressionException for what is wrong in a text.
namespace core {

/// Says whether an argument can only be a filter: a Filter, a text or a structure.
[[nodiscard]] bool is_filter_argument(const Value& argument);
/// Returns the rows below a parent, in order, that pass a filter. A structure finds cells that equal its
/// values; a value of another type than the cells finds nothing.
[[nodiscard]] std::vector<RowId> filtered_rows(const TableData& data, RowId parent, bool subordinates,
                                               const Value& filter, int param);
/// Deletes the rows of a table that pass a filter.
void delete_filtered(TableData& data, const Value& filter, int param);
/// Returns the total of a column, or of an expression, over the rows of a table that pass a filter, which may
/// be Undefined. These are the first two arguments.
[[nodiscard]] Value filtered_total(const TableData& data, const Value& column, const Value& filter);
/// Returns the parameters of an expression, which a structure or a map gives; Undefined gives none.
[[nodiscard]] ExpressionParameters parameters_argument(const Value& argument, int param);

/// Adds a column behind the others with the values of an expression.
void add_computed_column(TableData& data, wstring_view name, wstring_view expression,
                         const ExpressionParameters& parameters);

/// The order that rows are to have: columns, and expressions computed for the occasion.
struct SortOrder {
    std::vector<SortColumn> columns;
    std::deque<CellColumn> computed; ///< those of the columns that the table does not have
};
/// Reads expressions with directions.
[[nodiscard]] SortOrder read_order(const TableData& data, wstring_view order,
                                   const ExpressionParameters& parameters = {});

} // namespace core
