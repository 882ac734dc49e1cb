// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/interface_ptr.h>

namespace core {

/// Makes objects of one class.
class IClassFactory : public IUnknown {
  public:
    static constexpr GUID IID = "00000001-0000-0000-c000-000000000046"_guid;

    /// Stores the interface `iid` of a new object in `*out` with a reference. `outer` must be
    /// null: no class of this library can be a part of another object's identity. May throw what
    /// the class's constructor throws.
    virtual HRESULT CreateInstance(IUnknown* outer, const GUID& iid, void** out) = 0;
    /// Has no effect; the library stays loaded as long as its process needs it.
    virtual HRESULT LockServer(bool lock) noexcept = 0;

  protected:
    ~IClassFactory() = default;
};

} // namespace core
