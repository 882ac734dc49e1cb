// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/process.h>
#include <core/values/type.h>

#include <vector>

namespace core {

/// Finds types by id and by name: the primitive ones, and those of every class that the modules of the
/// process declare. A service; threads: all operations are safe.
class ITypeValueService : public IUnknown {
  public:
    static constexpr GUID IID = "c9c8dcc3-479f-448b-99db-ddecab1b483c"_guid;

    /// The type object, borrowed, or null.
    [[nodiscard]] virtual IType* findType(const GUID& id) = 0;
    /// By its name in either language, in any case.
    [[nodiscard]] virtual IType* findType(wstring_view name) = 0;
    /// The type whose objects have this class id.
    [[nodiscard]] virtual IType* findTypeOfClass(const GUID& clsid) = 0;
    /// All types, primitive ones first, the others by English name.
    [[nodiscard]] virtual std::vector<IType*> types() = 0;

  protected:
    ~ITypeValueService() = default;
};

} // namespace core
