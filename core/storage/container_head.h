// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/block_format.h"

#include <core/storage/layout.h>

#include <array>
#include <cstdint>
#include <span>

namespace core {

/// The container's header and the header of the table's first block, which follows it: what one write of a
/// commit replaces. All of it lies within the first sector.
struct ContainerHead {
    static constexpr std::size_t kMaxSize = 79;
    using Bytes = std::array<std::byte, kMaxSize>;

    std::uint64_t freeChain = 0; ///< first block of the free chain, null when nothing is free
    std::uint64_t blockSize = kStorageBlockSize;
    std::uint64_t counter = 0; ///< of changes
    BlockHeader table{};

    [[nodiscard]] static constexpr std::size_t sizeIn(const StorageLayout& layout) noexcept {
        return layout.headerSize() + layout.blockHeaderSize();
    }
    /// An empty container's.
    [[nodiscard]] static ContainerHead empty(const StorageLayout& layout) noexcept;

    /// Throws what decode_block_header() throws.
    [[nodiscard]] static ContainerHead decode(const Bytes& bytes, const StorageLayout& layout);
    [[nodiscard]] Bytes encode(const StorageLayout& layout) const noexcept;
};

static_assert(ContainerHead::sizeIn(kStorageLayout64) == ContainerHead::kMaxSize);

} // namespace core
