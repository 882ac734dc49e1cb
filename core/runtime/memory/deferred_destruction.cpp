// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/memory/thread_part.h"

#include <core/runtime/internal_class.h>

namespace core {

void detail::destroy_bounded(void* object, void (*destroy)(void*) noexcept) noexcept {
    constexpr std::int32_t kMaxDepth = 64;
    ThreadPart* const part = thread_part();
    if (part == nullptr) {
        destroy(object);
        return;
    }
    if (part->destroyDepth >= kMaxDepth) {
        try {
            part->pending.push_back({object, destroy});
            return;
        } catch (const std::bad_alloc&) { // no memory to wait in: one level deeper is the lesser evil
        }
    }
    ++part->destroyDepth;
    destroy(object);
    if (part->destroyDepth == 1) {
        while (!part->pending.empty()) {
            const ThreadPart::Pending next = part->pending.back();
            part->pending.pop_back();
            next.destroy(next.object);
        }
        if (part->pending.capacity() > 4096)
            std::vector<ThreadPart::Pending>().swap(part->pending);
    }
    --part->destroyDepth;
}

} // namespace core
