// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/tables/query/expression_node.h"

namespace core {

/// Returns the expression in which standard periods and beginning dates are the dates that they stand for
/// today: `Day In (period)` becomes `Day Between … And …`. Null where the expression has none of them. All
/// dates follow from one look at the clock. Throws ExpressionException for a time zone of the process that is
/// not known.
[[nodiscard]] ExpressionPtr with_standard_dates(const ExpressionNode& expression);

} // namespace core
