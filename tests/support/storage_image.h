// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/storage_model.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace core::test {

/// A container written by hand, piece by piece: blocks of any size in any order, and whatever may be wrong
/// with them.
class StorageImage {
  public:
    explicit StorageImage(const StorageLayout& layout)
        : layout_(layout), bytes_(layout.emptyLength()), table_(layout) {}

    [[nodiscard]] std::uint64_t end() const noexcept { return bytes_.size(); }

    /// Appends a block whose data area begins with `data`.
    std::uint64_t block(std::uint64_t chainSize, std::span<const std::byte> data, std::uint64_t size,
                        std::uint64_t next) {
        const std::uint64_t address = end();
        bytes_.resize(address + layout_.blockLength(size));
        header(address, chainSize, size, next);
        std::copy(data.begin(), data.end(), at(address + layout_.blockHeaderSize()));
        return address;
    }
    void header(std::uint64_t address, std::uint64_t chainSize, std::uint64_t size, std::uint64_t next) {
        const std::size_t digits = layout_.digits();
        const std::string text =
            "\r\n" + hex(chainSize, digits) + " " + hex(size, digits) + " " + hex(next, digits) + " \r\n";
        std::memcpy(&*at(address), text.data(), text.size());
    }
    /// Appends a chain with data areas of these sizes, the last block first; `gap` bytes before each block
    /// are free.
    std::uint64_t chain(std::span<const std::byte> content, const std::vector<std::size_t>& sizes,
                        std::uint64_t gap = 0) {
        std::uint64_t next = layout_.null;
        std::size_t stop = content.size();
        std::size_t capacity = 0;
        for (const std::size_t size : sizes)
            capacity += size;
        for (std::size_t i = sizes.size(); i-- > 0;) {
            capacity -= sizes[i];
            skip(gap);
            const std::size_t start = std::min(capacity, stop);
            next = block(i == 0 ? content.size() : 0, content.subspan(start, stop - start), sizes[i], next);
            stop = start;
        }
        return next;
    }
    /// Appends bytes that are free.
    void skip(std::uint64_t count) {
        if (count != 0)
            free(end(), count);
        bytes_.resize(end() + count);
    }
    void free(std::uint64_t address, std::uint64_t length) { free_.emplace_back(address, length); }
    /// Appends the attributes of a file.
    std::uint64_t attributes(const wstring& name) {
        const Bytes record = StorageFileInfo{Date(1), Date(2), 0, name}.encode();
        return chain(record, {record.size()});
    }
    void file(const wstring& name, std::uint64_t data) { table_.set(name, {attributes(name), data}); }
    void entry(const wstring& name, const StorageFileEntry& entry) { table_.set(name, entry); }

    /// The whole container, whose end by its table lies `behind` bytes behind the last block.
    Bytes finish(std::int64_t behind = 0) {
        Bytes list;
        for (const auto& [address, length] : free_) {
            number(list, address);
            number(list, length);
        }
        const std::uint64_t freeChain = list.empty() ? layout_.null : chain(list, {list.size()});
        // The size of the table does not depend on where it ends.
        const std::size_t size = table_.encode().size();
        table_.setEnd(end() + layout_.blockLength(size - kStorageBlockSize) +
                      static_cast<std::uint64_t>(behind));
        const Bytes content = table_.encode();
        const std::span<const std::byte> whole(content);
        const std::uint64_t rest =
            block(0, whole.subspan(kStorageBlockSize), size - kStorageBlockSize, layout_.null);
        Bytes head;
        number(head, freeChain);
        number(head, kStorageBlockSize);
        head.resize(layout_.headerSize());
        std::copy(head.begin(), head.end(), bytes_.begin());
        header(layout_.headerSize(), size, kStorageBlockSize, rest);
        std::copy_n(content.begin(), kStorageBlockSize, at(layout_.headerSize() + layout_.blockHeaderSize()));
        bytes_.resize(end() + static_cast<std::uint64_t>(std::max<std::int64_t>(behind, 0)));
        return bytes_;
    }

    [[nodiscard]] const Bytes& bytes() const noexcept { return bytes_; }

  private:
    Bytes::iterator at(std::uint64_t address) {
        return bytes_.begin() + static_cast<std::ptrdiff_t>(address);
    }
    void number(Bytes& to, std::uint64_t value) const {
        for (std::size_t i = 0; i < layout_.width; ++i)
            to.push_back(static_cast<std::byte>(value >> 8 * i));
    }

    const StorageLayout& layout_;
    Bytes bytes_;
    StorageFilesType table_;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> free_;
};

} // namespace core::test
