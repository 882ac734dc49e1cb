// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/block_format.h"
#include "core/storage/tree_node.h"

#include <core/storage/layout.h>

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace core {

/// How the table of inner files and the free space are written.
enum class TableLayout { flat = 1, tree = 2 };

/// What a container begins with: its header, and the first block of the table behind it. In table layout 2
/// that block's data area says where the roots of the trees are. All that a commit replaces of it, in one
/// write, lies within the first sector.
struct ContainerHead {
    static constexpr std::size_t kMaxSize = 24 + 55 + kStorageBlockSize;
    using Bytes = std::array<std::byte, kMaxSize>;

    static constexpr std::string_view kFlatMark = "table of inner files, layout 1\r\n";
    static constexpr std::string_view kTreeMark = "table of inner files, layout 2\r\n";

    std::uint64_t freeChain = 0; ///< first block of the free chain or tree, null when nothing is free
    std::uint64_t blockSize = kStorageBlockSize;
    std::uint64_t counter = 0; ///< of changes
    BlockHeader table{};

    TableLayout tableLayout = TableLayout::flat;
    // In table layout 2 only.
    std::uint64_t files = 0;
    std::uint64_t end = 0; ///< of the container
    std::uint64_t rootSum = 0;
    std::uint64_t freeSize = 0;
    std::uint64_t freeSum = 0;

    /// Bytes of the whole head.
    [[nodiscard]] static constexpr std::size_t sizeIn(const StorageLayout& layout) noexcept {
        return layout.headerSize() + layout.blockHeaderSize() + kStorageBlockSize;
    }
    /// Bytes that a commit replaces.
    [[nodiscard]] std::size_t changingSize(const StorageLayout& layout) const noexcept {
        return sizeIn(layout) - kStorageBlockSize + (tableLayout == TableLayout::tree ? kRecord : 0);
    }
    /// An empty container's.
    [[nodiscard]] static ContainerHead empty(const StorageLayout& layout, TableLayout tableLayout) noexcept;

    /// The roots of the trees; table layout 1 has none.
    [[nodiscard]] std::optional<NodeRef> filesRoot() const noexcept;
    [[nodiscard]] std::optional<NodeRef> freeRoot(const StorageLayout& layout) const noexcept;
    void setFilesRoot(const std::optional<NodeRef>& root, const StorageLayout& layout) noexcept;
    void setFreeRoot(const std::optional<NodeRef>& root, const StorageLayout& layout) noexcept;

    /// Throws what decode_block_header() throws.
    [[nodiscard]] static ContainerHead decode(const Bytes& bytes, const StorageLayout& layout);
    [[nodiscard]] Bytes encode(const StorageLayout& layout) const noexcept;
    /// Whether it says what the library would write: in table layout 2 its checksum is right, and its parts
    /// do not contradict each other.
    [[nodiscard]] bool isSound(const Bytes& bytes, const StorageLayout& layout) const noexcept;

  private:
    static constexpr std::size_t kRecord = 80; // bytes of the data area that mean something in table layout 2
};

static_assert(ContainerHead::sizeIn(kStorageLayout64) == ContainerHead::kMaxSize);

} // namespace core
