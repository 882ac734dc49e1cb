// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/collections/value_array.h>
#include <core/context/any_value.h>

#include <cstddef>
#include <utility>

namespace core {

/// An array in the hand of a program: `for (const Value& value : array)`. It is a handle: copies share one
/// array, which scripts know as "Array", and a function that is const may change it. What is borrowed is
/// valid until the next change. Functions that take an index throw ContextException ("IDS_INDEX_OFFBOUND")
/// for one that is out of bounds. Threads: one at a time.
class Array {
  public:
    /// Makes an array of these values; `Array{other}` is an array of one array. Throws std::bad_alloc.
    Array(AnyValues values = {}) : array_(create_value_array(to_values(values))) {}
    /// Holds an array that is there, which must not be null.
    Array(InterfacePtr<IValueArray> array) noexcept : array_(std::move(array)) {}
    /// Holds the array that a value is. Throws ContextException ("IDS_PARAMETER_N_TYPE_MISMATCH") for any
    /// other value.
    explicit Array(const Value& value) : array_(from_value<InterfacePtr<IValueArray>>(value)) {}

    /// Returns the array, borrowed: valid as long as this handle.
    [[nodiscard]] IValueArray* operator->() const noexcept { return array_.get(); }
    /// Returns the array, borrowed: valid as long as this handle.
    operator const InterfacePtr<IValueArray>&() const noexcept { return array_; }
    /// Returns the array as a value.
    operator Value() const { return detail::value_of_pointer(array_.get()); }

    /// Returns how many elements there are.
    [[nodiscard]] std::size_t size() const noexcept { return array_->count(); }
    /// Returns whether there are none.
    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    /// Returns an element, borrowed. Throws as said above.
    [[nodiscard]] const Value& operator[](std::size_t index) const { return array_->get(index); }
    /// Begins a walk over the elements, which the next change ends.
    [[nodiscard]] const Value* begin() const noexcept { return array_->values().data(); }
    /// Returns the end of a walk.
    [[nodiscard]] const Value* end() const noexcept { return begin() + size(); }

    /// Adds a value at the end.
    void add(const AnyValue& value) const { array_->add(value); }
    /// Inserts a value before the element with an index, or at the end. Throws as said above.
    void insert(std::size_t index, const AnyValue& value) const { array_->insert(index, value); }
    /// Replaces an element. Throws as said above.
    void set(std::size_t index, const AnyValue& value) const { array_->set(index, value); }
    /// Removes an element. Throws as said above.
    void remove(std::size_t index) const { array_->remove(index); }
    /// Removes all elements.
    void clear() const noexcept { array_->clear(); }

  private:
    InterfacePtr<IValueArray> array_;
};

/// An array.
template <>
struct NativeValue<Array> {
    /// Returns the array; refuses the type of every other value.
    static Array from(const Value& value, ValueReceiver receiver) {
        return from_value<InterfacePtr<IValueArray>>(value, receiver);
    }
    /// Returns the array as a value.
    static Value to(const Array& array) { return array; }
    /// Returns the type of arrays.
    static const GUID* type() noexcept { return &kValueArrayType; }
};

} // namespace core
