// SPDX-License-Identifier: Apache-2.0
#include "core/storage/block_reader.h"

#include "core/storage/write_queue.h"

#include <core/files/errors.h>
#include <core/files/file_io.h>

#include <algorithm>

namespace core {
namespace {

// A small inner file, attributes and all, is one call; the largest window stays
// within the processor's caches.
constexpr std::size_t kLeast = 2048;
constexpr std::size_t kMost = std::size_t{256} << 10;

} // namespace

std::span<const std::byte> BlockReader::at(std::uint64_t address, std::size_t need, std::uint64_t wish) {
    if (address >= address_ && address - address_ < length_) {
        const std::size_t skip = static_cast<std::size_t>(address - address_);
        if (length_ - skip >= need)
            return std::span<const std::byte>(window_).subspan(skip, length_ - skip);
    }
    std::uint64_t most = std::clamp<std::uint64_t>(wish, kLeast, kMost);
    if (address < end_) // asking beyond the end would cost a second call to learn of it
        most = std::min(most, end_ - address);
    const std::size_t fetch = std::max(need, static_cast<std::size_t>(most));
    if (window_.size() < fetch)
        window_.resize(fetch);
    settle(address, fetch);
    length_ = 0;
    try {
        length_ = read_all_at(file_, address, std::span(window_).first(fetch));
    } catch (const FileException&) {
        if (fetch == need)
            throw;
        length_ = read_all_at(file_, address, std::span(window_).first(need)); // the bad place lies behind
    }
    address_ = address;
    return std::span<const std::byte>(window_).first(length_);
}

bool BlockReader::readAround(std::uint64_t address, std::span<std::byte> bytes) {
    settle(address, bytes.size());
    return read_all_at(file_, address, bytes) == bytes.size();
}

void BlockReader::settle(std::uint64_t address, std::uint64_t length) {
    if (queue_ != nullptr && queue_->touches(address, length))
        queue_->flush();
}

} // namespace core
