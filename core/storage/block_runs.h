// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace core {

/// Blocks of a chain with equal data areas that lie side by side in the file, in chain order.
struct BlockRun {
    std::uint64_t address; ///< of the first block's header
    std::uint64_t size;    ///< of each data area
    std::uint64_t count;   ///< of blocks
    std::uint64_t offset;  ///< in the chain's content, of the first byte

    [[nodiscard]] std::uint64_t end() const noexcept { return offset + size * count; }
};

/// The blocks of a chain as runs: a file written in one go is one run, however large. A value type.
///
/// 1. Runs are in chain order and their offsets follow from each other.
/// 2. No two neighbouring runs could be one.
class BlockRuns {
  public:
    explicit BlockRuns(std::size_t blockHeaderSize) noexcept : headerSize_(blockHeaderSize) {}

    /// Appends blocks that lie side by side.
    void append(std::uint64_t address, std::uint64_t size, std::uint64_t count = 1);
    /// Drops the blocks from the one that begins at `offset` of the content on, or after it; returns them.
    BlockRuns cutAt(std::uint64_t offset);

    [[nodiscard]] const std::vector<BlockRun>& runs() const noexcept { return runs_; }
    [[nodiscard]] bool empty() const noexcept { return runs_.empty(); }
    [[nodiscard]] std::uint64_t count() const noexcept { return count_; }
    /// Bytes in all data areas.
    [[nodiscard]] std::uint64_t capacity() const noexcept { return runs_.empty() ? 0 : runs_.back().end(); }
    /// Bytes of all blocks, headers included.
    [[nodiscard]] std::uint64_t length() const noexcept { return capacity() + count_ * headerSize_; }
    /// The bytes that a run takes in the file.
    [[nodiscard]] std::uint64_t lengthOf(const BlockRun& run) const noexcept {
        return run.count * (headerSize_ + run.size);
    }

    /// A block by the content that it holds.
    struct Block {
        std::uint64_t address; ///< of its header
        std::uint64_t size;    ///< of its data area
        std::uint64_t offset;  ///< in the content, of its first byte
    };
    /// The block that holds the byte at `offset`, which is below capacity().
    [[nodiscard]] Block at(std::uint64_t offset) const noexcept;
    /// The last block; there is one.
    [[nodiscard]] Block last() const noexcept;

    /// Whether any two blocks share a byte.
    [[nodiscard]] bool overlap() const;

  private:
    std::size_t headerSize_;
    std::uint64_t count_ = 0;
    std::vector<BlockRun> runs_;
};

} // namespace core
