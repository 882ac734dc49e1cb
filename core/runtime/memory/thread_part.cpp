// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/memory/thread_part.h"

#include "core/runtime/immortal.h"

#include <mutex>
#include <new>

namespace core::detail {

constinit thread_local ThreadPart* own_part = nullptr;

namespace {

std::mutex& parts_lock() {
    static Immortal<std::mutex> lock; // threads may end after the library's statics
    return *lock;
}

constinit ThreadPart* parts = nullptr;
constinit thread_local bool ended = false;

/// Gives the thread's part back when the thread ends.
struct PartOwner {
    ~PartOwner() {
        ThreadPart* const part = own_part;
        ended = true;
        own_part = nullptr;
        {
            const std::lock_guard guard(parts_lock());
            fold_live_counts(*part);
            for (ThreadPart** link = &parts; *link != nullptr; link = &(*link)->next) {
                if (*link == part) {
                    *link = part->next;
                    break;
                }
            }
        }
        for (std::size_t size = 0; size < kBlockSizes; ++size)
            return_blocks(size, part->free[size]);
        delete part;
    }
};

} // namespace

ThreadPart* make_thread_part() noexcept {
    if (ended)
        return nullptr;
    auto* const part = new (std::nothrow) ThreadPart;
    if (part == nullptr)
        return nullptr;
    {
        const std::lock_guard guard(parts_lock());
        part->next = parts;
        parts = part;
    }
    own_part = part;
    thread_local PartOwner owner; // constructed here, destroyed with the thread
    static_cast<void>(owner);
    return part;
}

void read_thread_parts(void (*read)(ThreadPart* first, void*), void* context) {
    const std::lock_guard guard(parts_lock());
    read(parts, context);
}

} // namespace core::detail
