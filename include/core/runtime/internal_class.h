// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/interface_ptr.h>
#include <core/runtime/refcount.h>

#include <array>
#include <cstddef>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

namespace core {

/// A row of a class's interface map: the interface at `offset` bytes from the start of the object. A null id
/// ends the map; kind 1, the only kind, means that the interface is part of the object itself.
struct InterfaceMapEntry {
    const GUID* iid;       ///< the interface id, null in the last row
    std::ptrdiff_t offset; ///< of the interface, in bytes from the start of the object
    int kind;              ///< 1
};

/// Answers a query through an interface map. A query for IUnknown is answered with the first row, so that it
/// yields one pointer whatever interface is asked. A null object, map or output gives kNoInterface.
CORE_API HRESULT query_interface_map(void* object, const InterfaceMapEntry* map, const GUID& iid,
                                     void** out) noexcept;

/// The interfaces that a class answers queries for, in the order of its bases; the first is its identity.
template <Interface... Is>
struct InterfaceList {};

namespace detail {

/// Runs `destroy(object)`, but not deeper than some levels on one stack: objects let go of below
/// that are kept back and destroyed when the stack has unwound, so that a chain of a million
/// owners does not overflow it.
CORE_API void destroy_bounded(void* object, void (*destroy)(void*) noexcept) noexcept;

template <class T, class... Is>
const InterfaceMapEntry* interface_map(InterfaceList<Is...>) noexcept {
    static_assert(sizeof...(Is) > 0, "a component has at least one interface");
    static const auto map = [] {
        // Offsets of bases are taken from an address at which no object need stand.
        alignas(T) static std::byte place[sizeof(T)];
        T* const object = reinterpret_cast<T*>(place);
        const auto offset = [&](auto* base) { return reinterpret_cast<std::byte*>(base) - place; };
        return std::array<InterfaceMapEntry, sizeof...(Is) + 1>{
            InterfaceMapEntry{&Is::IID, offset(static_cast<Is*>(object)), 1}...,
            InterfaceMapEntry{nullptr, 0, 0}};
    }();
    return map.data();
}

} // namespace detail

/// The concrete, counted form of a class `T` that implements interfaces: it adds the three operations of
/// IUnknown and the count, and is made by create(). `T` names its interfaces: `using Interfaces =
/// InterfaceList<IA, IB>;`.
///
/// Threads: counting is atomic; everything else is `T`'s own business.
template <class T>
class SCOM_InternalClass final : public T {
  public:
    /// Returns a new object with one reference. Null when there is no memory; throws what the constructor of
    /// `T` throws otherwise.
    template <class... Args>
    [[nodiscard]] static InterfacePtr<SCOM_InternalClass> create(Args&&... args) {
        try {
            auto* const object = new SCOM_InternalClass(std::forward<Args>(args)...);
            object->count_ = 1; // nobody else can see it yet
            return InterfacePtr<SCOM_InternalClass>::adopt(object);
        } catch (const std::bad_alloc&) {
            return nullptr;
        }
    }

    HRESULT QueryInterface(const GUID& iid, void** out) noexcept override {
        const HRESULT result = query_interface_map(static_cast<T*>(this), interfaceMap(), iid, out);
        if constexpr (requires { T::queryOther(iid, out); }) {
            if (result != kOk && out != nullptr)
                return T::queryOther(iid, out);
        }
        return result;
    }
    std::uint32_t AddRef() noexcept override {
        return static_cast<std::uint32_t>(detail::HolderCount::acquire(count_));
    }
    std::uint32_t Release() noexcept override {
        const std::int32_t count = detail::HolderCount::release(count_);
        if (count != 0)
            return static_cast<std::uint32_t>(count);
        if constexpr (std::is_trivially_destructible_v<T>) { // lets go of nothing
            delete this;
        } else {
            count_ = kDying; // a reference taken and released by the destructor must not destroy twice
            detail::destroy_bounded(
                this, [](void* object) noexcept { delete static_cast<SCOM_InternalClass*>(object); });
        }
        return 0;
    }

    /// Returns the interface map of the class, valid for the whole program.
    [[nodiscard]] static const InterfaceMapEntry* interfaceMap() noexcept {
        return detail::interface_map<T>(typename T::Interfaces{});
    }
    /// Returns how many objects of the class are alive.
    [[nodiscard]] static std::int32_t liveCount() noexcept { return live_counter<T>.count(); }

    // The live count goes with the memory, so that one visit to the thread's own part serves both.
    /// Takes memory for one object and counts it; throws std::bad_alloc.
    static void* operator new(std::size_t size) {
        static_assert(alignof(T) <= detail::kBlockAlignment, "blocks are aligned no further");
        return detail::allocate_counted(size, live_counter<T>);
    }
    /// Gives the memory of one object back and counts it.
    static void operator delete(void* block, std::size_t size) noexcept {
        detail::free_counted(block, size, live_counter<T>);
    }

  private:
    static constexpr std::int32_t kDying = std::numeric_limits<std::int32_t>::min() / 2;

    template <class... Args>
    explicit SCOM_InternalClass(Args&&... args) : T(std::forward<Args>(args)...) {}
    ~SCOM_InternalClass() = default; // NOLINT(modernize-use-override): not every T has a virtual one

    std::int32_t count_ = 0;
};

/// Returns a new object with one reference, never null. Throws std::bad_alloc, and what the constructor of
/// `T` throws.
template <class T, class... Args>
[[nodiscard]] InterfacePtr<SCOM_InternalClass<T>> make_object(Args&&... args) {
    auto object = SCOM_InternalClass<T>::create(std::forward<Args>(args)...);
    if (!object)
        throw std::bad_alloc();
    return object;
}

} // namespace core
