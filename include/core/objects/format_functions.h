// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/context_def.h>

namespace core {

/// Returns the functions of formats that scripts call without an object in front:
///
///  - `Format(Value, [FormatString])`: the text of a value for a user, see format_value();
///  - `ParseNumber(Text, [FormatString])`, `ParseDate(Text, [FormatString])`: the number or the date that a
///    whole text is, see parse_number() and parse_date(); Undefined for any other text.
///
/// Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IContext_> create_format_functions();

} // namespace core
