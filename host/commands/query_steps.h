// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/script/engine.h>

namespace host {

/// Carries out steps with "|" between them and returns what the last one gives. Each works on the value of
/// the one before, the first on `table`; it is a method of that value, or one of Where, Select, First and
/// Last, or any expression, which finds the value as Table. A step that gives nothing leaves the value as
/// it is. Throws script::Error, and ContextException for a call that finds Undefined.
[[nodiscard]] core::GenericValue run_steps(core::script::Engine& engine, const core::GenericValue& table,
                                           core::wstring_view steps);

} // namespace host
