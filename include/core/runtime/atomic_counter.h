// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cassert>
#include <cstdint>
#include <limits>

namespace core {

/// The counting of an object's holders: atomic changes that return the new value. Whoever
/// decrements gives back what it holds, and only a holder increments, but for the first; the counts
/// are not made for anything else.
struct AtomicCounter {
    static std::int32_t increment(std::int32_t& count) noexcept {
        const std::int32_t before = std::atomic_ref(count).fetch_add(1, std::memory_order_relaxed);
        assert(before != std::numeric_limits<std::int32_t>::max());
        return before + 1;
    }

    /// The caller that is told 0 owns the object alone and sees all that other holders wrote to it.
    static std::int32_t decrement(std::int32_t& count) noexcept {
        // The last holder needs no locked write: nobody else is left who could change the count.
        if (std::atomic_ref(count).load(std::memory_order_acquire) == 1) {
            std::atomic_ref(count).store(0, std::memory_order_relaxed);
            return 0;
        }
        return std::atomic_ref(count).fetch_sub(1, std::memory_order_acq_rel) - 1;
    }
};

} // namespace core
