// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

#include <cstddef>
#include <iosfwd>
#include <span>
#include <vector>

namespace core {

class IInPersistenceStorage;
class IOutPersistenceStorage;

/// Writes a value as a list: its type tag, then its payload. Throws ListStreamException when values stand in
/// values deeper than Nesting allows, and ContextException for an object that cannot be written.
CORE_API void serialize_value(IOutPersistenceStorage* storage, const Value& value);

/// The holder used across the library's interfaces: property values, parameters and results, cells of
/// collections. A Value that can be assigned to, compared with plain data, written and read.
class CORE_API GenericValue : public Value {
  public:
    using Value::Value;
    /// Holds Undefined.
    GenericValue() = default;
    /// Holds what `value` holds.
    GenericValue(const Value& value) noexcept : Value(value) {}
    /// Takes what `value` holds and leaves Undefined there.
    GenericValue(Value&& value) noexcept : Value(std::move(value)) {}

    // modify

    /// Holds the value that `Value(value)` makes. Throws what that throws; the old value then stays.
    template <class T>
    requires std::constructible_from<Value, const T&>
    void assign(const T& value) { *this = GenericValue(Value(value)); }

    // write and read

    /// Writes the value as serialize_value() does.
    void serialize(IOutPersistenceStorage* storage) const { serialize_value(storage, *this); }
    /// Reads what serialize() wrote. Throws ListStreamException for malformed text, and TypeException for a
    /// type or an object whose class is not registered.
    [[nodiscard]] static GenericValue deserialize(IInPersistenceStorage* storage);

    /// Sets `text` to the text form of the whole value. Throws as serialize(); `text` is then unchanged.
    void toString(wstring& text) const;
    /// Reads the text form of a value. Throws as deserialize(), and when more than white space follows.
    [[nodiscard]] static GenericValue fromString(wstring_view text);

    /// Returns the compact form of the whole value. Throws as serialize().
    [[nodiscard]] std::vector<std::byte> toBytes() const;
    /// Reads what toBytes() returned, or a brace list in UTF-8: the first byte tells which. Throws as
    /// deserialize(), VersionException for a later version of the compact form, and ListStreamException when
    /// anything follows, except white space behind a brace list.
    [[nodiscard]] static GenericValue fromBytes(std::span<const std::byte> bytes);
};

namespace detail {

CORE_API void write_presentation(std::ostream& out, const Value& value);

} // namespace detail

/// Writes the presentation of a value in UTF-8 and returns the stream. Takes values alone, so that nothing
/// else becomes a Value in order to be written. Throws std::bad_alloc.
template <std::derived_from<Value> T>
std::ostream& operator<<(std::ostream& out, const T& value) {
    detail::write_presentation(out, value);
    return out;
}

} // namespace core
