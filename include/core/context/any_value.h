// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/native_object.h>

#include <concepts>
#include <initializer_list>
#include <vector>

namespace core {

/// A parameter that takes whatever converts to a value: numbers, texts in UTF-16 and UTF-8, dates, values,
/// objects (see NativeValue).
class AnyValue {
  public:
    /// Takes a value, or what converts to one by itself.
    template <std::convertible_to<Value> T>
    AnyValue(const T& value) : value_(value) {}
    /// Converts `value` by NativeValue. Throws what that throws.
    template <class T>
    requires(ToValue<T> && !std::convertible_to<T, Value>) AnyValue(const T& value)
        : value_(to_value(value)) {}

    /// Returns the value, borrowed: valid as long as this object.
    [[nodiscard]] const Value& value() const noexcept { return value_; }
    /// Returns the value, borrowed: valid as long as this object.
    operator const Value&() const noexcept { return value_; }

  private:
    Value value_;
};

/// Several values, as cells of a row are given: `{"apple", 1.2, true}`.
using AnyValues = std::initializer_list<AnyValue>;

/// Returns the values in their order.
[[nodiscard]] inline std::vector<Value> to_values(AnyValues given) {
    return {given.begin(), given.end()};
}

} // namespace core
