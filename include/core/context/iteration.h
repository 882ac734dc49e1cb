// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/interface_ptr.h>
#include <core/values/generic_value.h>

namespace core {

/// A walk over the elements of a collection, as a for-each loop makes it.
class IValueEnum : public IUnknown {
  public:
    static constexpr GUID IID = "8269d7cc-4d01-44ea-b112-3d6c49b37c86"_guid;
    /// Stores the next element and returns true, or returns false at the end.
    virtual bool next(GenericValue& out) = 0;

  protected:
    ~IValueEnum() = default;
};

/// A collection that can be walked. Changing it does not disturb a walk that has begun.
class IValueCollection : public IUnknown {
  public:
    static constexpr GUID IID = "92c124a4-a15d-4662-aaeb-82d9093389c3"_guid;
    [[nodiscard]] virtual InterfacePtr<IValueEnum> enumerate() = 0;

  protected:
    ~IValueCollection() = default;
};

} // namespace core
