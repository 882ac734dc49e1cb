// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/runtime/threads/wait_queue.h"

namespace core::detail {

/// Calls the private operations of Waitable, which are for the library alone.
struct WaitAccess {
    static bool tryTake(Waitable& object, std::uint32_t way) noexcept { return object.tryTake(way); }
    static bool tryTakeQueued(Waitable& object, std::uint32_t way) noexcept {
        return object.tryTakeQueued(way);
    }
    static void giveBack(Waitable& object, std::uint32_t way) noexcept { object.giveBack(way); }
    static void admit(Waitable& object, WaitQueue& queue) noexcept { object.admit(queue); }
    static Waitable& object(const Awaited& awaited) noexcept { return *awaited.object_; }
    static std::uint32_t way(const Awaited& awaited) noexcept { return awaited.way_; }

    /// Puts a waiter into the queue and lets in the waiters that may go on now; this one may be among them.
    static void join(Waiter& waiter, bool atFront) noexcept {
        WaitQueue queue(waiter.object);
        queue.bucket_.add(waiter, atFront);
        waiter.object->admit(queue);
    }
    /// Takes a waiter out of the queue, if it is still there, and lets in those behind it.
    static void leave(Waiter& waiter) noexcept {
        WaitQueue queue(waiter.object);
        if (!waiter.queued)
            return;
        queue.bucket_.remove(waiter);
        waiter.object->admit(queue);
    }
};

} // namespace core::detail
