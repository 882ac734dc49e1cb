// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>
#include <core/values/value.h>

namespace core {

/// Returns the text of a value for a user: of a Number, a Date or a Boolean by a format string (format.h), of
/// Undefined and Null the item `empty` of the string, of any other value its presentation. Throws
/// CtorException for a format string that is malformed or makes no sense, and for one with which a value of
/// another kind is given; and what the presentation throws.
[[nodiscard]] CORE_API wstring format_value(const Value& value, wstring_view format = {});

} // namespace core
