// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/file_entry.h"
#include "core/storage/name_keys.h"
#include "core/storage/tree_node.h"

#include <core/runtime/types.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace core {

/// Walks through the numbers of a row, whose widths follow each other.
class RowWriter {
  public:
    explicit RowWriter(std::byte* to) noexcept : to_(to) {}
    RowWriter& put(std::uint64_t number, std::size_t width) noexcept {
        store_number(to_, number, width);
        to_ += width;
        return *this;
    }

  private:
    std::byte* to_;
};
class RowReader {
  public:
    explicit RowReader(const std::byte* from) noexcept : from_(from) {}
    [[nodiscard]] std::uint64_t get(std::size_t width) noexcept {
        const std::uint64_t number = load_number(from_, width);
        from_ += width;
        return number;
    }

  private:
    const std::byte* from_;
};

/// Whether a child may lie there.
[[nodiscard]] inline bool is_child(const NodeRef& ref, const StorageLayout& layout,
                                   std::uint64_t end) noexcept {
    return ref.address >= layout.emptyLength() && ref.address < end && ref.size != 0 &&
           ref.size <= NodeHeader::kLimit && ref.size % kStorageBlockSize == 0 &&
           ref.blocks() * layout.blockLength(kStorageBlockSize) <= end - ref.address;
}

/// The rows of the tree of inner files: their names, and what the table says of them.
struct FileRows {
    static constexpr std::string_view kKind = "file";
    using Key = wstring_view;
    using Value = FileEntry;

    using Keys = NameKeys;
    using Probe = SoughtName;

    [[nodiscard]] static int compare(Key a, Key b) noexcept { return compare_file_names(a, b); }
    [[nodiscard]] static std::size_t rowBytes(unsigned level, const StorageLayout& layout) noexcept {
        return level == 0 ? 3 * layout.width + 24 : layout.width + 16;
    }
    [[nodiscard]] static std::size_t keyBytes(Key key) noexcept { return 2 * key.size(); }
    [[nodiscard]] static std::uint64_t longest(const Value&) noexcept { return 0; }

    static void encode(std::byte* to, const TreeNode<FileRows>& node, const StorageLayout& layout) noexcept {
        const std::size_t step = rowBytes(node.level, layout);
        for (std::size_t row = 0; row < node.size(); ++row, to += step) {
            const std::uint64_t end = node.keys.endOf(row);
            RowWriter out(to);
            if (node.level == 0) {
                const FileEntry& entry = node.values[row];
                out.put(entry.attributes, layout.width).put(entry.data, layout.width);
                out.put(entry.size, layout.width).put(end, 4).put(entry.flags, 4);
                out.put(entry.contentSum, 8).put(entry.attributesSum, 8);
            } else {
                const NodeRef& ref = node.children[row].ref;
                out.put(ref.address, layout.width).put(ref.size, 4).put(end, 4).put(ref.sum, 8);
            }
        }
        for (std::size_t row = 0; row < node.size(); ++row) {
            for (const wchar unit : node.keys.at(row)) {
                store_number(to, unit, 2);
                to += 2;
            }
        }
    }

    [[nodiscard]] static bool decode(std::span<const std::byte> from, TreeNode<FileRows>& node,
                                     std::size_t rows, const StorageLayout& layout, std::uint64_t end) {
        const std::size_t step = rowBytes(node.level, layout);
        const auto names = from.subspan(rows * step);
        std::size_t done = 0;
        wstring name;
        for (std::size_t row = 0; row < rows; ++row) {
            RowReader in(from.data() + row * step);
            FileEntry entry;
            TreeChild child;
            std::uint64_t nameEnd = 0;
            if (node.level == 0) {
                entry.attributes = in.get(layout.width);
                entry.data = in.get(layout.width);
                entry.size = in.get(layout.width);
                nameEnd = in.get(4);
                entry.flags = static_cast<std::uint32_t>(in.get(4));
                entry.contentSum = in.get(8);
                entry.attributesSum = in.get(8);
                entry.isKnown = true;
            } else {
                child.ref.address = in.get(layout.width);
                child.ref.size = in.get(4);
                nameEnd = in.get(4);
                child.ref.sum = in.get(8);
            }
            if (nameEnd < done || nameEnd - done > StorageFilesType::kLongestName ||
                nameEnd > names.size() / 2 ||
                !(node.level == 0 ? isEntry(entry, layout, end) : is_child(child.ref, layout, end)))
                return false;
            name.resize(static_cast<std::size_t>(nameEnd) - done);
            for (std::size_t i = 0; i < name.size(); ++i)
                name[i] = static_cast<wchar>(load_number(names.data() + 2 * (done + i), 2));
            done = static_cast<std::size_t>(nameEnd);
            if (node.level == 0)
                node.append(name, entry);
            else
                node.append(name, child);
        }
        return rows != 0;
    }

