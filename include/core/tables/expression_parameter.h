// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

#include <vector>

namespace core {

/// The value of a parameter of an expression, which writes it as "&Name".
struct ExpressionParameter {
    wstring name; ///< without "&"; found in any case
    Value value;  ///< any value; where a list stands, an array or a value list counts as its elements
};

/// The values of the parameters of an expression.
using ExpressionParameters = std::vector<ExpressionParameter>;

} // namespace core
