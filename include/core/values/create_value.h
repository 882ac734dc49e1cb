// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

/// Making primitive values as objects. Undefined, Null, the Booleans, zero, the empty string and the empty
/// date are shared: these are never allocated, and live for the whole process.
namespace core {

/// Returns the shared Undefined.
[[nodiscard]] inline InterfacePtr<IValue> create_undefined_value() noexcept {
    return Value().getIValue();
}
/// Returns the shared Null.
[[nodiscard]] inline InterfacePtr<IValue> create_null_value() noexcept {
    return Value::null().getIValue();
}
/// Returns the shared true or the shared false.
[[nodiscard]] inline InterfacePtr<IValue> create_boolean_value(bool value) noexcept {
    return Value(value).getIValue();
}
/// Returns a Number of an integer; the shared zero for 0.
template <NumericInteger T>
[[nodiscard]] InterfacePtr<IValue> create_numeric_value(T value) {
    return Value(value).getIValue();
}
/// Returns a Number of the shortest decimal that reads back to `value`. Throws NumericException for
/// infinities and NaN.
[[nodiscard]] inline InterfacePtr<IValue> create_numeric_value(double value) {
    return Value(value).getIValue();
}
/// Returns a Number of the shortest decimal that reads back to `value`. Throws NumericException for
/// infinities and NaN.
[[nodiscard]] inline InterfacePtr<IValue> create_numeric_value(long double value) {
    return Value(value).getIValue();
}
/// Returns a Number with a copy of `value`.
[[nodiscard]] inline InterfacePtr<IValue> create_numeric_value(const Numeric& value) {
    return Value(value).getIValue();
}
/// Returns a String with a copy of `text`.
[[nodiscard]] inline InterfacePtr<IValue> create_string_value(const wstring& text) {
    return Value(text).getIValue();
}
/// Returns a String with a copy of the units before the null unit. Null gives the empty string.
[[nodiscard]] inline InterfacePtr<IValue> create_string_value(const wchar* text) {
    return Value(text).getIValue();
}
/// Returns a Date; the shared one for the empty date.
[[nodiscard]] inline InterfacePtr<IValue> create_date_value(Date value) {
    return Value(value).getIValue();
}

} // namespace core
