// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/query/expression_functions.h"
#include "core/tables/query/expression_step.h"

/// The steps that an expression is made of. What they are given, they own; columns are borrowed.
namespace core {

// values
[[nodiscard]] StepPtr literal_step(const Value& value, ExpressionPlace place);
[[nodiscard]] StepPtr column_step(const CellColumn& cells, KindSet kinds, ExpressionPlace place);
[[nodiscard]] StepPtr negation_step(StepPtr operand, ExpressionPlace place);
/// Throws ExpressionException where no values of the operands' kinds suit the operators.
[[nodiscard]] StepPtr arithmetic_step(Steps operands, std::span<const ExpressionOperator> operators,
                                      ExpressionPlace place);
[[nodiscard]] StepPtr call_step(const ExpressionFunction& function, Steps arguments, ExpressionPlace place);
/// Computes `step`, which depends on one column of codes alone, once for each value of that column.
[[nodiscard]] StepPtr memo_step(StepPtr step, const CellColumn& cells);

// conditions; throw ExpressionException for operands that can never be compared
[[nodiscard]] StepPtr comparison_step(ExpressionOperator sign, StepPtr a, StepPtr b, ExpressionPlace place);
[[nodiscard]] StepPtr between_step(Steps operands, bool negated, ExpressionPlace place);
[[nodiscard]] StepPtr in_step(Steps operands, bool negated, ExpressionPlace place);
[[nodiscard]] StepPtr like_step(Steps operands, bool negated, ExpressionPlace place);
[[nodiscard]] StepPtr empty_step(StepPtr operand, bool negated, ExpressionPlace place);
[[nodiscard]] StepPtr not_step(StepPtr operand, ExpressionPlace place);
/// And, or Or.
[[nodiscard]] StepPtr chain_step(Steps operands, bool isOr, ExpressionPlace place);

/// Refuses a step that can be neither true nor false.
void require_condition(const ExpressionStep& step);

} // namespace core
