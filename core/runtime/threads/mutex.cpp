// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/lock_order.h"
#include "core/runtime/threads/spin.h"
#include "core/runtime/threads/wait_queue.h"

#include <core/runtime/class_entry.h>
#include <core/runtime/threads/errors.h>
#include <core/runtime/threads/mutex.h>

#include <cassert>

namespace core {
namespace detail {
namespace {

/// How long a waiter is passed over by threads that come later but run already. Handing the mutex over at
/// once would make each of them sleep, too.
constexpr auto kPatience = std::chrono::milliseconds(1);

} // namespace

MutexEngine::~MutexEngine() {
    assert(holder_.load() == 0);
    lock_order::forget(this);
}

// The mutex is unlocked by a plain store, which costs a third of a locked write. Between that store and the
// look for waiters stands no fence: a thread that joins the queue makes up for it with a heavy barrier before
// it tries again. Either its try sees the store, or the unlocking thread sees it in the queue.

void MutexEngine::lock() {
    const std::uintptr_t me = thread_number();
    std::uintptr_t holder = 0;
    if (!holder_.compare_exchange_strong(holder, me, std::memory_order_acquire, std::memory_order_relaxed)) {
        if (holder == me) {
            ++again_;
            return;
        }
        lock_order::willWait(this);
        if (spin([&] { return holder_.load(std::memory_order_relaxed) == 0 && tryTakeFree(me); })) {
            lock_order::locked(this);
            return;
        }
        wait_at(*this, 0, std::nullopt, Stops::pass);
    } else {
        lock_order::willWait(this);
    }
    lock_order::locked(this);
}

bool MutexEngine::tryLock() noexcept {
    const bool had = isHeld();
    if (!tryTake(0))
        return false;
    if (!had)
        lock_order::locked(this);
    return true;
}

bool MutexEngine::tryLockFor(std::chrono::milliseconds timeout) {
    check_stop();
    const bool had = isHeld();
    if (!tryTake(0) && (timeout <= std::chrono::milliseconds::zero() ||
                        !wait_at(*this, 0, deadline_after(timeout), Stops::end)))
        return false;
    if (!had)
        lock_order::locked(this);
    return true;
}

void MutexEngine::unlock() {
    if (!isHeld())
        throw_error<ThreadException>(messages::kLockNotHeld);
    release();
}

void MutexEngine::release() noexcept {
    if (again_ != 0) {
        --again_;
        return;
    }
    lock_order::unlocked(this);
    const WaitBucket& bucket = bucket_of(this); // the mutex may be gone after the store
    bool waited = false;
    if (kHasHeavyBarrier) {
        holder_.store(0, std::memory_order_release);
        light_barrier();
        waited = bucket.waiting.load(std::memory_order_relaxed) != 0;
    } else {
        holder_.exchange(0);
        waited = bucket.waiting.load() != 0;
    }
    if (waited)
        admit_waiters(this);
}

bool MutexEngine::isHeld() const noexcept {
    return holder_.load(std::memory_order_relaxed) == thread_number();
}

bool MutexEngine::tryTakeFree(std::uintptr_t me) noexcept {
    std::uintptr_t holder = 0;
    return holder_.compare_exchange_strong(holder, me, std::memory_order_seq_cst, std::memory_order_relaxed);
}

bool MutexEngine::tryTake(std::uint32_t) noexcept {
    const std::uintptr_t me = thread_number();
    if (tryTakeFree(me))
        return true;
    const bool mine = isHeld();
    if (mine)
        ++again_;
    return mine;
}

bool MutexEngine::tryTakeQueued(std::uint32_t) noexcept {
    heavy_barrier();
    return tryTakeFree(thread_number());
}

void MutexEngine::giveBack(std::uint32_t) noexcept {
    release();
}

void MutexEngine::admit(WaitQueue& queue) noexcept {
    while (holder_.load(std::memory_order_relaxed) == 0) {
        Waiter* const first = queue.first();
        if (first == nullptr)
            return;
        if (std::chrono::steady_clock::now() - first->since < kPatience) {
            if (queue.claim(*first, false))
                return; // it tries for itself, and when it fails, the one who was quicker will come here
        } else if (!tryTakeFree(first->number) || queue.claim(*first, true)) {
            return;
        } else {
            holder_.store(0, std::memory_order_release); // that thread has given up
        }
    }
}

} // namespace detail

namespace {

const SCOM_ClassEntryInit<detail::MutexOf<IMutex>, &kMutexClass> kMutexEntry("Mutex");

} // namespace
} // namespace core
