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

[[nodiscard]] GenericValue negate(const GenericValue& value);
/// The Boolean reading, which the value must have.
[[nodiscard]] bool truth(const GenericValue& value);

} // namespace core::script
