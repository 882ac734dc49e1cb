// SPDX-License-Identifier: Apache-2.0
#include "core/runtime/memory/block_store.h"

#include "core/runtime/immortal.h"

#include <array>
#include <mutex>
#include <new>

namespace core::detail {
namespace {

constexpr std::size_t kChunkSize = std::size_t{64} * 1024; // and what its address is a multiple of
constexpr std::uint32_t kFetched = 256;                    // blocks at the most
constexpr std::uint32_t kSpareChunks = 256;

/// Begins a chunk. A block finds the chunk that it lies in by its address.
struct Chunk {
    Chunk* previous = nullptr; // among those of its size that have free blocks
    Chunk* next = nullptr;
    FreeList free;
    std::uint32_t used = 0;
    std::uint32_t cut = kFirstBlock; // up to where blocks have been cut from it

    static constexpr std::uint32_t kFirstBlock = 64;

    static Chunk* of(FreeBlock* block) noexcept {
        return reinterpret_cast<Chunk*>(reinterpret_cast<std::uintptr_t>(block) & ~(kChunkSize - 1));
    }
    [[nodiscard]] bool isFull(std::size_t blockSize) const noexcept {
        return free.first == nullptr && cut + blockSize > kChunkSize;
    }
    void* take(std::size_t blockSize) noexcept {
        ++used;
        if (free.first != nullptr)
            return free.pop();
        void* const block = reinterpret_cast<std::byte*>(this) + cut;
        cut += static_cast<std::uint32_t>(blockSize);
        return block;
    }
};
static_assert(sizeof(Chunk) <= Chunk::kFirstBlock && Chunk::kFirstBlock % kBlockGranule == 0);

/// All chunks that have free blocks; full ones are found by their blocks alone.
class Store {
  public:
    void fetch(std::size_t size, FreeList& list) {
        const std::size_t blockSize = (size + 1) * kBlockGranule;
        const std::lock_guard guard(lock_);
        Chunk*& open = open_[size];
        if (open == nullptr)
            open = makeChunk();
        Chunk& chunk = *open;
        // The list hands the blocks out in the order of their addresses.
        FreeBlock** last = &list.first;
        for (; list.count < kFetched && !chunk.isFull(blockSize); ++list.count) {
            *last = new (chunk.take(blockSize)) FreeBlock{nullptr};
            last = &(*last)->next;
        }
        if (chunk.isFull(blockSize))
            unlink(size, chunk);
    }

    void take(std::size_t size, FreeList blocks) noexcept {
        const std::size_t blockSize = (size + 1) * kBlockGranule;
        const std::lock_guard guard(lock_);
        while (blocks.first != nullptr) {
            FreeBlock* const block = blocks.pop();
            Chunk& chunk = *Chunk::of(block);
            if (chunk.isFull(blockSize))
                link(size, chunk);
            chunk.free.push(block);
            if (--chunk.used == 0) {
                unlink(size, chunk);
                dropChunk(chunk);
            }
        }
    }

  private:
    Chunk* makeChunk() {
        if (spare_ == nullptr)
            return new (::operator new(kChunkSize, std::align_val_t(kChunkSize))) Chunk;
        Chunk* const chunk = spare_;
        spare_ = chunk->next;
        --spares_;
        return new (chunk) Chunk;
    }
    void dropChunk(Chunk& chunk) noexcept {
        if (spares_ == kSpareChunks)
            return ::operator delete(&chunk, std::align_val_t(kChunkSize));
        chunk.next = spare_;
        spare_ = &chunk;
        ++spares_;
    }
    void link(std::size_t size, Chunk& chunk) noexcept {
        chunk.previous = nullptr;
        chunk.next = open_[size];
        if (chunk.next != nullptr)
            chunk.next->previous = &chunk;
        open_[size] = &chunk;
    }
    void unlink(std::size_t size, Chunk& chunk) noexcept {
        (chunk.previous != nullptr ? chunk.previous->next : open_[size]) = chunk.next;
        if (chunk.next != nullptr)
            chunk.next->previous = chunk.previous;
    }

    std::mutex lock_;
    std::array<Chunk*, kBlockSizes> open_{};
    Chunk* spare_ = nullptr;
    std::uint32_t spares_ = 0;
};

Store& store() noexcept {
    static Immortal<Store> all; // blocks are freed after the library's statics
    return *all;
}

} // namespace

void fetch_blocks(std::size_t size, FreeList& list) {
    store().fetch(size, list);
}

void return_blocks(std::size_t size, FreeList blocks) noexcept {
    store().take(size, blocks);
}

} // namespace core::detail
