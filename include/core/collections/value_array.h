// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/values/value.h>

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

/// The arrays: values in a row, indexed from 0. Scripts know them as "Array" and, where nothing can be
/// changed any more, "FixedArray".
///
/// Everything borrowed from an array is valid until its next change. Threads: one at a time.
namespace core {

inline constexpr GUID kValueArrayClass = "1bb40b60-bbfa-11d5-a3c1-0050bae0a776"_guid;
inline constexpr GUID kValueArrayType = "51e7a0d2-530b-11d4-b98a-008048da3034"_guid;
inline constexpr GUID kFixedValueArrayClass = "96153e21-444d-4b23-91a9-25a2483f7e45"_guid;
inline constexpr GUID kFixedValueArrayType = "4500381b-db30-4a10-9db4-990038032acf"_guid;

/// Values in a row, to be read: what both arrays are.
class IValueSequence : public IUnknown {
  public:
    static constexpr GUID IID = "9b4a66e5-1b2c-4fd0-a6d5-5a6d8a0e1f27"_guid;

    [[nodiscard]] virtual std::span<const Value> values() const noexcept = 0;
    [[nodiscard]] std::size_t count() const noexcept { return values().size(); }
    /// ContextException ("IDS_INDEX_OFFBOUND") for an index that is not below the count.
    [[nodiscard]] virtual const Value& get(std::size_t index) const = 0;
    /// The index of the first element that equals `value`.
    [[nodiscard]] virtual std::optional<std::size_t> find(const Value& value) const noexcept = 0;

  protected:
    ~IValueSequence() = default;
};

/// An array that can be changed. Failures as those of get(), with the array unchanged.
class IValueArray : public IValueSequence {
  public:
    static constexpr GUID IID = "c2f6d0a8-5a4e-4f0b-8a3d-74a4d1a9e6b3"_guid;

    virtual void reserve(std::size_t count) = 0;
    virtual void add(Value value) = 0;
    /// Before the element with that index; at the end where it is the count.
    virtual void insert(std::size_t index, Value value) = 0;
    virtual void set(std::size_t index, Value value) = 0;
    virtual void remove(std::size_t index) = 0;
    virtual void clear() noexcept = 0;

  protected:
    ~IValueArray() = default;
};

[[nodiscard]] CORE_API InterfacePtr<IValueArray> create_value_array(std::vector<Value> values = {});
[[nodiscard]] CORE_API InterfacePtr<IValueSequence> create_fixed_value_array(std::vector<Value> values);

} // namespace core
