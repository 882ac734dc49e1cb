// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/interface_ptr.h>
#include <core/values/generic_value.h>

#include <vector>

/// Walks over collections, as for-each loops make them.
namespace core {

/// A walk over the elements of a collection. Threads: one at a time.
class IValueEnum : public IUnknown {
  public:
    static constexpr GUID IID = "8269d7cc-4d01-44ea-b112-3d6c49b37c86"_guid; ///< the interface's id

    /// Stores the next element in `out` and returns true; returns false at the end and leaves `out` as it is.
    virtual bool next(GenericValue& out) = 0;

  protected:
    ~IValueEnum() = default;
};

/// A collection that can be walked. Threads: as the collection.
class IValueCollection : public IUnknown {
  public:
    static constexpr GUID IID = "92c124a4-a15d-4662-aaeb-82d9093389c3"_guid; ///< the interface's id

    /// Begins a walk. Changing the collection does not disturb a walk that has begun.
    [[nodiscard]] virtual InterfacePtr<IValueEnum> enumerate() = 0;

  protected:
    ~IValueCollection() = default;
};

/// Returns a walk over the given values, in their order: what a collection of few elements answers to
/// enumerate(). Throws std::bad_alloc.
[[nodiscard]] CORE_API InterfacePtr<IValueEnum> create_value_enum(std::vector<Value> values);

} // namespace core
