// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/numbers/errors.h>
#include <core/runtime/utf8.h>
#include <core/values/generic_value.h>
#include <core/values/type.h>

#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

/// Values as C++ types, in both directions: what the methods, properties and functions that C++ offers to
/// scripts take and return. NativeValue is the one place where a type says how it converts; a program
/// specializes it for a type of its own. <core/context/native_object.h> adds objects,
/// <core/collections/native_values.h> adds std::vector, std::span and std::map, and
/// <core/objects/native_enumeration.h> adds enumerations.
namespace core {

/// What receives a converted value: a parameter or a property. It words the refusal of a value. Borrows the
/// name.
class ValueReceiver {
  public:
    /// A parameter of a call, numbered from 0; messages number it from 1.
    static constexpr ValueReceiver parameter(int param) noexcept { return ValueReceiver(nullptr, param); }
    /// The property with that name, which must not be null.
    static constexpr ValueReceiver property(const wchar* name) noexcept { return ValueReceiver(name, 0); }

    /// Throws ContextException: the receiver takes no value of that type.
    [[noreturn]] CORE_API void refuseType() const;
    /// Throws ContextException: the type is right, but the receiver does not take that value.
    [[noreturn]] CORE_API void refuseValue() const;

  private:
    constexpr ValueReceiver(const wchar* name, int param) noexcept : name_(name), param_(param) {}

