// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/block_runs.h"

#include <core/storage/layout.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace core {

class BlockReader;

/// A chain of blocks while the library reads it. Its blocks are found as far as they are needed, together
/// with their content, in one pass.
///
/// A chain is damaged when a header is malformed, when blocks lie outside the container, overlap or form a
/// circle, or when they hold fewer bytes than the chain's size. Each is thrown as ChainInFileExc, in time and
/// memory bounded by the size of the container; a circle, after going around it three times at most.
class BlockChain {
  public:
    explicit BlockChain(const StorageLayout& layout) noexcept;

    /// Looks at the first block. `wish` is how many bytes at its address are worth reading at once.
    void open(BlockReader& reader, std::uint64_t address, std::uint64_t wish);
    /// Takes a first block whose header is known.
    void adopt(BlockReader& reader, std::uint64_t address, std::uint64_t chainSize, std::uint64_t size,
               std::uint64_t next);
    /// Takes a chain of blocks of the library's size that lie side by side, as the table says.
    void adoptTogether(BlockReader& reader, std::uint64_t address, std::uint64_t size);
    /// Fills `out` with the content from `offset` on, which reaches so far.
    void readAt(BlockReader& reader, std::uint64_t offset, std::span<std::byte> out);
    /// Returns the whole content. Memory grows with what is read: the chain's size is not believed
    /// beforehand.
    [[nodiscard]] std::vector<std::byte> content(BlockReader& reader);
    /// Finds the blocks up to the one that holds the byte before `offset`.
    void reach(BlockReader& reader, std::uint64_t offset);
    /// Finds all blocks and checks them.
    void walk(BlockReader& reader);

    /// Whether all blocks have been found.
    [[nodiscard]] bool isWalked() const noexcept { return next_ == layout_->null; }
    /// The blocks found so far.
    [[nodiscard]] const BlockRuns& runs() const noexcept { return runs_; }
    /// Bytes of content.
    [[nodiscard]] std::uint64_t size() const noexcept { return size_; }

  private:
    void visit(BlockReader& reader, std::uint64_t address, std::uint64_t size, std::uint64_t next);
    void finish();
    [[nodiscard]] std::uint64_t bytesFor(std::uint64_t content) const noexcept;

    const StorageLayout* layout_;
    BlockRuns runs_;
    std::uint64_t address_;
    std::uint64_t size_ = 0;
    std::uint64_t next_; // the first block that is not in runs_ yet
    // A circle leads back to the milestone, which moves on after 1, 2, 4, 8 … blocks.
    std::uint64_t milestone_;
    std::uint64_t lap_ = 1;
    std::uint64_t lapLeft_ = 1;
};

} // namespace core
