// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/dates/shown_date.h>
#include <core/numbers/shown_numeric.h>
#include <core/runtime/utf8.h>
#include <core/values/generic_value.h>

#include <compare>
#include <concepts>
#include <functional>

/// Values in the tables, the orders and the formats of the standard library.
namespace core {

/// Returns the presentation of a value in UTF-8. Throws std::bad_alloc.
template <std::derived_from<Value> T>
[[nodiscard]] std::string to_utf8(const T& value) {
    return to_utf8(value.presentation());
}

/// Orders values as compare_values() does. Objects with equal presentations are equivalent, though they may
/// not be equal; all other values are equal where they are equivalent. Throws std::bad_alloc.
template <std::derived_from<Value> A, std::convertible_to<Value> B>
[[nodiscard]] std::weak_ordering operator<=>(const A& a, const B& b) {
    return compare_values(a, Value(b)) <=> 0;
}

} // namespace core

/// The hash of values.
template <>
struct std::hash<core::Value> : core::GenericValueHash {};
/// The hash of values.
template <>
struct std::hash<core::GenericValue> : core::GenericValueHash {};
