// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/documents/piece_node.h"

#include <memory>
#include <span>

namespace core::detail {

/// Entries of one node or of two, which are to be those of others. Borrowed.
class EntryRow {
  public:
    EntryRow() noexcept {} // the entries are made as they are added
    void add(const NodeEntry& entry) noexcept { std::construct_at(&entries_[count_++], entry); }
    void add(const PieceNode& node, std::uint32_t begin, std::uint32_t end) noexcept {
        for (std::uint32_t i = begin; i < end; ++i)
            add(node.entry(i));
    }
    void add(const PieceNode& node) noexcept { add(node, 0, node.count()); }
    [[nodiscard]] std::uint32_t count() const noexcept { return count_; }
    [[nodiscard]] std::span<const NodeEntry> all() const noexcept { return {entries_, count_}; }
    /// Divides the entries between two nodes, of which the first gets so many.
    void divide(PieceNode& left, PieceNode& right, std::uint32_t middle) const noexcept {
        left.fill(all().first(middle));
        right.fill(all().subspan(middle));
    }

  private:
    union {
        NodeEntry entries_[2 * PieceNode::kMost];
    };
    std::uint32_t count_ = 0;
};

} // namespace core::detail
