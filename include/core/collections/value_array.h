// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

/// The arrays: values in order, indexed from 0. Scripts know them as "Array" and, where nothing can be
/// changed any more, "FixedArray".
///
/// Everything borrowed from an array is valid until its next change. Threads: one at a time.
namespace core {

/// The class id of "Array".
inline constexpr GUID kValueArrayClass = "1bb40b60-bbfa-11d5-a3c1-0050bae0a776"_guid;
/// The type id of "Array".
inline constexpr GUID kValueArrayType = "51e7a0d2-530b-11d4-b98a-008048da3034"_guid;
/// The class id of "FixedArray".
inline constexpr GUID kFixedValueArrayClass = "96153e21-444d-4b23-91a9-25a2483f7e45"_guid;
/// The type id of "FixedArray".
inline constexpr GUID kFixedValueArrayType = "4500381b-db30-4a10-9db4-990038032acf"_guid;

/// Values in order, to be read: what both arrays are.
class IValueSequence : public IUnknown {
  public:
    static constexpr GUID IID = "9b4a66e5-1b2c-4fd0-a6d5-5a6d8a0e1f27"_guid;

    /// Returns the values in their order, borrowed.
    [[nodiscard]] virtual std::span<const Value> values() const noexcept = 0;
    /// Returns how many values there are.
    [[nodiscard]] std::size_t count() const noexcept { return values().size(); }
    /// Returns an element, borrowed. Throws ContextException ("IDS_INDEX_OFFBOUND") for an index that is not
    /// below the count.
    [[nodiscard]] virtual const Value& get(std::size_t index) const = 0;
    /// Returns the index of the first element that equals `value`; nothing if none exists.
    [[nodiscard]] virtual std::optional<std::size_t> find(const Value& value) const noexcept = 0;

  protected:
    ~IValueSequence() = default;
};

/// An array that can be changed. Every operation that takes an index throws ContextException
/// ("IDS_INDEX_OFFBOUND") for one that is out of bounds. A call that throws leaves the array as it was.
class IValueArray : public IValueSequence {
  public:
    static constexpr GUID IID = "c2f6d0a8-5a4e-4f0b-8a3d-74a4d1a9e6b3"_guid;

    /// Takes memory for `count` elements in all. Throws std::bad_alloc.
    virtual void reserve(std::size_t count) = 0;
    /// Adds a value at the end.
    virtual void add(Value value) = 0;
    /// Inserts a value before the element with that index, or at the end where the index is the count.
    virtual void insert(std::size_t index, Value value) = 0;
    /// Replaces the element with that index.
    virtual void set(std::size_t index, Value value) = 0;
    /// Removes the element with that index; those behind it move up.
    virtual void remove(std::size_t index) = 0;
    /// Removes all elements.
    virtual void clear() noexcept = 0;

  protected:
    ~IValueArray() = default;
};

/// Returns a new "Array" of the given values. Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IValueArray> create_value_array(std::vector<Value> values = {});
/// Returns a new "FixedArray" of the given values. Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IValueSequence> create_fixed_value_array(std::vector<Value> values);

} // namespace core
