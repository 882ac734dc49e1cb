// SPDX-License-Identifier: Apache-2.0
#include "core/storage/write_queue.h"

#include <core/files/file_io.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace core {

std::byte* WriteQueue::extend(std::uint64_t address, std::size_t count) {
    if (length_ != 0 && address != address_ + length_)
        flush();
    else if (length_ + count > kCapacity)
        makeRoom();
    if (length_ == 0)
        address_ = address;
    if (bytes_.size() < length_ + count) // a small container never touches the whole capacity
        bytes_.resize(std::min(kCapacity, std::max(length_ + count, 2 * bytes_.size())));
    std::byte* const room = bytes_.data() + length_;
    length_ += count;
    return room;
}

/// Writes all except the last bytes, up to where the system's pages begin: parts of
/// pages are what it is slow at.
void WriteQueue::makeRoom() {
    constexpr std::uint64_t kPages = std::uint64_t{16} << 10;
    const std::uint64_t end = (address_ + length_) / kPages * kPages;
    const auto whole = static_cast<std::size_t>(end - address_);
    write_all_at(file_, address_, std::span(bytes_).first(whole));
    std::memmove(bytes_.data(), bytes_.data() + whole, length_ - whole);
    address_ = end;
    length_ -= whole;
}

void WriteQueue::patch(std::uint64_t address, std::span<const std::byte> bytes) {
    if (address >= address_ && address + bytes.size() <= address_ + length_) {
        std::memcpy(bytes_.data() + (address - address_), bytes.data(), bytes.size());
        return;
    }
    if (touches(address, bytes.size()))
        flush();
    write_all_at(file_, address, bytes);
}

void WriteQueue::flush() {
    if (length_ == 0)
        return;
    write_all_at(file_, address_, std::span(bytes_).first(length_));
    length_ = 0;
}

void WriteQueue::addBlocks(std::span<const BlockRange> ranges, std::span<const std::byte> content,
                           const StorageLayout& layout, std::uint64_t chainSize, std::uint64_t next) {
    const std::uint64_t step = layout.blockLength(kStorageBlockSize);
    const std::uint64_t atOnce = kPiece / step;
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        const std::uint64_t behind = i + 1 < ranges.size() ? ranges[i + 1].address : next;
        for (std::uint64_t done = 0; done < ranges[i].count;) {
            const BlockRange piece{ranges[i].address + done * step, std::min(atOnce, ranges[i].count - done)};
            const bool last = done + piece.count == ranges[i].count;
            const auto part = content.first(std::min<std::size_t>(
                content.size(), static_cast<std::size_t>(piece.count) * kStorageBlockSize));
            std::byte* const to = extend(piece.address, static_cast<std::size_t>(piece.count * step));
            encode_blocks(to, layout, piece, part, std::exchange(chainSize, 0),
                          last ? behind : piece.address + piece.count * step);
            content = content.subspan(part.size());
            done += piece.count;
        }
    }
}

} // namespace core
