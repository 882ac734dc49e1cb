// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/threads/wait_queue.h"

#include <core/runtime/class_entry.h>
#include <core/runtime/threads/semaphore.h>

namespace core {
namespace detail {
namespace {

/// Set while threads are in the queue. As long as it is, nobody takes a signal but who admits them, so that
/// none is passed over.
constexpr std::uint64_t kSomeoneWaits = std::uint64_t{1} << 63;

} // namespace

bool SemaphoreEngine::wait(std::chrono::milliseconds timeout) {
    check_stop();
    return tryTake(0) || (timeout > std::chrono::milliseconds::zero() &&
                          wait_at(*this, 0, deadline_after(timeout), Stops::end));
}

void SemaphoreEngine::waitThroughStops() {
    if (!tryTake(0))
        wait_at(*this, 0, std::nullopt, Stops::pass);
}

void SemaphoreEngine::signal() noexcept {
    const std::uint64_t before = oneTime_ ? state_.fetch_or(1) : state_.fetch_add(1);
    if ((before & kSomeoneWaits) != 0)
        admit_waiters(this); // which finds nobody if the semaphore is gone by now
}

bool SemaphoreEngine::signalled() const noexcept {
    return (state_.load(std::memory_order_acquire) & ~kSomeoneWaits) != 0;
}

bool SemaphoreEngine::tryTake(std::uint32_t) noexcept {
    std::uint64_t state = state_.load(std::memory_order_acquire);
    if (oneTime_)
        return (state & ~kSomeoneWaits) != 0;
    while (state != 0 && (state & kSomeoneWaits) == 0) {
        if (state_.compare_exchange_weak(state, state - 1, std::memory_order_acquire))
            return true;
    }
    return false;
}

void SemaphoreEngine::giveBack(std::uint32_t) noexcept {
    if (!oneTime_)
        signal();
}

void SemaphoreEngine::admit(WaitQueue& queue) noexcept {
    Waiter* first = queue.first();
    if (first != nullptr)
        state_.fetch_or(kSomeoneWaits);
    while (first != nullptr && signalled()) {
        if (queue.claim(*first, true) && !oneTime_)
            state_.fetch_sub(1, std::memory_order_acquire);
        first = queue.first();
    }
    if (first == nullptr)
        state_.fetch_and(~kSomeoneWaits);
}

} // namespace detail

namespace {

const SCOM_ClassEntryInit<detail::SemaphoreOf<ISemaphore, false>, &kSemaphoreClass>
    kSemaphoreEntry("Semaphore");
const SCOM_ClassEntryInit<detail::SemaphoreOf<ISemaphore, true>, &kOneTimeSemaphoreClass>
    kOneTimeEntry("OneTimeSemaphore");

} // namespace
} // namespace core
