// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

/// Making primitive values as objects. Undefined, Null, the Booleans, zero, the empty string and the empty
/// date are shared: these are never allocated, and live for the whole process.
namespace core {

[[nodiscard]] inline InterfacePtr<IValue> create_undefined_value() noexcept {
    return Value().getIValue();
}
[[nodiscard]] inline InterfacePtr<IValue> create_null_value() noexcept {
    return Value::null().getIValue();
}
[[nodiscard]] inline InterfacePtr<IValue> create_boolean_value(bool value) noexcept {
    return Value(value).getIValue();
}
template <NumericInteger T>
[[nodiscard]] InterfacePtr<IValue> create_numeric_value(T value) {
    return Value(value).getIValue();
}
[[nodiscard]] inline InterfacePtr<IValue> create_numeric_value(double value) {
    return Value(value).getIValue();
}
[[nodiscard]] inline InterfacePtr<IValue> create_numeric_value(long double value) {
    return Value(static_cast<double>(value)).getIValue();
}
[[nodiscard]] inline InterfacePtr<IValue> create_numeric_value(const Numeric& value) {
    return Value(value).getIValue();
}
[[nodiscard]] inline InterfacePtr<IValue> create_string_value(const wstring& text) {
    return Value(text).getIValue();
}
[[nodiscard]] inline InterfacePtr<IValue> create_string_value(const wchar* text) {
    return Value(text).getIValue();
}
[[nodiscard]] inline InterfacePtr<IValue> create_date_value(Date value) {
    return Value(value).getIValue();
}

} // namespace core
