// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/runtime/threads/thread_record.h"

#include <core/runtime/threads/waitable.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>

/// How threads wait. The objects they wait at are one or two words; the queues stand here, in buckets that
/// the address of an object leads to.
///
/// Rules:
/// 1. A waiter is in the queue of its object from before it sleeps until it is admitted or gives up. Queues
///    change under the lock of their bucket.
/// 2. Who admits a waiter claims its thread, once. A thread that gives up claims itself. So nobody is
/// admitted
///    to two objects, and nothing is given to a thread that has gone.
/// 3. A thread that waited passes through the lock of each of its buckets before it goes on: who admitted it
/// is
///    then done with the object, which may be destroyed.
/// 4. After a release another thread may destroy the object. So a release finds the queue by the address
/// alone
///    and touches the object only if somebody waits at it.
namespace core::detail {

/// What may become of a thread that waits; from 0 on it is the index of the waiter that was admitted.
inline constexpr std::int32_t kStillWaiting = -1;
inline constexpr std::int32_t kGaveUp = -2;

/// One thread at one object. It lies on the stack of the thread.
struct Waiter {
    Waitable* object = nullptr;
    std::uint32_t way = 0;
    bool owns = false; // whether the admission gave it the object; if not, it tries to take it
    bool queued = false;
    std::int32_t index = 0;
    std::atomic<std::int32_t>* claim = nullptr;
    ThreadRecord* thread = nullptr;
    std::uintptr_t number = 0; // of the thread
    std::chrono::steady_clock::time_point since;
    Waiter* next = nullptr;
    Waiter* previous = nullptr;
};

/// The queues of all objects whose addresses lead here, in one list.
struct alignas(64) WaitBucket {
    std::mutex lock;
    std::atomic<std::uint32_t> waiting{0}; // how many; changed under the lock, read without it
    Waiter* first = nullptr;
    Waiter* last = nullptr;

    void add(Waiter& waiter, bool atFront) noexcept;
    void remove(Waiter& waiter) noexcept;
};

/// The bucket of an object, which need no longer live.
[[nodiscard]] WaitBucket& bucket_of(const Waitable* object) noexcept;

/// The queue of one object under the lock of its bucket. The threads that it claims are woken when the lock
/// is given back.
class WaitQueue {
  public:
    explicit WaitQueue(const Waitable* object) noexcept;
    WaitQueue(const WaitQueue&) = delete;
    WaitQueue& operator=(const WaitQueue&) = delete;
    ~WaitQueue();

    /// The waiter that came first; null when nobody waits.
    [[nodiscard]] Waiter* first() const noexcept;
    /// Takes a waiter out of the queue and claims its thread; false when the thread had given up. `owns`
    /// tells it whether it has the object now.
    bool claim(Waiter& waiter, bool owns) noexcept;

  private:
    friend struct WaitAccess;

    static constexpr std::size_t kKept = 8; // further ones are woken at once

    const Waitable* object_;
    WaitBucket& bucket_;
    std::array<ThreadRecord*, kKept> woken_{};
    std::size_t wokenCount_ = 0;
};

/// Lets in those who wait at an object and may go on now. Called after a release; the object need no longer
/// live.
void admit_waiters(const Waitable* object) noexcept;

/// Whether a stop may end a wait.
enum class Stops { end, pass };

/// Waits until one of the waiters, which name object and way, has its object. Returns its index, or nothing
/// when the deadline passed first. Throws ThreadDeath if stops may end it, and std::bad_alloc before it
/// waits.
std::optional<std::size_t> wait_at(std::span<Waiter> waiters, const Deadline& deadline, Stops stops);
/// The same for one object.
bool wait_at(Waitable& object, std::uint32_t way, const Deadline& deadline, Stops stops);

/// Throws ThreadDeath if the calling thread was asked to stop.
void check_stop();

/// Makes each other thread of the process see what the calling thread has written, and the calling thread see
/// what they had written: the dear half of a fence whose cheap half is light_barrier().
void heavy_barrier() noexcept;
/// Whether there is a heavy barrier; without one, both sides need ordinary fences.
extern const bool kHasHeavyBarrier;
/// Keeps the compiler from moving what stands after it before it.
inline void light_barrier() noexcept {
    std::atomic_signal_fence(std::memory_order_seq_cst);
}

} // namespace core::detail
