// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/runtime/memory/thread_part.h"

#include <core/runtime/live_counter.h>

#include <atomic>
#include <new>

/// The memory of small counted objects and their live counts, taken from the thread's own part in one go.
/// Inline for the library's own values; other classes call the functions of live_counter.h.
namespace core {

/// What the runtime may do with a LiveCounter.
struct LiveCounterAccess {
    /// The counter's index in every thread's part.
    static std::int32_t index(LiveCounter& counter) noexcept {
        const std::int32_t index = std::atomic_ref(counter.index_).load(std::memory_order_acquire);
        return index != 0 ? index : join(counter);
    }
    static void add(LiveCounter& counter, std::int32_t change, detail::ThreadPart* part) noexcept {
        const std::int32_t at = index(counter);
        if (part == nullptr || at >= detail::ThreadPart::kMaxCounters)
            return addOutside(at, change);
        // Only this thread writes its part, so no locked instruction is needed.
        const std::atomic_ref own(part->live[static_cast<std::size_t>(at)]);
        own.store(own.load(std::memory_order_relaxed) + change, std::memory_order_relaxed);
    }

    /// Makes the counter's record, once, and returns its index; 0 without memory.
    static std::int32_t join(LiveCounter& counter) noexcept;
    /// Counts in the record itself.
    static void addOutside(std::int32_t index, std::int32_t change) noexcept;
    /// Takes the index from a counter that is still there, so that it makes a new record when it counts
    /// again.
    static void leave(LiveCounter& counter) noexcept {
        std::atomic_ref(counter.index_).store(0, std::memory_order_relaxed);
    }
    static std::int32_t indexOrNone(const LiveCounter& counter) noexcept {
        return std::atomic_ref(const_cast<LiveCounter&>(counter).index_).load(std::memory_order_acquire);
    }
};

namespace detail {

// The sanitizers see a use after free only when blocks really are freed.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kPooled = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
inline constexpr bool kPooled = false;
#else
inline constexpr bool kPooled = true;
#endif
#else
inline constexpr bool kPooled = true;
#endif

/// The index of a size among those of blocks; kBlockSizes and above are not pooled.
inline std::size_t block_size_index(std::size_t size) noexcept {
    return size == 0 ? 0 : (size - 1) / kBlockGranule;
}

/// The system's own block, for sizes that are not pooled. On some 32-bit hosts a plain `new` aligns to 8
/// bytes.
inline void* take_system_block(std::size_t size) {
    if constexpr (__STDCPP_DEFAULT_NEW_ALIGNMENT__ >= kBlockAlignment)
        return ::operator new(size);
    else
        return ::operator new(size, std::align_val_t(kBlockAlignment));
}
inline void give_system_block(void* block) noexcept {
    if constexpr (__STDCPP_DEFAULT_NEW_ALIGNMENT__ >= kBlockAlignment)
        ::operator delete(block);
    else
        ::operator delete(block, std::align_val_t(kBlockAlignment));
}

/// For the rare case: nothing is left of the size, or there is no thread part any more.
void* refill_blocks(std::size_t size, ThreadPart* part);
/// The thread keeps as much as it may, or has no part any more.
void drain_blocks(void* block, std::size_t size, ThreadPart* part) noexcept;

/// `part` is the calling thread's, or null.
inline void* take_block(std::size_t size, ThreadPart* part) {
    const std::size_t index = block_size_index(size);
    if (!kPooled || index >= kBlockSizes)
        return take_system_block(size);
    if (part != nullptr && part->free[index].first != nullptr)
        return part->free[index].pop();
    return refill_blocks(index, part);
}

inline void give_block(void* block, std::size_t size, ThreadPart* part) noexcept {
    const std::size_t index = block_size_index(size);
    if (!kPooled || index >= kBlockSizes)
        return give_system_block(block);
    if (part == nullptr || part->free[index].count == ThreadPart::kMaxFree)
        return drain_blocks(block, index, part);
    part->free[index].push(block);
}

inline void* take_counted_block(std::size_t size, LiveCounter& counter) {
    ThreadPart* const part = thread_part();
    void* const block = take_block(size, part);
    LiveCounterAccess::add(counter, 1, part);
    return block;
}

inline void give_counted_block(void* block, std::size_t size, LiveCounter& counter) noexcept {
    ThreadPart* const part = thread_part();
    LiveCounterAccess::add(counter, -1, part);
    give_block(block, size, part);
}

} // namespace detail
} // namespace core
