// SPDX-License-Identifier: Apache-2.0
#include "core/storage/block_chain.h"

#include "core/storage/block_format.h"
#include "core/storage/block_reader.h"

#include <core/storage/errors.h>

#include <algorithm>
#include <cstring>

namespace core {
namespace {

BlockHeader header_at(std::span<const std::byte> bytes, const StorageLayout& layout, std::uint64_t address,
                      bool first) {
    if (bytes.size() < layout.blockHeaderSize())
        throw ChainInFileExc(address);
    try {
        return decode_block_header(bytes.data(), layout, address, first);
    } catch (const HexConvExc&) {
        throw ChainInFileExc(address);
    }
}

} // namespace

BlockChain::BlockChain(const StorageLayout& layout) noexcept
    : layout_(&layout), runs_(layout.blockHeaderSize()), address_(layout.null), next_(layout.null),
      milestone_(layout.null) {}

void BlockChain::open(BlockReader& reader, std::uint64_t address, std::uint64_t wish) {
    *this = BlockChain(*layout_);
    if (address == layout_->null)
        return;
    const BlockHeader header =
        header_at(reader.at(address, layout_->blockHeaderSize(), wish), *layout_, address, true);
    adopt(reader, address, header.chainSize, header.size, header.next);
}

void BlockChain::adopt(BlockReader& reader, std::uint64_t address, std::uint64_t chainSize,
                       std::uint64_t size, std::uint64_t next) {
    *this = BlockChain(*layout_);
    if (chainSize > reader.end())
        throw ChainInFileExc(address);
    address_ = next_ = address;
    size_ = chainSize;
    visit(reader, address, size, next);
}

void BlockChain::adoptTogether(BlockReader& reader, std::uint64_t address, std::uint64_t size) {
    *this = BlockChain(*layout_);
    const std::uint64_t blocks = (size + kStorageBlockSize - 1) / kStorageBlockSize;
    if (address > reader.end() || blocks > (reader.end() - address) / layout_->blockLength(kStorageBlockSize))
        throw ChainInFileExc(address);
    address_ = address;
    size_ = size;
    runs_.append(address, kStorageBlockSize, blocks);
}

/// Takes the block at the end of the list into it.
void BlockChain::visit(BlockReader& reader, std::uint64_t address, std::uint64_t size, std::uint64_t next) {
    const std::uint64_t end = reader.end();
    const std::uint64_t header = layout_->blockHeaderSize();
    const bool inside = address >= layout_->headerSize() && address <= end && end - address >= header &&
                        end - address - header >= size;
    // Blocks that take more room together than there is must overlap: that ends every circle.
    if (!inside || runs_.length() > end - header - size)
        throw ChainInFileExc(address);
    runs_.append(address, size);
    if (next == address || address == milestone_)
        throw ChainInFileExc(address);
    if (--lapLeft_ == 0) {
        milestone_ = address;
        lapLeft_ = lap_ *= 2;
    }
    next_ = next;
    if (next_ == layout_->null)
        finish();
}

void BlockChain::finish() {
    if (runs_.capacity() < size_ || runs_.overlap())
        throw ChainInFileExc(address_);
}

/// About what blocks of the usual size take in the file.
std::uint64_t BlockChain::bytesFor(std::uint64_t content) const noexcept {
    return (content / kStorageBlockSize + 2) * layout_->blockLength(kStorageBlockSize);
}

void BlockChain::readAt(BlockReader& reader, std::uint64_t offset, std::span<std::byte> out) {
    const std::size_t headerSize = layout_->blockHeaderSize();
    std::uint64_t address = next_;
    std::uint64_t start = runs_.capacity(); // what the block at `address` begins with
    if (offset < start) {
        const BlockRuns::Block block = runs_.at(offset);
        address = block.address;
        start = block.offset;
    }
    std::uint64_t visited = 0;
    while (!out.empty()) {
        if (address == layout_->null)
            throw ChainInFileExc(address_);
        const std::uint64_t windowAddress = address;
        const std::span<const std::byte> bytes =
            reader.at(address, headerSize + std::min(out.size(), kStorageBlockSize),
                      bytesFor(offset - start + out.size()));
        do { // the blocks that follow each other in the window
            const auto block = bytes.subspan(static_cast<std::size_t>(address - windowAddress));
            const BlockHeader header = header_at(block, *layout_, address, false);
            const bool beyond = start == runs_.capacity();
            if (beyond && address == next_)
                visit(reader, address, header.size, header.next);
            else if (header.size > (beyond ? 0 : reader.end()))
                throw ChainInFileExc(address); // not the block that was there before
            if (offset - start < header.size) {
                const std::uint64_t from = headerSize + (offset - start);
                const auto part = static_cast<std::size_t>(
                    std::min<std::uint64_t>(headerSize + header.size - from, out.size()));
                if (block.size() >= from + part)
                    std::memcpy(out.data(), block.data() + from, part);
                else if (!reader.readAround(address + from, out.first(part)))
                    throw ChainInFileExc(address);
                out = out.subspan(part);
                offset += part;
            }
            visited += headerSize + header.size;
            if (visited > reader.end())
                throw ChainInFileExc(address);
            start += header.size;
            address = header.next;
        } while (!out.empty() && address >= windowAddress && address - windowAddress <= bytes.size() &&
                 bytes.size() - (address - windowAddress) >=
                     headerSize + std::min(out.size(), kStorageBlockSize));
    }
    if (runs_.capacity() >= size_)
        walk(reader);
}

std::vector<std::byte> BlockChain::content(BlockReader& reader) {
    constexpr std::uint64_t kBelieved = std::uint64_t{64} << 20;
    constexpr std::uint64_t kStep = std::uint64_t{4} << 20;
    std::vector<std::byte> bytes;
    bytes.reserve(static_cast<std::size_t>(std::min(size_, kBelieved)));
    do {
        const std::size_t done = bytes.size();
        bytes.resize(static_cast<std::size_t>(std::min(size_, done + kStep)));
        readAt(reader, done, std::span(bytes).subspan(done));
    } while (bytes.size() < size_);
    return bytes;
}

void BlockChain::reach(BlockReader& reader, std::uint64_t offset) {
    while (runs_.capacity() < offset && next_ != layout_->null) {
        const std::uint64_t rest = offset - runs_.capacity();
        const auto bytes = reader.at(next_, layout_->blockHeaderSize(), bytesFor(rest));
        const BlockHeader header = header_at(bytes, *layout_, next_, false);
        visit(reader, next_, header.size, header.next);
    }
    if (runs_.capacity() < offset)
        throw ChainInFileExc(address_);
}

void BlockChain::walk(BlockReader& reader) {
    reach(reader, size_);
    while (next_ != layout_->null) { // blocks beyond the content
        const auto bytes = reader.at(next_, layout_->blockHeaderSize(), 0);
        const BlockHeader header = header_at(bytes, *layout_, next_, false);
        visit(reader, next_, header.size, header.next);
    }
}

} // namespace core
