// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/process.h>
#include <core/values/type.h>

#include <vector>

namespace core {

/// Finds types by id and by name: the primitive ones, and those of every class that the modules of the
/// process declare. A service. Any thread may call it.
class ITypeValueService : public IUnknown {
  public:
    /// The interface's id.
    static constexpr GUID IID = "c9c8dcc3-479f-448b-99db-ddecab1b483c"_guid;

    /// Returns the type object with a type id, borrowed as long as its module is loaded; null if none exists.
    [[nodiscard]] virtual IType* findType(const GUID& id) = 0;
    /// Returns the type object with a name in either language, in any case; null if none exists.
    [[nodiscard]] virtual IType* findType(wstring_view name) = 0;
    /// Returns the type object of the objects that have a class id; null if none exists.
    [[nodiscard]] virtual IType* findTypeOfClass(const GUID& clsid) = 0;
    /// Returns all type objects, primitive ones first, the others by English name.
    [[nodiscard]] virtual std::vector<IType*> types() = 0;

  protected:
    ~ITypeValueService() = default;
};

} // namespace core
