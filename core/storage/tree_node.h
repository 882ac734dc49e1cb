// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/storage/block_format.h"
#include "core/storage/checksum.h"
#include "core/storage/little_endian.h"

#include <core/storage/layout.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace core {

/// A node of a tree that is stored: where it lies, and what must be found there.
struct NodeRef {
    std::uint64_t address = 0;
    std::uint64_t size = 0; ///< bytes, in whole blocks that lie side by side
    std::uint64_t sum = 0;  ///< the checksum that it begins with

    [[nodiscard]] std::uint64_t blocks() const noexcept { return size / kStorageBlockSize; }
    friend bool operator==(const NodeRef&, const NodeRef&) = default;
};

/// Takes the address of a node that is damaged: a walk leaves out what is below it.
using DamagedNode = std::function<void(std::uint64_t address)>;

/// What an inner node says of a child.
struct TreeChild {
    static constexpr std::size_t kStored = std::numeric_limits<std::size_t>::max();

    NodeRef ref;
    std::uint64_t longest = 0;   ///< of the ranges below it, in a tree of free space
    std::size_t draft = kStored; ///< where it stands among the nodes that are not stored yet
    /// Whether the node was found to belong below the one that says this, which need not be found twice.
    mutable bool isVerified = false;
};

/// One node of a tree in memory: a leaf with values or an inner node with children, by their keys. `Rows`
/// says what keys and values are and how they are written.
template <class Rows>
struct TreeNode {
    unsigned level = 0; ///< 0 in a leaf
    typename Rows::Keys keys;
    std::vector<typename Rows::Value> values;
    std::vector<TreeChild> children;

    [[nodiscard]] std::size_t size() const noexcept { return keys.size(); }
    void append(typename Rows::Key key, const typename Rows::Value& value) {
        keys.append(key);
        values.push_back(value);
    }
    void append(typename Rows::Key key, const TreeChild& child) {
        keys.append(key);
        children.push_back(child);
    }
    /// Appends a row of a node of the same level.
    void appendFrom(const TreeNode& other, std::size_t row) {
        if (level == 0)
            append(other.keys.at(row), other.values[row]);
        else
            append(other.keys.at(row), other.children[row]);
    }
};

/// What stands at the start of a stored node.
struct NodeHeader {
    static constexpr std::size_t kSize = 32;
    /// Nodes of more bytes are made for names that need it alone.
    static constexpr std::size_t kCapacity = 8 * kStorageBlockSize;
    /// No node that holds what it must is larger.
    static constexpr std::uint64_t kLimit = std::uint64_t{1} << 20;
    /// No tree that fits into a file is higher.
    static constexpr unsigned kMostLevels = 64;

    unsigned level;
    std::uint64_t counter; ///< of changes, after the commit that wrote it
    std::uint64_t rows;

    void encode(std::byte* to, std::string_view kind) const noexcept {
        std::memcpy(to + 8, kind.data(), 4);
        store_number(to + 12, level, 2);
        store_number(to + 16, counter, 8);
        store_number(to + 24, rows, 4);
    }
    /// Nothing when it is not the start of a node of this kind, or its bytes do not have their checksum.
    [[nodiscard]] static std::optional<NodeHeader> decode(std::span<const std::byte> node,
                                                          std::string_view kind) noexcept {
        if (node.size() < kSize || std::memcmp(node.data() + 8, kind.data(), 4) != 0 ||
            load_number(node.data() + 14, 2) != 0 || load_number(node.data() + 28, 4) != 0 ||
            load_number(node.data(), 8) != checksum(node.subspan(8)))
            return std::nullopt;
        const auto level = static_cast<unsigned>(load_number(node.data() + 12, 2));
        if (level > kMostLevels)
            return std::nullopt;
        return NodeHeader{level, load_number(node.data() + 16, 8), load_number(node.data() + 24, 4)};
    }
};

/// Bytes of a node, without the zeros that fill its last block.
template <class Rows>
[[nodiscard]] std::size_t node_bytes(const TreeNode<Rows>& node, const StorageLayout& layout) noexcept {
    return NodeHeader::kSize + node.size() * Rows::rowBytes(node.level, layout) + node.keys.bytes();
}

/// A node as it is stored, in at least `least` bytes.
template <class Rows>
[[nodiscard]] std::vector<std::byte> encode_node(const TreeNode<Rows>& node, const StorageLayout& layout,
                                                 std::uint64_t counter, std::size_t least) {
    const std::size_t bytes = std::max(node_bytes(node, layout), least);
    std::vector<std::byte> content(static_cast<std::size_t>(blocks_for(bytes)) * kStorageBlockSize);
    NodeHeader{node.level, counter, node.size()}.encode(content.data(), Rows::kKind);
    Rows::encode(content.data() + NodeHeader::kSize, node, layout);
    store_number(content.data(), checksum(std::span(std::as_const(content)).subspan(8)), 8);
    return content;
}

/// The node that is stored as `content`; nothing when it is damaged or another one than `sum` says, or when
/// one of its addresses lies at or behind `end`.
template <class Rows>
[[nodiscard]] std::optional<TreeNode<Rows>> decode_node(std::span<const std::byte> content,
                                                        const StorageLayout& layout, std::uint64_t end,
                                                        std::uint64_t sum) {
    const auto header = NodeHeader::decode(content, Rows::kKind);
    if (!header || load_number(content.data(), 8) != sum)
        return std::nullopt;
    const auto body = content.subspan(NodeHeader::kSize);
    if (header->rows > body.size() / Rows::rowBytes(header->level, layout))
        return std::nullopt;
    TreeNode<Rows> node;
    node.level = header->level;
    if (!Rows::decode(body, node, static_cast<std::size_t>(header->rows), layout, end))
        return std::nullopt;
    for (std::size_t row = 1; row < node.size(); ++row) {
        if (Rows::compare(node.keys.at(row - 1), node.keys.at(row)) >= 0)
            return std::nullopt;
    }
    return node;
}

} // namespace core
