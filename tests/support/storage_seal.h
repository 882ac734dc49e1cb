// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/checksum.h"
#include "core/storage/little_endian.h"
#include "tests/support/storage_model.h"

#include <cstdint>
#include <cstring>
#include <string_view>

namespace core::test {

/// Gives a damaged container of table layout 2 the checksums of what it holds, so that a reader comes to what
/// is wrong behind them. Other bytes stay as they are.
class Seal {
  public:
    Seal(Bytes& bytes, const StorageLayout& layout) : bytes_(bytes), layout_(layout) {}

    /// False when the bytes are nothing of that kind.
    bool put() {
        constexpr std::string_view kMark = "table of inner files, layout 2\r\n";
        const auto head = static_cast<std::size_t>(layout_.headerSize() + layout_.blockHeaderSize());
        if (bytes_.size() < head + kStorageBlockSize ||
            std::memcmp(bytes_.data() + head, kMark.data(), kMark.size()) != 0)
            return false;
        const std::uint64_t size = field(layout_.headerSize(), 0);
        if (size > kStorageBlockSize)
            store(&bytes_[head + 56], node(field(layout_.headerSize(), 2), size - kStorageBlockSize, 0));
        if (const std::uint64_t free = load_number(&bytes_[head + 64], 8))
            store(&bytes_[head + 72], node(load_number(bytes_.data(), layout_.width), free, 0));
        store_number(&bytes_[head + 32], 0, 8);
        store_number(&bytes_[head + 32], checksum(std::span(bytes_).first(head + kStorageBlockSize)), 8);
        return true;
    }

  private:
    static void store(std::byte* to, std::uint64_t sum) { store_number(to, sum, sizeof sum); }
    /// A number of a block header: 0 the size of the chain, 1 that of the block, 2 the address of the next
    /// one.
    [[nodiscard]] std::uint64_t field(std::uint64_t block, std::size_t index) const {
        const auto* const text =
            reinterpret_cast<const char*>(bytes_.data() + block) + 2 + index * (layout_.digits() + 1);
        return std::strtoull(std::string(text, layout_.digits()).c_str(), nullptr, 16);
    }
    [[nodiscard]] bool isBlock(std::uint64_t address) const {
        return address < bytes_.size() && bytes_.size() - address >= layout_.blockLength(kStorageBlockSize);
    }

    /// The checksum of a content, as far as its chain can be followed.
    std::uint64_t content(std::uint64_t address, std::uint64_t size) {
        Bytes content;
        for (; isBlock(address) && content.size() < size && budget_ != 0; --budget_) {
            const auto data =
                bytes_.begin() + static_cast<std::ptrdiff_t>(address + layout_.blockHeaderSize());
            content.insert(content.end(), data, data + kStorageBlockSize);
            address = field(address, 2);
        }
        content.resize(static_cast<std::size_t>(std::min<std::uint64_t>(size, content.size())));
        return checksum(content);
    }

    /// The checksum of a node, whose blocks lie side by side, with those that it says of others put right.
    std::uint64_t node(std::uint64_t address, std::uint64_t size, int depth) {
        const std::uint64_t step = layout_.blockLength(kStorageBlockSize);
        const std::uint64_t blocks = size / kStorageBlockSize;
        if (size % kStorageBlockSize != 0 || blocks == 0 || blocks > bytes_.size() / step ||
            !isBlock(address) || !isBlock(address + (blocks - 1) * step) || depth > 8 || budget_ < blocks)
            return 0;
        budget_ -= blocks;
        const auto at = [&](std::uint64_t block) {
            return bytes_.begin() +
                   static_cast<std::ptrdiff_t>(address + block * step + layout_.blockHeaderSize());
        };
        Bytes content;
        for (std::uint64_t block = 0; block < blocks; ++block)
            content.insert(content.end(), at(block), at(block) + kStorageBlockSize);
        const bool isFree = content[9] == std::byte{'r'};
        const bool isLeaf = load_number(&content[12], 2) == 0;
        const std::size_t width = layout_.width;
        const std::size_t row =
            isLeaf ? (isFree ? 2 * width : 3 * width + 24) : (isFree ? 3 * width : width) + 16;
        const auto rows = static_cast<std::size_t>(load_number(&content[24], 4));
        for (std::size_t i = 0; i < rows && 32 + (i + 1) * row <= content.size(); ++i) {
            std::byte* const from = &content[32 + i * row];
            if (!isLeaf) {
                store(from + width + 8,
                      node(load_number(from, width), load_number(from + width, 4), depth + 1));
            } else if (!isFree) {
                const std::uint64_t attributes = load_number(from, width);
                store(from + 3 * width + 8,
                      this->content(load_number(from + width, width), load_number(from + 2 * width, width)));
                store(from + 3 * width + 16,
                      this->content(attributes, isBlock(attributes) ? field(attributes, 0) : 0));
            }
        }
        const std::uint64_t sum = checksum(std::span(content).subspan(8));
        store(content.data(), sum);
        for (std::uint64_t block = 0; block < blocks; ++block)
            std::copy_n(content.begin() + static_cast<std::ptrdiff_t>(block * kStorageBlockSize),
                        kStorageBlockSize, at(block));
        return sum;
    }

    Bytes& bytes_;
    const StorageLayout& layout_;
    std::uint64_t budget_ = 20000; // blocks to follow
};

} // namespace core::test
