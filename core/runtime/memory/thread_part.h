// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/runtime/memory/block_store.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace core::detail {

/// What one thread keeps for the runtime, so that making and destroying objects writes to no memory that
/// other threads write to: free blocks, its part of the live counts, and how deep it stands in destructors.
struct ThreadPart {
    static constexpr std::uint32_t kMaxFree = 1024; // blocks kept of one size
    static constexpr std::int32_t kMaxCounters =
        512; // classes counted here; further ones are counted outside

    struct Pending {
        void* object;
        void (*destroy)(void*) noexcept;
    };

    std::array<FreeList, kBlockSizes> free;
    std::array<std::int32_t, kMaxCounters> live{}; // written by this thread only, read by reports
    std::int32_t destroyDepth = 0;
    std::vector<Pending> pending;
    ThreadPart* next = nullptr; // in the list of all parts
};

// Reached without a call. The loader has little room for such variables in a running program, and everything
// that the library declares `thread_local` takes of it: large ones are kept behind a pointer.
#if defined(__GLIBC__)
[[gnu::tls_model("initial-exec")]]
#endif
extern constinit thread_local ThreadPart* own_part;

/// Makes the calling thread's part; null when the thread is ending or there is no memory.
ThreadPart* make_thread_part() noexcept;

/// The calling thread's part, or null as above.
inline ThreadPart* thread_part() noexcept {
    ThreadPart* const part = own_part;
    return part != nullptr ? part : make_thread_part();
}

/// Calls `read` with the first of the parts of all living threads, null without any, under the lock that also
/// covers their ends.
void read_thread_parts(void (*read)(ThreadPart* first, void*), void* context);

/// What the counters take from a thread that ends; called with its part, under that lock.
void fold_live_counts(const ThreadPart& part) noexcept;

} // namespace core::detail