  private:
    [[nodiscard]] static bool isEntry(const FileEntry& entry, const StorageLayout& layout,
                                      std::uint64_t end) noexcept {
        const auto isAddress = [&](std::uint64_t a) {
            return a == layout.null || (a >= layout.emptyLength() && a < end);
        };
        return isAddress(entry.attributes) && isAddress(entry.data) && entry.size < end &&
               (entry.data == layout.null) == (entry.size == 0) && entry.flags < 4;
    }
};

/// The rows of the tree of free space: addresses of ranges, and their lengths.
struct FreeRows {
    static constexpr std::string_view kKind = "free";
    using Key = std::uint64_t;
    using Value = std::uint64_t;

    class Keys {
      public:
        [[nodiscard]] std::size_t size() const noexcept { return keys_.size(); }
        [[nodiscard]] Key at(std::size_t i) const noexcept { return keys_[i]; }
        [[nodiscard]] static std::size_t bytes() noexcept { return 0; }
        void append(Key key) { keys_.push_back(key); }

      private:
        std::vector<Key> keys_;
    };

    [[nodiscard]] static int compare(Key a, Key b) noexcept { return a < b ? -1 : a > b ? 1 : 0; }
    [[nodiscard]] static std::size_t rowBytes(unsigned level, const StorageLayout& layout) noexcept {
        return level == 0 ? 2 * layout.width : 3 * layout.width + 16;
    }
    [[nodiscard]] static std::size_t keyBytes(Key) noexcept { return 0; }
    [[nodiscard]] static std::uint64_t longest(Value length) noexcept { return length; }

    static void encode(std::byte* to, const TreeNode<FreeRows>& node, const StorageLayout& layout) noexcept {
        const std::size_t width = layout.width;
        for (std::size_t row = 0; row < node.size(); ++row, to += rowBytes(node.level, layout)) {
            RowWriter out(to);
            if (node.level == 0) {
                out.put(node.keys.at(row), width).put(node.values[row], width);
            } else {
                const TreeChild& child = node.children[row];
                out.put(child.ref.address, width).put(child.ref.size, 4).put(0, 4).put(child.ref.sum, 8);
                out.put(node.keys.at(row), width).put(child.longest, width);
            }
        }
    }

    [[nodiscard]] static bool decode(std::span<const std::byte> from, TreeNode<FreeRows>& node,
                                     std::size_t rows, const StorageLayout& layout, std::uint64_t end) {
        const std::size_t width = layout.width;
        const std::size_t step = rowBytes(node.level, layout);
        for (std::size_t row = 0; row < rows; ++row) {
            RowReader in(from.data() + row * step);
            if (node.level == 0) {
                const std::uint64_t address = in.get(width);
                const std::uint64_t length = in.get(width);
                if (address < layout.emptyLength() || address >= end || length == 0 || length > end - address)
                    return false;
                node.append(address, length);
            } else {
                TreeChild child;
                child.ref.address = in.get(width);
                child.ref.size = in.get(4);
                const bool zero = in.get(4) == 0;
                child.ref.sum = in.get(8);
                const std::uint64_t first = in.get(width);
                child.longest = in.get(width);
                if (!zero || !is_child(child.ref, layout, end))
                    return false;
                node.append(first, child);
            }
        }
        return true; // a root of free space that has taken all that there was is empty
    }
};

} // namespace core
