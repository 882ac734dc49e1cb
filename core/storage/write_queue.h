// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/block_format.h"

#include <core/files/file.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace core {

/// Gathers neighbouring writes into one call. A failed flush() keeps what it could not write, so that trying
/// again loses nothing.
class WriteQueue {
  public:
    static constexpr std::size_t kCapacity = std::size_t{256} << 10;
    /// The most that can be added at once.
    static constexpr std::size_t kPiece = std::size_t{64} << 10;

    explicit WriteQueue(IFile& file) : file_(file) {}

    /// Room for the `count` bytes at `address`, to be filled in at once; `count` is at most kPiece.
    [[nodiscard]] std::byte* extend(std::uint64_t address, std::size_t count);
    /// Replaces bytes that were written before, wherever they are by now.
    void patch(std::uint64_t address, std::span<const std::byte> bytes);
    [[nodiscard]] bool touches(std::uint64_t address, std::uint64_t count) const noexcept {
        return length_ != 0 && address < address_ + length_ && address_ < address + count;
    }
    void flush();
    /// Forgets what waits: nobody will read it.
    void drop() noexcept { length_ = 0; }
    /// The same for what waits of a region, as far as nothing else was added after it.
    void drop(std::uint64_t begin, std::uint64_t end) noexcept {
        if (begin < address_ + length_ && end >= address_ + length_)
            length_ = begin <= address_ ? 0 : static_cast<std::size_t>(begin - address_);
    }

    /// Adds blocks of the library's size, in pieces; see encode_blocks().
    void addBlocks(std::span<const BlockRange> ranges, std::span<const std::byte> content,
                   const StorageLayout& layout, std::uint64_t chainSize, std::uint64_t next);

  private:
    void makeRoom();

    IFile& file_;
    std::vector<std::byte> bytes_;
    std::uint64_t address_ = 0;
    std::size_t length_ = 0;
};

} // namespace core
