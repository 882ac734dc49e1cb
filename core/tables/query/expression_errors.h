// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/query/expression_node.h"

#include <core/tables/expression_errors.h>

#include <initializer_list>

namespace core {

/// Throws ExpressionException for a place in the text, with the message stored under `id`.
[[noreturn]] void fail_expression(ExpressionPlace place, const char* id,
                                  std::initializer_list<wstring> params = {});
/// Throws ExpressionException for what went wrong below: an arithmetic failure, as a rule.
[[noreturn]] void fail_expression(ExpressionPlace place, const Exception& failure);
/// Throws the same failure as one that came up in the row with that position.
[[noreturn]] void fail_in_row(const ExpressionException& failure, std::size_t row);

} // namespace core
