// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridges/com/ole.h"
#include "bridges/com/type_service.h"

#include <core/values/generic_value.h>

/// Values as VARIANTs, both ways; docs/com-bridge.md has the table. Nothing changes in silence: what has no
/// exact form is refused with COMException. `depth` counts the arrays around a value.
namespace core::com {

/// Sets `out`, which must be empty, to a value.
void to_variant(const Value& value, VARIANT& out, const ComOptions& options, int depth = 0);
/// Sets `out`, which must be empty, to a value of the type `type`, or refuses.
void to_typed_variant(const Value& value, VARTYPE type, VARIANT& out, const ComOptions& options,
                      int depth = 0);
/// Stores a value in the variable that a VARIANT with VT_BYREF leads to, and lets go of what was there.
void to_reference(const Value& value, const VARIANT& reference, const ComOptions& options, int depth = 0);
/// Returns the value of a VARIANT, which may lead to a variable.
[[nodiscard]] Value from_variant(const VARIANT& variant, int depth = 0);

/// Returns whether a VARIANT says that an argument was left out.
[[nodiscard]] bool is_missing(const VARIANT& variant) noexcept;
/// Returns the value that says it.
[[nodiscard]] Value missing_value();

/// Returns the DATE of a date.
[[nodiscard]] DATE to_com_date(Date date);
/// Returns the date of a DATE, in whole seconds.
[[nodiscard]] Date from_com_date(DATE date);
/// Returns how many bytes a variable of a type of VARIANTs takes; 0 for a type that no variable has.
[[nodiscard]] std::size_t size_of_type(VARTYPE type) noexcept;
/// Returns the name of a type of VARIANTs, as in "VT_I4".
[[nodiscard]] wstring type_name(VARTYPE type);
/// Returns the type with a name, with or without the "VT_", in any case; VT_ILLEGAL where none has it.
[[nodiscard]] VARTYPE type_of_name(wstring_view name) noexcept;

/// Returns a DECIMAL; false when the number has more than 28 places or 96 bits.
[[nodiscard]] bool to_decimal(const Numeric& number, DECIMAL& out);
/// Returns the number of a DECIMAL.
[[nodiscard]] Numeric from_decimal(const DECIMAL& decimal);

} // namespace core::com
