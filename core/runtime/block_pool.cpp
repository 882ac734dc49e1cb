// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/thread_part.h"

#include <core/runtime/block_pool.h>

#include <new>

namespace core {
namespace {

using detail::ThreadPart;

// The sanitizers see a use after free only when blocks really are freed.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kPooled = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool kPooled = false;
#else
constexpr bool kPooled = true;
#endif
#else
constexpr bool kPooled = true;
#endif

constexpr std::size_t size_index(std::size_t size) {
    return (size + ThreadPart::kGranule - 1) / ThreadPart::kGranule - 1;
}

} // namespace

void* allocate_block(std::size_t size) {
    if (size == 0)
        size = 1;
    const std::size_t index = size_index(size);
    if (!kPooled || index >= ThreadPart::kSizes)
        return ::operator new(size);
    if (ThreadPart* const part = detail::thread_part()) {
        ThreadPart::FreeList& list = part->free[index];
        if (ThreadPart::FreeBlock* const block = list.first) {
            list.first = block->next;
            --list.count;
            return block;
        }
    }
    return ::operator new((index + 1) * ThreadPart::kGranule);
}

void free_block(void* block, std::size_t size) noexcept {
    if (block == nullptr)
        return;
    const std::size_t index = size_index(size == 0 ? 1 : size);
    if (kPooled && index < ThreadPart::kSizes) {
        if (ThreadPart* const part = detail::thread_part()) {
            ThreadPart::FreeList& list = part->free[index];
            if (list.count < ThreadPart::kMaxFree) {
                list.first = new (block) ThreadPart::FreeBlock{list.first};
                ++list.count;
                return;
            }
        }
    }
    ::operator delete(block);
}

} // namespace core
