// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

namespace core {

class IInPersistenceStorage;
class IOutPersistenceStorage;

/// Writes a value as a list: its type tag, then its payload. ListStreamException when values stand in values
/// deeper than Nesting allows, ContextException for an object that cannot be written.
CORE_API void serialize_value(IOutPersistenceStorage* storage, const Value& value);

/// The holder used across the library's interfaces: property values, parameters and results, cells of
/// collections. A Value that can be assigned to, compared with plain data, written and read.
class CORE_API GenericValue : public Value {
  public:
    using Value::Value;
    GenericValue() = default;
    GenericValue(const Value& value) noexcept : Value(value) {}
    GenericValue(Value&& value) noexcept : Value(std::move(value)) {}

    // modify: builds the value of the matching kind
    template <class T>
    requires std::constructible_from<Value, const T&>
    void assign(const T& value) { *this = GenericValue(Value(value)); }

    // compare: equal to the value that assign() would build
    using Value::equals;
    template <class T>
    requires(std::constructible_from<Value, const T&> && !std::derived_from<T, Value> &&
             !std::convertible_to<const T&, const IValue*>) [[nodiscard]] bool equals(const T& value) const {
        return Value::equals(Value(value));
    }

    // write and read
    void serialize(IOutPersistenceStorage* storage) const { serialize_value(storage, *this); }
    /// Reads what serialize() wrote. ListStreamException for malformed text, TypeException for an object
    /// whose class is not registered.
    [[nodiscard]] static GenericValue deserialize(IInPersistenceStorage* storage);

    /// The text form of the whole value, and back; failures as above. Only white space
    /// may follow what is read.
    void toString(wstring& text) const;
    [[nodiscard]] static GenericValue fromString(wstring_view text);
};

} // namespace core
