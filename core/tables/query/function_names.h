// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/tables/aggregates.h>
#include <core/tables/windows.h>

namespace core {

/// Reads aggregates of columns and expressions: "Sum(Price * Quantity) As Paid, Count()", in either language.
/// A name alone is its sum. Throws ExpressionException for a malformed text, and ContextException:
/// "IDS_VT_CALL_MALFORMED", "IDS_VT_AGGREGATE_UNKNOWN".
[[nodiscard]] std::vector<Aggregate> read_aggregates(wstring_view list);

/// Reads window functions: "RunningTotal(Price) As Paid, Lag(Price, 2) As Earlier". One without a name is
/// called as its function. Throws as read_aggregates() does, with "IDS_VT_WINDOW_UNKNOWN".
[[nodiscard]] std::vector<WindowFunction> read_windows(wstring_view list);

} // namespace core
