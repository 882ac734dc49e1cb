// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/data/table_data.h"
#include "core/tables/query/expression_step.h"

namespace core {

/// Finds the columns and the functions of an expression and makes its steps. Throws ExpressionException.
[[nodiscard]] StepPtr bind_expression(const TableData& data, const ExpressionNode& expression);

} // namespace core
