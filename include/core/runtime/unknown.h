// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/guid.h>

#include <concepts>

namespace core {

/// The base of every interface: three operations in the first three slots of the table.
///
/// Threads: counts are atomic, so a reference may be taken and released on any thread; the object dies on the
/// thread of the last Release. Ownership: each holder of a counted reference releases it once.
class IUnknown {
  public:
    /// The interface id.
    static constexpr GUID IID = "00000000-0000-0000-c000-000000000046"_guid;

    /// Stores the interface `iid` of this object in `*out` with a reference of its own and
    /// returns kOk, or stores null and returns kNoInterface. Never throws. Every query for
    /// IUnknown on one object gives one pointer.
    virtual HRESULT QueryInterface(const GUID& iid, void** out) noexcept = 0;
    /// Takes a reference; returns the new count.
    virtual std::uint32_t AddRef() noexcept = 0;
    /// Gives a reference back; returns the new count, having destroyed the object when that is 0.
    virtual std::uint32_t Release() noexcept = 0;

  protected:
    IUnknown() = default;
    IUnknown(const IUnknown&) = default;
    IUnknown& operator=(const IUnknown&) = default;
    ~IUnknown() = default; // not virtual and not public: Release is the only way out
};

/// A type that is an interface: it derives from IUnknown and names its interface id.
template <class T>
concept Interface = requires {
    { T::IID } -> std::convertible_to<const GUID&>;
}
&&std::derived_from<T, IUnknown>;

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
