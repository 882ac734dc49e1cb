// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

namespace core::detail {

/// A block that nobody uses, in a list of them.
struct FreeBlock {
    FreeBlock* next;
};

/// Blocks of one size.
struct FreeList {
    FreeBlock* first = nullptr;
    std::uint32_t count = 0;

    void push(void* block) noexcept;
    FreeBlock* pop() noexcept;
};

inline void FreeList::push(void* block) noexcept {
    first = new (block) FreeBlock{first};
    ++count;
}

inline FreeBlock* FreeList::pop() noexcept {
    FreeBlock* const block = first;
    first = block->next;
    --count;
    return block;
}

inline constexpr std::size_t kBlockGranule = 16; // and what blocks are aligned to
inline constexpr std::size_t kBlockSizes = 16;   // blocks of 16, 32, ... 256 bytes

/// Where the threads get free blocks from, many at a time, and bring those to that they do not keep. It cuts
/// them from chunks of memory, each for one size, and gives a chunk back to the system when all its blocks
/// are free; a few it keeps, because fresh pages cost as much as the work that is done on them.
///
/// `size` is the index of a size among kBlockSizes.
void fetch_blocks(std::size_t size, FreeList& list); ///< of an empty list; throws std::bad_alloc
void return_blocks(std::size_t size, FreeList blocks) noexcept;

} // namespace core::detail
