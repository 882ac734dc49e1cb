// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/live_counter.h>

#include <atomic>
#include <cassert>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

/// Shared ownership of plain objects, those without interfaces.
namespace core {

/// A signed 32-bit count that any number of threads change: atomic read-modify-writes that return the new
/// value.
struct AtomicCounter {
    /// Adds one and returns the new value.
    static std::int32_t increment(std::int32_t& count) noexcept {
        return std::atomic_ref(count).fetch_add(1, std::memory_order_relaxed) + 1;
    }
    /// Takes one away and returns the new value. The caller that gets 0 sees all that other threads wrote
    /// before they took theirs away.
    static std::int32_t decrement(std::int32_t& count) noexcept {
        return std::atomic_ref(count).fetch_sub(1, std::memory_order_acq_rel) - 1;
    }
};

namespace detail {

/// The counting of an object's holders: a caller of release() gives back what it holds, and only a holder
/// calls acquire(), except for the first one. That is more than AtomicCounter knows, and saves the last
/// holder the locked write.
struct HolderCount {
    /// Adds one holder; returns the new count.
    static std::int32_t acquire(std::int32_t& count) noexcept {
        const std::int32_t now = AtomicCounter::increment(count);
        assert(now != std::numeric_limits<std::int32_t>::min());
        return now;
    }
    /// Takes one holder away; returns the new count. The caller that gets 0 owns the object alone and sees
    /// all that other holders wrote to it.
    static std::int32_t release(std::int32_t& count) noexcept {
        // Nobody else is left who could change the count of a last holder.
        if (std::atomic_ref(count).load(std::memory_order_acquire) == 1) {
            std::atomic_ref(count).store(0, std::memory_order_relaxed);
            return 0;
        }
        return AtomicCounter::decrement(count);
    }
};

/// A class whose objects may be destroyed through their base `T`.
template <class U, class T>
concept DestroysAs = !std::same_as<U, T> && std::convertible_to<U*, T*> && std::has_virtual_destructor_v<T>;

} // namespace detail

/// A base with one count that starts at 0. It deletes nothing: the caller of release() that gets 0 does.
template <class T, class Counter = AtomicCounter>
class Refcountable : private LiveObjectTrackerImpl<T> {
  public:
    /// Adds one holder; returns the new count.
    std::int32_t acquire() noexcept { return Counter::increment(count_); }
    /// Takes one holder away; returns the new count. The caller that gets 0 owns the object alone.
    [[nodiscard]] std::int32_t release() noexcept { return Counter::decrement(count_); }

    using LiveObjectTrackerImpl<T>::liveCount;

  protected:
    Refcountable() noexcept = default;
    Refcountable(const Refcountable& other) noexcept
        : LiveObjectTrackerImpl<T>(other) {} // a copy has no holders yet
    Refcountable& operator=(const Refcountable&) noexcept { return *this; }
    ~Refcountable() = default;

  private:
    std::int32_t count_ = 0;
};

/// Policy: the count is inside the object, which is `new`-allocated and has acquire() and release().
template <class T>
struct IntrinsicRefcount {
    /// Adds one holder to `object`, which must not be null.
    static void acquire(T* object) noexcept { object->acquire(); }
    /// Takes one holder away from `object`, which must not be null, and destroys it when that was the last.
    static void release(T* object) noexcept {
        if (object->release() == 0)
            deallocate(object);
    }
    /// Destroys and frees `object` without looking at the count; null is ignored.
    static void deallocate(T* object) noexcept {
        static_assert(!std::is_polymorphic_v<T> || std::has_virtual_destructor_v<T> || std::is_final_v<T>);
        delete object;
    }
};

/// Policy: the count is the 4 bytes in front of the object, in the same block, which begins early enough for
/// the object's own alignment. Objects are made by allocate().
template <class T, class Counter = AtomicCounter>
struct ExtrinsicRefcount {
    /// Returns a new object with count 0. Throws what the allocation or the constructor throws, keeping
    /// nothing.
    template <class... Args>
    [[nodiscard]] static T* allocate(Args&&... args) {
        auto* const block = static_cast<std::byte*>(::operator new(kOffset + sizeof(T), kAlignment));
        try {
            new (block + kOffset - sizeof(std::int32_t)) std::int32_t(0);
            return new (block + kOffset) T(std::forward<Args>(args)...);
        } catch (...) {
            ::operator delete(block, kAlignment);
            throw;
        }
    }
    /// Adds one holder to `object`, which must not be null.
    static void acquire(T* object) noexcept { Counter::increment(count(object)); }
    /// Takes one holder away from `object`, which must not be null, and destroys it when that was the last.
    static void release(T* object) noexcept {
        if (Counter::decrement(count(object)) == 0)
            deallocate(object);
    }
    /// Destroys the object and frees its block without looking at the count; null is ignored.
    static void deallocate(T* object) noexcept {
        if (object == nullptr)
            return;
        object->~T();
        ::operator delete(reinterpret_cast<std::byte*>(object) - kOffset, kAlignment);
    }
    /// Returns the count of `object`, valid as long as the object.
    [[nodiscard]] static std::int32_t& count(T* object) noexcept {
        return *std::launder(
            reinterpret_cast<std::int32_t*>(reinterpret_cast<std::byte*>(object) - sizeof(std::int32_t)));
    }

