// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/script/errors.h>

namespace host {

/// Returns a failure of one step with its place in the whole query. `step` is a part of `query`, and `script`
/// is what ran for it: words of ours, which the user never sees, and as a rule the step behind them. What
/// fails in our words is the fault of the whole step.
[[nodiscard]] core::script::Error failure_of_query(const core::script::Error& failure,
                                                   core::wstring_view query, core::wstring_view step,
                                                   core::wstring_view script);

} // namespace host
