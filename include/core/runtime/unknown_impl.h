// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/interface_ptr.h>

namespace core {

/// The form of a class whose objects are owned by an enclosing object: it answers queries, but its references
/// count nothing, and Release never frees it. `Impl` is the class itself.
template <class Impl, Interface I>
class IUnknownImpl : public I {
  public:
    HRESULT QueryInterface(const GUID& iid, void** out) noexcept override {
        if (out == nullptr)
            return kNoInterface;
        const bool known = iid == IUnknown::IID || iid == I::IID;
        *out = known ? static_cast<I*>(this) : nullptr;
        return known ? kOk : kNoInterface;
    }
    std::uint32_t AddRef() noexcept override { return 1; }
    std::uint32_t Release() noexcept override { return 1; }

  protected:
    IUnknownImpl() = default;
    ~IUnknownImpl() = default;
};

} // namespace core
