// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/language/ast.h"

#include <core/values/generic_value.h>

/// What the operators of scripts mean. ContextException for operands that an operator does not take;
/// NumericException for a division by zero.
namespace core::script {

/// The result of a sign between two values; `and` and `or` are the interpreter's, which may not need both.
///
///     String + any        the text and the other's presentation, joined
///     Number + - * / %    with whatever has a reading as a number
///     Date + - Number     that many seconds later or earlier
///     Date - Date         the seconds between them
///     = <>                equality of values, which never crosses types
///     < <= > >=           Numbers, Strings, Dates and Booleans, each among themselves
[[nodiscard]] GenericValue apply(Operator sign, const GenericValue& left, const GenericValue& right);

/// The same for whole numbers that stand in a word, as most numbers of scripts do. False, with `result`
/// unchanged, where apply() has to do it.
[[nodiscard]] inline bool apply_whole(Operator sign, std::int64_t left, std::int64_t right,
                                      GenericValue& result) {
    std::int64_t number = 0; // 60 bits and 60 bits: no sum is too large
    switch (sign) {
    case Operator::add:
        number = left + right;
        break;
    case Operator::subtract:
        number = left - right;
        break;
    case Operator::multiply:
        if (__builtin_mul_overflow(left, right, &number))
            return false;
        break;
    case Operator::modulo:
        if (right == 0)
            return false;
        number = left % right;
        break;
    case Operator::equal:
        result = GenericValue(left == right);
        return true;
    case Operator::notEqual:
        result = GenericValue(left != right);
        return true;
    case Operator::less:
        result = GenericValue(left < right);
        return true;
    case Operator::lessEqual:
        result = GenericValue(left <= right);
        return true;
    case Operator::greater:
        result = GenericValue(left > right);
        return true;
    case Operator::greaterEqual:
        result = GenericValue(left >= right);
        return true;
    default:
        return false;
    }
    result = GenericValue(number);
    return true;
}

[[nodiscard]] GenericValue negate(const GenericValue& value);
/// The Boolean reading, which the value must have.
[[nodiscard]] bool truth(const GenericValue& value);

} // namespace core::script
