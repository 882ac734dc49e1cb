// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/context/native_value.h>
#include <core/objects/enumeration.h>

#include <concepts>
#include <type_traits>

/// The values of a script enumeration as an enum of C++, in both directions. The enum says which enumeration
/// it is, by a function beside it; the numbers of both are the same:
///
///     enum class Colour { red, green };
///     core::Enumeration* script_enumeration(Colour) { return core::EnumerationEntry<kColours>::instance(); }
namespace core {

/// An enum beside which a function script_enumeration() stands.
template <class E>
concept ScriptEnumeration = std::is_enum_v<E> && requires(E value) {
    { script_enumeration(value) } -> std::convertible_to<Enumeration*>;
};

/// A value of the enumeration.
template <ScriptEnumeration E>
struct NativeValue<E> {
    /// Returns the enumerator with the number of the value; refuses the type of any other value.
    static E from(const Value& value, ValueReceiver receiver) {
        const auto number = script_enumeration(E{})->number(value);
        if (!number)
            receiver.refuseType();
        return static_cast<E>(*number);
    }
    /// Returns the value with the number of the enumerator; Undefined where the enumeration has none.
    static Value to(E value) { return script_enumeration(value)->value(static_cast<std::int32_t>(value)); }
    /// Returns the id of the type of the values.
    static const GUID* type() noexcept { return &script_enumeration(E{})->info().type.id; }
};

} // namespace core
