// SPDX-License-Identifier: Apache-2.0
#include "core/storage/container_head.h"

#include "core/storage/checksum.h"
#include "core/storage/flat_files.h"
#include "core/storage/little_endian.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace core {
namespace {

// In the data area of the first table block, in table layout 2.
constexpr std::size_t kSum = 32;
constexpr std::size_t kFiles = 40;
constexpr std::size_t kEnd = 48;
constexpr std::size_t kRootSum = 56;
constexpr std::size_t kFreeSize = 64;
constexpr std::size_t kFreeSum = 72;

std::size_t record_offset(const StorageLayout& layout) noexcept {
    return layout.headerSize() + layout.blockHeaderSize();
}

std::uint64_t head_sum(ContainerHead::Bytes bytes, const StorageLayout& layout) noexcept {
    store_number(bytes.data() + record_offset(layout) + kSum, 0, 8);
    return checksum(std::span(bytes).first(ContainerHead::sizeIn(layout)));
}

bool has_mark(const std::byte* record, std::string_view mark) noexcept {
    return std::memcmp(record, mark.data(), mark.size()) == 0;
}

} // namespace

ContainerHead ContainerHead::empty(const StorageLayout& layout, TableLayout tableLayout) noexcept {
    ContainerHead head;
    head.freeChain = layout.null;
    head.table = {0, kStorageBlockSize, layout.null};
    head.tableLayout = tableLayout;
    head.end = layout.emptyLength();
    return head;
}

ContainerHead ContainerHead::decode(const Bytes& bytes, const StorageLayout& layout) {
    const std::byte* const from = bytes.data();
    ContainerHead head;
    head.freeChain = load_number(from, layout.width);
    head.blockSize = load_number(from + layout.width, layout.width);
    head.counter = load_number(from + 2 * layout.width, 8);
    head.table = decode_block_header(from + layout.headerSize(), layout, layout.headerSize(), true);
    const std::byte* const record = from + record_offset(layout);
    if (has_mark(record, kTreeMark)) {
        head.tableLayout = TableLayout::tree;
        head.files = load_number(record + kFiles, 8);
        head.end = load_number(record + kEnd, 8);
        head.rootSum = load_number(record + kRootSum, 8);
        head.freeSize = load_number(record + kFreeSize, 8);
        head.freeSum = load_number(record + kFreeSum, 8);
    }
    return head;
}

ContainerHead::Bytes ContainerHead::encode(const StorageLayout& layout) const noexcept {
    Bytes bytes{};
    store_number(bytes.data(), freeChain, layout.width);
    store_number(bytes.data() + layout.width, blockSize, layout.width);
    store_number(bytes.data() + 2 * layout.width, counter, 8);
    encode_block_header(bytes.data() + layout.headerSize(), layout, table);
    std::byte* const record = bytes.data() + record_offset(layout);
    const bool isTree = tableLayout == TableLayout::tree;
    const std::string_view mark = isTree ? kTreeMark : kFlatMark;
    std::memcpy(record, mark.data(), mark.size());
    if (isTree) {
        store_number(record + kFiles, files, 8);
        store_number(record + kEnd, end, 8);
        store_number(record + kRootSum, rootSum, 8);
        store_number(record + kFreeSize, freeSize, 8);
        store_number(record + kFreeSum, freeSum, 8);
        store_number(record + kSum, head_sum(bytes, layout), 8);
    }
    return bytes;
}

bool ContainerHead::isSound(const Bytes& bytes, const StorageLayout& layout) const noexcept {
    if (blockSize != kStorageBlockSize || table.size != kStorageBlockSize)
        return false;
    const std::byte* const record = bytes.data() + record_offset(layout);
    if (tableLayout == TableLayout::flat) // a table that is not empty looks at its mark itself
        return table.chainSize != 0 ||
               std::ranges::equal(std::span(record, kStorageBlockSize), FlatFiles::preamble());
    if (encode(layout) != bytes || end < layout.emptyLength() || end > layout.limit())
        return false;
    const bool hasRoot = table.chainSize > kStorageBlockSize && table.next != layout.null;
    if (files == 0)
        return table.chainSize == 0 && table.next == layout.null && freeChain == layout.null &&
               end == layout.emptyLength();
    return hasRoot && (freeChain == layout.null) == (freeSize == 0);
}

std::optional<NodeRef> ContainerHead::filesRoot() const noexcept {
    if (tableLayout == TableLayout::flat || table.chainSize <= kStorageBlockSize)
        return std::nullopt;
    return NodeRef{table.next, table.chainSize - kStorageBlockSize, rootSum};
}

std::optional<NodeRef> ContainerHead::freeRoot(const StorageLayout& layout) const noexcept {
    if (tableLayout == TableLayout::flat || freeChain == layout.null)
        return std::nullopt;
    return NodeRef{freeChain, freeSize, freeSum};
}

void ContainerHead::setFilesRoot(const std::optional<NodeRef>& root, const StorageLayout& layout) noexcept {
    table.chainSize = root ? kStorageBlockSize + root->size : 0;
    table.next = root ? root->address : layout.null;
    rootSum = root ? root->sum : 0;
}

void ContainerHead::setFreeRoot(const std::optional<NodeRef>& root, const StorageLayout& layout) noexcept {
    freeChain = root ? root->address : layout.null;
    freeSize = root ? root->size : 0;
    freeSum = root ? root->sum : 0;
}

} // namespace core
