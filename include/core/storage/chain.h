// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/files/file.h>
#include <core/storage/layout.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace core {

/// One chain of blocks in the file of a container. The content of an inner file, the attributes of an inner
/// file and the table of inner files are each a chain. A value: it says where the blocks lay when read() was
/// called.
///
/// A chain is damaged when a block header is malformed, when blocks lie outside the file, overlap or form a
/// circle, or when they hold fewer bytes than the chain's size. Damage is found in time and memory bounded by
/// the length of the file.
class CORE_API ChainInFile {
  public:
    /// One block of the chain.
    struct Block {
        std::uint64_t address; ///< Offset of the block's header in the file.
        std::uint64_t size;    ///< Bytes of the block's data area.
        /// Whether address and size are equal.
        friend bool operator==(const Block&, const Block&) = default;
    };

    /// Makes the empty chain. `layout` is borrowed for as long as the object lives; the two layouts live for
    /// ever.
    explicit ChainInFile(const StorageLayout& layout = kStorageLayout32) noexcept;

    /// Finds all blocks of the chain whose first block is at the offset `address`; the null address is the
    /// empty chain. Throws StorageException with `url` when the chain is damaged, and FileException when
    /// `file` cannot be read. The object is unchanged then. Takes no lock: nobody may change the container
    /// meanwhile.
    void read(IFile& file, std::uint64_t address, const wstring& url);
    /// Returns the content, size() bytes, which it reads from `file`. Throws StorageException with `url` when
    /// the file ends before the chain does, and FileException when `file` cannot be read or the content is
    /// too large for the memory.
    [[nodiscard]] std::vector<std::byte> content(IFile& file, const wstring& url) const;

    /// Returns the blocks in chain order. The reference is valid until the next read().
    [[nodiscard]] const std::vector<Block>& blocks() const noexcept { return blocks_; }
    /// Returns the bytes of content, as the first block records them.
    [[nodiscard]] std::uint64_t size() const noexcept { return size_; }
    /// Returns the address of the first block, or the layout's null address for the empty chain.
    [[nodiscard]] std::uint64_t address() const noexcept {
        return blocks_.empty() ? layout_->null : blocks_.front().address;
    }

  private:
    const StorageLayout* layout_;
    std::vector<Block> blocks_;
    std::uint64_t size_ = 0;
};

/// A chain in the 64-bit layout.
class CORE_API ChainInFile64 : public ChainInFile {
  public:
    /// Makes the empty chain.
    ChainInFile64() noexcept : ChainInFile(kStorageLayout64) {}
};

} // namespace core