    const wchar* name_;
    int param_;
};

/// How `T` converts. A specialization has, of these three, what makes sense for the type:
///
///     static T from(const Value& value, ValueReceiver receiver);  // refuses through the receiver
///     static Value to(const T& value);
///     static const GUID* type() noexcept;                         // the id of the script type, where it is
///     one
///
/// from() may return another type that converts to `T` by itself. What it returns may borrow from `value`: a
/// wstring_view and a pointer are valid as long as the argument that they were made of. There is no
/// conversion between types on the way: "5" is not a number, and 1 is not a Boolean.
template <class T>
struct NativeValue;

/// A type that a value converts to.
template <class T>
concept FromValue = requires(const Value& value, ValueReceiver receiver) {
    NativeValue<T>::from(value, receiver);
};

/// A type that converts to a value.
template <class T>
concept ToValue = requires(const T& value) {
    { NativeValue<std::decay_t<const T&>>::to(value) } -> std::convertible_to<Value>;
};

/// Returns what `value` is as a `T`. Throws ContextException for a value that is not a `T`. See NativeValue
/// for what is borrowed.
template <FromValue T>
[[nodiscard]] auto from_value(const Value& value, ValueReceiver receiver = ValueReceiver::parameter(0)) {
    return NativeValue<T>::from(value, receiver);
}

/// Returns `value` as a Value. Throws std::bad_alloc, and NumericException for infinities and NaN.
template <ToValue T>
[[nodiscard]] GenericValue to_value(const T& value) {
    return NativeValue<std::decay_t<const T&>>::to(value);
}

namespace detail {

/// The id of the script type that stands for `T`; null where it may be of several.
template <class T>
[[nodiscard]] const GUID* native_type() noexcept {
    if constexpr (requires { NativeValue<T>::type(); })
        return NativeValue<T>::type();
    else
        return nullptr;
}

[[nodiscard]] CORE_API std::int64_t signed_from(const Value& value, ValueReceiver receiver,
                                                std::int64_t least, std::int64_t most);
[[nodiscard]] CORE_API std::uint64_t unsigned_from(const Value& value, ValueReceiver receiver,
                                                   std::uint64_t most);
[[nodiscard]] CORE_API Numeric numeric_from(const Value& value, ValueReceiver receiver);
[[nodiscard]] CORE_API wstring_view text_from(const Value& value, ValueReceiver receiver);
[[nodiscard]] CORE_API GUID guid_from(const Value& value, ValueReceiver receiver);
/// The shortest decimal that reads back to the float.
[[nodiscard]] CORE_API Value value_of_float(float value);

} // namespace detail

/// Any value, as it is.
template <class T>
requires std::same_as<T, Value> || std::same_as<T, GenericValue>
struct NativeValue<T> {
    /// Returns the value.
    static T from(const Value& value, ValueReceiver) noexcept { return T(value); }
    /// Returns the value.
    static Value to(const Value& value) noexcept { return value; }
};

/// A Boolean.
template <>
struct NativeValue<bool> {
    /// Returns the Boolean.
    static bool from(const Value& value, ValueReceiver receiver) {
        if (value.kind() != ValueKind::boolean)
            receiver.refuseType();
        return value.isTrue();
    }
    /// Returns a Boolean.
    static Value to(bool value) noexcept { return value; }
    /// Returns the id of Boolean.
    static const GUID* type() noexcept { return &kBooleanType; }
};

/// A whole Number within the range of the integer type.
template <NumericInteger T>
struct NativeValue<T> {
    /// Returns the integer; refuses the value of a Number with a fraction or out of range.
    static T from(const Value& value, ValueReceiver receiver) {
        using Limits = std::numeric_limits<T>;
        if (const auto whole = value.asSmallWhole(); whole && std::in_range<T>(*whole))
            return static_cast<T>(*whole);
        if constexpr (std::is_signed_v<T>)
            return static_cast<T>(detail::signed_from(value, receiver, Limits::min(), Limits::max()));
        else
            return static_cast<T>(detail::unsigned_from(value, receiver, Limits::max()));
    }
    /// Returns a Number.
    static Value to(T value) { return value; }
    /// Returns the id of Number.
    static const GUID* type() noexcept { return &kNumberType; }
};

/// A Number as the nearest binary fraction.
template <std::floating_point T>
struct NativeValue<T> {
    /// Returns the nearest number of the type; refuses the value of a Number out of its range.
    static T from(const Value& value, ValueReceiver receiver) {
        const T number = static_cast<T>(detail::numeric_from(value, receiver));
        if (number > std::numeric_limits<T>::max() || number < std::numeric_limits<T>::lowest())
            receiver.refuseValue();
        return number;
    }
    /// Returns the shortest decimal that reads back to the same number of the type.
    static Value to(T value) {
        if constexpr (std::same_as<T, float>)
            return detail::value_of_float(value);
        else
            return Numeric(value);
    }
    /// Returns the id of Number.
    static const GUID* type() noexcept { return &kNumberType; }
};

/// A Number, exactly.
template <>
struct NativeValue<Numeric> {
    /// Returns the Number.
    static Numeric from(const Value& value, ValueReceiver receiver) {
        if (const auto whole = value.asSmallWhole())
            return *whole;
        return detail::numeric_from(value, receiver);
    }
    /// Returns a Number.
    static Value to(const Numeric& value) { return value; }
    /// Returns the id of Number.
    static const GUID* type() noexcept { return &kNumberType; }
};

/// A Date.
template <>
struct NativeValue<Date> {
    /// Returns the Date.
    static Date from(const Value& value, ValueReceiver receiver) {
        const Date* const date = value.asDate();
        if (date == nullptr)
            receiver.refuseType();
        return *date;
    }
    /// Returns a Date.
    static Value to(Date value) { return value; }
    /// Returns the id of Date.
    static const GUID* type() noexcept { return &kDateType; }
};

/// A type as a value.
template <>
struct NativeValue<Type> {
    /// Returns the type.
    static Type from(const Value& value, ValueReceiver receiver) {
        const Type* const type = value.asType();
        if (type == nullptr)
            receiver.refuseType();
        return *type;
    }
    /// Returns the type as a value.
    static Value to(const Type& value) { return value; }
    /// Returns the id of Type.
    static const GUID* type() noexcept { return &kTypeType; }
};

/// A String: borrowed as a wstring_view, copied as a wstring. A null pointer becomes the empty String.
template <class T>
requires std::same_as<T, wstring_view> || std::same_as<T, wstring> || std::same_as<T, const wchar*>
struct NativeValue<T> {
    /// Returns the text.
    static T from(const Value& value, ValueReceiver receiver) requires(!std::is_pointer_v<T>) {
        return T(detail::text_from(value, receiver));
    }
    /// Returns a String.
    static Value to(const T& value) { return value; }
    /// Returns the id of String.
    static const GUID* type() noexcept { return &kStringType; }
};

/// A String as text in UTF-8, which is converted, so that nothing is borrowed. A null pointer becomes the
/// empty String.
template <class T>
requires std::same_as<T, std::string_view> || std::same_as<T, std::string> || std::same_as<T, const char*>
struct NativeValue<T> {
    /// Returns the text.
    static std::string from(const Value& value, ValueReceiver receiver) requires(!std::is_pointer_v<T>) {
        return to_utf8(detail::text_from(value, receiver));
    }
    /// Returns a String.
    static Value to(const T& value) {
        if constexpr (std::is_pointer_v<T>)
            return from_utf8(value != nullptr ? std::string_view(value) : std::string_view());
        else
            return from_utf8(value);
    }
    /// Returns the id of String.
    static const GUID* type() noexcept { return &kStringType; }
};

/// An id: a String in the written form of 36 characters.
template <>
struct NativeValue<GUID> {
    /// Returns the id; refuses the value of any other String.
    static GUID from(const Value& value, ValueReceiver receiver) {
        return detail::guid_from(value, receiver);
    }
    /// Returns a String.
    static Value to(const GUID& value) { return to_string(value); }
    /// Returns the id of String.
    static const GUID* type() noexcept { return &kStringType; }
};

/// A value that may be missing: Undefined stands for nothing. No other type takes Undefined.
template <class T>
struct NativeValue<std::optional<T>> {
    /// Returns nothing for Undefined, else what `T` is made of.
    static auto from(const Value& value, ValueReceiver receiver) requires FromValue<T> {
        using Held = decltype(NativeValue<T>::from(value, receiver));
        return value.isUndefined() ? std::optional<Held>() : NativeValue<T>::from(value, receiver);
    }
    /// Returns Undefined for nothing, else what `T` becomes.
    static Value to(const std::optional<T>& value) requires ToValue<T> {
        return value ? Value(NativeValue<T>::to(*value)) : Value();
    }
};

} // namespace core
