// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/lock_order.h"
#include "core/runtime/threads/spin.h"
#include "core/runtime/threads/wait_queue.h"

#include <core/runtime/class_entry.h>
#include <core/runtime/threads/errors.h>
#include <core/runtime/threads/rw_mutex.h>

#include <cassert>

namespace core {
namespace detail {
namespace {

/// Set while threads are in the queue. As long as it is set, threads come in from the queue only, so that
/// they come in in their order.
constexpr std::uint32_t kQueued = 1U << 31;
constexpr std::uint32_t kWriter = 1U << 30;
constexpr std::uint32_t kReaders = kWriter - 1; // the bits of their count

/// Whether the one who is next may come in.
constexpr bool admits(std::uint32_t state, std::uint32_t way) noexcept {
    return (state & (way == kWriting ? kWriter | kReaders : kWriter)) == 0;
}

/// What one who comes in adds.
constexpr std::uint32_t weight(std::uint32_t way) noexcept {
    return way == kWriting ? kWriter : 1;
}

} // namespace

RWMutexEngine::~RWMutexEngine() {
    assert(state_.load() == 0);
    lock_order::forget(this);
}

void RWMutexEngine::lock(std::uint32_t way) {
    lock_order::willWait(this);
    // One who spins is not in the queue yet: those who come meanwhile may pass it as long as it spins.
    if (!tryTake(way) && !spin([&] { return tryTake(way); }))
        wait_at(*this, way, std::nullopt, Stops::pass);
    lock_order::locked(this);
}

bool RWMutexEngine::tryLock(std::uint32_t way) noexcept {
    if (!tryTake(way))
        return false;
    lock_order::locked(this);
    return true;
}

bool RWMutexEngine::tryLockFor(std::uint32_t way, std::chrono::milliseconds timeout) {
    check_stop();
    if (!tryTake(way) && (timeout <= std::chrono::milliseconds::zero() ||
                          !wait_at(*this, way, deadline_after(timeout), Stops::end)))
        return false;
    lock_order::locked(this);
    return true;
}

void RWMutexEngine::unlock(std::uint32_t way) {
    if ((state_.load(std::memory_order_relaxed) & (way == kWriting ? kWriter : kReaders)) == 0)
        throw_error<ThreadException>(messages::kLockNotHeld);
    giveBack(way);
}

bool RWMutexEngine::tryTake(std::uint32_t way) noexcept {
    std::uint32_t state = state_.load(std::memory_order_relaxed);
    while ((state & kQueued) == 0 && admits(state, way)) {
        if (state_.compare_exchange_weak(state, state + weight(way), std::memory_order_acquire,
                                         std::memory_order_relaxed))
            return true;
    }
    return false;
}

void RWMutexEngine::giveBack(std::uint32_t way) noexcept {
    lock_order::unlocked(this);
    const std::uint32_t after = state_.fetch_sub(weight(way), std::memory_order_acq_rel) - weight(way);
    if (after == kQueued) // the last one has left
        admit_waiters(this);
}

void RWMutexEngine::admit(WaitQueue& queue) noexcept {
    Waiter* first = queue.first();
    if (first != nullptr)
        state_.fetch_or(kQueued);
    // While the bit is set others only leave, so what may come in now may come in a moment later, too.
    while (first != nullptr && admits(state_.load(std::memory_order_acquire), first->way)) {
        const std::uint32_t added = weight(first->way);
        if (queue.claim(*first, true))
            state_.fetch_add(added, std::memory_order_acquire);
        first = queue.first();
    }
    if (first == nullptr)
        state_.fetch_and(~kQueued);
}

} // namespace detail

namespace {

const SCOM_ClassEntryInit<detail::RWMutexOf<IRWMutex>, &kRWMutexClass> kRwMutexEntry("RWMutex");

} // namespace
} // namespace core
