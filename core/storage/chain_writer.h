// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/block_chain.h"
#include "core/storage/block_format.h"
#include "core/storage/block_reader.h"
#include "core/storage/checksum.h"
#include "core/storage/space_locks.h"
#include "core/storage/write_queue.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace core {

class StorageEngine;

/// The content of an inner file while it is written. What is committed stays as it is:
///
/// 1. the first blocks are fresh and may be written over; they hold the content up to freshEnd();
/// 2. the rest is that of the file as it was, up to baseLimit_, and is shared with it;
/// 3. no content lies beyond both.
///
/// Writing to block n makes all blocks up to n fresh, since each block holds the address of the next. Fresh
/// blocks are reserved: free in every committed state, and pinned, so that only who needs more of them takes
/// a turn. The content to begin with is pinned, too. The caller holds the container's mutex, and gives an
/// object up after a call that failed.
class ChainWriter {
  public:
    /// `base` is the first block of the content to begin with, null for none. The caller holds a Reading.
    ChainWriter(StorageEngine& engine, std::uint64_t base);
    ~ChainWriter();
    ChainWriter(const ChainWriter&) = delete;
    ChainWriter& operator=(const ChainWriter&) = delete;

    [[nodiscard]] std::uint64_t size() const noexcept { return size_; }
    [[nodiscard]] bool isTouched() const noexcept { return touched_; }
    /// Throws if the layout cannot address a content that reaches so far; to be asked before something is
    /// written there, since what lies before it is filled with zeros first.
    void requireRoom(std::uint64_t offset, std::uint64_t count) const;
    void readAt(std::uint64_t offset, std::span<std::byte> out);
    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes);
    void truncate(std::uint64_t size);

    struct Result {
        std::uint64_t address; ///< of the first block
        std::uint64_t size;    ///< of the content
        std::uint64_t sum;     ///< the checksum of the content
        bool isTogether;       ///< whether the blocks lie side by side
        BlockRuns fresh;       ///< the blocks that it is made of, besides those that it shares with the base
        BlockRuns released;    ///< what the base used and the new content does not
    };
    /// Makes a whole chain of it, which may go on with blocks of the base when `mayShare`, and writes
    /// everything; to go on, begin() again. The fresh blocks stay pinned until discard().
    [[nodiscard]] Result finish(bool mayShare);
    /// Begins with the content of the chain at `address`. The caller holds a Reading.
    void begin(std::uint64_t address);
    /// Ends the writing. What is reserved and has not been taken into use is free for all.
    void discard() noexcept;
    /// The content to begin with, its blocks as far as they were needed.
    [[nodiscard]] const BlockChain& base() const noexcept { return base_; }

  private:
    [[nodiscard]] std::uint64_t freshEnd() const noexcept { return fresh_.capacity(); }
    void overwrite(std::uint64_t offset, std::span<const std::byte> bytes);
    void append(std::uint64_t offset, std::span<const std::byte> bytes);
    void grow(std::span<const std::byte> content);
    [[nodiscard]] std::vector<BlockRange> takeReserved(std::uint64_t blocks);
    void write(std::span<const BlockRange> ranges, std::span<const std::byte> content, std::uint64_t next);
    void patch(std::uint64_t address, std::span<const std::byte> bytes);
    void carry(std::uint64_t until);
    void fillWithZeros(std::uint64_t until);
    void readBase(std::uint64_t offset, std::span<std::byte> out);
    void patchNumber(std::uint64_t address, std::uint64_t number);
    void clearSlack();
    [[nodiscard]] std::uint64_t sum();

    StorageEngine& engine_;
    WriteQueue queue_;
    BlockReader reader_;
    SpaceLocks::Ranges pinned_;       // the base, and everything that was reserved since
    std::vector<BlockRange> reserve_; // what of it holds no content yet
    std::uint64_t ahead_;             // blocks to reserve at once
    BlockChain base_;
    std::uint64_t baseLimit_;
    BlockRuns fresh_;
    std::uint64_t guess_; // what the last fresh block says of the next one
    std::uint64_t size_;
    bool touched_ = false;
    bool cut_ = false; // content was cut off within a block
    // Of what was written one after the other, from the start of the content.
    Checksum summed_;
    std::uint64_t summedEnd_ = 0;
};

} // namespace core
