// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/ole.h"

#include <core/values/generic_value.h>

namespace core::com {

/// Returns the type library of a file, or that of the object that a value is, as a value.
[[nodiscard]] Value type_library_value(const Value& fileOrObject);

/// Writes a type library of the types of this process that scripts can make into a file.
void write_type_library(const wstring& file);

} // namespace core::com
