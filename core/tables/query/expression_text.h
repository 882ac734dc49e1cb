// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/query/expression_node.h"

namespace core {

/// Returns an expression in the one form that is written for all equal expressions: English words, brackets
/// and parentheses where they are needed. Literals that the language cannot write stand as &V1, &V2, … and
/// are added to `values`; without `values` they stand as their presentation, for people to read.
[[nodiscard]] wstring expression_text(const ExpressionNode& expression, std::vector<Value>* values = nullptr);

} // namespace core
