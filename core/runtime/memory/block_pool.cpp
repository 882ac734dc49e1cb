// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/memory/block_pool.h"

#include "core/runtime/memory/counted_block.h"

namespace core {

void* detail::refill_blocks(std::size_t size, ThreadPart* part) {
    FreeList alone;
    FreeList& list = part != nullptr ? part->free[size] : alone;
    fetch_blocks(size, list);
    void* const block = list.pop();
    if (part == nullptr)
        return_blocks(size, list);
    return block;
}

void detail::drain_blocks(void* block, std::size_t size, ThreadPart* part) noexcept {
    FreeList given;
    given.push(block);
    while (part != nullptr && part->free[size].count > ThreadPart::kMaxFree / 2)
        given.push(part->free[size].pop());
    return_blocks(size, given);
}

void* allocate_block(std::size_t size) {
    return detail::take_block(size, detail::thread_part());
}

void free_block(void* block, std::size_t size) noexcept {
    if (block != nullptr)
        detail::give_block(block, size, detail::thread_part());
}

void* detail::allocate_counted(std::size_t size, LiveCounter& counter) {
    return take_counted_block(size, counter);
}

void detail::free_counted(void* block, std::size_t size, LiveCounter& counter) noexcept {
    if (block != nullptr)
        give_counted_block(block, size, counter);
}

} // namespace core
