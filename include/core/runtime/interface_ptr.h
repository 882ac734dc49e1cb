// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/unknown.h>

#include <cstddef>
#include <type_traits>
#include <utility>

namespace core {

namespace detail {

/// A pointer that converts by itself. IUnknown is left out: which of an object's pointers stands for its
/// identity is for the object to say.
template <class U, class T>
concept IsUpcast = std::same_as<U, T> ||(std::convertible_to<U*, T*> && !std::same_as<T, IUnknown>);

} // namespace detail

/// The counting policy of interface objects, and the conversion between interface types.
template <class T>
struct ComRefcount {
    /// Takes a reference to `object`, which must not be null.
    static void acquire(T* object) noexcept { object->AddRef(); }
    /// Gives a reference to `object` back, which must not be null.
    static void release(T* object) noexcept { object->Release(); }

    /// Returns the interface `T` of `object` with a reference that the caller owns. Returns null when the
    /// object does not have it or is null.
    [[nodiscard]] static T* cast(IUnknown* object) noexcept requires Interface<T> {
        void* answer = nullptr;
        if (object != nullptr)
            object->QueryInterface(T::IID, &answer);
        return static_cast<T*>(answer);
    }
};

/// Holds one counted reference to an interface, or null. Copies count; moves and borrowed pointers do not.
/// Building it from a pointer to a different interface queries the object and gives null when it has no `T`.
template <class T>
class InterfacePtr {
  public:
    InterfacePtr() = default;
    /// Makes a null pointer.
    InterfacePtr(std::nullptr_t) noexcept {}
    /// Takes a reference to `object`; null is allowed.
    InterfacePtr(T* object) noexcept : object_(object) {
        if (object_ != nullptr)
            object_->AddRef();
    }
    InterfacePtr(const InterfacePtr& other) noexcept : InterfacePtr(other.object_) {}
    InterfacePtr(InterfacePtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}

    /// Takes a reference to an interface that derives from `T`: no query is needed.
    template <class U>
    requires(!std::same_as<U, T> && detail::IsUpcast<U, T>) InterfacePtr(U* object)
    noexcept : InterfacePtr(static_cast<T*>(object)) {}
    /// Queries any other interface for `T`; null when the object does not have it.
    template <class U>
    requires(!detail::IsUpcast<U, T> && requires(U * object, void** out) {
        object->QueryInterface(T::IID, out);
    }) explicit InterfacePtr(U* object) noexcept {
        void* answer = nullptr;
        if (object != nullptr)
            object->QueryInterface(T::IID, &answer);
        object_ = static_cast<T*>(answer);
    }
    /// Takes a reference to the object of `other`, an interface that derives from `T`: no query is needed.
    template <class U>
    requires(!std::same_as<U, T> && detail::IsUpcast<U, T>) InterfacePtr(const InterfacePtr<U>& other)
    noexcept : InterfacePtr(static_cast<T*>(other.get())) {}
    /// Queries the object of `other` for `T`; null when the object does not have it.
    template <class U>
    requires(!detail::IsUpcast<U, T>) explicit InterfacePtr(const InterfacePtr<U>& other) noexcept
        : InterfacePtr(other.get()) {}

    ~InterfacePtr() {
        if (object_ != nullptr)
            object_->Release();
    }

    /// Releases what it holds and takes over what `other` holds.
    InterfacePtr& operator=(InterfacePtr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    /// Returns a pointer that takes over a reference which the caller owns.
    [[nodiscard]] static InterfacePtr adopt(T* object) noexcept {
        InterfacePtr result;
        result.object_ = object;
        return result;
    }

    // modify
    /// Releases what it holds; it is null afterwards.
    void reset() noexcept { *this = InterfacePtr(); }
    /// Returns the object with its reference, which the caller now owns; this pointer is null afterwards.
    [[nodiscard]] T* detach() noexcept { return std::exchange(object_, nullptr); }
    /// Exchanges what two pointers hold.
    friend void swap(InterfacePtr& a, InterfacePtr& b) noexcept { std::swap(a.object_, b.object_); }

    // inspect
    /// Returns the object, borrowed: valid as long as a reference is held. May be null.
    [[nodiscard]] T* get() const noexcept { return object_; }
    /// Returns the object, which must not be null.
    T* operator->() const noexcept { return object_; }
    /// Returns the object, which must not be null.
    T& operator*() const noexcept { return *object_; }
    /// Whether it holds an object.
    explicit operator bool() const noexcept { return object_ != nullptr; }
    friend bool operator==(const InterfacePtr& a, const InterfacePtr& b) noexcept {
        return a.object_ == b.object_;
    }
    friend bool operator==(const InterfacePtr& a, const T* b) noexcept { return a.object_ == b; }

    // query
    /// Returns the same object through the interface `U`; null when it does not have it.
    template <class U>
    [[nodiscard]] InterfacePtr<U> query() const noexcept {
        return InterfacePtr<U>(object_);
    }

  private:
    T* object_ = nullptr;
};

} // namespace core
