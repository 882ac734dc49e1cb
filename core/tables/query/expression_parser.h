// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/query/expression_node.h"

#include <core/tables/expression_parameter.h>

/// The language of expressions over the rows of a table; docs/tables.md describes it. A parameter becomes the
/// literal of its value. All functions throw ExpressionException for a malformed text.
namespace core {

/// Reads an expression.
[[nodiscard]] ExpressionPtr parse_expression(wstring_view text, const ExpressionParameters& parameters = {});

/// Says whether a list of columns has expressions or new names among them.
[[nodiscard]] bool has_expression(wstring_view list);

/// An expression and what its result is called.
struct NamedExpression {
    ExpressionPtr expression;
    wstring name; ///< empty where no name is given
};
/// Reads expressions with "," between them, each of which may have a name: "Count() As Sales, Sum(Price *
/// 2)". "Count(*)" is "Count()". A blank text has none.
[[nodiscard]] std::vector<NamedExpression> parse_named_list(wstring_view text,
                                                            const ExpressionParameters& parameters = {});

/// An expression that rows are sorted by.
struct SortExpression {
    ExpressionPtr expression;
    bool descending = false;
};
/// Reads expressions with "," between them, each of which may have a direction: "Price * Quantity Desc, Day".
[[nodiscard]] std::vector<SortExpression> parse_sort_list(wstring_view text,
                                                          const ExpressionParameters& parameters = {});

} // namespace core
