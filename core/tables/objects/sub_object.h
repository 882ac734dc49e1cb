// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/internal_class.h>

namespace core {

/// An object that is a member of another one and shares its count: a reference to it keeps the other alive.
/// `T` names its interfaces as for SCOM_InternalClass.
template <class T>
class SubObject final : public T {
  public:
    template <class... Args>
    explicit SubObject(IUnknown& whole, Args&&... args) : T(std::forward<Args>(args)...), whole_(whole) {}

    HRESULT QueryInterface(const GUID& iid, void** out) noexcept override {
        return query_interface_map(static_cast<T*>(this), detail::interface_map<T>(typename T::Interfaces{}),
                                   iid, out);
    }
    std::uint32_t AddRef() noexcept override { return whole_.AddRef(); }
    std::uint32_t Release() noexcept override { return whole_.Release(); }

  private:
    IUnknown& whole_;
};

} // namespace core
