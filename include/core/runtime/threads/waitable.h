// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/runtime/api.h>

#include <chrono>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>

/// Waiting: for one thing, for the first of several, for all of several.
///
/// Times are counted by the system's steady clock. A time-out of zero or less does not wait; one of a century
/// and more is for ever. A wait with a time-out throws ThreadDeath in a thread that was asked to stop.
namespace core {

namespace detail {
struct WaitAccess;
class WaitQueue;
} // namespace detail

/// A time-out that never passes.
inline constexpr std::chrono::milliseconds kForever = std::chrono::milliseconds::max();

/// What threads wait at: the inner part of each mutex, semaphore and thread. It is not destroyed while a
/// thread holds it or waits at it.
class CORE_API Waitable {
  public:
    Waitable(const Waitable&) = delete;
    Waitable& operator=(const Waitable&) = delete;

  protected:
    Waitable() = default;
    ~Waitable() = default;

  private:
    friend struct detail::WaitAccess;

    // `way` tells the ways apart in which one object can be taken, as reading and writing.
    /// Takes it for the calling thread if that needs no waiting and passes over nobody who may not be passed.
    virtual bool tryTake(std::uint32_t way) noexcept = 0;
    /// The same once more for a thread that has just joined the queue, where a release may not have seen it.
    virtual bool tryTakeQueued(std::uint32_t way) noexcept;
    /// Gives back what the calling thread took.
    virtual void giveBack(std::uint32_t way) noexcept = 0;
    /// Lets in, or wakes, those at the head of the queue who may go on. Called under the lock of the queue.
    virtual void admit(detail::WaitQueue& queue) noexcept = 0;
};

/// One of the things that wait_any() and wait_all() wait for: a mutex, a semaphore, a thread (for its end),
/// or what reading() and writing() make of a read-write mutex. Borrows the object.
class Awaited {
  public:
    /// Waits for `object`, which must outlive the wait.
    template <class T>
    requires requires(T& object) {
        { object.waitable() } -> std::same_as<Waitable&>;
    }
    Awaited(T& object) noexcept : Awaited(object.waitable(), 0) {}
    /// Waits for `object` in one of its ways; reading() and writing() know them.
    Awaited(Waitable& object, std::uint32_t way) noexcept : object_(&object), way_(way) {}

  private:
    friend struct detail::WaitAccess;

    Waitable* object_;
    std::uint32_t way_;
};

/// Waits until the calling thread has taken one of `objects`: locked a mutex, used up a signal, or seen a
/// thread end. Returns its index; nothing when `timeout` passed first. When several can be had at once, it is
/// one with a low index. Throws ThreadDeath.
[[nodiscard]] CORE_API std::optional<std::size_t> wait_any(std::span<const Awaited> objects,
                                                           std::chrono::milliseconds timeout = kForever);
/// The same for a list that is written at the call.
[[nodiscard]] inline std::optional<std::size_t> wait_any(std::initializer_list<Awaited> objects,
                                                         std::chrono::milliseconds timeout = kForever) {
    return wait_any(std::span<const Awaited>(objects.begin(), objects.size()), timeout);
}

/// Waits until the calling thread has taken all of `objects`, none of which is named twice. While it waits it
/// holds none of them, so that two such waits cannot block each other. False, with nothing taken, when
/// `timeout` passed first. Throws ThreadDeath, and ThreadException for an object that is named twice.
[[nodiscard]] CORE_API bool wait_all(std::span<const Awaited> objects,
                                     std::chrono::milliseconds timeout = kForever);
/// The same for a list that is written at the call.
[[nodiscard]] inline bool wait_all(std::initializer_list<Awaited> objects,
                                   std::chrono::milliseconds timeout = kForever) {
    return wait_all(std::span<const Awaited>(objects.begin(), objects.size()), timeout);
}

} // namespace core
