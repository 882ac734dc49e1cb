// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/ole.h"

#include <core/values/generic_value.h>

#include <optional>

/// Numbers of failures as values (VT_ERROR), which are neither Numbers nor Undefined.
namespace core::com {

/// Returns the value of such a number; scripts know it as "COMError".
[[nodiscard]] Value error_value(SCODE error);
/// Returns the number of such a value; nothing for every other value.
[[nodiscard]] std::optional<SCODE> error_of(const Value& value) noexcept;

} // namespace core::com
