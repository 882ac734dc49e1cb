// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/query/expression_step.h"

/// What the operators of expressions do with two values. An empty operand gives Undefined.
namespace core {

/// Adds, subtracts, multiplies or divides numbers, joins texts, shifts dates by seconds. Throws
/// ExpressionException for operands that do not suit the operator.
[[nodiscard]] Value arithmetic(ExpressionOperator sign, const Value& a, const Value& b,
                               ExpressionPlace place);
/// The kinds of the results for operands of some kinds; 0 where no operands suit.
[[nodiscard]] KindSet arithmetic_kinds(ExpressionOperator sign, KindSet a, KindSet b) noexcept;

/// Compares values of one kind, texts in the order of the process's locale. Throws ExpressionException for
/// values that cannot be compared.
[[nodiscard]] Truth comparison(ExpressionOperator sign, const Value& a, const Value& b,
                               ExpressionPlace place);
/// Says whether values of these kinds can be compared at all.
[[nodiscard]] bool comparable(KindSet a, KindSet b) noexcept;
/// Says whether an order answers the operator: -1, 0 or 1.
[[nodiscard]] constexpr bool answers(ExpressionOperator sign, int order) noexcept {
    switch (sign) {
    case ExpressionOperator::equal:
        return order == 0;
    case ExpressionOperator::notEqual:
        return order != 0;
    case ExpressionOperator::less:
        return order < 0;
    case ExpressionOperator::lessEqual:
        return order <= 0;
    case ExpressionOperator::greater:
        return order > 0;
    default:
        return order >= 0;
    }
}

/// The words, of numbers or dates, that answer a comparison with one value. `sign` is any operator except
/// notEqual; the value is a Number or a Date, as the form says.
[[nodiscard]] WordInterval word_interval(ExpressionOperator sign, const Value& value, const WordForm& form);

} // namespace core
