// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>
#include <core/storage/block_runs.h>
#include <core/storage/chain_error.h>
#include <core/storage/layout.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace core {

class BlockReader;

/// One chain of blocks: the content of an inner file, of its attributes, of the container's table. Its blocks
/// are found out as far as they are needed, while their content is read, in one pass.
///
/// A chain is damaged when a header is malformed, when blocks lie outside the container, overlap or go round
/// in a circle, or when they hold less than the chain's size; each is found in time and memory bounded by the
/// size of the container.
class CORE_API ChainInFile {
  public:
    struct Block {
        std::uint64_t address;
        std::uint64_t size; ///< of its data area
        friend bool operator==(const Block&, const Block&) = default;
    };

    explicit ChainInFile(const StorageLayout& layout = kStorageLayout32) noexcept;

    /// Reads the whole list of blocks of the chain that begins at `address`; the null address is the empty
    /// chain. Throws StorageException with `url` when it is damaged.
    void read(IFile& file, std::uint64_t address, const wstring& url);

    /// The blocks found so far, in chain order.
    [[nodiscard]] std::vector<Block> blocks() const;
    [[nodiscard]] const BlockRuns& runs() const noexcept { return runs_; }
    /// Bytes of content.
    [[nodiscard]] std::uint64_t size() const noexcept { return size_; }
    /// The first block, or null.
    [[nodiscard]] std::uint64_t address() const noexcept { return address_; }

    // Inside the library; damage is thrown as ChainInFileExc.

    /// Looks at the first block. `wish` is how many bytes at its address are worth reading at once.
    void open(BlockReader& reader, std::uint64_t address, std::uint64_t wish);
    /// Takes on a first block whose header is known.
    void adopt(BlockReader& reader, std::uint64_t address, std::uint64_t chainSize, std::uint64_t size,
               std::uint64_t next);
    /// Fills `out` with the content from `position` on, which reaches so far.
    void readAt(BlockReader& reader, std::uint64_t position, std::span<std::byte> out);
    /// The whole content. Memory grows with what is read: the chain's size is not believed beforehand.
    [[nodiscard]] std::vector<std::byte> content(BlockReader& reader);
    /// Finds the blocks out up to the one that holds the byte before `position`.
    void reach(BlockReader& reader, std::uint64_t position);
    /// Finds all blocks out and checks them.
    void walk(BlockReader& reader);

  private:
    void visit(BlockReader& reader, std::uint64_t address, std::uint64_t size, std::uint64_t next);
    void finish();
    [[nodiscard]] std::uint64_t bytesFor(std::uint64_t content) const noexcept;

    const StorageLayout* layout_;
    BlockRuns runs_;
    std::uint64_t address_;
    std::uint64_t size_ = 0;
    std::uint64_t next_; // the first block that is not in runs_ yet
};

class CORE_API ChainInFile64 : public ChainInFile {
  public:
    ChainInFile64() noexcept : ChainInFile(kStorageLayout64) {}
};

} // namespace core