  private:
    static constexpr std::size_t kOffset = alignof(T) > sizeof(std::int32_t) ? alignof(T)
                                                                             : sizeof(std::int32_t);
    static constexpr std::align_val_t kAlignment{kOffset};
};

/// What SharedPtr and CountedPtr have in common: one raw pointer, null allowed, counted by `Policy`. `Self`
/// is the pointer class itself.
template <class T, class Self, class Policy>
class SmartPtrBase {
  public:
    SmartPtrBase() = default;
    /// Adds one holder to `object`; null is allowed.
    SmartPtrBase(T* object) noexcept : object_(object) { acquire(); }
    SmartPtrBase(const SmartPtrBase& other) noexcept : object_(other.object_) { acquire(); }
    SmartPtrBase(SmartPtrBase&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ~SmartPtrBase() { release(); }
    /// Releases what it holds and takes over what `other` holds.
    SmartPtrBase& operator=(SmartPtrBase other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    /// Raises the count of the pointee, if there is one.
    void acquire() const noexcept {
        if (object_ != nullptr)
            Policy::acquire(object_);
    }

    /// Returns the object, borrowed: valid as long as it has a holder. May be null.
    [[nodiscard]] T* get() const noexcept { return object_; }
    /// Returns the object, which must not be null.
    T* operator->() const noexcept { return object_; }
    /// Returns the object, which must not be null.
    T& operator*() const noexcept { return *object_; }
    /// Whether it holds an object.
    explicit operator bool() const noexcept { return object_ != nullptr; }
    friend bool operator==(const SmartPtrBase& a, const SmartPtrBase& b) noexcept {
        return a.object_ == b.object_;
    }

  private:
    void release() noexcept {
        if (object_ != nullptr)
            Policy::release(object_);
    }

    T* object_ = nullptr;
};

/// Makes `target` hold `source`, a pointer of the same kind or a plain one, and releases what it held. Both
/// may be the same.
template <class T, class Self, class Policy>
void assign(SmartPtrBase<T, Self, Policy>& target, const std::type_identity_t<Self>& source) noexcept {
    static_cast<Self&>(target) = source;
}

/// A shared pointer to an object that carries its count. It converts to one of a base class that destroys the
/// whole object.
template <class T, class Policy = IntrinsicRefcount<T>>
class SharedPtr : public SmartPtrBase<T, SharedPtr<T, Policy>, Policy> {
  public:
    using SmartPtrBase<T, SharedPtr, Policy>::SmartPtrBase;
    /// Adds one holder to the object of a pointer to a derived class.
    template <class U>
    requires detail::DestroysAs<U, T> SharedPtr(const SharedPtr<U>& other)
    noexcept : SharedPtr(other.get()) {}
};

/// A shared pointer to an object with the count in front of it.
template <class T, class Policy = ExtrinsicRefcount<T, AtomicCounter>>
class CountedPtr : public SmartPtrBase<T, CountedPtr<T, Policy>, Policy> {
  public:
    using SmartPtrBase<T, CountedPtr, Policy>::SmartPtrBase;

    /// Returns the only holder of a new object. Throws what the allocation or the constructor throws.
    template <class... Args>
    [[nodiscard]] static CountedPtr make(Args&&... args) {
        return CountedPtr(Policy::allocate(std::forward<Args>(args)...));
    }
};

} // namespace core
