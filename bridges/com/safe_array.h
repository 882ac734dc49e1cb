// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/ole.h"
#include "bridges/com/type_service.h"

#include <core/values/generic_value.h>

/// Safe arrays and what holds several values on our side.
namespace core::com {

/// Returns the content of a safe array: bytes as binary data, one dimension as an array, several as arrays in
/// arrays. The element type and the lower bounds are not kept. `type` is what the VARIANT around it says of
/// the elements. Throws COMException for a malformed one.
[[nodiscard]] Value from_safe_array(SAFEARRAY* array, VARTYPE type, int depth = 0);

/// Sets `out`, which must be empty, to a new safe array with the content of a value: binary data, an array, a
/// table with its rows as the first dimension. Returns false for every other value. `depth` counts the
/// arrays around this one. Elements are of the type `element`; VT_EMPTY is VT_UI1 for binary data and
/// VT_VARIANT for the rest.
bool to_safe_array(const Value& value, VARTYPE element, VARIANT& out, const ComOptions& options,
                   int depth = 0);

/// Returns the safe array that a SafeArray value holds, borrowed; null for every other value.
[[nodiscard]] SAFEARRAY* held_safe_array(const Value& value) noexcept;

} // namespace core::com
