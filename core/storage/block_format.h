// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <core/storage/layout.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace core {

/// What stands before a block's data area, all in text: CR LF, three numbers each followed by a blank, CR LF.
struct BlockHeader {
    std::uint64_t chainSize; ///< bytes of the whole chain; counts in its first block only
    std::uint64_t size;      ///< bytes of this block's data area
    std::uint64_t next;      ///< address of the next block, null in the last
};

/// Reads the header at `from`, which has as many bytes as the layout says, of the block at `address`. The
/// chain's size is looked at in a first block only. Throws HexConvExc and ChainInFileExc.
[[nodiscard]] BlockHeader decode_block_header(const std::byte* from, const StorageLayout& layout,
                                              std::uint64_t address, bool first);
void encode_block_header(std::byte* to, const StorageLayout& layout, const BlockHeader& header) noexcept;

/// Where the numbers that are known last stand in a block header, and how they are written.
[[nodiscard]] constexpr std::size_t chain_size_offset() noexcept {
    return 2;
}
[[nodiscard]] constexpr std::size_t next_offset(const StorageLayout& layout) noexcept {
    return 2 + 2 * (layout.digits() + 1);
}
void encode_number(std::byte* to, const StorageLayout& layout, std::uint64_t number) noexcept;

/// Blocks of the library's size that lie side by side.
struct BlockRange {
    std::uint64_t address;
    std::uint64_t count;
};

/// The number of blocks that hold `size` bytes.
[[nodiscard]] constexpr std::uint64_t blocks_for(std::uint64_t size) noexcept {
    return (size + kStorageBlockSize - 1) / kStorageBlockSize;
}

/// Cuts the first `count` blocks off `ranges`, which have as many; `step` is the length of one.
[[nodiscard]] std::vector<BlockRange> split_off(std::vector<BlockRange>& ranges, std::uint64_t count,
                                                std::uint64_t step);

/// Writes `count` such blocks with `content`, the last one filled up with zeros, to `to`. The first block
/// says `chainSize`, the last one `next`.
void encode_blocks(std::byte* to, const StorageLayout& layout, BlockRange range,
                   std::span<const std::byte> content, std::uint64_t chainSize, std::uint64_t next) noexcept;

} // namespace core
