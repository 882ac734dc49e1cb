// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/tables/expression_errors.h>
#include <core/tables/expression_parameter.h>
#include <core/tables/value_table.h>

/// Expressions over the columns of a row: computed columns and the order of rows. docs/tables.md describes
/// the language. All functions throw ExpressionException for a text that is malformed or does not suit the
/// table, and ContextException ("IDS_PARAMETER_N_TYPE_MISMATCH") for a table that is not one of this library.
/// If they throw, nothing has changed.
namespace core {

/// Adds a column behind the others whose cells an expression gives, computed now and stored; they do not
/// follow later changes of the row. The column has the type of the results. Returns its id. Throws
/// ContextException for a name as IValueTable::addColumn() does.
CORE_API std::int32_t add_column(IValueTable& table, wstring_view name, wstring_view expression,
                                 const ExpressionParameters& parameters = {});
/// Puts the rows into the order of expressions with "," between them, each of which may be followed by Asc or
/// Desc: "Price * Quantity Desc, Day".
CORE_API void sort_rows(IValueTable& table, wstring_view order, const ExpressionParameters& parameters = {});

} // namespace core
